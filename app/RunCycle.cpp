// A run from start to termination.

#include <string>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "platform/Text.h"

namespace tasselby {
namespace {

constexpr const char* kPreferenceSuite = "com.marrowgatestudios.Tasselby";
constexpr const char* kQuit = "Quit";
constexpr const char* kReportFormat =
    "%@ Cookies (%@ Tracking Cookies), %@ Databases, %@ Flash, %@ Silverlight, and Cache removed "
    "from %@";

}  // namespace

void WorkerAppDelegate::awakeFromNib() {
  platform_.userDefaults.addSuiteNamed(kPreferenceSuite);
  if (platform_.coreFoundationVersionNumber >= kFirstVersionWithNotifications) {
    platform_.notificationCenter.setDelegate(this);
  }
}

void WorkerAppDelegate::applicationDidFinishLaunching() {
  const std::string browser = startupCheck();
  if (browser == kQuit) {
    platform_.application.terminate();
  }
  // Deliberate: no other branch. Terminating does not return.
  clearData(browser);
}

std::string WorkerAppDelegate::startupCheck() {
  for (const std::string& argument : platform_.application.arguments()) {
    if (!browserNamed(argument).name.empty()) {
      return argument;
    }
  }
  platform_.application.terminate();
  return kQuit;
}

void WorkerAppDelegate::clearData(const std::string& browser) {
  KeepList keepList;
  if (!platform_.userDefaults.boolForKey("removeAll")) {
    keepList = browser == "Firefox" ? getFirefoxSmartFavouritesArray() : getSmartFavouritesArray();
  }

  const CookieCounts cookies = removeCookies_keepCookies(browser, keepList);
  const std::int64_t databases = removeNonFavLocalStorage_keep(browser, keepList);
  const std::int64_t flash = removeFlash_keep(browser, keepList);
  const std::int64_t silverlight = removeSilverlight(keepList);
  removeBrowserCache(browser);

  if (platform_.userDefaults.boolForKey("displayNotifications")) {
    const std::string format = platform_.bundle.localizedString(kReportFormat, "");
    displayNotificationWithTitle_andText(
        "Tasselby",
        formatted(format, {std::to_string(cookies.cookies), std::to_string(cookies.tracking),
                           std::to_string(databases), std::to_string(flash),
                           std::to_string(silverlight), browser}));
  }
  platform_.application.terminate();
}

}  // namespace tasselby
