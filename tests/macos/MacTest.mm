// What only the Mac adapter has to do, and whole runs over it, started by the application object.

#import <Foundation/Foundation.h>

#import "platform/macos/FoundationText.h"
#include "platform/macos/MacPlatform.h"
#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

/// What belongs to GNUstep and the stand-ins; and the temporary folders, where a Mac's are the
/// running system's own.
const Names kForeign = {"/GNUstep", ".lck", "private/var/folders", "Library/Preferences/.GNUstep"};

struct MacRunTest : WorkerTest, UserNotificationCenterDelegate {
  MacRunTest() { ::setenv("HOME", home.home().c_str(), 1); }
  void userNotificationCenter_didActivateNotification(UserNotificationCenter& center,
                                                      const UserNotification& clicked) override {
    center.removeDeliveredNotification(clicked);
  }
  bool userNotificationCenter_shouldPresentNotification(UserNotificationCenter&,
                                                        const UserNotification& one) override {
    return one.title == "shown";
  }

  /// Answers the status of a run for `browser`, which prints nothing but what GNUstep logs.
  static int run(const OddHome& odd, const std::string& browser) {
    const Names command = {XVFB_RUN, "-a", MAC_WORKER, browser};
    const WorkerRun run = runWorker(command, odd.home.home(), "", odd.home.volume());
    for (const std::string& line : split(run.output, '\n')) {
      EXPECT_TRUE(line.empty() || line.find("Tasselby.Worker[") != line.npos) << line;
    }
    return run.status;
  }
};

TEST_F(MacRunTest, EveryItemMeetsTheFateWrittenBesideIt) {
  for (const std::string browser : {"Safari", "Google Chrome", "Firefox", "safari"}) {
    const OddHome odd;
    const Fates fates(odd.home);
    EXPECT_EQ(run(odd, browser), 0) << browser;
    fates.expectMet(browser, false, false, kForeign);
    EXPECT_EQ(numbersIn(odd.scratch.contents("GNUstep Notifications")),
              browser == "safari" ? "" : " " + kCounts.at(browser)[0] + " 0 1 ");
  }
}

TEST_F(MacRunTest, EndsHardAndReachesNothingMore) {
  OddHome odd;
  odd.scratch.file(kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad/id.dat", "file:///");
  EXPECT_EQ(run(odd, "Camino"), 70);
  EXPECT_TRUE(odd.scratch.has("Library/Caches/Camino/Cache"));
  EXPECT_FALSE(odd.scratch.has("GNUstep Notifications"));
}

TEST_F(MacRunTest, AsksTheDelegateAndRemovesTheNotificationClicked) {
  const auto center = makeMacNotificationCenter();
  center->setDelegate(this);
  for (const char* title : {"shown", "clicked", "hidden"}) {
    center->scheduleNotification({0, title, "", "body", true, "Ping", {}});
  }
  NSUserNotificationCenter* system = [NSUserNotificationCenter defaultUserNotificationCenter];
  [[system delegate] userNotificationCenter:system
                    didActivateNotification:[[system deliveredNotifications] objectAtIndex:1]];
  EXPECT_EQ(home.contents("GNUstep Notifications"),
            "shown||body|1|Ping|1\nhidden||body|1|Ping|0\n");
}

TEST_F(MacRunTest, DeletesFromTheSharedCookieStorage) {
  const auto storage = makeMacCookieStorage(files);
  NSDictionary* cookie = [@"{Domain = a.test; Name = gone; Path = \"/\"; Value = v;}" propertyList];
  NSHTTPCookieStorage* shared = [NSHTTPCookieStorage sharedHTTPCookieStorage];
  [shared setCookie:[NSHTTPCookie cookieWithProperties:cookie]];
  const std::vector<HTTPCookie> cookies = storage->cookies();
  ASSERT_EQ(cookies.size(), 1U);
  EXPECT_EQ(cookies[0].name + cookies[0].domain, "gonea.test");
  storage->deleteCookie(cookies[0]);
  EXPECT_TRUE(storage->cookies().empty());
}

TEST_F(MacRunTest, TextLosesNothingOnTheWay) {
  const std::string all("a\0\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80", 11);
  EXPECT_EQ(utf8(nsString(all)), all);
  EXPECT_EQ(utf8(nsString("a\xFF")), "a\xC3\xBF") << "no UTF-8: a character a byte";
  EXPECT_EQ(utf8(nil), "");
  NSString* pair = nsString("\xF0\x9F\x98\x80");
  EXPECT_EQ(utf8([pair substringToIndex:1]) + utf8([pair substringFromIndex:1]),
            "\xED\xA0\xBD\xED\xB8\x80");
}

}  // namespace
}  // namespace tasselby
