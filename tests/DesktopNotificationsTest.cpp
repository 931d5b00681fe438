#include <unistd.h>

#include "platform/offline/OfflinePlatform.h"
#include "samples/NotificationBus.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

TEST(DesktopNotifications, TellsTheServiceTheReport) {
  const NotificationBus bus;
  UserNotification notification;
  notification.title = "Title";
  notification.subtitle = "3 < 4 & more";
  ::alarm(600);  // Ends what hangs. The last would run a program, and wait for it.
  for (const std::string& address :
       {std::string(), bus.address(), std::string("unixexec:path=sleep,argv1=3000")}) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    makeDesktopNotifications()->scheduleNotification(notification);
  }
  ::alarm(0);
  const auto received = bus.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].application, "Tasselby");
  EXPECT_EQ(received[0].body, "3 < 4 & more");
  EXPECT_TRUE(received[0].isSilent);
}

}  // namespace
}  // namespace tasselby
