#include <filesystem>
#include <string>

#include "platform/HardError.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

const std::string kPlayer = "Library/Preferences/Macromedia/Flash Player/";
const std::string kSettings = kPlayer + "macromedia.com/support/flashplayer/sys/";
const std::string kChrome = "Library/Application Support/Google/Chrome/";
const std::string kSilverlight = "Library/Application Support/Microsoft/Silverlight/";

class PluginsTest : public WorkerTest {
 protected:
  void addStore(const std::string& folder, const std::string& name, const std::string& identity) {
    home.file(kSilverlight + folder + "/s/" + name + "/id.dat", identity)
        .file(kSilverlight + folder + "/s/" + name + "/group.dat", "group " + name)
        .file(kSilverlight + folder + "/g/group " + name + "/data");
  }

  const KeepList keepList = {"kept.com"};
};

TEST_F(PluginsTest, CountsFlashHostsOnceAndRemovesOnlyTheirOwnSettings) {
  const std::filesystem::path before = std::filesystem::current_path();
  home.folder("current");
  std::filesystem::current_path(home.path("current"));
  // The same tree in the home folder and in a folder named "~".
  for (const std::string& root : {std::string(), std::string("current/~/")}) {
    home.file(root + kPlayer + "#SharedObjects/R1/www.gone.com/x.sol")
        .file(root + kPlayer + "#SharedObjects/R2/gone.com/x.sol")
        .file(root + kPlayer + "#SharedObjects/R2/kept.com/x.sol")
        .file(root + kPlayer + "#SharedObjects/R2/.hidden.com/x.sol")
        .file(root + kPlayer + "#SharedObjects/R2/macromedia.com/x.sol")
        .file(root + kSettings + "settings.sol")
        .file(root + kSettings + "#www.gone.com/settings.sol")
        .file(root + kSettings + "#own.com/settings.sol", "secret")
        .file(root + kSettings + "#www.kept.com/settings.sol")
        .file(root + kSettings + "nomark.com/settings.sol")
        .file(root + kSettings + "##g/.dot.com/settings.sol")
        .file(root + kSettings + "##g/^nosite/settings.sol")
        .file(root + kSettings + "##g/kept.com/settings.sol");
  }

  EXPECT_EQ(worker.removeFlash_keep("WebKit", keepList), 5);
  std::filesystem::current_path(before);

  EXPECT_EQ(home.list(kPlayer + "#SharedObjects/R1").size(), 1U);
  EXPECT_EQ(home.list(kPlayer + "#SharedObjects/R2").size(), 4U);
  EXPECT_EQ(home.list(kSettings), (Names{"##g", "#www.kept.com", "nomark.com", "settings.sol"}));
  EXPECT_EQ(home.list(kSettings + "##g").size(), 3U);
  const std::string other = "current/~/";
  EXPECT_TRUE(home.list(other + kPlayer + "#SharedObjects/R1").empty());
  EXPECT_EQ(home.list(other + kPlayer + "#SharedObjects/R2"), (Names{".hidden.com", "kept.com"}));
  EXPECT_EQ(home.list(other + kSettings).size(), 6U);
  EXPECT_EQ(home.list(other + kSettings + "##g"), Names{"kept.com"});
}

TEST_F(PluginsTest, RemovesASettingWithoutOverwritingIt) {
  defaults.on = {"secureDeleteData"};
  home.file(kSettings + "#gone.com", "as it was");
  std::filesystem::create_hard_link(home.path(kSettings + "#gone.com"), home.path("witness"));

  EXPECT_EQ(worker.removeFlash_keep("Opera", keepList), 1);

  EXPECT_TRUE(home.list(kSettings).empty());
  EXPECT_EQ(home.contents("witness"), "as it was");
}

