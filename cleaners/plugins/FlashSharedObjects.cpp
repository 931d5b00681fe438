// The Flash player that all browsers share: stored objects in one folder per host below folders
// with random names, and settings by host.

#include <cstdint>
#include <set>
#include <string>

#include "app/WorkerAppDelegate.h"
#include "cleaners/plugins/FlashSettings.h"
#include "keep/WorkerExtras.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"

namespace tasselby {
namespace {

constexpr const char* kPlayer = "~/Library/Preferences/Macromedia/Flash Player";

}  // namespace

std::int64_t WorkerAppDelegate::removeFlash_keep(const std::string& browser,
                                                 const KeepList& keepList) {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const FileManager& files = platform_.files;
  std::set<std::string> removed;

  const std::string sharedObjects = join(kPlayer, "#SharedObjects");
  for (const std::string& random :
       files.contentsOfDirectoryAtPath(files.expandTilde(sharedObjects))) {
    const std::string folder = join(sharedObjects, random);
    for (const std::string& name : files.contentsOfDirectoryAtPath(files.expandTilde(folder))) {
      // Deliberate: the settings domain is a host here, and counts as one.
      const std::string host = flashHost(name);
      if (name.starts_with(".") || keepList.contains(WorkerExtras::siteWithDomainName(host))) {
        continue;
      }
      removed.insert(host);
      // Deliberate: the "~" is not expanded, so what goes is below a folder of that name in the
      // current folder, and the objects in the home folder stay. They count all the same.
      dispose(files, join(folder, name), secure);
    }
  }

  const std::string settings = join(join(kPlayer, kFlashSettingsDomain), kFlashSettings);
  visitFlashSettings(files, files.expandTilde(settings),
                     [&](const std::string& host, const std::string& entry, FlashEntry kind) {
                       if (keepList.contains(WorkerExtras::siteWithDomainName(host))) {
                         return;
                       }
                       removed.insert(host);
                       // Deliberate: only a host's own entry is removed from the home folder, and
                       // even that is wiped at the path that is not expanded, so never overwritten.
                       const std::string path = join(settings, entry);
                       dispose(files, path,
                               kind == FlashEntry::kHost ? files.expandTilde(path) : path, secure);
                     });

  const std::optional<PepperFlashCounts> pepper = clearChromeFlash_keep(browser, keepList);
  return static_cast<std::int64_t>(removed.size()) + (pepper ? pepper->removed : 0);
}

}  // namespace tasselby
