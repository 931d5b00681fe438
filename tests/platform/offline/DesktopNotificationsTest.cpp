#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>

#include "platform/offline/OfflinePlatform.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

constexpr const char* kService = "org.freedesktop.Notifications";

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)>;

/// A session bus of its own, on which nothing can be started. What hangs is ended by an alarm.
class DesktopNotificationsTest : public ::testing::Test {
 protected:
  DesktopNotificationsTest() {
    ::alarm(20);
    home.file("bus.conf", "<busconfig><listen>" + address +
                              "</listen><policy context='default'>"
                              "<allow send_destination='*'/><allow own='*'/></policy></busconfig>");
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    std::string config = "--config-file=" + home.path("bus.conf");
    std::string ready = "--print-address=" + std::to_string(ends[1]);
    std::string program = "dbus-daemon";
    char* const arguments[] = {program.data(), config.data(), ready.data(), nullptr};
    EXPECT_EQ(::posix_spawnp(&daemon, program.c_str(), nullptr, nullptr, arguments, environ), 0);
    ::close(ends[1]);
    EXPECT_EQ(::read(ends[0], ready.data(), 1), 1);
    ::close(ends[0]);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  }
  ~DesktopNotificationsTest() override {
    ::kill(daemon, SIGKILL);
    ::waitpid(daemon, nullptr, 0);
    ::alarm(0);
  }

  static Bus service() {
    sd_bus* bus = nullptr;
    EXPECT_GE(sd_bus_open_user(&bus), 0);
    EXPECT_GE(sd_bus_request_name(bus, kService, 0), 0);
    return {bus, sd_bus_flush_close_unref};
  }

  static void post() {
    UserNotification notification;
    notification.title = "Title";
    notification.subtitle = "Report";
    makeDesktopNotifications()->scheduleNotification(notification);
  }

  ScratchHome home;
  std::string address = "unix:path=" + home.path("bus");
  pid_t daemon = 0;
};

/// Answers the next call for a notification. What it asked for, if it was well formed.
std::string answerCall(sd_bus* bus) {
  sd_bus_message* call = nullptr;
  while (sd_bus_message_is_method_call(call, kService, "Notify") <= 0) {
    sd_bus_message_unref(call);
    call = nullptr;
    if (sd_bus_process(bus, &call) == 0) {
      sd_bus_wait(bus, UINT64_MAX);
    }
  }
  const char *application, *icon, *title, *body, *hint;
  unsigned replaces;
  int silent, expiry;
  std::string seen;
  if (sd_bus_message_read(call, "susssasa{sv}i", &application, &replaces, &icon, &title, &body, 0,
                          1, &hint, "b", &silent, &expiry) > 0) {
    seen = std::string(application) + "," + std::to_string(replaces) + "," + icon + "," + title +
           "," + body + "," + hint + "," + std::to_string(silent) + "," + std::to_string(expiry);
  }
  sd_bus_reply_method_return(call, "u", 1);
  sd_bus_message_unref(call);
  return seen;
}

TEST_F(DesktopNotificationsTest, ServiceIsToldTheReportAndItsAnswerEndsTheWait) {
  const Bus bus = service();
  std::string seen;
  // Thirty posts that each waited in vain would end in the alarm.
  std::thread server([&] {
    for (int i = 0; i < 30; ++i) {
      seen = answerCall(bus.get());
    }
  });
  for (int i = 0; i < 30; ++i) {
    post();
  }
  server.join();
  EXPECT_EQ(seen, "Tasselby,0,,Title,Report,suppress-sound,1,-1");
}

TEST_F(DesktopNotificationsTest, NothingWaitsForWhatIsMissingOrMute) {
  post();
  const Bus muteService = service();
  post();
  ::kill(daemon, SIGSTOP);
  post();
  for (const char* elsewhere : {"", "unix:path=/dev/null", "unixexec:path=sleep,argv1=30"}) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", elsewhere, 1);
    post();
  }
}

}  // namespace
}  // namespace tasselby
