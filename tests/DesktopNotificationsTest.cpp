#include "samples/NotificationBus.h"
#include "tests/support/Testing.h"

namespace tasselby {

TEST(DesktopNotifications, TellsTheServiceTheReport) {
  const NotificationBus bus;
  UserNotification notification;
  notification.subtitle = "3 < 4 & more";
  // The last would run a program, and wait for it longer than any test may take.
  for (const std::string& address :
       {std::string(), bus.address(), std::string("unixexec:path=sleep,argv1=3000")}) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    makeDesktopNotifications()->scheduleNotification(notification);
  }
  const auto received = bus.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].application + received[0].body, "Tasselby3 < 4 & more");
  EXPECT_TRUE(received[0].isSilent);
}

}  // namespace tasselby
