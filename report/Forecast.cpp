#include "report/Forecast.h"

#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <utility>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/HardError.h"
#include "platform/KeychainAttributeCodes.h"
#include "platform/SafariCookies.h"
#include "platform/offline/OfflinePlatform.h"
#include "report/StandIn.h"
#include "report/Stores.h"

namespace tasselby {
namespace {

constexpr const char* kKeychain = "the login keychain";

/// Where the delegate's run ends.
struct Terminated {};

class ForecastApplication final : public Application {
 public:
  explicit ForecastApplication(std::vector<std::string> arguments)
      : arguments_(std::move(arguments)) {}

  std::vector<std::string> arguments() const override { return arguments_; }
  void terminate() override { throw Terminated(); }

 private:
  std::vector<std::string> arguments_;
};

class KeyBundle final : public Bundle {
 public:
  std::string localizedString(const std::string& key, const std::string& /*value*/) const override {
    return key;
  }
};

/// The home's preferences, but that the report is always made.
class ForecastDefaults final : public UserDefaults {
 public:
  explicit ForecastDefaults(std::unique_ptr<UserDefaults> real) : real_(std::move(real)) {}

  void addSuiteNamed(const std::string& suite) override { real_->addSuiteNamed(suite); }
  bool boolForKey(const std::string& key) const override {
    return key == "displayNotifications" || real_->boolForKey(key);
  }

 private:
  std::unique_ptr<UserDefaults> real_;
};

class RecordingCenter final : public UserNotificationCenter {
 public:
  void setDelegate(UserNotificationCenterDelegate* /*delegate*/) override {}
  void scheduleNotification(const UserNotification& notification) override {
    report = notification.subtitle;
  }
  void removeDeliveredNotification(const UserNotification& /*notification*/) override {}

  std::string report;
};

/// The sites in `keepList`, each with the first saved password of it.
std::vector<KeptSite> keptSites(const KeepList& keepList, const std::vector<KeptSite>& passwords) {
  std::map<std::string, const KeptSite*> firstBySite;
  for (const KeptSite& password : passwords) {
    firstBySite.emplace(password.site, &password);
  }
  std::vector<KeptSite> kept;
  for (const std::string& site : keepList.sites()) {
    const auto first = firstBySite.find(site);
    kept.push_back(first == firstBySite.end() ? KeptSite{site, "", ""} : *first->second);
  }
  return kept;
}

std::vector<KeptSite> keychainPasswords(const Keychain& keychain) {
  std::vector<KeptSite> passwords;
  for (KeychainAttributes& item :
       WorkerExtras::allAccounts(keychain).value_or(std::vector<KeychainAttributes>())) {
    const std::string host = item[kServerCode];
    if (item[kAuthenticationTypeCode] == "form") {
      passwords.push_back({WorkerExtras::siteWithDomainName(host).value_or(""), host, kKeychain});
    }
  }
  return passwords;
}

std::vector<KeptSite> firefoxLogins(const StandIn& files) {
  std::vector<KeptSite> logins;
  for (const std::string& path : firefoxDatabases(files, "signons.sqlite")) {
    const std::string profile = std::filesystem::path(path).parent_path().filename().native();
    for (const StoredRow& login : rowsOf(path)) {
      logins.push_back({WorkerExtras::siteWithDomainName(login.host).value_or(""), login.host,
                        "the Firefox profile " + profile});
    }
  }
  return logins;
}

}  // namespace

RunResult forecast(const std::vector<std::string>& arguments, const FileManager& files,
                   const ScratchFolder& scratch) {
  const StandIn standIn(files, scratch);
  ForecastApplication application(arguments);
  ForecastDefaults defaults(makeOfflineUserDefaults(arguments, standIn));
  KeyBundle bundle;
  const auto keychain = makeOfflineKeychain(standIn);
  const auto cookies = makeSafariCookies(standIn);
  RecordingCenter center;
  WorkerAppDelegate worker(Platform{application, defaults, bundle, *keychain, *cookies, center,
                                    standIn, kFirstVersionWithNotifications});
  worker.awakeFromNib();
  RunResult result;
  result.browser = worker.startupCheck();
  std::error_code ignored;
  result.home = std::filesystem::canonical(files.expandTilde("~"), ignored).native();
  result.volume = std::filesystem::canonical(files.onVolume("/"), ignored).native();
  KeepList keepList;
  if (!defaults.boolForKey("removeAll")) {
    const bool isFirefox = result.browser == "Firefox";
    keepList =
        isFirefox ? worker.getFirefoxSmartFavouritesArray() : worker.getSmartFavouritesArray();
    result.kept =
        keptSites(keepList, isFirefox ? firefoxLogins(standIn) : keychainPasswords(*keychain));
  }
  try {
    worker.applicationDidFinishLaunching();
  } catch (const Terminated&) {
  } catch (const HardError& error) {
    result.endedAt = standIn.realPath(error.at());
  }
  cookies->synchronize();
  result.report = center.report;
  result.changes = changesOf(standIn.outcome(), keepList, scratch);
  return result;
}

}  // namespace tasselby
