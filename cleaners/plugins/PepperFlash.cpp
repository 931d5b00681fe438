// The Flash player inside Google Chrome and Chromium: the same tree in every profile, with the
// settings below the folder of stored objects.

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "app/Profiles.h"
#include "app/WorkerAppDelegate.h"
#include "cleaners/plugins/FlashSettings.h"
#include "keep/WorkerExtras.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"

namespace tasselby {
namespace {

constexpr const char* kStore = "/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects";

using Visit = std::function<void(const std::string& host, const std::string& path)>;

/// Calls `visit` for every host in the folder with a random name at `folder`, with the path of its
/// objects or of its settings.
void visitHosts(const FileManager& files, const std::string& folder, const Visit& visit) {
  for (const std::string& name : files.contentsOfDirectoryAtPath(folder)) {
    if (name == kFlashSettingsDomain) {
      const std::string settings = join(join(folder, name), kFlashSettings);
      visitFlashSettings(files, settings,
                         [&](const std::string& host, const std::string& entry,
                             FlashEntry /*kind*/) { visit(host, join(settings, entry)); });
    } else if (!name.starts_with(".")) {
      visit(flashHost(name), join(folder, name));
    }
  }
}

}  // namespace

std::optional<PepperFlashCounts> WorkerAppDelegate::clearChromeFlash_keep(
    const std::string& browser, const KeepList& keepList) {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const Browser known = browserNamed(browser);
  if (known.family != Family::kChromium || !known.hasProfiles) {
    return std::nullopt;
  }
  std::set<std::string> seen;
  std::set<std::string> removed;
  const FileManager& files = platform_.files;
  const std::string data = files.expandTilde(known.dataRoot);
  for (const std::string& profile : profileFolders(files, known)) {
    const auto judge = [&](const std::string& host, const std::string& path) {
      const std::string pair = std::string(profile).append(":").append(host);
      seen.insert(pair);
      if (!keepList.contains(WorkerExtras::siteWithDomainName(host))) {
        removed.insert(pair);
        dispose(files, path, secure);
      }
    };
    const std::string store = join(data, profile) + kStore;
    for (const std::string& random : files.contentsOfDirectoryAtPath(store)) {
      visitHosts(files, join(store, random), judge);
    }
  }
  return PepperFlashCounts{static_cast<std::int32_t>(seen.size()),
                           static_cast<std::int32_t>(removed.size())};
}

}  // namespace tasselby
