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

constexpr std::size_t kBuffer = 1024;

struct Files : ::testing::Test {
  ScratchHome home;
  FileManager files{home.home()};

  bool wipe(const std::string& name, int phase) {
    return SecureDelete::wipe_phase(files, home.path(name), phase);
  }

  /// Makes the file "sparse" of `size` bytes. Answers whether there is room for that.
  bool makeSparse(std::uintmax_t size) {
    home.file("sparse", "start");
    std::error_code error;
    fs::resize_file(home.path("sparse"), size, error);
    return !error;
  }
};

TEST_F(Files, PathsJoinWithOneSlashAndNamesThatLeadOutAreTold) {
  EXPECT_EQ(join("/a", "b"), "/a/b");
  EXPECT_EQ(join("/a/", "/b"), "/a/b");
  EXPECT_EQ(join("/", "b"), "/b");
  EXPECT_EQ(join("/a/", ""), "/a/");
  EXPECT_EQ(join("/a", "link/"), "/a/link");
  for (const char* name : {"", "a", "/a", "a/b", "...", "..a", "a.."}) {
    EXPECT_TRUE(staysBelow(name)) << name;
  }
  for (const char* name : {"..", "../a", ".", "a/..", "a/../b", "./a", "a//./b"}) {
    EXPECT_FALSE(staysBelow(name)) << name;
  }
  EXPECT_FALSE(staysBelow(std::string("a\0b", 3)));
}

TEST_F(Files, HomeAndVolumeAreKnown) {
  const FileManager mounted("/mnt/Users/backup/Users/anna");
  EXPECT_EQ(mounted.expandTilde("~/Library"), "/mnt/Users/backup/Users/anna/Library");
  EXPECT_EQ(mounted.expandTilde("~anna/Library"), "~anna/Library");
  EXPECT_EQ(mounted.expandTilde("a/~/b"), "a/~/b");
  EXPECT_EQ(mounted.onVolume("/private/var"), "/mnt/Users/backup/private/var");
  EXPECT_EQ(FileManager("/home/anna").onVolume("/private/var"), "/private/var");
  EXPECT_FALSE(files.fileExistsAtPath(FileManager("").expandTilde("~/tmp")));
}

TEST_F(Files, LinksAreFollowedOnlyWhereThatIsSaid) {
  home.file("folder/.hidden").link("link", "folder").link("dangling", "no").link("loop", "loop");
  EXPECT_TRUE(files.isFolderAtPath(home.path("link")));
  EXPECT_TRUE(files.hasFolderType(home.path("folder")));
  EXPECT_FALSE(files.hasFolderType(home.path("link")));
  EXPECT_EQ(files.contentsOfDirectoryAtPath(home.path("link")), Names{".hidden"});
  for (const char* name : {"dangling", "loop", "folder/.hidden/x"}) {
    EXPECT_FALSE(files.fileExistsAtPath(home.path(name))) << name;
  }
}

TEST_F(Files, OnlyRegularFilesAreReadAndNothingIsWaitedFor) {
  home.file("text", "\xC3\xBC").file("four", "\xF4\x8F\xBF\xBF\xF0\x9F\x98\x80");
  EXPECT_EQ(files.textOfFile(home.path("text")), "\xC3\xBC");
  EXPECT_TRUE(files.textOfFile(home.path("four")));
  for (const char* bytes : {"\xFF", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80",
                            "\xE0\x9F\xBF", "\xC3z"}) {
    home.file("bytes", bytes);
    EXPECT_EQ(files.textOfFile(home.path("bytes")), std::nullopt) << bytes;
    EXPECT_EQ(files.contentsOfFile(home.path("bytes"), 4), bytes);
  }
  ASSERT_EQ(::mkfifo(home.path("fifo").c_str(), 0600), 0);
  for (const std::string& path :
       {home.path("fifo"), home.home(), home.path("no"), home.path(std::string("text\0", 5))}) {
    EXPECT_EQ(files.contentsOfFile(path, 100), std::nullopt) << path;
  }
  EXPECT_EQ(files.contentsOfFile(home.path("text"), 1), std::nullopt);
}

