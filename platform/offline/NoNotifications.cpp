// The notification centre of a build without sd-bus: nothing is shown.

#include <memory>

#include "platform/offline/OfflinePlatform.h"

namespace tasselby {
namespace {

class NoNotifications final : public UserNotificationCenter {
 public:
  void setDelegate(UserNotificationCenterDelegate* /*delegate*/) override {}
  void scheduleNotification(const UserNotification& /*notification*/) override {}
  void removeDeliveredNotification(const UserNotification& /*notification*/) override {}
};

}  // namespace

std::unique_ptr<UserNotificationCenter> makeDesktopNotifications() {
  return std::make_unique<NoNotifications>();
}

}  // namespace tasselby
