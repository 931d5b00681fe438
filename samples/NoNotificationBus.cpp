#include "samples/NotificationBus.h"

namespace tasselby {

struct NotificationBus::Service {};

NotificationBus::NotificationBus() = default;

NotificationBus::~NotificationBus() = default;

std::string NotificationBus::address() const {
  return "unix:path=/dev/null";
}

std::vector<ReceivedNotification> NotificationBus::received() const {
  return {};
}

}  // namespace tasselby
