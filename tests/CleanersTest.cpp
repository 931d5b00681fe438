// What of the cleaners a whole run over a full home does not show.
#include "platform/HardError.h"
#include "samples/KeychainWriter.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

const std::string kSilverlight = kSupport + "Microsoft/Silverlight/";
const std::string kFirefox = kSupport + "Firefox/Profiles/";
const KeepList kKept = {"kept.com"};

class Cleaners : public WorkerTest {
 protected:
  /// Runs `sql` on the database at `path`, made with its folder.
  Names run(const std::string& path, const std::string& sql) {
    home.folder(path.substr(0, path.rfind('/')));
    return plainly(home.path(path), sql);
  }

  void addStore(const std::string& folder, const std::string& name, const std::string& identity) {
    home.file(kSilverlight + folder + "/s/" + name + "/id.dat", identity);
  }
};

TEST_F(Cleaners, ChannelIdsStayOnlyWithAKeptSiteToTheLetter) {
  const std::string path = kSupport + "com.operasoftware.Opera/Origin Bound Certs";
  run(path,
      "CREATE TABLE origin_bound_certs (origin);"
      "INSERT INTO origin_bound_certs VALUES (''), ('site1'), ('www.site1'), ('https://site1'),"
      "('SITE1'), ('site2'), (NULL);");
  const std::string rows = "SELECT origin FROM origin_bound_certs";
  worker.removeCookies_keepCookies("Opera", {"it's malformed"});
  EXPECT_EQ(run(path, rows).size(), 7U);
  worker.deleteChromeChannelID_keep("Safari", {});
  EXPECT_EQ(run(path, rows).size(), 7U);
  worker.removeCookies_keepCookies("Opera", {"site1", "site2"});
  EXPECT_EQ(run(path, rows), (Names{"site1", "site2", "-"}));
  run(path, "INSERT INTO origin_bound_certs VALUES ('')");
  worker.removeCookies_keepCookies("Opera", {});
  EXPECT_EQ(run(path, rows), (Names{"-", ""})) << "the list of none holds the empty text";
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
  EXPECT_EQ(plainly(lock, "SELECT id FROM moz_cookies"), (Names{"1", "2"}));
}

TEST_F(Cleaners, AQuoteInAListRunsNoStatementAndSparesNoFile) {
  const std::string opera = kSupport + "com.operasoftware.Opera/databases/";
  run(opera + "Databases.db",
      "CREATE TABLE Databases (origin); INSERT INTO Databases VALUES"
      "('http_b'') OR (''1''=''1_0'), ('http_c_0'), ('chrome-extension_e_0');");
  home.file(opera + "http_b') OR ('1'='1_0/1.db").file(opera + "http_c_0/1.db");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Opera", kKept), 2);
  EXPECT_EQ(home.list(opera), Names{"Databases.db"});
  EXPECT_EQ(run(opera + "Databases.db", "SELECT * FROM Databases").size(), 3U);
  const std::string safari = "Library/Safari/LocalStorage/";
  home.file(safari + "it's kept");
  run(safari + "StorageTracker.db",
      "CREATE TABLE Origins (origin); INSERT INTO Origins VALUES ('missing');");
  worker.removeNonFavLocalStorage_keep("Safari", kKept);
  EXPECT_EQ(run(safari + "StorageTracker.db", "SELECT * FROM Origins"), Names{"missing"});
}

TEST_F(Cleaners, StatementsRunWithNothingChosen) {
  const std::string rows = "CREATE TABLE Origins (origin); INSERT INTO Origins VALUES (''), ('x');";
  const std::string safari = "Library/Safari/Databases/Databases.db";
  run(safari, rows +
                  "CREATE TABLE Databases (origin, n);"
                  "INSERT INTO Databases VALUES ('safari-extension_e_0', 1);");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Safari", kKept), 0);
  EXPECT_EQ(run(safari, "SELECT * FROM Origins"), Names{"x"});
  run(safari, "INSERT INTO Origins VALUES (''); DROP TABLE Databases;");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Safari", kKept), 0);
  EXPECT_EQ(run(safari, "SELECT * FROM Origins"), Names{"x"}) << "after a SELECT that failed";
  const std::string camino = kSupport + "Camino/webappsstore.sqlite";
  run(camino,
      "CREATE TABLE webappsstore2 (scope); INSERT INTO webappsstore2 VALUES (''), "
      "('moc.tpek.:http:80');");
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("WebKit", {}), 0);
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Camino", kKept), 0);
  EXPECT_EQ(run(camino, "SELECT * FROM webappsstore2"), Names{"moc.tpek.:http:80"});
}

