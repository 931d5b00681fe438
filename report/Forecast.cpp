#include "report/Forecast.h"

#include <filesystem>
#include <optional>
#include <set>
#include <system_error>
#include <unistd.h>

#include "app/WorkerAppDelegate.h"
#include "platform/HardError.h"
#include "platform/Paths.h"
#include "platform/SafariCookies.h"
#include "platform/offline/OfflinePlatform.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

using Path = std::optional<std::string>;
using Paths = std::set<std::string>;

/// The folder that stands in for the root of the file system.
std::string rootIn(const ScratchFolder& scratch) {
  return scratch.path() + "/now";
}

bool mayChange(const std::string& folder) {
  return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

/// The files of a home folder for a run that must not change them.
///
/// The run is told of a home below a scratch folder, so that what it opens by a path of its own can
/// only lie there: the stores whose contents a run changes, copied when they are first asked for.
/// Everything else is answered from the real home, by name, kind and size, less what the run has
/// removed: a removal is written down and changes nothing.
class StandIn final : public FileManager {
 public:
  /// Stands in for `real`. `scratch` outlives it.
  StandIn(const FileManager& real, const ScratchFolder& scratch)
      : FileManager(rootIn(scratch) + real.expandTilde("~"), rootIn(scratch) + real.onVolume("")),
        scratch_(scratch),
        root_(rootIn(scratch)) {}

  std::vector<std::string> contentsOfDirectoryAtPath(const std::string& path) const override {
    const std::string folder = located(path, true);
    std::vector<std::string> names = FileManager::contentsOfDirectoryAtPath(path);
    std::erase_if(names, [&](const std::string& name) {
      return outcome_.removed.contains(folder + "/" + name);
    });
    if (isFolderAtPath(path)) {
      outcome_.lookedAt.insert(folder);
    }
    return names;
  }

  int openForOverwriting(const std::string& path) const override {
    std::error_code error;
    const std::string item = located(path, true);
    const fs::file_type type = fs::status(item, error).type();
    const bool opens = (type == fs::file_type::regular || type == fs::file_type::fifo) &&
                       ::access(item.c_str(), R_OK | W_OK) == 0;
    return FileManager::openForOverwriting(opens ? "/dev/null" : "");
  }

  void removeItemAtPath(const std::string& path) const override {
    const std::string item = located(path, false);
    if (!item.empty()) {
      goes(item, outcome_.removed);
    }
  }

  bool emptyFolderAtPath(const std::string& path,
                         const std::vector<std::string>& /*but*/) const override {
    // What is in it goes with the folder, which is set aside next.
    Paths parts;
    return empties(located(path, false), parts);
  }

  void setAsideItemAtPath(const std::string& path, const std::string& /*newPath*/) const override {
    removeItemAtPath(path);
  }

  /// What the run has come to so far.
  const Outcome& outcome() const { return outcome_; }

  /// The path in the real home that stands behind `path`, one that the run goes by.
  std::string realPath(const std::string& path) const {
    std::error_code error;
    return path.starts_with(root_ + "/") ? path.substr(root_.size())
                                         : fs::absolute(path, error).native();
  }

 protected:
  std::string located(const std::string& path, bool followLinks) const override {
    const bool isPath = path.find('\0') == std::string::npos;
    const Path item = isPath ? resolve(realPath(path), followLinks) : std::nullopt;
    return !item ? "" : followLinks && isStore(nameOf(path)) ? storeAt(path, *item) : *item;
  }

 private:
  bool empties(const std::string& folder, Paths& parts) const;
  bool goes(const std::string& item, Paths& parts) const;
  Path resolve(const std::string& path, bool followLast) const;
  std::string storeAt(const std::string& path, const std::string& item) const;

  const ScratchFolder& scratch_;
  std::string root_;
  mutable Outcome outcome_;
};

/// Whether all in the real `folder` goes, as in what is none. `parts` gets what does.
bool StandIn::empties(const std::string& folder, Paths& parts) const {
  const FileManager real("");
  bool all = true;
  for (const std::string& name :
       real.contentsOfDirectoryAtPath(real.hasFolderType(folder) ? folder : "")) {
    all = goes(join(folder, name), parts) && all;
  }
  return all;
}

/// Whether the real `item` goes with all that is in it. `parts` gets it, or else what goes from it.
bool StandIn::goes(const std::string& item, Paths& parts) const {
  Paths below;
  const bool isGone = empties(item, below) && mayChange(folderOf(item));
  parts.merge(isGone ? Paths{item} : below);
  return isGone;
}

/// The path without links, "" for the root, of what the run finds at `path`, a real one; no value
/// when that is nothing.
Path StandIn::resolve(const std::string& path, bool followLast) const {
  if (path.find_first_not_of('/') == std::string::npos) {
    return "";
  }
  Path folder = resolve(folderOf(path), true);
  const std::string name = nameOf(path);
  if (!folder || name.empty() || name == ".") {
    return folder;
  }
  if (name == "..") {
    return folderOf(*folder);
  }
  std::string item = *folder + "/" + name;
  std::error_code error;
  const fs::file_status status = fs::symlink_status(item, error);
  if (!fs::exists(status) || outcome_.removed.contains(item)) {
    return std::nullopt;
  }
  if (!fs::is_symlink(status) || !followLast) {
    return item;
  }
  // A link to nothing, or in a circle, is one that the system does not follow either.
  if (!fs::exists(item, error)) {
    return std::nullopt;
  }
  const std::string target = fs::read_symlink(item, error).native();
  return resolve(target.starts_with('/') ? target : *folder + "/" + target, true);
}

/// The copy of the store `item`, made when it is first asked for and to be found by `path`, the
/// path that the run has of it; `item` itself where it cannot be copied.
std::string StandIn::storeAt(const std::string& path, const std::string& item) const {
  const std::string copy = root_ + item;
  if (outcome_.stores.emplace(item, copy).second) {
    scratch_.copyStore(item, copy);
  }
  const std::string asked = root_ + realPath(path);
  std::error_code error;
  if (asked != copy && !fs::is_symlink(asked, error)) {
    fs::create_directories(folderOf(asked), error);
    fs::create_symlink(copy, asked, error);
  }
  return fs::exists(copy, error) ? copy : item;
}

/// What the system is to the run, apart from its files. The report is kept here, and the last thing
/// that a run does, to end the process, returns.
class ForecastSystem final : public Application, public Bundle, public UserNotificationCenter {
 public:
  explicit ForecastSystem(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {}

  std::vector<std::string> arguments() const override { return arguments_; }
  void terminate() override {}
  std::string localizedString(const std::string& key, const std::string& /*value*/) const override {
    return key;
  }
  void setDelegate(UserNotificationCenterDelegate* /*to*/) override {}
  void scheduleNotification(const UserNotification& notification) override {
    report = notification.subtitle;
  }
  void removeDeliveredNotification(const UserNotification& /*notification*/) override {}

  std::string report;

 private:
  std::vector<std::string> arguments_;
};

std::string canonical(const std::string& path) {
  std::error_code ignored;
  return fs::canonical(path, ignored).native();
}

}  // namespace

RunResult forecast(std::vector<std::string> arguments, const FileManager& files,
                   const ScratchFolder& scratch) {
  // The report is always made.
  arguments.insert(arguments.end(), {"-displayNotifications", "1"});
  const StandIn standIn(files, scratch);
  ForecastSystem system(arguments);
  const auto defaults = makeOfflineUserDefaults(arguments, standIn);
  const auto keychain = makeOfflineKeychain(standIn);
  const auto cookies = makeSafariCookies(standIn);
  WorkerAppDelegate worker(Platform{.application = system,
                                    .userDefaults = *defaults,
                                    .bundle = system,
                                    .keychain = *keychain,
                                    .cookieStorage = *cookies,
                                    .notificationCenter = system,
                                    .files = standIn,
                                    .coreFoundationVersionNumber = kFirstVersionWithNotifications});
  worker.awakeFromNib();
  RunResult result;
  result.browser = worker.startupCheck();
  result.home = canonical(files.expandTilde("~"));
  result.volume = canonical(files.onVolume("/"));
  if (!defaults->boolForKey("removeAll")) {
    result.kept = result.browser == "Firefox" ? worker.getFirefoxSmartFavouritesArray()
                                              : worker.getSmartFavouritesArray();
  }
  try {
    worker.applicationDidFinishLaunching();
    result.report = system.report;
  } catch (const HardError& error) {
    result.endedAt = standIn.realPath(error.at());
  }
  result.places = changesOf(standIn.outcome(), result.kept, scratch);
  return result;
}

}  // namespace tasselby
