// What of the delegate's operations a whole run over a full home does not show.
#include <cmath>

#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kFirefox = kSupport + "Firefox/Profiles/";
const KeepList kKept = {"kept.com"};

using Delegate = WorkerTest;

TEST_F(Delegate, OnlyTerminationStopsARefusedStartAndReportsGoOutWhereTheyMay) {
  recorder.given = {"/worker", "Safari "};
  worker.applicationDidFinishLaunching();
  EXPECT_EQ(recorder.terminations, 3);
  recorder.given = {"/worker", "WebKit"};
  recorder.on = {"displayNotifications"};
  for (const double version : {743.9, std::nan("")}) {
    platform.coreFoundationVersionNumber = version;
    WorkerAppDelegate old(platform);
    old.awakeFromNib();
    old.applicationDidFinishLaunching();
  }
  EXPECT_TRUE(recorder.delegate == nullptr && recorder.scheduled.empty());

  worker.awakeFromNib();
  worker.applicationDidFinishLaunching();
  EXPECT_EQ(recorder.suites, Names(3, "com.marrowgatestudios.Tasselby"));
  ASSERT_EQ(recorder.scheduled.size(), 1U);
  const UserNotification& one = recorder.scheduled[0];
  EXPECT_EQ(one.title + "|" + one.subtitle + "|" + one.informativeText,
            "Tasselby|0 Cookies (0 Tracking Cookies), 0 Databases, 0 Flash, 0 Silverlight, and "
            "Cache removed from WebKit|");
  EXPECT_FALSE(one.hasActionButton || one.soundName);
  ASSERT_EQ(recorder.delegate, &worker);
  EXPECT_TRUE(recorder.delegate->userNotificationCenter_shouldPresentNotification(recorder, one));
  recorder.delegate->userNotificationCenter_didActivateNotification(recorder, one);
  EXPECT_EQ(recorder.removed, std::vector{one.identifier});
  // The preference is asked again where it is posted.
  recorder.on = {};
  worker.displayNotificationWithTitle_andText("title", "text");
  EXPECT_EQ(recorder.scheduled.size(), 1U);
}

TEST_F(Delegate, ALockedDatabaseCountsAndTheOthersAreDone) {
  for (const char* profile : {"open", "locked"}) {
    plainly(home.folder(kFirefox + profile).path(kFirefox + profile + "/cookies.sqlite"),
            "CREATE TABLE moz_cookies (id INTEGER, host, name);"
            "INSERT INTO moz_cookies VALUES (1, 'gone.com', 'a'), (2, 'kept.com', 'a');");
  }
  home.file(kFirefox + "damaged/cookies.sqlite", "no database");
  const Connection lock = plainConnection(home.path(kFirefox + "locked/cookies.sqlite"));
  plainly(lock, "BEGIN IMMEDIATE;");
  EXPECT_EQ(worker.removeCookies_keepCookies("Firefox", kKept).cookies, 2);
  EXPECT_EQ(plainly(home.path(kFirefox + "open/cookies.sqlite"), "SELECT id FROM moz_cookies"),
            Names{"2"});
}

TEST_F(Delegate, ScopesAreOfferedAgainWithEveryLaterProfile) {
  home.folder(kFirefox + "a").folder(kFirefox + "b");
  // The other profile than the first in the folder's order has no table, and chooses what the first
  // held.
  const std::string first = fs::directory_iterator(home.path(kFirefox))->path();
  plainly(first + "/webappsstore.sqlite",
          "CREATE TABLE webappsstore2 (scope);"
          "INSERT INTO webappsstore2 VALUES ('moc.enog.:http:80')");
  plainly(home.path(kFirefox + (first.ends_with("a") ? "b" : "a") + "/webappsstore.sqlite"),
          "CREATE TABLE t (scope)");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Firefox", kKept), 2);
}

TEST_F(Delegate, UnknownBrowsersLoseOnlyWhatIsSharedAndProfilesAreThoseListed) {
  const MacHome sample(home.volume());
  worker.removeBrowserCache("WebKit");
  const auto before = home.snapshot();
  for (const char* browser : {"Unknown", "google chrome"}) {
    home.file("Library/Caches/QuickTime/downloads/film");
    worker.removeBrowserCache(browser);
    EXPECT_EQ(worker.removeCookies_keepCookies(browser, {}).cookies, 0);
    EXPECT_EQ(worker.removeNonFavLocalStorage_keep(browser, {}), 0);
    EXPECT_FALSE(worker.clearChromeFlash_keep(browser, {}));
    EXPECT_EQ(home.snapshot(), before) << browser;
  }
  EXPECT_EQ(worker.userProfiles("Opera"), worker.userProfiles("Chromium"));
  const auto pepper = worker.clearChromeFlash_keep("Chromium", {"example.com"});
  EXPECT_EQ(std::pair(pepper->seen, pepper->removed), std::pair(16, 14));
  const std::string list = kSupport + "Chromium/Local State";
  home.file(list, R"({"profile": {"info_cache": {}}})");
  EXPECT_EQ(worker.clearChromeFlash_keep("Chromium", {}).value().seen, 0);
  // One without a name is the folder of the browser itself.
  home.file(list, R"({"profile": {"info_cache": {"": {"name": ""}}}})")
      .file(kSupport + "Chromium/Local Storage/http_gone_0.localstorage");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Chromium", {}), 1);
}

}  // namespace
}  // namespace tasselby
