// The caches of one browser, removed whole, and two that all browsers share. The keep list plays no
// part, and nothing is counted.

#include <string>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"

namespace tasselby {
namespace {

constexpr const char* kFirefoxCaches = "~/Library/Caches/Firefox/Profiles/";
constexpr const char* kPepperCache = "Pepper Data/Shockwave Flash/CacheWritableAdobeRoot";

}  // namespace

void WorkerAppDelegate::removeBrowserCache(const std::string& browser) {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const auto disposeOf = [this, secure](const char* path) {
    dispose(platform_.files, platform_.files.expandTilde(path), secure);
  };

  // Deliberate: "WebKit" is no Safari here.
  if (browser == "Safari") {
    disposeOf("~/Library/Caches/com.apple.Safari/Cache.db");
    disposeOf("~/Library/Caches/com.apple.Safari/fsCachedData");
    clearExtraCache();
    clearExtraCookieCache();
  } else if (isChromiumLike(browser)) {
    clearChromeCache(browser);
  } else if (browser == "Camino") {
    disposeOf("~/Library/Caches/Camino/Cache");
    disposeOf("~/Library/Caches/Metadata/Camino");
  } else if (browser == "Firefox") {
    clearFireFoxCache();
  }

  disposeOf("~/Library/Caches/Adobe/Flash Player/AssetCache");
  disposeOf("~/Library/Caches/QuickTime/downloads");
}

void WorkerAppDelegate::clearFireFoxCache() {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const std::string profiles = platform_.files.expandTilde(kFirefoxCaches);
  for (const std::string& name : platform_.files.contentsOfDirectoryAtPath(profiles)) {
    const std::string profile = join(profiles, name);
    if (!platform_.files.hasFolderType(profile)) {
      continue;
    }
    for (const char* cache : {"Cache", "OfflineCache", "startupCache"}) {
      dispose(platform_.files, join(profile, cache), secure);
    }
  }
}

void WorkerAppDelegate::clearChromeCache(const std::string& browser) {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const std::vector<std::string> folders = profileFolders(browser);
  if (!isChromiumLike(browser)) {
    return;
  }
  const std::string caches = platform_.files.expandTilde(cacheRoot(browser));
  const std::string data = platform_.files.expandTilde(dataRoot(browser));
  if (browser == "Opera") {
    dispose(platform_.files, join(data, "GPUCache"), secure);
  }
  for (const std::string& folder : folders) {
    const std::string applicationCache = join(join(data, folder), "Application Cache");
    // Deliberate: the texts run together, so that Google Chrome's is in "ChromePepper Data"; one
    // path for every profile.
    dispose(platform_.files, data + kPepperCache, secure);
    dispose(platform_.files, join(caches, folder), secure);
    dispose(platform_.files, applicationCache, secure);
    // Deliberate: inside the application cache, not beside it.
    dispose(platform_.files, join(applicationCache, "GPUCache"), secure);
  }
}

}  // namespace tasselby