TEST_F(Cleaners, ScopesAreOfferedAgainWithEveryLaterProfile) {
  for (const char* profile : {"a", "b", "c"}) {
    run(kFirefox + profile + "/webappsstore.sqlite",
        "CREATE TABLE " + std::string(profile[0] == 'b' ? "other" : "webappsstore2") +
            " (scope); INSERT INTO " + (profile[0] == 'b' ? "other" : "webappsstore2") +
            " VALUES ('moc.nwo-" + profile + ".:http:80');");
  }
  // In the order of the folder: the one without the table chooses what those before it hold.
  Names order;
  for (const auto& entry : fs::directory_iterator(home.path(kFirefox))) {
    order.push_back(entry.path().filename().native());
  }
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Firefox", kKept),
            3 + (std::ranges::find(order, "b") - order.begin()));
  // A row that the first profile's list names goes from a later one as well; nobody else's does.
  EXPECT_EQ(run(kFirefox + "b/webappsstore.sqlite", "SELECT * FROM other").size(), 1U);
  EXPECT_EQ(run(kFirefox + "a/webappsstore.sqlite", "SELECT * FROM webappsstore2"), Names{});
}

TEST_F(Cleaners, SilverlightGoesWholeOnceAFolderOfStoresIsEmpty) {
  for (const char* folder : {"is/a/b/1", "is/a/b/2"}) {
    addStore(folder, "store", std::string("gone") + folder[7] + ".com");
  }
  home.file(kSilverlight + "other/file").file(kSupport + "Microsoft/Office/kept");
  EXPECT_EQ(worker.removeSilverlight(kKept), 1) << "the second has gone with the first";
  EXPECT_EQ(home.list(kSupport + "Microsoft"), Names{"Office"});
  // Kept stores go with the rest, and what the sweep took is judged no more.
  addStore("is/a/b/1", "store", "gone.com");
  addStore("is/a/c/2", "store", "kept.com");
  EXPECT_EQ(worker.removeSilverlight(kKept), 1);
  EXPECT_FALSE(home.has(kSilverlight));
  addStore("is/a/b/1", "store", "gone.com");
  addStore("is/a/b/1", "other", "kept.com");
  home.file(kSilverlight + "is/a/b/2/g/group");
  EXPECT_EQ(worker.removeSilverlight(kKept), 1);
  EXPECT_EQ(home.list(kSilverlight + "is/a/b/1/s"), Names{"other"});
  EXPECT_TRUE(home.has(kSilverlight + "is/a/b/2/g/group"));
}

TEST_F(Cleaners, SilverlightFinishesWhatWasCutOffAndPassesOverWhatHasGone) {
  const std::string folder = kSilverlight + "is/a/b/c/";
  home.file(folder + "s/.tasselby-7/group.dat", "group 7")
      .file(folder + "g/group 7/data")
      .file(kSupport + "Microsoft/.tasselby-Silverlight/is/a/b/c/s/8/data");
  addStore("is/a/b/c", "kept", "kept.com");
  EXPECT_EQ(worker.removeSilverlight(kKept), 0);
  EXPECT_EQ(home.list(kSupport + "Microsoft"), Names{"Silverlight"});
  EXPECT_EQ(home.list(folder + "s"), Names{"kept"});
  EXPECT_EQ(home.list(folder + "g"), Names{});
  // As another worker would, whichever store goes first takes the other with it.
  fs::remove(home.path(folder + "g"));
  addStore("is/a/b/c", "1", "gone.com");
  addStore("is/a/b/c", "2", "out.com");
  home.file(folder + "s/1/group.dat", "2").file(folder + "s/2/group.dat", "1");
  home.link(folder + "g", "s");
  EXPECT_EQ(worker.removeSilverlight(kKept), 1);
  home.folder(folder + "s/without an identity");
  EXPECT_THROW(worker.removeSilverlight(kKept), HardError);
}