TEST_F(Files, OverwritingRepeatsOneBufferOverTheWholeFile) {
  // One size below and one above what a single call gathers, neither a multiple of the buffer's.
  for (const std::size_t size : {std::size_t{5000}, kBuffer * 1024 * 2 + 5}) {
    home.file("file", std::string(size, 'x'));
    EXPECT_TRUE(wipe("file", 1));
    EXPECT_EQ(home.contents("file"), std::string(size, '\x55'));
    EXPECT_TRUE(wipe("file", 2));
    EXPECT_EQ(home.contents("file"), std::string(size, '\xAA'));
    EXPECT_TRUE(wipe("file", 3));
    const std::string random = home.contents("file");
    ASSERT_EQ(random.size(), size);
    EXPECT_EQ(random.find('\xFF'), std::string::npos);
    EXPECT_TRUE(std::equal(random.begin() + kBuffer, random.end(), random.begin()));
    EXPECT_GT(std::set<char>(random.begin(), random.begin() + kBuffer).size(), 100U);
    EXPECT_TRUE(wipe("file", 3));
    EXPECT_NE(home.contents("file"), random) << "seeded anew";
  }
  EXPECT_TRUE(SecureDelete::wipe(files, home.path("file")));
  const std::string wiped = home.contents("file");
  EXPECT_GT(std::set<char>(wiped.begin(), wiped.end()).size(), 100U) << "the last pass is random";
}

TEST_F(Files, ARefusedPhaseLeavesTheFileOpen) {
  home.file("file", "kept");
  const int free = ::dup(0);
  ::close(free);
  EXPECT_FALSE(wipe("file", 4));
  const int next = ::dup(0);
  EXPECT_GT(next, free);
  ::close(next);
  EXPECT_FALSE(wipe("file", 0));
  EXPECT_EQ(home.contents("file"), "kept");
}

TEST_F(Files, OverwritingFailsWhereNothingCanBeOpened) {
  home.file("file", "kept").file("empty", "").socket("socket").folder("folder");
  EXPECT_TRUE(SecureDelete::wipe(files, home.path("empty")));
  EXPECT_TRUE(SecureDelete::wipe(files, home.path("missing")));
  EXPECT_TRUE(SecureDelete::wipe(files, home.path("folder")));
  EXPECT_FALSE(SecureDelete::wipe(files, home.path("socket")));
  EXPECT_TRUE(SecureDelete::wipeContentsofDir(files, home.path("missing")));
  EXPECT_FALSE(SecureDelete::wipeContentsofDir(files, home.home()));
  EXPECT_TRUE(SecureDelete::wipeContentsofDir(files, home.path("file")));
  EXPECT_NE(home.contents("file"), "kept");
}

TEST_F(Files, OverwritingCountsOnlyTheLowHalfOfTheSize) {
  if (!makeSparse((std::uintmax_t{1} << 32) + 2)) {
    GTEST_SKIP() << "no room for a sparse file";
  }
  EXPECT_TRUE(wipe("sparse", 1));
  fs::resize_file(home.path("sparse"), 5);
  EXPECT_EQ(home.contents("sparse"),
            "\x55\x55"
            "art");
}

TEST_F(Files, OverwritingSubtractsWhatAFailedWriteAnswered) {
  // A file can grow to 4 KiB here. Of its 2^32 - 8 bytes the first 4096 are written; the rest fail
  // with -1 each, which adds to the count, until it wraps to 0 after 8 + 4096 failures.
  if (!makeSparse((std::uintmax_t{1} << 32) - 8)) {
    GTEST_SKIP() << "no room for a sparse file";
  }
  const pid_t child = ::fork();
  if (child == 0) {
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
  home.file("file").file("folder/inside", "as it was").file("target", "secret");
  home.link("link", "target").link("to folder", "folder").link("dangling", "nowhere");
  home.socket("socket");
  fs::create_hard_link(home.path("folder/inside"), home.path("witness"));
  for (const char* name :
       {"file", "to folder", "folder", "link", "dangling", "socket", "missing"}) {
    dispose(files, home.path(name), true);
  }
  EXPECT_EQ(home.list(""), (Names{"socket", "target", "witness"}));
  EXPECT_EQ(home.contents("witness"), "as it was") << "nothing in a folder is overwritten";
  EXPECT_EQ(home.contents("target").size(), 6U);
  EXPECT_NE(home.contents("target"), "secret") << "a link's target is overwritten";
  dispose(files, home.path("socket"), false);
  EXPECT_FALSE(home.has("socket"));
}

}  // namespace
}  // namespace tasselby
