#include <cstdlib>

#include "platform/offline/OfflinePlatform.h"
#include "samples/NotificationBus.h"
#include "tests/contract/Adapter.h"

namespace tasselby {

void runAdapter(int argc, char** argv, DelegateFactory makeDelegate) {
  offlineApplicationMain(argc, argv, makeDelegate);
}

std::vector<std::string> shownDuring(const std::function<void()>& step) {
  const NotificationBus bus;
  ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
  step();
  std::vector<std::string> shown;
  for (const ReceivedNotification& one : bus.received()) {
    shown.push_back(one.summary + "|" + one.body);
  }
  return shown;
}

}  // namespace tasselby
