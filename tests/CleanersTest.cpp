// What of the cleaners a whole run over a full home does not show.
#include "platform/HardError.h"
#include "samples/KeychainWriter.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

const std::string kSilverlight = kSupport + "Microsoft/Silverlight/";
const std::string kFirefox = kSupport + "Firefox/Profiles/";
const std::string kOpera = kSupport + "com.operasoftware.Opera/";
const std::string kSafari = "Library/Safari/";
const KeepList kKept = {"kept.com"};

class Cleaners : public WorkerTest {
 protected:
  /// Runs `sql` on the database at `path`, made with its folder.
  Names run(const std::string& path, const std::string& sql) {
    home.folder(path.substr(0, path.rfind('/')));
    return plainly(home.path(path), sql);
  }

  void addStore(const std::string& folder, const std::string& name, const std::string& identity) {
    home.file(kSilverlight + "is/a/b/" + folder + "/s/" + name + "/id.dat", identity);
  }
};

TEST_F(Cleaners, ChannelIdsOfNoOriginStayWithNothingKept) {
  const std::string path = kOpera + "Origin Bound Certs";
  run(path,
      "CREATE TABLE origin_bound_certs (origin);"
      "INSERT INTO origin_bound_certs VALUES (''), ('gone.com'), (NULL);");
  worker.removeCookies_keepCookies("Opera", {});
  EXPECT_EQ(run(path, "SELECT * FROM origin_bound_certs"), (Names{"", "-"}));
  worker.removeCookies_keepCookies("Opera", kKept);
  EXPECT_EQ(run(path, "SELECT * FROM origin_bound_certs"), Names{"-"});
}

TEST_F(Cleaners, ALockedDatabaseCountsAndTheOthersAreDone) {
  for (const char* profile : {"open", "locked"}) {
    run(kFirefox + profile + "/cookies.sqlite",
        "CREATE TABLE moz_cookies (id INTEGER, host, name);"
        "INSERT INTO moz_cookies VALUES (1, 'gone.com', 'a'), (2, 'kept.com', 'a');");
  }
  home.file(kFirefox + "damaged/cookies.sqlite", "no database");
  const Connection lock = plainConnection(home.path(kFirefox + "locked/cookies.sqlite"));
  plainly(lock, "BEGIN IMMEDIATE;");
  EXPECT_EQ(worker.removeCookies_keepCookies("Firefox", kKept).cookies, 2);
  EXPECT_EQ(run(kFirefox + "open/cookies.sqlite", "SELECT id FROM moz_cookies"), Names{"2"});
}

TEST_F(Cleaners, AQuoteInAListRunsNoStatementAndSparesNoFile) {
  run(kOpera + "databases/Databases.db",
      "CREATE TABLE Databases (origin); INSERT INTO Databases VALUES"
      "('http_b'') OR (''1''=''1_0'), ('http_c_0');");
  home.file(kOpera + "databases/http_b') OR ('1'='1_0/1.db");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Opera", kKept), 2);
  EXPECT_EQ(home.list(kOpera + "databases"), Names{"Databases.db"});
  EXPECT_EQ(run(kOpera + "databases/Databases.db", "SELECT * FROM Databases").size(), 2U);
  home.file(kSafari + "LocalStorage/it's kept");
  run(kSafari + "LocalStorage/StorageTracker.db",
      "CREATE TABLE Origins (origin); INSERT INTO Origins VALUES ('missing');");
  worker.removeNonFavLocalStorage_keep("Safari", kKept);
  EXPECT_EQ(run(kSafari + "LocalStorage/StorageTracker.db", "SELECT * FROM Origins").size(), 1U);
}

TEST_F(Cleaners, StatementsRunWithNothingChosen) {
  const std::string index = kSafari + "Databases/Databases.db";
  const std::string camino = kSupport + "Camino/webappsstore.sqlite";
  run(index, "CREATE TABLE Databases (origin); CREATE TABLE Origins (origin);");
  run(camino, "CREATE TABLE webappsstore2 (scope);");
  for (const char* after : {"", "DROP TABLE Databases;"}) {
    run(index, std::string(after) + "INSERT INTO Origins VALUES ('');");
    EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Safari", kKept), 0);
    EXPECT_EQ(run(index, "SELECT * FROM Origins"), Names{}) << after;
  }
  run(camino, "INSERT INTO webappsstore2 VALUES (''), ('moc.tpek.:http:80');");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Camino", kKept), 0);
  EXPECT_EQ(run(camino, "SELECT * FROM webappsstore2"), Names{"moc.tpek.:http:80"});
}

TEST_F(Cleaners, ScopesAreOfferedAgainWithEveryLaterProfile) {
  home.folder(kFirefox + "a").folder(kFirefox + "b");
  // The first in the order of the folder. The other has no table, and chooses what the first held.
  const std::string first = fs::directory_iterator(home.path(kFirefox))->path().filename();
  run(kFirefox + first + "/webappsstore.sqlite",
      "CREATE TABLE webappsstore2 (scope);"
      "INSERT INTO webappsstore2 VALUES ('moc.enog.:http:80');");
  run(kFirefox + (first == "a" ? "b" : "a") + "/webappsstore.sqlite", "CREATE TABLE t (scope);");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Firefox", kKept), 2);
}

