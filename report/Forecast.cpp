#include "report/Forecast.h"

#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "app/WorkerAppDelegate.h"
#include "platform/HardError.h"
#include "platform/SafariCookies.h"
#include "platform/offline/OfflinePlatform.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

using Path = std::optional<std::string>;

// What Linux follows on one path; a Mac follows fewer.
constexpr int kMostLinks = 40;

/// The folder that stands in for the root of the file system.
std::string rootIn(const ScratchFolder& scratch) {
  return scratch.path() + "/now";
}

std::string folderOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
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
  /// Stands in for `real`, which outlives it, as does `scratch`.
  StandIn(const FileManager& real, const ScratchFolder& scratch)
      : FileManager(rootIn(scratch) + real.expandTilde("~"), rootIn(scratch) + real.onVolume("")),
        real_(real),
        scratch_(scratch),
        root_(rootIn(scratch)) {}

  bool fileExistsAtPath(const std::string& path) const override { return open(path).has_value(); }
  bool hasItemAtPath(const std::string& path) const override { return itemAt(path).has_value(); }

  bool isFolderAtPath(const std::string& path) const override {
    const Path item = find(path, true);
    return item && real_.isFolderAtPath(*item);
  }

  bool hasFolderType(const std::string& path) const override {
    const Path item = itemAt(path);
    return item && real_.hasFolderType(*item);
  }

  std::vector<std::string> contentsOfDirectoryAtPath(const std::string& path) const override {
    const Path folder = find(path, true);
    if (!folder || !real_.isFolderAtPath(*folder)) {
      return {};
    }
    outcome_.lookedAt.insert(*folder);
    std::vector<std::string> names = real_.contentsOfDirectoryAtPath(*folder);
    std::erase_if(names, [&](const std::string& name) {
      return outcome_.removed.contains(*folder + "/" + name);
    });
    return names;
  }

  bool enumerateDeep(const std::string& path,
                     const std::function<bool(const std::string&)>& visit) const override {
    const Path folder = find(path, true);
    const auto visitItem = [&](const std::string& item) { return visit(root_ + item); };
    return !folder || real_.enumerateDeep(*folder, visitItem);
  }

  Path contentsOfFile(const std::string& path, std::size_t limit) const override {
    const Path item = open(path);
    if (!item) {
      return std::nullopt;
    }
    const auto copy = outcome_.stores.find(*item);
    return real_.contentsOfFile(copy == outcome_.stores.end() ? *item : copy->second, limit);
  }

  int openForOverwriting(const std::string& path) const override {
    const Path item = find(path, true);
    struct stat status{};
    const bool opens = item && ::stat(item->c_str(), &status) == 0 &&
                       (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode)) &&
                       ::access(item->c_str(), R_OK | W_OK) == 0;
    return opens ? ::open("/dev/null", O_RDWR | O_CLOEXEC) : -1;
  }

  void removeItemAtPath(const std::string& path) const override {
    const Path item = itemAt(path);
    if (item && mayChange(folderOf(*item))) {
      outcome_.removed.insert(*item);
    }
  }

  bool emptyFolderAtPath(const std::string& path,
                         const std::vector<std::string>& /*but*/) const override {
    // What is in it goes with the folder, which is set aside next.
    return !hasFolderType(path) || mayChange(itemAt(path).value_or(""));
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

 private:
  /// The real path without links of what the run finds at `path`; no value when that is nothing.
  Path find(const std::string& path, bool followLast) const {
    int links = 0;
    const bool isPath = path.find('\0') == std::string::npos;
    return isPath ? resolve(realPath(path), followLast, links) : std::nullopt;
  }

  Path itemAt(const std::string& path) const { return find(path, false); }

  Path resolve(const std::string& path, bool followLast, int& links) const;
  Path open(const std::string& path) const;

  const FileManager& real_;
  const ScratchFolder& scratch_;
  std::string root_;
  mutable Outcome outcome_;
};

/// `find` for a real path. "" is the root.
Path StandIn::resolve(const std::string& path, bool followLast, int& links) const {
  if (path.find_first_not_of('/') == std::string::npos) {
    return "";
  }
  Path folder = resolve(folderOf(path), true, links);
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
  const std::string target = fs::read_symlink(item, error).native();
  if (target.empty() || ++links > kMostLinks) {
    return std::nullopt;
  }
  return resolve(target.starts_with('/') ? target : *folder + "/" + target, true, links);
}

/// What is at `path`, links followed. A store is copied to its place below the scratch folder, and
/// made to be found there by the path that the run has of it.
Path StandIn::open(const std::string& path) const {
  Path item = find(path, true);
  if (!item || !isStore(nameOf(path))) {
    return item;
  }
  const std::string copy = root_ + *item;
  if (outcome_.stores.emplace(*item, copy).second) {
    scratch_.copyStore(*item, copy);
  }
  const std::string asked = root_ + realPath(path);
  std::error_code error;
  if (asked != copy && !fs::is_symlink(asked, error)) {
    fs::create_directories(folderOf(asked), error);
    fs::create_symlink(copy, asked, error);
  }
  return item;
}

/// Where the delegate's run ends.
struct Terminated {};

/// What the system is to the run, apart from its files. The preferences are the home's, but that
/// the report is always made; it is kept here.
class ForecastSystem final : public Application,
                             public Bundle,
                             public UserDefaults,
                             public UserNotificationCenter {
 public:
  ForecastSystem(const std::vector<std::string>& arguments, const FileManager& files)
      : arguments_(arguments), defaults_(makeOfflineUserDefaults(arguments, files)) {}

  std::vector<std::string> arguments() const override { return arguments_; }
  void terminate() override { throw Terminated(); }
  std::string localizedString(const std::string& key, const std::string& /*value*/) const override {
    return key;
  }
  void addSuiteNamed(const std::string& suite) override { defaults_->addSuiteNamed(suite); }
  bool boolForKey(const std::string& key) const override {
    return key == "displayNotifications" || defaults_->boolForKey(key);
  }
  void setDelegate(UserNotificationCenterDelegate* /*to*/) override {}
  void scheduleNotification(const UserNotification& notification) override {
    report = notification.subtitle;
  }
  void removeDeliveredNotification(const UserNotification& /*notification*/) override {}

  std::string report;

 private:
  std::vector<std::string> arguments_;
  std::unique_ptr<UserDefaults> defaults_;
};

std::string canonical(const std::string& path) {
  std::error_code ignored;
  return fs::canonical(path, ignored).native();
}

}  // namespace

RunResult forecast(const std::vector<std::string>& arguments, const FileManager& files,
                   const ScratchFolder& scratch) {
  const StandIn standIn(files, scratch);
  ForecastSystem system(arguments, standIn);
  const auto keychain = makeOfflineKeychain(standIn);
  const auto cookies = makeSafariCookies(standIn);
  WorkerAppDelegate worker(Platform{.application = system,
                                    .userDefaults = system,
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
  if (!system.boolForKey("removeAll")) {
    result.kept = result.browser == "Firefox" ? worker.getFirefoxSmartFavouritesArray()
                                              : worker.getSmartFavouritesArray();
  }
  try {
    worker.applicationDidFinishLaunching();
  } catch (const Terminated&) {
    result.report = system.report;
  } catch (const HardError& error) {
    result.endedAt = standIn.realPath(error.at());
  }
  cookies->synchronize();
  result.places = changesOf(standIn.outcome(), result.kept, scratch);
  return result;
}

}  // namespace tasselby
