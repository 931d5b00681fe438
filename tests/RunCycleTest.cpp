#include <cmath>

#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

class RunCycleTest : public WorkerTest {
 protected:
  WorkerAppDelegate workerAtVersion(double version) {
    Platform other = platform;
    other.coreFoundationVersionNumber = version;
    return WorkerAppDelegate(other);
  }
};

TEST_F(RunCycleTest, TakesTheFirstArgumentThatIsABrowser) {
  recorder.given = {"/worker", "-x", "Firefox", "Safari"};
  EXPECT_EQ(worker.startupCheck(), "Firefox");
  recorder.given = {"Opera", "Firefox"};
  EXPECT_EQ(worker.startupCheck(), "Opera");
  for (const char* refused : {"safari", "Chrome", "Safari ", ""}) {
    recorder.given = {"/worker", refused};
    EXPECT_THROW(worker.startupCheck(), Terminated) << refused;
    EXPECT_THROW(worker.applicationDidFinishLaunching(), Terminated) << refused;
  }
  EXPECT_TRUE(recorder.scheduled.empty());
  recorder = {};
  recorder.goesOn = true;
  worker.applicationDidFinishLaunching();
  EXPECT_EQ(recorder.terminations, 3) << "nothing but termination stops a refused start";
}

TEST_F(RunCycleTest, ReportsInTheSubtitleOnlyWhenAsked) {
  recorder.given = {"/worker", "WebKit"};
  EXPECT_THROW(worker.applicationDidFinishLaunching(), Terminated);
  EXPECT_TRUE(recorder.scheduled.empty());

  recorder.on = {"displayNotifications"};
  EXPECT_THROW(worker.applicationDidFinishLaunching(), Terminated);
  ASSERT_EQ(recorder.scheduled.size(), 1U);
  const UserNotification& notification = recorder.scheduled[0];
  EXPECT_EQ(notification.title, "Tasselby");
  EXPECT_EQ(
      notification.subtitle,
      "0 Cookies (0 Tracking Cookies), 0 Databases, 0 Flash, 0 Silverlight, and Cache removed "
      "from WebKit");
  EXPECT_EQ(notification.informativeText, "");
  EXPECT_FALSE(notification.hasActionButton);
  EXPECT_FALSE(notification.soundName);
}

TEST_F(RunCycleTest, AsksTheSystemsVersionAndThePreferenceBeforePosting) {
  worker.displayNotificationWithTitle_andText("title", "text");
  recorder.on = {"displayNotifications"};
  for (const double version : {743.9, std::nan("")}) {
    WorkerAppDelegate old = workerAtVersion(version);
    old.awakeFromNib();
    old.displayNotificationWithTitle_andText("title", "text");
  }
  EXPECT_EQ(recorder.delegate, nullptr);
  EXPECT_TRUE(recorder.scheduled.empty());

  worker.awakeFromNib();
  worker.displayNotificationWithTitle_andText("title", "text");
  EXPECT_EQ(recorder.delegate, &worker);
  EXPECT_EQ(recorder.scheduled.size(), 1U);
  EXPECT_EQ(recorder.suites, std::vector<std::string>(3, "com.marrowgatestudios.Tasselby"));
}

TEST_F(RunCycleTest, AnswersTheNotificationCentre) {
  UserNotification clicked;
  clicked.identifier = 7;
  EXPECT_TRUE(worker.userNotificationCenter_shouldPresentNotification(recorder, clicked));
  worker.userNotificationCenter_didActivateNotification(recorder, clicked);
  EXPECT_EQ(recorder.removed, std::vector<std::uint64_t>{7});
}

}  // namespace
}  // namespace tasselby
