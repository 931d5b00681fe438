// Paths and files: what is seen and removed of them, how they are overwritten, and what is answered
// from those of a home: passwords, cookies, preferences.
#include <unistd.h>

#include "keep/WorkerExtras.h"
#include "platform/Paths.h"
#include "platform/offline/ArgumentDomain.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/KeychainWriter.h"
#include "samples/NotificationBus.h"
#include "storage/Disposal.h"
#include "storage/SecureDelete.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using namespace std::string_literals;

using Files = WorkerTest;

TEST_F(Files, PathsJoinWithOneSlashAndNamesThatLeadOutAreTold) {
  EXPECT_EQ(join("/a/", "/b/") + join("/", "b") + join("/a/", ""), "/a/b/b/a/");
  for (const std::string& name :
       split("+ +a +/a +a/b +... +..a +a.. -.. -../a -. -a/.. -a/../b -a//./b -a\0b"s, ' ')) {
    EXPECT_EQ(staysBelow(name.substr(1)), name[0] == '+') << name;
  }
  const FileManager backup("/mnt/Users/backup/Users/anna");
  EXPECT_EQ(backup.expandTilde("~/a") + backup.expandTilde("~b"),
            "/mnt/Users/backup/Users/anna/a~b");
  EXPECT_EQ(backup.onVolume("/a") + FileManager("/home").onVolume("/b"), "/mnt/Users/backup/a/b");
  EXPECT_FALSE(files.fileExistsAtPath(FileManager("").expandTilde("~/tmp")));
}

TEST_F(Files, OnlyRegularFilesAreReadUpToALimitAndOnlyUtf8IsText) {
  home.file("text", "\xC3\xBC\xF4\x8F\xBF\xBF\xF0\x9F\x98\x80").link("link", "text");
  EXPECT_TRUE(files.textOfFile(home.path("link")) && !files.contentsOfFile(home.path("text"), 9));
  fs::resize_file(home.path("text"), (64 << 20) + 1);
  EXPECT_FALSE(files.textOfFile(home.path("text")));
  home.link("device", "/dev/null");
  for (const std::string& name : split("device||no|text/x|text\0"s, '|')) {
    EXPECT_FALSE(files.contentsOfFile(home.path(name), 100)) << name;
  }
  for (const std::string& bytes :
       split("\xFF|\xC3|\xC0\x80|\xED\xA0\x80|\xF4\x90\x80\x80|a\x80|\xE0\x9F\xBF|\xC3z", '|')) {
    home.file("bytes", bytes);
    EXPECT_EQ(files.textOfFile(home.path("bytes")), std::nullopt) << bytes;
    EXPECT_EQ(files.contentsOfFile(home.path("bytes"), 4), bytes);
  }
}

TEST_F(Files, OverwritingRepeatsOneBufferAndARefusedPhaseLeavesTheFileOpen) {
  // Several times what a single call writes, and no multiple of the buffer.
  const std::size_t size = (2 << 20) + 5;
  const std::string path = home.file("file", std::string(size, 'x')).path("file");
  for (const int phase : {1, 2}) {
    EXPECT_TRUE(SecureDelete::wipe_phase(files, path, phase));
    EXPECT_TRUE(home.contents("file") == std::string(size, phase == 1 ? '\x55' : '\xAA')) << phase;
  }
  // The last of all three is random.
  EXPECT_TRUE(SecureDelete::wipe(files, path));
  const std::string random = home.contents("file");
  EXPECT_EQ(random.find('\xFF'), std::string::npos);
  EXPECT_TRUE(std::equal(random.begin() + 1024, random.end(), random.begin()));
  const int input = ::dup(0);
  ::close(0);
  EXPECT_TRUE(SecureDelete::wipe_phase(files, path, 3)) << "by descriptor 0";
  EXPECT_TRUE(home.contents("file") != random) << "seeded anew";
  EXPECT_FALSE(SecureDelete::wipe_phase(files, path, 4));
  EXPECT_GT(::dup(input), 0);
  ::dup2(input, 0);
}

TEST_F(Files, DisposalRemovesOnlyWhatCouldBeOverwritten) {
  home.file("file").file("folder/in", "as it was").file("target", "secret").file("empty", "");
  home.link("link", "target").link("to folder", "folder").link("dangling", "nowhere");
  fs::create_hard_link(home.socket("socket").path("folder/in"), home.path("witness"));
  for (const auto& name : split("file|empty|to folder|folder|link|dangling|socket|missing", '|')) {
    dispose(files, home.path(name), true);
  }
  EXPECT_EQ(home.list(""), (Names{"socket", "target", "witness"}));
  EXPECT_EQ(home.contents("witness"), "as it was") << "nothing in a folder is overwritten";
  EXPECT_NE(home.contents("target"), "secret") << "a link's target is overwritten";
  EXPECT_TRUE(SecureDelete::wipeContentsofDir(files, home.path("missing")) &&
              SecureDelete::wipeContentsofDir(files, home.path("witness")));
  EXPECT_NE(home.contents("witness"), "as it was");
}

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
  home.folder("Library/Keychains/nowhere");
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

TEST_F(Offline, DesktopNotificationsTellAServiceOfThisMachineTheReport) {
  const NotificationBus bus;
  UserNotification notification;
  notification.subtitle = "3 < 4 & more";
  // The last would run a program.
  for (const std::string& address : {std::string(), bus.address(),
                                     "unix:path=/;unixexec:path=touch,argv1=" + home.path("run")}) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    makeDesktopNotifications()->scheduleNotification(notification);
  }
  EXPECT_FALSE(home.has("run"));
  // A Mac has no such bus.
  EXPECT_EQ(bus.received().size(), bus.address().ends_with("/dev/null") ? 0U : 1U);
  for (const ReceivedNotification& one : bus.received()) {
    EXPECT_EQ(one.application + one.body + (one.isSilent ? "" : "!"), "Tasselby3 < 4 & more");
  }
}

}  // namespace
}  // namespace tasselby
