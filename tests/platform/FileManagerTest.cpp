#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

#include "platform/FileManager.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

TEST(FileManager, KnowsTheHomeAndTheVolumeItIsOn) {
  const FileManager mounted("/mnt/Users/backup/Users/anna");
  EXPECT_EQ(mounted.expandTilde("~/Library"), "/mnt/Users/backup/Users/anna/Library");
  EXPECT_EQ(mounted.expandTilde("~anna/Library"), "~anna/Library");
  EXPECT_EQ(mounted.onVolume("/private/var"), "/mnt/Users/backup/private/var");
  EXPECT_EQ(FileManager("/home/anna").onVolume("/private/var"), "/private/var");
  EXPECT_FALSE(FileManager("").fileExistsAtPath(FileManager("").expandTilde("~/tmp")));
}

TEST(FileManager, FollowsLinksOnlyWhereItSaysSo) {
  ScratchHome home;
  home.file("folder/.hidden")
      .link("link", "folder")
      .link("dangling", "nowhere")
      .link("loop", "loop");

  EXPECT_TRUE(FileManager("").isFolderAtPath(home.path("link")));
  EXPECT_FALSE(FileManager("").hasFolderType(home.path("link")));
  EXPECT_EQ(FileManager("").contentsOfDirectoryAtPath(home.path("link")), Names{".hidden"});
  EXPECT_FALSE(FileManager("").fileExistsAtPath(home.path("dangling")));
  EXPECT_FALSE(FileManager("").fileExistsAtPath(home.path("loop")));
}

TEST(FileManager, ReadsOnlyRegularFilesAndNeverWaits) {
  ScratchHome home;
  home.file("text", "\xC3\xBC").file("bytes", "\xFF");
  ASSERT_EQ(::mkfifo(home.path("fifo").c_str(), 0600), 0);

  EXPECT_EQ(FileManager("").textOfFile(home.path("text")), "\xC3\xBC");
  EXPECT_EQ(FileManager("").textOfFile(home.path("bytes")), std::nullopt);
  EXPECT_EQ(FileManager("").contentsOfFile(home.path("bytes"), 1), "\xFF");
  for (const std::string& path : {home.path("fifo"), home.home(), home.path("missing"),
                                  home.path(std::string("text\0", 5))}) {
    EXPECT_EQ(FileManager("").contentsOfFile(path, 100), std::nullopt) << path;
  }
  EXPECT_EQ(FileManager("").contentsOfFile(home.path("text"), 1), std::nullopt);
}

TEST(FileManager, RemovesTreesAndNeverWhatLinksName) {
  ScratchHome home;
  home.file("canary/file").file("tree/deep/er/file").link("tree/deep/link", "../../canary");
  home.link("tree/root", "/").link("link", "canary").link("dangling", "nowhere");

  for (const char* path : {"tree", "link", "dangling", "missing"}) {
    FileManager("").removeItemAtPath(home.path(path));
  }
  FileManager("").removeItemAtPath(home.path(std::string("canary\0x", 8)));

  EXPECT_EQ(home.list(""), Names{"canary"});
  EXPECT_EQ(home.list("canary"), Names{"file"});
}

TEST(FileManager, EnumeratesEveryDepthUntilToldToStop) {
  ScratchHome home;
  home.file("tree/a/b/.c").file("tree/d").file("outside/e").link("tree/link", "../outside");
  Names visited;
  const auto visit = [&visited](const std::string& path) {
    visited.push_back(path);
    return true;
  };

  EXPECT_TRUE(FileManager("").enumerateDeep(home.path("tree"), visit));
  std::sort(visited.begin(), visited.end());
  EXPECT_EQ(visited, (Names{home.path("tree/a"), home.path("tree/a/b"), home.path("tree/a/b/.c"),
                            home.path("tree/d"), home.path("tree/link")}));
  EXPECT_FALSE(FileManager("").enumerateDeep(home.path("tree"), [](const auto&) { return false; }));
  EXPECT_TRUE(FileManager("").enumerateDeep(home.path("missing"), visit));
}

}  // namespace
}  // namespace tasselby
