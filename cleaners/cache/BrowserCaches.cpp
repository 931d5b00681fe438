// The caches of one browser, removed whole, and two that all browsers share. The keep list plays no
// part, and nothing is counted.

#include <string>

#include "app/Profiles.h"
#include "app/WorkerAppDelegate.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"

namespace tasselby {
namespace {

constexpr const char* kPepperCache = "Pepper Data/Shockwave Flash/CacheWritableAdobeRoot";

}  // namespace

void WorkerAppDelegate::removeBrowserCache(const std::string& browser) {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const Browser known = browserNamed(browser);
  const auto disposeOf = [this, secure](const std::string& path) {
    dispose(platform_.files, platform_.files.expandTilde(path), secure);
  };

  // Deliberate: nothing here for "WebKit". It has no cache of its own, and Safari's is Safari's.
  if (known.family == Family::kSafari) {
    disposeOf(join(known.cacheRoot, "Cache.db"));
    disposeOf(join(known.cacheRoot, "fsCachedData"));
    clearExtraCache();
    clearExtraCookieCache();
  } else if (known.family == Family::kChromium) {
    clearChromeCache(browser);
  } else if (browser == "Camino") {
    disposeOf(join(known.cacheRoot, "Cache"));
    disposeOf("~/Library/Caches/Metadata/Camino");
  } else if (browser == "Firefox") {
    clearFireFoxCache();
  }

  disposeOf("~/Library/Caches/Adobe/Flash Player/AssetCache");
  disposeOf("~/Library/Caches/QuickTime/downloads");
}

void WorkerAppDelegate::clearFireFoxCache() {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const std::string profiles = platform_.files.expandTilde(browserNamed("Firefox").cacheRoot);
  for (const std::string& profile : foldersIn(platform_.files, profiles)) {
    for (const char* cache : {"Cache", "OfflineCache", "startupCache"}) {
      dispose(platform_.files, join(join(profiles, profile), cache), secure);
    }
  }
}

void WorkerAppDelegate::clearChromeCache(const std::string& browser) {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const Browser known = browserNamed(browser);
  if (known.family != Family::kChromium) {
    return;
  }
  const std::vector<std::string> folders = profileFolders(platform_.files, known);
  const std::string caches = platform_.files.expandTilde(known.cacheRoot);
  const std::string data = platform_.files.expandTilde(known.dataRoot);
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
    // Deliberate: inside the application cache; one beside it stays.
    dispose(platform_.files, join(applicationCache, "GPUCache"), secure);
  }
}

}  // namespace tasselby
