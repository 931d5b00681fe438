// Paths and files: what is seen and removed of them, and how they are overwritten.
#include <unistd.h>

#include "platform/Paths.h"
#include "storage/Disposal.h"
#include "storage/SecureDelete.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using namespace std::string_literals;

using Files = WorkerTest;

TEST_F(Files, PathsJoinWithOneSlashAndNamesThatLeadOutAreTold) {
  EXPECT_EQ(join("/a/", "/b/") + join("/", "b") + join("/a/", ""), "/a/b/b/a/");
  for (const std::string& name :
       split("+ +a +/a +a/b +... +..a +a.. -.. -../a -. -a/.. -a/../b -a//./b -a\0b"s, ' ')) {
    EXPECT_EQ(staysBelow(name.substr(1)), name[0] == '+') << name;
  }
  const FileManager backup("/mnt/Users/backup/Users/anna");
  EXPECT_EQ(backup.expandTilde("~/a") + backup.expandTilde("~b"),
            "/mnt/Users/backup/Users/anna/a~b");
  EXPECT_EQ(backup.onVolume("/a") + FileManager("/home").onVolume("/b"), "/mnt/Users/backup/a/b");
  EXPECT_FALSE(files.fileExistsAtPath(FileManager("").expandTilde("~/tmp")));
}

TEST_F(Files, OnlyRegularFilesAreReadUpToALimitAndOnlyUtf8IsText) {
  home.file("text", "\xC3\xBC\xF4\x8F\xBF\xBF\xF0\x9F\x98\x80").link("link", "text");
  EXPECT_TRUE(files.textOfFile(home.path("link")) && !files.contentsOfFile(home.path("text"), 9));
  home.link("device", "/dev/null");
  for (const std::string& name : split("device||no|text/x|text\0"s, '|')) {
    EXPECT_FALSE(files.contentsOfFile(home.path(name), 100)) << name;
  }
  for (const std::string& bytes :
       split("\xFF|\xC3|\xC0\x80|\xED\xA0\x80|\xF4\x90\x80\x80|a\x80|\xE0\x9F\xBF|\xC3z", '|')) {
    home.file("bytes", bytes);
    EXPECT_EQ(files.textOfFile(home.path("bytes")), std::nullopt) << bytes;
    EXPECT_EQ(files.contentsOfFile(home.path("bytes"), 4), bytes);
  }
}

TEST_F(Files, OverwritingRepeatsOneBufferAndARefusedPhaseLeavesTheFileOpen) {
  // Several times what a single call writes, and no multiple of the buffer.
  const std::size_t size = (2 << 20) + 5;
  const std::string path = home.file("file", std::string(size, 'x')).path("file");
  for (const int phase : {1, 2}) {
    EXPECT_TRUE(SecureDelete::wipe_phase(files, path, phase));
    EXPECT_TRUE(home.contents("file") == std::string(size, phase == 1 ? '\x55' : '\xAA')) << phase;
  }
  // The last of all three is random.
  EXPECT_TRUE(SecureDelete::wipe(files, path));
  const std::string random = home.contents("file");
  EXPECT_EQ(random.find('\xFF'), std::string::npos);
  EXPECT_TRUE(std::equal(random.begin() + 1024, random.end(), random.begin()));
  const int input = ::dup(0);
  ::close(0);
  EXPECT_TRUE(SecureDelete::wipe_phase(files, path, 3)) << "by descriptor 0";
  EXPECT_TRUE(home.contents("file") != random) << "seeded anew";
  EXPECT_FALSE(SecureDelete::wipe_phase(files, path, 4));
  EXPECT_GT(::dup(input), 0);
  ::dup2(input, 0);
}

TEST_F(Files, DisposalRemovesOnlyWhatCouldBeOverwritten) {
  home.file("file").file("folder/in", "as it was").file("target", "secret").file("empty", "");
  home.link("link", "target").link("to folder", "folder").link("dangling", "nowhere");
  fs::create_hard_link(home.socket("socket").path("folder/in"), home.path("witness"));
  for (const auto& name : split("file|empty|to folder|folder|link|dangling|socket|missing", '|')) {
    dispose(files, home.path(name), true);
  }
  EXPECT_EQ(home.list(""), (Names{"socket", "target", "witness"}));
  EXPECT_EQ(home.contents("witness"), "as it was") << "nothing in a folder is overwritten";
  EXPECT_NE(home.contents("target"), "secret") << "a link's target is overwritten";
  EXPECT_TRUE(SecureDelete::wipeContentsofDir(files, home.path("missing")) &&
              SecureDelete::wipeContentsofDir(files, home.path("witness")));
  EXPECT_NE(home.contents("witness"), "as it was");
}

}  // namespace
}  // namespace tasselby
