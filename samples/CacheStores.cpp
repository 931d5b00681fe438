#include "samples/SampleStores.h"

namespace tasselby {
namespace {

void addSafariCaches(MacHome& home) {
  const std::string safari = "Library/Caches/com.apple.Safari/";
  home.addFile("Safari caches", safari + "Cache.db", {"Safari"});
  home.addFile("Safari caches", safari + "fsCachedData/0A1B/data", {"Safari"});
  home.addFile("Safari caches", safari + "Webpage Previews/page.png", {});
  home.addFile("system property lists", "Library/Cookies/Cookies.plist", {"Safari"});
  home.addFile("system property lists", "Library/Cookies/HSTS.plist", {"Safari"});

  const std::string user = "/private/var/folders/zz/zyxvpxvq6csfxvn_n0000000000000/";
  const std::string webContent = "com.apple.WebKit.WebContent+com.apple.Safari/";
  const std::string webProcess = "com.apple.WebProcess+com.apple.Safari/";
  const std::string store = "temporary folders";
  home.addFile(store, user + "C/MediaCache/video", {"Safari"});
  home.addFile(store, user + "C/com.apple.Safari/ApplicationCache.db", {"Safari"});
  home.addFile(store, user + "C/com.apple.Safari/MediaCache/video", {});
  home.addFile(store, user + "C/" + webContent + "MediaCache/video", {"Safari"});
  home.addFile(store, user + "C/" + webContent + "other", {});
  home.addFile(store, user + "T/" + webProcess + "MediaCache/video", {"Safari"});
  home.addFile(store, user + "C/com.apple.Preview/MediaCache/video", {});
  home.addFile(store, user + "MediaCache/video", {});
}

void addChromiumCaches(MacHome& home, const std::string& browser, const std::string& root) {
  const std::string caches = "Library/Caches/" + root;
  const std::string data = "Library/Application Support/" + root;
  const std::string store = browser + " caches";
  for (const std::string& profile : kChromiumProfileNames) {
    home.addFile(store, caches + "/" + profile + "/Cache/data_1", {browser});
    home.addFile(store, data + "/" + profile + "/Application Cache/GPUCache/data_0", {browser});
    home.addFile(store, data + "/" + profile + "/Application Cache/Index", {browser});
    home.addFile(store, data + "/" + profile + "/GPUCache/data_0", {});
    home.addFile(browser + " profile", data + "/" + profile + "/Bookmarks", {});
    home.addFile(browser + " profile", data + "/" + profile + "/IndexedDB/origin/000003.log", {});
  }
  home.addFile(store, caches + "/Guest Profile/Cache/data_1", {});
  home.addFile(store, data + "Pepper Data/Shockwave Flash/CacheWritableAdobeRoot/asset", {browser});
  home.addFile(store, data + "/Pepper Data/Shockwave Flash/CacheWritableAdobeRoot/asset", {});
}

void addOperaCaches(MacHome& home) {
  const std::string data = "Library/Application Support/com.operasoftware.Opera";
  home.addFile("Opera caches", "Library/Caches/com.operasoftware.Opera/Cache/data_1", {"Opera"});
  home.addFile("Opera caches", data + "/GPUCache/data_0", {"Opera"});
  home.addFile("Opera caches", data + "/Application Cache/Index", {"Opera"});
  home.addFile("Opera caches", data + "Pepper Data/Shockwave Flash/CacheWritableAdobeRoot/asset",
               {"Opera"});
  home.addFile("Opera profile", data + "/Bookmarks", {});
}

}  // namespace

void addCaches(MacHome& home) {
  addSafariCaches(home);
  addChromiumCaches(home, "Google Chrome", "Google/Chrome");
  addChromiumCaches(home, "Chromium", "Chromium");
  addOperaCaches(home);

  const std::string firefox = "Library/Caches/Firefox/Profiles/";
  for (const std::string& profile : kFirefoxProfileNames) {
    for (const char* cache : {"Cache", "OfflineCache", "startupCache"}) {
      home.addFile("Firefox caches", firefox + profile + "/" + cache + "/entry", {"Firefox"});
    }
    home.addFile("Firefox caches", firefox + profile + "/thumbnails/page.png", {});
  }
  home.addFile("Camino caches", "Library/Caches/Camino/Cache/entry", {"Camino"});
  home.addFile("Camino caches", "Library/Caches/Metadata/Camino/bookmark", {"Camino"});
  home.addFile("Camino caches", "Library/Caches/Camino/Icons/icon", {});

  home.addFile("shared caches", "Library/Caches/Adobe/Flash Player/AssetCache/asset.swz",
               kEveryBrowser);
  home.addFile("shared caches", "Library/Caches/QuickTime/downloads/film.mov", kEveryBrowser);
  home.addFile("shared caches", "Library/Caches/QuickTime/settings", {});

  home.addFile("documents", "Documents/letter.txt", {});
  home.addFile("documents", "Library/Safari/Bookmarks.plist", {});
}

}  // namespace tasselby
