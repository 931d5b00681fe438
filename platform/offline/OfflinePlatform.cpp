#include "platform/offline/OfflinePlatform.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/HardError.h"
#include "platform/Process.h"
#include "platform/SafariCookies.h"

namespace tasselby {
namespace {

// The version of the first system with a notification centre.
constexpr double kCoreFoundationVersion = 744.0;

class OfflineApplication final : public Application {
 public:
  explicit OfflineApplication(std::vector<std::string> arguments)
      : arguments_(std::move(arguments)) {}

  std::vector<std::string> arguments() const override { return arguments_; }

  [[noreturn]] void terminate() override { std::exit(EXIT_SUCCESS); }

 private:
  std::vector<std::string> arguments_;
};

/// There are no localizations: every text is its key.
class OfflineBundle final : public Bundle {
 public:
  std::string localizedString(const std::string& key, const std::string& /*value*/) const override {
    return key;
  }
};

}  // namespace

std::string homeFolder() {
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') {
    return "";
  }
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(home, error);
  return error ? "" : absolute.native();
}

int offlineApplicationMain(int argc, char** argv, DelegateFactory makeDelegate) {
  raiseOpenFileLimit();
  const std::vector<std::string> arguments(argv, argv + argc);
  const FileManager files(homeFolder());
  const auto userDefaults = makeOfflineUserDefaults(arguments, files);
  const auto keychain = makeOfflineKeychain(files);
  const auto cookieStorage = makeSafariCookies(files);
  const auto notifications = makeDesktopNotifications();
  OfflineBundle bundle;
  OfflineApplication application(arguments);

  try {
    const auto delegate =
        makeDelegate(Platform{application, *userDefaults, bundle, *keychain, *cookieStorage,
                              *notifications, files, kCoreFoundationVersion});
    delegate->awakeFromNib();
    delegate->applicationDidFinishLaunching();
  } catch (const std::exception&) {
    return kHardErrorStatus;
  }
  return EXIT_SUCCESS;
}

}  // namespace tasselby
