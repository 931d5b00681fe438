#include <cmath>

#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

using RunCycleTest = WorkerTest;

TEST_F(RunCycleTest, TakesTheFirstArgumentThatIsABrowser) {
  for (const auto& [arguments, browser] : std::map<Names, std::string>{
           {{"/worker", "-x", "Firefox", "Safari"}, "Firefox"}, {{"Opera", "Firefox"}, "Opera"}}) {
    recorder.given = arguments;
    EXPECT_EQ(worker.startupCheck(), browser);
  }
  recorder.given = {"/worker", "Safari "};
  EXPECT_THROW(worker.applicationDidFinishLaunching(), Terminated);
  recorder.goesOn = true;
  worker.applicationDidFinishLaunching();
  EXPECT_EQ(recorder.terminations, 4) << "nothing but termination stops a refused start";
}

TEST_F(RunCycleTest, ReportsInTheSubtitleWhenThePreferenceAndTheSystemsVersionAllow) {
  recorder.given = {"/worker", "WebKit"};
  recorder.goesOn = true;
  worker.applicationDidFinishLaunching();
  recorder.on = {"displayNotifications"};
  for (const double version : {743.9, std::nan("")}) {
    Platform older = platform;
    older.coreFoundationVersionNumber = version;
    WorkerAppDelegate old(older);
    old.awakeFromNib();
    old.applicationDidFinishLaunching();
  }
  EXPECT_EQ(recorder.delegate, nullptr);
  EXPECT_TRUE(recorder.scheduled.empty());

  worker.awakeFromNib();
  worker.applicationDidFinishLaunching();
  EXPECT_EQ(recorder.delegate, &worker);
  EXPECT_EQ(recorder.suites, Names(3, "com.marrowgatestudios.Tasselby"));
  ASSERT_EQ(recorder.scheduled.size(), 1U);
  const UserNotification& notification = recorder.scheduled[0];
  EXPECT_EQ(notification.title, "Tasselby");
  EXPECT_EQ(notification.subtitle,
            "0 Cookies (0 Tracking Cookies), 0 Databases, 0 Flash, 0 Silverlight, and Cache "
            "removed from WebKit");
  EXPECT_EQ(notification.informativeText, "");
  EXPECT_FALSE(notification.hasActionButton);
  EXPECT_FALSE(notification.soundName);
  // The preference is asked again where it is posted.
  recorder.on = {};
  worker.displayNotificationWithTitle_andText("title", "text");
  EXPECT_EQ(recorder.scheduled.size(), 1U);
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
