// What is answered from the files of a home, and changed in them: passwords, cookies, preferences.
#include "keep/WorkerExtras.h"
#include "platform/offline/ArgumentDomain.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/KeychainWriter.h"
#include "samples/NotificationBus.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using Offline = WorkerTest;

TEST_F(Offline, KeychainAnswersWhatTheSystemKnowsAndTheOlderOnlyWithoutANewer) {
  std::vector<SavedPassword> saved = {{.server = "", .authenticationType = "formx", .account = ""},
                                      {.server = "\xFF", .authenticationType = "FORM"},
                                      {.server = "a", .authenticationType = "for"}};
  std::vector<KeychainAttributes> items = {
      {{"atyp", "form"}}, {{"acct", "anna"}}, {{"acct", "anna"}, {"srvr", "a"}}};
  for (const auto& type : split("ntlm msna dpaa rpaa http httd form dflt", ' ')) {
    saved.push_back({.server = "a.test", .authenticationType = type});
    items.push_back({{"acct", "anna"}, {"atyp", type}, {"srvr", "a.test"}});
  }
  const std::string older = "Library/Keychains/login.keychain", newer = older + "-db";
  home.file(older, keychainFile(saved)).link(newer, "nowhere");
  EXPECT_EQ(WorkerExtras::allAccounts(*keychain), items);
  KeychainQuery query = WorkerExtras::_queryForService_account(std::nullopt, "anna");
  query.returnAttributes = true;
  EXPECT_EQ(keychain->copyMatching(query).items, std::vector{items[1]}) << "one is the limit";
  KeychainError error;
  EXPECT_FALSE(WorkerExtras::accountsForService_error(*keychain, "a.test", &error));
  EXPECT_EQ(error.domain + std::to_string(error.code), "com.marrowgatestudios.Tasselby-25300");
  fs::rename(home.file("damaged").path("damaged"), home.path(newer));
  EXPECT_FALSE(WorkerExtras::allAccounts(*keychain));
}

TEST_F(Offline, CookiesGoByTheirBytesAtOnceBehindALinkAndFromNoDamagedFile) {
  const std::vector<SampleCookie> sound = {{"a", "0"}, {"a", "1"}, {"b", "2"}};
  // The first page has another number of records.
  const std::string file = binaryCookieFile(sound), damaged = std::string(file).replace(20, 1, "x");
  const std::string first = "Library/Cookies/Cookies.binarycookies";
  const std::string second = "Library/Containers/com.apple.Safari/Data/" + first;
  home.file("real/file", file).link(first, "../../real/file").file(second, damaged);
  fs::permissions(home.path(first), fs::perms{0640});
  const std::vector<HTTPCookie> cookies = cookieStorage->cookies();
  ASSERT_EQ(cookies.size(), 4U);
  for (const std::size_t place : {0U, 1U, 1U, 3U}) {
    cookieStorage->deleteCookie(cookies[place]);
  }
  EXPECT_EQ(home.contents(first), file) << "deletions are gathered";
  home.file(first, binaryCookieFile({sound[1], {"b", "new"}, sound[1], sound[0], sound[2]}));
  // Of two identical records one goes, and the second time there is nothing to write.
  cookieStorage->synchronize();
  cookieStorage->synchronize();
  EXPECT_EQ(home.contents(first), binaryCookieFile({sound[1], {"b", "new"}, sound[2]}));
  EXPECT_EQ(home.contents(second), damaged);
  EXPECT_EQ(fs::status(home.path(first)).permissions(), fs::perms{0640});
  EXPECT_TRUE(fs::is_symlink(home.path(first)) && home.list("real") == Names{"file"});
}

// Arguments with "," between, and behind the last ">" the preferences that they set to yes, "+", or
// to no, "-". A value is a letter of yes, a number, or a list that is one of these.
constexpr const char* kArguments =
    "worker,-a,YES,Safari,-b,0>+a-b|worker,-a,-b,YES>+b|worker,-a,-1,-b>|--a,1,-,-b,1>+-a+b|"
    "worker,-,1,-a,,-b,1>-a+b|worker,-a,YES,-a,NO>-a|-a,y+>+a|-a,true>+a|-a,T>+a|-a, \t1 >+a|"
    "-a,\n 1>+a|-a,1a>+a|-a,007>+a|-a,+01>+a|-a, \"YES\"\n>+a|-a,<true/>>+a|"
    "-a, <integer>2</integer>\n>+a|-a,<?xml version=\"1.0\"?><plist><true/></plist>>+a|"
    "-a, >-a|-a,no>-a|-a,on>-a|-a,+0>-a|-a,+y>-a|-a,0y>-a|-a,ay>-a|-a,0.5>-a|-a,+-1>-a|"
    "-a,<false/>>-a|-a,<yes/>>-a|-a,\"YES\"x>-a|-a,\">-a|-a,\"Y\\>-a|-a,\"Y\\\"\">-a|"
    "-a,\"Y\"\">-a|-a,(YES)>-a|-a,{ a = 1; }>-a|-a,<array><true/></array>>-a";

TEST(ArgumentDomain, PairsSetPreferences) {
  for (const std::string& row : split(kArguments, '|')) {
    std::string set;
    for (const auto& [key, value] : argumentDomain(split(row.substr(0, row.rfind('>')), ','))) {
      set += (value ? "+" : "-") + key;
    }
    EXPECT_EQ(set, row.substr(row.rfind('>') + 1)) << row;
  }
}

TEST(DesktopNotifications, TellsTheServiceTheReport) {
  const NotificationBus bus;
  UserNotification notification;
  notification.subtitle = "3 < 4 & more";
  // The last would run a program, and wait for it longer than any test may take.
  for (const std::string& address :
       {std::string(), bus.address(), std::string("unix:path=/;unixexec:path=sleep,argv1=3000")}) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    makeDesktopNotifications()->scheduleNotification(notification);
  }
  // A Mac has no such bus.
  EXPECT_EQ(bus.received().size(), bus.address().ends_with("/dev/null") ? 0U : 1U);
  for (const ReceivedNotification& one : bus.received()) {
    EXPECT_EQ(one.application + one.body + (one.isSilent ? "" : "!"), "Tasselby3 < 4 & more");
  }
}

}  // namespace
}  // namespace tasselby
