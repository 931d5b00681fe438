// Paths and files: what is seen and removed of them, and how they are overwritten.
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/FileManager.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"
#include "storage/SecureDelete.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using namespace std::string_literals;

struct Files : ::testing::Test {
  ScratchHome home;
  FileManager files{home.home()};

  bool wipe(const std::string& name, int phase) {
    return SecureDelete::wipe_phase(files, home.path(name), phase);
  }
};

TEST_F(Files, PathsJoinWithOneSlashAndNamesThatLeadOutAreTold) {
  EXPECT_EQ(join("/a/", "/b/") + join("/", "b") + join("/a/", ""), "/a/b/b/a/");
  for (const char* name : {"", "a", "/a", "a/b", "...", "..a", "a.."}) {
    EXPECT_TRUE(staysBelow(name)) << name;
  }
  for (const std::string& name : {".."s, "../a"s, "."s, "a/.."s, "a/../b"s, "a//./b"s, "a\0b"s}) {
    EXPECT_FALSE(staysBelow(name)) << name;
  }
  const FileManager mounted("/mnt/Users/backup/Users/anna");
  EXPECT_EQ(mounted.expandTilde("~/Library"), "/mnt/Users/backup/Users/anna/Library");
  EXPECT_EQ(mounted.expandTilde("~anna/Library"), "~anna/Library");
  EXPECT_EQ(mounted.onVolume("/private/var"), "/mnt/Users/backup/private/var");
  EXPECT_EQ(FileManager("/home/anna").onVolume("/private/var"), "/private/var");
  EXPECT_FALSE(files.fileExistsAtPath(FileManager("").expandTilde("~/tmp")));
}

TEST_F(Files, OnlyRegularFilesAreReadAndNothingIsWaitedFor) {
  ASSERT_EQ(::mkfifo(home.path("fifo").c_str(), 0600), 0);
  home.file("text", "\xC3\xBC\xF4\x8F\xBF\xBF\xF0\x9F\x98\x80").link("link", "text");
  EXPECT_TRUE(files.textOfFile(home.path("link")));
  EXPECT_FALSE(files.hasFolderType(home.path("link")));
  for (const std::string& name : {"fifo"s, ""s, "no"s, "text/x"s, "text\0"s}) {
    EXPECT_FALSE(files.contentsOfFile(home.path(name), 100)) << name;
  }
  EXPECT_FALSE(files.contentsOfFile(home.path("text"), 9)) << "above the limit";
  for (const char* bytes : {"\xFF", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80",
                            "\xE0\x9F\xBF", "\xC3z"}) {
    home.file("bytes", bytes);
    EXPECT_EQ(files.textOfFile(home.path("bytes")), std::nullopt) << bytes;
    EXPECT_EQ(files.contentsOfFile(home.path("bytes"), 4), bytes);
  }
}

TEST_F(Files, OverwritingRepeatsOneBufferOverTheWholeFile) {
  // One size below and one above what a single call gathers, neither a multiple of the buffer's.
  for (const std::size_t size : {std::size_t{5000}, std::size_t{1024} * 1024 * 2 + 5}) {
    home.file("file", std::string(size, 'x'));
    EXPECT_TRUE(wipe("file", 1));
    EXPECT_EQ(home.contents("file"), std::string(size, '\x55'));
    EXPECT_TRUE(wipe("file", 2));
    EXPECT_EQ(home.contents("file"), std::string(size, '\xAA'));
    // The last of all three is random.
    EXPECT_TRUE(SecureDelete::wipe(files, home.path("file")));
    const std::string random = home.contents("file");
    ASSERT_EQ(random.size(), size);
    EXPECT_EQ(random.find('\xFF'), std::string::npos);
    EXPECT_TRUE(std::equal(random.begin() + 1024, random.end(), random.begin()));
    EXPECT_GT(std::set<char>(random.begin(), random.begin() + 1024).size(), 100U);
    EXPECT_TRUE(wipe("file", 3));
    EXPECT_NE(home.contents("file"), random) << "seeded anew";
  }
}

TEST_F(Files, ARefusedPhaseLeavesTheFileOpen) {
  home.file("file", "kept");
  const int free = ::dup(0);
  ::close(free);
  EXPECT_FALSE(wipe("file", 4));
  const int next = ::dup(0);
  EXPECT_GT(next, free);
  ::close(next);
  EXPECT_EQ(home.contents("file"), "kept");
}

TEST_F(Files, OverwritingCountsTheLowHalfOfTheSizeAndSubtractsWhatAFailedWriteAnswered) {
  // A file can grow to 4 KiB here. Of 2^33 - 8 bytes 2^32 - 8 count, of which the first 4096 are
  // written; the rest fail with -1 each, which adds to the count, until it wraps to 0 after 8 +
  // 4096 failures.
  home.file("sparse", "start");
  std::error_code error;
  fs::resize_file(home.path("sparse"), (std::uintmax_t{1} << 33) - 8, error);
  if (error) {
    GTEST_SKIP() << "no room for a sparse file";
  }
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(600);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::_exit(wipe("sparse", 1) ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  fs::resize_file(home.path("sparse"), 4097);
  EXPECT_EQ(home.contents("sparse"), std::string(4096, '\x55') + '\0');
}

TEST_F(Files, DisposalRemovesOnlyWhatCouldBeOverwritten) {
  home.file("file").file("folder/inside", "as it was").file("target", "secret").file("empty", "");
  home.link("link", "target").link("to folder", "folder").link("dangling", "nowhere");
  home.socket("socket");
  fs::create_hard_link(home.path("folder/inside"), home.path("witness"));
  for (const char* name :
       {"file", "empty", "to folder", "folder", "link", "dangling", "socket", "missing"}) {
    dispose(files, home.path(name), true);
  }
  EXPECT_EQ(home.list(""), (Names{"socket", "target", "witness"}));
  EXPECT_EQ(home.contents("witness"), "as it was") << "nothing in a folder is overwritten";
  EXPECT_EQ(home.contents("target").size(), 6U);
  EXPECT_NE(home.contents("target"), "secret") << "a link's target is overwritten";
  dispose(files, home.path("socket"), false);
  EXPECT_FALSE(home.has("socket"));
  EXPECT_TRUE(SecureDelete::wipeContentsofDir(files, home.path("missing")));
  EXPECT_FALSE(SecureDelete::wipeContentsofDir(files, home.home()));
  EXPECT_TRUE(SecureDelete::wipeContentsofDir(files, home.path("witness")));
  EXPECT_NE(home.contents("witness"), "as it was");
}

}  // namespace
}  // namespace tasselby
