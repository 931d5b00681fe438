// Silverlight's isolated storage, shared by all browsers: three levels of folders with names chosen
// by the plug-in, and in the third a folder "s" of stores beside a folder "g" of their groups.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <thread>

#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/HardError.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"
#include "storage/SecureDelete.h"

namespace tasselby {
namespace {

constexpr const char* kPlugIn = "~/Library/Application Support/Microsoft/Silverlight";
constexpr int kLevels = 3;
constexpr const char* kIdentity = "id.dat";
constexpr const char* kGroup = "group.dat";

/// What is set aside bears this before its name. With the dot it is no store.
constexpr const char* kAside = ".tasselby-";

/// How long another worker may need for what it has begun.
constexpr std::chrono::milliseconds kMoment(100);

/// Calls `visit` with the path of every entry exactly `levels` listings below `path`, hidden ones
/// and what is below them left out.
void visitEntries(const FileManager& files, const std::string& path, int levels,
                  const std::function<void(const std::string&)>& visit) {
  for (const std::string& name : files.contentsOfDirectoryAtPath(path)) {
    if (name.starts_with(".")) {
      continue;
    }
    if (levels > 1) {
      visitEntries(files, join(path, name), levels - 1, visit);
    } else {
      visit(join(path, name));
    }
  }
}

/// Where to set aside what is at `path`: beside it. A name has at most 255 bytes.
std::string asideOf(const std::string& path) {
  constexpr std::size_t kLongest = 200;
  return join(folderOf(path), kAside + nameOf(path).substr(0, kLongest));
}

/// The site of the store at `store`; no value when the store is gone.
std::optional<std::string> siteOf(const FileManager& files, const std::string& store) {
  std::optional<std::string> identity = files.textOfFile(join(store, kIdentity));
  if (!identity && files.hasItemAtPath(store)) {
    std::this_thread::sleep_for(kMoment);
    identity = files.textOfFile(join(store, kIdentity));
  }
  if (!identity && !files.hasItemAtPath(store)) {
    // Another worker was here since the stores were listed.
    return std::nullopt;
  }
  std::optional<std::string> site = WorkerExtras::siteWithDomainName(identity);
  if (!site) {
    // Deliberate: a store that names no site ends the whole run, and is not passed over.
    throw HardError(store);
  }
  return site;
}

/// The removal of stores, in steps that may be cut off anywhere. A store is there with its identity
/// or not at all: a run that finds one without would end at it.
class Removal {
 public:
  Removal(const FileManager& files, std::string plugIn, bool secure)
      : files_(files), plugIn_(std::move(plugIn)), secure_(secure) {
    // What a run that was cut off has left.
    dispose(files_, asideOf(plugIn_), secure_);
  }

  /// Empties `store`, and sets aside what names it and its group. With anything else left in it the
  /// store stays one.
  void begin(const std::string& store) const {
    if ((!secure_ || SecureDelete::wipe(files_, store)) &&
        files_.emptyFolderAtPath(store, {kGroup, kIdentity})) {
      files_.setAsideItemAtPath(store, asideOf(store));
    }
  }

  /// Disposes of a store's group and of what has been set aside of the store, at `aside`.
  /// `group` is the name in the store, and `folder` where both are.
  void finish(const std::string& folder, const std::optional<std::string>& group,
              const std::string& aside) const {
    // Without a group name nothing is disposed of; one that leads out of "g" is none.
    if (group && staysBelow(*group)) {
      dispose(files_, join(join(folder, "g"), *group), secure_);
    }
    // Deliberate: after every store, and everything of the plug-in goes, other folders with kept
    // stores included.
    if (std::ranges::all_of(files_.contentsOfDirectoryAtPath(join(folder, "s")),
                            [](const std::string& name) { return name.starts_with(kAside); })) {
      files_.setAsideItemAtPath(plugIn_, asideOf(plugIn_));
      dispose(files_, plugIn_, secure_);
      dispose(files_, asideOf(plugIn_), secure_);
    }
    dispose(files_, aside, secure_);
  }

 private:
  const FileManager& files_;
  std::string plugIn_;
  bool secure_;
};

std::optional<std::string> groupOf(const FileManager& files, const std::string& store) {
  return files.textOfFile(join(store, kGroup));
}

}  // namespace

std::int64_t WorkerAppDelegate::removeSilverlight(const KeepList& keepList) {
  const FileManager& files = platform_.files;
  const std::string plugIn = files.expandTilde(kPlugIn);
  const Removal removal(files, plugIn, platform_.userDefaults.boolForKey("secureDeleteData"));
  std::set<std::string> removed;
  visitEntries(files, join(plugIn, "is"), kLevels, [&](const std::string& folder) {
    for (const std::string& name : files.contentsOfDirectoryAtPath(join(folder, "s"))) {
      const std::string store = join(join(folder, "s"), name);
      if (name.starts_with(kAside)) {
        removal.finish(folder, groupOf(files, store), store);
      }
      if (name.starts_with(".")) {
        continue;
      }
      const std::optional<std::string> group = groupOf(files, store);
      const std::optional<std::string> site = siteOf(files, store);
      if (site && !keepList.contains(site)) {
        removed.insert(*site);
        removal.begin(store);
        removal.finish(folder, group, asideOf(store));
      }
    }
  });
  return static_cast<std::int64_t>(removed.size());
}

}  // namespace tasselby
