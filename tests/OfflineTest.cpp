// What is answered from the files of a home, and changed in them: passwords, cookies, preferences.
#include <sys/stat.h>

#include "keep/WorkerExtras.h"
#include "platform/offline/ArgumentDomain.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/KeychainWriter.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kKeychain = "Library/Keychains/login.keychain-db";
const std::string kCookies = "Library/Cookies/Cookies.binarycookies";
const std::string kContainer = "Library/Containers/com.apple.Safari/Data/";
const std::vector<SampleCookie> kFour = {
    {".a.test", "0"}, {".a.test", "1"}, {"b.test", "2"}, {"b.test", "3"}};

using Offline = WorkerTest;

TEST_F(Offline, KeychainAnswersOnlyValuesThatTheSystemKnows) {
  std::vector<SavedPassword> saved = {{.server = "", .account = ""}, {.server = "\xFF.test"}};
  std::vector<KeychainAttributes> items = {{{"atyp", "form"}},
                                           {{"acct", "anna"}, {"atyp", "form"}}};
  for (const char* type :
       {"ntlm", "msna", "dpaa", "rpaa", "http", "httd", "form", "dflt", "formx", "FORM", "for"}) {
    saved.push_back({.server = "a.test", .authenticationType = type});
    items.push_back({{"acct", "anna"}, {"srvr", "a.test"}});
    if (items.size() < 12) {
      items.back()["atyp"] = std::string(type).substr(0, 4);
    }
  }
  home.file(kKeychain, keychainFile(saved));
  EXPECT_EQ(WorkerExtras::allAccounts(*keychain), items);
  KeychainQuery query = WorkerExtras::_queryForService_account(std::nullopt, "anna");
  EXPECT_TRUE(keychain->copyMatching(query).items.empty());
  query.returnAttributes = true;
  EXPECT_EQ(keychain->copyMatching(query).items, std::vector{items[1]}) << "one is the limit";
  KeychainError error;
  EXPECT_FALSE(WorkerExtras::accountsForService_error(*keychain, "a.test", &error));
  EXPECT_EQ(error.domain, "com.marrowgatestudios.Tasselby");
  EXPECT_EQ(error.code, Keychain::kItemNotFound);
}

TEST_F(Offline, ReadsTheOlderKeychainOnlyWithoutANewerOne) {
  const std::string sound = keychainFile({{.server = "a.test"}});
  home.link(kKeychain, "nowhere").file("Library/Keychains/login.keychain", sound);
  EXPECT_TRUE(WorkerExtras::allAccounts(*keychain)) << "a dangling link is no keychain";
  fs::remove(home.path(kKeychain));
  home.file(kKeychain, sound.substr(0, sound.size() - 5));
  EXPECT_FALSE(WorkerExtras::allAccounts(*keychain)) << "damaged";
}

TEST_F(Offline, CookiesGoByTheirBytesAtOnceAndBehindALink) {
  home.file("real/file", binaryCookieFile(kFour)).link(kCookies, "../../real/file");
  home.link(kContainer + "Library/Cookies", home.path("Library/Cookies"));
  ::chmod(home.path(kCookies).c_str(), 0640);
  const std::vector<HTTPCookie> cookies = cookieStorage->cookies();
  ASSERT_EQ(cookies.size(), 4U) << "one file behind both paths";
  for (const std::size_t place : {0U, 1U, 1U, 3U}) {
    cookieStorage->deleteCookie(cookies[place]);
  }
  EXPECT_EQ(home.contents(kCookies), binaryCookieFile(kFour)) << "deletions are gathered";
  const SampleCookie later = {"b.test", "later"};
  home.file("real/file", binaryCookieFile({kFour[1], later, kFour[1], kFour[0], kFour[2]}));
  cookieStorage->synchronize();
  const std::string left = binaryCookieFile({kFour[1], later, kFour[2]});
  EXPECT_EQ(home.contents(kCookies), left) << "of two identical records one went";
  EXPECT_EQ(fs::status(home.path(kCookies)).permissions(), fs::perms{0640});
  EXPECT_TRUE(fs::is_symlink(home.path(kCookies)));
  fs::create_hard_link(home.path("real/file"), home.path("real/same"));
  cookieStorage->deleteCookie(cookies[3]);
  cookieStorage->synchronize();
  EXPECT_EQ(fs::hard_link_count(home.path(kCookies)), 2U) << "one already gone writes nothing";
  EXPECT_EQ(home.list("real"), (Names{"file", "same"}));
}