TEST_F(Cleaners, WithoutProfilesOrForAnotherNameOnlyWhatIsSharedGoes) {
  home.file(kSupport + "Google/Chrome/Local State", "{}")
      .file(kSupport + "Chromium/Local State", R"({"profile": {"info_cache": {"": {"name": ""}}}})")
      .file(kSupport + "Chromium/Local Storage/http_gone_0.localstorage")
      .file(kSupport + "com.operasoftware.Opera/Local Storage/http_gone_0.localstorage")
      .file(kSupport + "com.operasoftware.Opera/GPUCache/data")
      .file("Library/Safari/LocalStorage/http_gone_0.localstorage")
      .file(kSupport + "Google/ChromePepper Data/Shockwave Flash/CacheWritableAdobeRoot/asset");
  const auto pepper = worker.clearChromeFlash_keep("Google Chrome", {});
  EXPECT_TRUE(pepper && pepper->seen == 0 && pepper->removed == 0);
  for (const char* browser : {"Opera", "Safari", "Unknown"}) {
    EXPECT_FALSE(worker.clearChromeFlash_keep(browser, {})) << browser;
  }
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Chromium", {}), 1) << "a profile without a name";
  const auto before = home.snapshot();
  for (const char* browser : {"Unknown", "Google Chrome", "google chrome"}) {
    home.file("Library/Caches/QuickTime/downloads/film");
    EXPECT_EQ(worker.removeCookies_keepCookies(browser, {}).cookies, 0);
    EXPECT_EQ(worker.removeNonFavLocalStorage_keep(browser, {}), 0);
    EXPECT_EQ(worker.removeFlash_keep(browser, {}), 0);
    worker.removeBrowserCache(browser);
    EXPECT_EQ(home.list("Library/Caches/QuickTime"), Names{});
    fs::remove_all(home.path("Library/Caches"));
    EXPECT_EQ(home.snapshot(), before) << browser;
  }
  EXPECT_EQ(worker.userProfiles("Opera"), worker.userProfiles("Chromium"));
}

TEST_F(Cleaners, PepperFlashCountsWhatItSawAndWhatWent) {
  home.file(kSupport + "Chromium/Local State",
            R"({"profile": {"info_cache": {"P": {"name": "p"}, "Q": {"name": "q"}}}})");
  for (const char* profile : {"P", "Q"}) {
    const std::string objects = kSupport + "Chromium/" + profile +
                                "/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/R/";
    home.file(objects + "gone.com/a").file(objects + "www.gone.com/a").file(objects + "kept.com/a");
  }
  const auto counts = worker.clearChromeFlash_keep("Chromium", kKept);
  ASSERT_TRUE(counts);
  EXPECT_EQ(counts->seen, 4);
  EXPECT_EQ(counts->removed, 2);
}

TEST_F(Cleaners, KeychainsWebFormPasswordsKeepTheirSitesOnceInOrder) {
  EXPECT_TRUE(worker.getSmartFavouritesArray().sites().empty()) << "no keychain";
  home.file("Library/Keychains/login.keychain-db",
            keychainFile({{.server = "www.example.com"},
                          {.server = "mail.example.com", .account = "berta"},
                          {.server = "default.org", .authenticationType = "dflt"},
                          {.server = "untyped.org", .authenticationType = ""},
                          {.server = "localhost"},
                          {.server = "Printer.LOCAL"},
                          {.server = "local"},
                          {.server = "www.anna.certificate"},
                          {.server = ""},
                          {.server = "^odd"},
                          {.server = "local.example.de"}}));
  EXPECT_EQ(worker.getSmartFavouritesArray().sites(), (Names{"example.com", "local.example.de"}));
  EXPECT_TRUE(worker.getFirefoxSmartFavouritesArray().sites().empty());
}

}  // namespace
}  // namespace tasselby
