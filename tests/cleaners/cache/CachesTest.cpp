#include <algorithm>
#include <map>
#include <string>

#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

const std::string kSupport = "Library/Application Support/";
const std::string kCaches = "Library/Caches/";

class CachesTest : public WorkerTest {
 protected:
  /// The entries of `before` that the home no longer has, less those below a folder that is gone.
  Names goneSince(const std::map<std::string, std::string>& before) const {
    const auto after = home.snapshot();
    Names gone;
    for (const auto& [path, contents] : before) {
      if (after.contains(path)) {
        EXPECT_EQ(after.at(path), contents) << path;
      } else if (gone.empty() || !path.starts_with(gone.back() + "/")) {
        gone.push_back(path);
      }
    }
    return gone;
  }
};

TEST_F(CachesTest, DisposesOfWhatBelongsToTheBrowserAndOfTheSharedCaches) {
  const std::string profiles =
      R"({"profile": {"info_cache": {"P": {"name": "p"}, "Q": {"name": "q"}}}})";
  const std::map<std::string, Names> goneByBrowser = {
      {"Safari",
       {kCaches + "com.apple.Safari/Cache.db", kCaches + "com.apple.Safari/fsCachedData",
        "Library/Cookies/Cookies.plist", "Library/Cookies/HSTS.plist"}},
      {"Opera",
       {kSupport + "com.operasoftware.Opera/Application Cache",
        kSupport + "com.operasoftware.Opera/GPUCache",
        kSupport + "com.operasoftware.OperaPepper Data/Shockwave Flash/CacheWritableAdobeRoot",
        kCaches + "com.operasoftware.Opera"}},
      {"Google Chrome",
       {kSupport + "Google/Chrome/P/Application Cache",
        kSupport + "Google/ChromePepper Data/Shockwave Flash/CacheWritableAdobeRoot",
        kCaches + "Google/Chrome/P", kCaches + "Google/Chrome/Q"}},
      {"Chromium", {kSupport + "Chromium/P/Application Cache", kCaches + "Chromium/P"}},
      {"Camino", {kCaches + "Camino/Cache", kCaches + "Metadata/Camino"}},
      {"Firefox",
       {kCaches + "Firefox/Profiles/p/Cache", kCaches + "Firefox/Profiles/p/OfflineCache",
        kCaches + "Firefox/Profiles/p/startupCache"}},
      {"WebKit", {}},
      {"Unknown", {}},
  };
  for (const std::string& neighbour :
       {kSupport + "Google/Chrome/P/GPUCache/kept", kSupport + "Google/Chrome/GPUCache/kept",
        kSupport + "Google/Chrome/Pepper Data/Shockwave Flash/CacheWritableAdobeRoot/kept",
        kCaches + "Google/Chrome/Other/kept", kCaches + "Camino/kept", kCaches + "QuickTime/kept",
        kCaches + "Firefox/Profiles/p/Other/kept", kCaches + "com.apple.Safari/kept",
        std::string("Library/Cookies/Cookies.binarycookies")}) {
    home.file(neighbour);
  }
  home.link(kCaches + "Firefox/Profiles/linked", "../../../../outside").file("outside/Cache/kept");
  home.file(kCaches + "Firefox/Profiles/plain file");
  for (const auto& [browser, gone] : goneByBrowser) {
    home.file(kSupport + "Google/Chrome/Local State", profiles);
    home.file(kSupport + "Chromium/Local State", profiles);
    for (const auto& [other, paths] : goneByBrowser) {
      for (const std::string& path : paths) {
        path.ends_with(".db") || path.ends_with(".plist") ? home.file(path)
                                                          : home.file(path + "/in");
      }
    }
    home.file(kCaches + "Adobe/Flash Player/AssetCache/in")
        .file(kCaches + "QuickTime/downloads/in");
    const auto before = home.snapshot();

    worker.removeBrowserCache(browser);

    Names expected = gone;
    expected.push_back(kCaches + "Adobe/Flash Player/AssetCache");
    expected.push_back(kCaches + "QuickTime/downloads");
    for (std::string& path : expected) {
      path.insert(0, "Users/anna/");
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(goneSince(before), expected) << browser;
  }
}

TEST_F(CachesTest, WalksTheTemporaryFoldersExactlyFourListingsDeep) {
  const std::string folders = "../../private/var/folders/";
  const std::string webContent = "com.apple.WebKit.WebContent+com.apple.Safari";
  const std::string webProcess = "com.apple.WebProcess+com.apple.Safari";
  const Names gone = {"a/b/C/MediaCache", "a/b/C/" + webContent + "/MediaCache",
                      "a/b/C/" + webProcess + "/MediaCache", "a/b/T/MediaCache"};
  for (const std::string& path : gone) {
    home.file(folders + path + "/deep/in");
  }
  home.file(folders + "a/b/C/com.apple.Safari/ApplicationCache.db");
  for (const char* neighbour :
       {"MediaCache/kept", "a/MediaCache/kept", "a/b/MediaCache/kept",
        "a/b/C/other/MediaCache/kept", "a/b/C/com.apple.Safari/MediaCache/kept", "a/b/D/MediaCache",
        "a/file"}) {
    home.file(folders + neighbour);
  }
  home.link(folders + "a/b/L", "C").link(folders + "a/b/E/MediaCache", "../C/other");
  const auto before = home.snapshot();

  worker.clearExtraCache();

  Names expected = {"private/var/folders/a/b/C/com.apple.Safari/ApplicationCache.db"};
  for (const std::string& path : gone) {
    expected.push_back("private/var/folders/" + path);
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(goneSince(before), expected);
}

TEST_F(CachesTest, LeavesWhatCannotBeWipedAndGoesOn) {
  defaults.on = {"secureDeleteData"};
  const std::string cookies = "Library/Cookies/";
  home.socket(cookies + "Cookies.plist").file(cookies + "HSTS.plist");

  worker.clearExtraCookieCache();

  EXPECT_EQ(home.list(cookies), Names{"Cookies.plist"});
}

}  // namespace
}  // namespace tasselby
