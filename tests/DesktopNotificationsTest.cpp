#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/offline/OfflinePlatform.h"
#include "samples/NotificationBus.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

/// Posts to the service at `bus`. What hangs is ended by an alarm.
struct DesktopNotifications : ::testing::Test {
  DesktopNotifications() { ::alarm(600); }
  ~DesktopNotifications() override { ::alarm(0); }

  static void postTo(const std::string& bus) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.c_str(), 1);
    UserNotification notification;
    notification.title = "Title";
    notification.subtitle = "3 < 4 & more";
    makeDesktopNotifications()->scheduleNotification(notification);
  }
};

TEST_F(DesktopNotifications, TellsTheServiceTheReport) {
  const NotificationBus bus;
  // A hundred posts that each waited in vain would end in the alarm.
  for (int i = 0; i < 100; ++i) {
    postTo(bus.address());
  }
  const auto received = bus.received();
  ASSERT_EQ(received.size(), 100U);
  EXPECT_EQ(received[0].application, "Tasselby");
  EXPECT_EQ(received[0].summary, "Title");
  EXPECT_EQ(received[0].body, "3 < 4 & more");
  EXPECT_TRUE(received[0].actions.empty());
  EXPECT_TRUE(received[0].isSilent);
}

TEST_F(DesktopNotifications, DoesNotWaitForWhatIsMissingOrMute) {
  ScratchHome home;
  const std::string path = home.path("mute");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int mute = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(mute, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(mute, 5), 0);
  for (const std::string& bus :
       {std::string(), std::string("unix:path=/dev/null"),
        std::string("unixexec:path=sleep,argv1=300"), "unix:path=" + path}) {
    postTo(bus);
  }
  ::close(mute);
}

}  // namespace
}  // namespace tasselby