TEST_F(Offline, NeverWritesADamagedCookieFile) {
  std::string damaged = binaryCookieFile(kFour);
  damaged[20] = '\x7f';  // The first page's number of records.
  home.file(kContainer + kCookies, damaged).file(kCookies, binaryCookieFile(kFour));
  for (const HTTPCookie& cookie : cookieStorage->cookies()) {
    cookieStorage->deleteCookie(cookie);
  }
  cookieStorage->synchronize();
  EXPECT_EQ(home.contents(kContainer + kCookies), damaged);
  EXPECT_EQ(home.contents(kCookies).size(), 48U) << "two empty pages";
}

TEST(ArgumentDomain, PairsSetPreferences) {
  const std::map<Names, std::map<std::string, bool>> domainByArguments = {
      {{"worker", "-a", "YES", "Safari", "-b", "0"}, {{"a", true}, {"b", false}}},
      {{"worker", "-a", "-b", "YES"}, {{"b", true}}},
      {{"worker", "-a", "-1", "-b"}, {}},
      {{"--a", "1", "-", "-b", "1"}, {{"-a", true}, {"b", true}}},
      {{"worker", "-", "1", "-a", "", "-b", "1"}, {{"a", false}, {"b", true}}},
      {{"worker", "-a", "YES", "-a", "NO"}, {{"a", false}}}};
  for (const auto& [arguments, domain] : domainByArguments) {
    EXPECT_EQ(argumentDomain(arguments), domain) << ::testing::PrintToString(arguments);
  }
  // A letter of yes, a number, or a list that is one of these.
  for (const char* value :
       {"YES", "y+", "true", "T", " \t1 ", "\n 1", "1a", "007", "+01", " \"YES\"\n", "<true/>",
        " <integer>2</integer>\n", "<?xml version=\"1.0\"?><plist><true/></plist>"}) {
    EXPECT_EQ(argumentDomain({"-a", value}).at("a"), true) << value;
  }
  for (const char* value :
       {"",          " ",       "no",       "on",         "+0",
        "+y",        "0y",      "ay",       "0.5",        "+-1",
        "<false/>",  "<yes/>",  "\"YES\"x", "\"",         "\"Y\\",
        "\"Y\\\"\"", "\"Y\"\"", "(YES)",    "{ a = 1; }", "<array><true/></array>"}) {
    EXPECT_EQ(argumentDomain({"-a", value}).at("a"), false) << value;
  }
}

TEST_F(Offline, FirstReadablePreferencesThatHaveTheKeyDecideAndAreReadOnce) {
  const std::string own = "Library/Preferences/com.marrowgatestudios.Tasselby.Worker.plist";
  const std::string suite = "Library/Preferences/suite.plist";
  home.file(own, "<dict><key>arg</key><true/><key>own</key><true/><key>odd</key><array/></dict>")
      .file(suite, "<dict><key>own</key><false/><key>odd</key><true/><key>s</key><true/></dict>");
  ASSERT_EQ(::mkfifo(home.path("Library/Preferences/fifo.plist").c_str(), 0600), 0);
  const auto defaults = makeOfflineUserDefaults({"worker", "-arg", "Safari"}, files);
  defaults->addSuiteNamed("fifo");
  defaults->addSuiteNamed("suite");
  EXPECT_FALSE(defaults->boolForKey("arg"));
  home.file(own, "").file(suite, "");
  EXPECT_TRUE(defaults->boolForKey("own") && defaults->boolForKey("s"));
  EXPECT_FALSE(defaults->boolForKey("odd") || defaults->boolForKey("other"));
}

}  // namespace
}  // namespace tasselby
