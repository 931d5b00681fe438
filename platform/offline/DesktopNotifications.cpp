// The desktop's notification service, org.freedesktop.Notifications on the session bus, by sd-bus.

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <memory>
#include <string_view>
#include <systemd/sd-bus.h>

#include "platform/offline/OfflinePlatform.h"

namespace tasselby {
namespace {

using Clock = std::chrono::steady_clock;

// For connecting, authenticating and the answer together.
constexpr std::chrono::seconds kPatience{1};

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kObject = "/org/freedesktop/Notifications";

struct CloseLibrary {
  void operator()(void* library) const { ::dlclose(library); }
};
using Library = std::unique_ptr<void, CloseLibrary>;

/// The functions of libsystemd that are needed, all of them in versions since 2019. It is loaded
/// only when a notification is due, for linking it would slow every start.
struct BusFunctions {
  explicit BusFunctions(void* library)
      : open(reinterpret_cast<decltype(open)>(::dlsym(library, "sd_bus_open_user"))),
        call(reinterpret_cast<decltype(call)>(::dlsym(library, "sd_bus_call_method_async"))),
        process(reinterpret_cast<decltype(process)>(::dlsym(library, "sd_bus_process"))),
        wait(reinterpret_cast<decltype(wait)>(::dlsym(library, "sd_bus_wait"))),
        close(reinterpret_cast<decltype(close)>(::dlsym(library, "sd_bus_close_unref"))) {}

  decltype(&sd_bus_open_user) open;
  decltype(&sd_bus_call_method_async) call;
  decltype(&sd_bus_process) process;
  decltype(&sd_bus_wait) wait;
  decltype(&sd_bus_close_unref) close;
};

/// Whether the session bus, where one is named, is reached by sockets of this machine alone. To
/// look up a host or to end a helper process can take any time.
bool busIsLocal() {
  const char* addresses = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  std::string_view rest = addresses == nullptr ? "unix:" : addresses;
  while (rest.starts_with("unix:")) {
    const std::size_t end = rest.find(';');
    if (end == std::string_view::npos) {
      return true;
    }
    rest.remove_prefix(end + 1);
  }
  return false;
}

int onAnswer(sd_bus_message* /*answer*/, void* answered, sd_bus_error* /*error*/) {
  *static_cast<bool*>(answered) = true;
  return 0;
}

/// Begins the call that shows `notification`; `answered` becomes true when an answer arrives.
/// Answers less than 0 where that cannot be, as without a bus.
int notify(const BusFunctions& functions, sd_bus* bus, const UserNotification& notification,
           bool* answered) {
  constexpr std::uint32_t kReplacesNone = 0;
  constexpr const char* kNoIcon = "";
  constexpr int kNoActions = 0;
  constexpr int kOneHint = 1;
  constexpr std::int32_t kDefaultExpiry = -1;
  const int silent = static_cast<int>(!notification.soundName);
  // Deliberate: the body goes out as it is. Servers that know no markup show escapes as they
  // stand, and the report has no character that the others could take for markup.
  return functions.call(bus, nullptr, kService, kObject, kService, "Notify", onAnswer, answered,
                        "susssasa{sv}i", "Tasselby", kReplacesNone, kNoIcon,
                        notification.title.c_str(), notification.subtitle.c_str(), kNoActions,
                        kOneHint, "suppress-sound", "b", silent, kDefaultExpiry);
}

/// Shows `notification` and waits for the service's answer, so that the connection does not end
/// before the service has heard; at most until `deadline`.
void post(const UserNotification& notification, Clock::time_point deadline) {
  const Library library(busIsLocal() ? ::dlopen("libsystemd.so.0", RTLD_NOW) : nullptr);
  if (!library) {
    return;
  }
  const BusFunctions functions(library.get());
  sd_bus* opened = nullptr;
  functions.open(&opened);
  const std::unique_ptr<sd_bus, decltype(functions.close)> bus(opened, functions.close);
  bool answered = false;
  int progress = notify(functions, opened, notification, &answered);
  // The library's own blocking calls would wait for a mute bus by their own, much longer limits.
  for (auto now = Clock::now(); progress >= 0 && !answered && now < deadline; now = Clock::now()) {
    progress = functions.process(opened, nullptr);
    if (progress == 0) {
      const auto left = std::chrono::ceil<std::chrono::microseconds>(deadline - now);
      functions.wait(opened, static_cast<std::uint64_t>(left.count()));
    }
  }
}

class DesktopNotifications final : public UserNotificationCenter {
 public:
  /// There is nothing to ask a delegate: the service decides by itself what to show, and the
  /// process ends before a user could click.
  void setDelegate(UserNotificationCenterDelegate* /*delegate*/) override {}

  /// Posts at once whatever the delivery date, which is never ahead.
  void scheduleNotification(const UserNotification& notification) override {
    post(notification, Clock::now() + kPatience);
  }

  /// Only notifications handed to the delegate can come here, and none is.
  void removeDeliveredNotification(const UserNotification& /*notification*/) override {}
};

}  // namespace

std::unique_ptr<UserNotificationCenter> makeDesktopNotifications() {
  return std::make_unique<DesktopNotifications>();
}

}  // namespace tasselby
