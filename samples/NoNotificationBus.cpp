#include "samples/NotificationBus.h"

namespace tasselby {

struct NotificationBus::Service {};

NotificationBus::NotificationBus() = default;

NotificationBus::~NotificationBus() = default;

const std::string& NotificationBus::address() const {
  static const std::string none = "unix:path=/dev/null";
  return none;
}

std::vector<ReceivedNotification> NotificationBus::received() const {
  return {};
}

}  // namespace tasselby
