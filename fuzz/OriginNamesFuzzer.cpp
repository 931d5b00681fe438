#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "app/WorkerAppDelegate.h"
#include "fuzz/Check.h"
#include "platform/offline/OfflinePlatform.h"

using namespace tasselby;

namespace {

/// A worker without a home folder, for what needs none.
const WorkerAppDelegate& worker() {
  static const FileManager files{""};
  static const auto defaults = makeOfflineUserDefaults({}, files);
  static const auto keychain = makeOfflineKeychain(files);
  static const auto cookies = makeOfflineCookieStorage(files);
  static const auto notifications = makeDesktopNotifications();
  class Nothing final : public Application, public Bundle {
   public:
    std::vector<std::string> arguments() const override { return {}; }
    void terminate() override {}
    std::string localizedString(const std::string& key, const std::string&) const override {
      return key;
    }
  };
  static Nothing nothing;
  static const WorkerAppDelegate delegate(
      Platform{nothing, *defaults, nothing, *keychain, *cookies, *notifications, files, 744.0});
  return delegate;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const KeepList keepList = {"example.com", "example.co.uk", "a b.com"};
  const std::vector<std::string> names = {std::string(data, data + size)};
  const std::vector<std::string> none;
  const auto isPart = [&](const std::vector<std::string>& chosen) {
    return chosen == names || chosen == none;
  };
  check(isPart(worker().databaseArray_keep(names, keepList)));
  for (const char* browser : {"Safari", "Google Chrome", "Chromium"}) {
    check(isPart(worker().localStorageArray_browser_keep(names, browser, keepList)));
  }
  check(isPart(worker().mozillaLocalStorage_keep(names, keepList)));
  return 0;
}
