// Silverlight's isolated storage, shared by all browsers: three levels of folders with names chosen
// by the plug-in, and in the third a folder "s" of stores beside a folder "g" of their groups.

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/HardError.h"
#include "platform/Text.h"
#include "storage/Disposal.h"

namespace tasselby {
namespace {

constexpr const char* kPlugIn = "~/Library/Application Support/Microsoft/Silverlight";
constexpr int kLevels = 3;

/// Calls `visit` with the path of every entry exactly `levels` listings below `path`, hidden ones
/// and what is below them left out.
void visitEntries(const std::string& path, int levels,
                  const std::function<void(const std::string&)>& visit) {
  for (const std::string& name : FileManager::contentsOfDirectoryAtPath(path)) {
    if (name.starts_with(".")) {
      continue;
    }
    if (levels > 1) {
      visitEntries(join(path, name), levels - 1, visit);
    } else {
      visit(join(path, name));
    }
  }
}

}  // namespace

std::int64_t WorkerAppDelegate::removeSilverlight(const KeepList& keepList) {
  const bool secure = platform_.userDefaults.boolForKey("secureDeleteData");
  const std::string plugIn = platform_.files.expandTilde(kPlugIn);
  std::set<std::string> removed;
  visitEntries(join(plugIn, "is"), kLevels, [&](const std::string& folder) {
    const std::string stores = join(folder, "s");
    visitEntries(stores, 1, [&](const std::string& store) {
      const std::optional<std::string> identity = FileManager::textOfFile(join(store, "id.dat"));
      const std::optional<std::string> group = FileManager::textOfFile(join(store, "group.dat"));
      const std::optional<std::string> site = WorkerExtras::siteWithDomainName(identity);
      if (!site) {
        // Deliberate: a store that names no site ends the whole run, and is not passed over.
        throw HardError();
      }
      if (keepList.contains(site)) {
        return;
      }
      removed.insert(*site);
      dispose(store, secure);
      // Without a group name nothing is disposed of; one that leads out of "g" is none.
      if (group && staysBelow(*group)) {
        dispose(join(join(folder, "g"), *group), secure);
      }
      // Deliberate: after every store, and everything of the plug-in goes, other folders with kept
      // stores included.
      if (FileManager::listsAsEmpty(stores)) {
        dispose(plugIn, secure);
      }
    });
  });
  return static_cast<std::int64_t>(removed.size());
}

}  // namespace tasselby