TEST_F(Cleaners, SilverlightGoesWholeOnceAFolderOfStoresIsEmpty) {
  addStore("1", "store", "gone1.com");
  addStore("2", "store", "gone2.com");
  home.file(kSilverlight + "other/file").file(kSupport + "Microsoft/Office/kept");
  EXPECT_EQ(worker.removeSilverlight(kKept), 1) << "the second has gone with the first";
  EXPECT_EQ(home.list(kSupport + "Microsoft"), Names{"Office"});
  // Kept stores go with the rest, and what the sweep took is judged no more.
  addStore("1", "store", "gone.com");
  addStore("2", "store", "kept.com");
  EXPECT_EQ(worker.removeSilverlight(kKept), 1);
  EXPECT_FALSE(home.has(kSilverlight));
}

TEST_F(Cleaners, SilverlightFinishesWhatWasCutOffAndPassesOverWhatHasGone) {
  const std::string folder = kSilverlight + "is/a/b/c/";
  home.file(folder + "s/.tasselby-7/group.dat", "group 7")
      .file(folder + "g/group 7/data")
      .file(kSupport + "Microsoft/.tasselby-Silverlight/is/a/b/c/s/8/data");
  addStore("c", "kept", "kept.com");
  EXPECT_EQ(worker.removeSilverlight(kKept), 0);
  EXPECT_EQ(home.list(kSupport + "Microsoft"), Names{"Silverlight"});
  EXPECT_EQ(home.list(folder + "s"), Names{"kept"});
  EXPECT_EQ(home.list(folder + "g"), Names{});
  // As another worker would, whichever store goes first takes the other with it.
  fs::remove(home.path(folder + "g"));
  addStore("c", "1", "gone.com");
  addStore("c", "2", "out.com");
  home.file(folder + "s/1/group.dat", "2").file(folder + "s/2/group.dat", "1");
  home.link(folder + "g", "s");
  EXPECT_EQ(worker.removeSilverlight(kKept), 1);
  home.folder(folder + "s/without an identity");
  EXPECT_THROW(worker.removeSilverlight(kKept), HardError);
}

TEST_F(Cleaners, UnknownBrowsersAndThoseWithoutProfilesLoseOnlyWhatIsShared) {
  const MacHome sample(home.volume(), 1);
  home.file(kSupport + "Google/Chrome/Local State", "{}");
  worker.removeFlash_keep("WebKit", {});
  worker.removeBrowserCache("WebKit");
  const auto before = home.snapshot();
  for (const std::string browser : {"Unknown", "google chrome", "Google Chrome"}) {
    home.file("Library/Caches/QuickTime/downloads/film");
    EXPECT_EQ(worker.removeCookies_keepCookies(browser, {}).cookies, 0);
    EXPECT_EQ(worker.removeNonFavLocalStorage_keep(browser, {}), 0);
    const auto pepper = worker.clearChromeFlash_keep(browser, {});
    EXPECT_EQ(pepper.has_value(), browser == "Google Chrome");
    EXPECT_EQ(pepper.value_or(PepperFlashCounts{}).seen, 0);
    if (browser != "Google Chrome") {
      worker.removeBrowserCache(browser);
      EXPECT_EQ(home.snapshot(), before) << browser;
    }
  }
  EXPECT_FALSE(worker.clearChromeFlash_keep("Opera", {}));
  EXPECT_EQ(worker.userProfiles("Opera"), worker.userProfiles("Chromium"));
  const auto pepper = worker.clearChromeFlash_keep("Chromium", {"example.com"});
  ASSERT_TRUE(pepper);
  EXPECT_EQ(std::pair(pepper->seen, pepper->removed), std::pair(16, 14));
  home.file(kSupport + "Chromium/Local State", R"({"profile": {"info_cache": {"": {"name": ""}}}})")
      .file(kSupport + "Chromium/Local Storage/http_gone_0.localstorage");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Chromium", {}), 1) << "a profile without a name";
}

TEST_F(Cleaners, PasswordsKeepTheirSitesOnceInOrderButNoneOfMachinesNearby) {
  std::vector<SavedPassword> saved;
  for (const char* server : {"www.example.com", "mail.example.com", "local.example.de", "localhost",
                             "Printer.LOCAL", "local", "www.anna.certificate", "^odd"}) {
    saved.push_back({.server = server});
  }
  home.file("Library/Keychains/login.keychain-db", keychainFile(saved));
  EXPECT_EQ(worker.getSmartFavouritesArray().sites(), (Names{"example.com", "local.example.de"}));
}

}  // namespace
}  // namespace tasselby