TEST_F(PluginsTest, CountsPepperFlashByProfileAndHost) {
  home.file(kChrome + "Local State",
            R"({"profile": {"info_cache": {"P": {"name": "p"}, "Q": {"name": "q"}}}})");
  const std::string store = "/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/";
  const std::string settings = "/macromedia.com/support/flashplayer/sys/";
  for (const char* profile : {"P", "Q"}) {
    const std::string objects = kChrome + profile + store;
    home.file(objects + "R1/gone.com/x.sol").file(objects + "R2/www.gone.com/x.sol");
    home.file(objects + "R1/kept.com/x.sol").file(objects + "R1/.hidden.com/x.sol");
    home.file(objects + "R1" + settings + "#gone.com/settings.sol")
        .file(objects + "R1" + settings + "settings.sol")
        .file(objects + "R1" + settings + "##g/.dot.com/settings.sol");
  }
  home.file(kSettings + "#gone.com/settings.sol");

  const auto counts = worker.clearChromeFlash_keep("Google Chrome", keepList);
  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->seen, 6);
  EXPECT_EQ(counts->removed, 4);
  for (const char* profile : {"P", "Q"}) {
    const std::string objects = kChrome + profile + store;
    EXPECT_EQ(home.list(objects + "R1"), (Names{".hidden.com", "kept.com", "macromedia.com"}));
    EXPECT_TRUE(home.list(objects + "R2").empty());
    EXPECT_EQ(home.list(objects + "R1" + settings), (Names{"##g", "settings.sol"}));
    EXPECT_TRUE(home.list(objects + "R1" + settings + "##g").empty());
    home.file(objects + "R2/gone.com/x.sol");
  }
  EXPECT_EQ(worker.removeFlash_keep("Google Chrome", keepList), 3);
  EXPECT_FALSE(worker.clearChromeFlash_keep("Opera", keepList));
}

TEST_F(PluginsTest, RemovesSilverlightStoresWithTheirGroups) {
  addStore("is/a/b/c", "1", "www.gone.com");
  addStore("is/a/b/c", "2", "gone.com");
  addStore("is/a/b/c", "3", "kept.com");
  addStore("is/a/b/c", "4", "kept.com\n");
  addStore("is/a/b/.c", "5", "gone.com");
  home.file(kSilverlight + "is/a/b/c/s/5/id.dat", "out.com")
      .file(kSilverlight + "is/a/b/c/s/5/group.dat", "../../../../../kept")
      .file(kSilverlight + "kept/file");
  home.file(kSilverlight + "is/a/b/c/s/6/id.dat", "out.com");
  // What runs that were cut off have left is no store.
  home.file(kSilverlight + "is/a/b/c/s/.tasselby-7/group.dat", "group 7")
      .file(kSilverlight + "is/a/b/c/g/group 7/data")
      .file(kSilverlight + "../.tasselby-Silverlight/is/a/b/c/s/8/data");

  EXPECT_EQ(worker.removeSilverlight(keepList), 3);
  EXPECT_EQ(home.list(kSilverlight + ".."), Names{"Silverlight"});

  EXPECT_EQ(home.list(kSilverlight + "is/a/b/c/s"), Names{"3"});
  EXPECT_EQ(home.list(kSilverlight + "is/a/b/c/g"), Names{"group 3"});
  EXPECT_EQ(home.list(kSilverlight + "is/a/b/.c/s"), Names{"5"});
  EXPECT_EQ(home.list(kSilverlight), (Names{"is", "kept"}));
}

TEST_F(PluginsTest, SweepsTheWholePlugInOnceAFolderOfStoresIsEmpty) {
  addStore("is/a/b/c", "1", "gone.com");
  home.file(kSilverlight + "kept/file").file("Library/Application Support/Microsoft/Office/kept");

  EXPECT_EQ(worker.removeSilverlight(keepList), 1);

  EXPECT_EQ(home.list("Library/Application Support/Microsoft"), Names{"Office"});
}

TEST_F(PluginsTest, PassesOverAStoreThatHasGoneSinceItWasListed) {
  // As another worker would, whichever store goes first takes the other with it.
  home.file(kSilverlight + "is/a/b/c/s/1/id.dat", "gone.com")
      .file(kSilverlight + "is/a/b/c/s/1/group.dat", "2")
      .file(kSilverlight + "is/a/b/c/s/2/id.dat", "out.com")
      .file(kSilverlight + "is/a/b/c/s/2/group.dat", "1")
      .file(kSilverlight + "is/a/b/c/s/3/id.dat", "kept.com")
      .link(kSilverlight + "is/a/b/c/g", "s");
  EXPECT_EQ(worker.removeSilverlight(keepList), 1);
}

TEST_F(PluginsTest, FailsHardAtAStoreWithoutASite) {
  home.folder(kSilverlight + "is/a/b/c/s/1");
  EXPECT_THROW(worker.removeSilverlight(keepList), HardError);
  for (const std::string& identity : {std::string("file:///x"), std::string("\xFF")}) {
    addStore("is/a/b/c", "1", identity);
    EXPECT_THROW(worker.removeSilverlight(keepList), HardError);
    EXPECT_TRUE(home.has(kSilverlight + "is/a/b/c/s/1")) << identity;
  }
}

}  // namespace
}  // namespace tasselby
