#include <string>

#include "storage/Sqlite.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

const std::string kSafari = "Library/Safari/";
const std::string kChrome = "Library/Application Support/Google/Chrome/";
const std::string kFirefox = "Library/Application Support/Firefox/Profiles/";

class WebStorageSweepTest : public WorkerTest {
 protected:
  void run(const std::string& path, const Names& sql) {
    home.folder(path.substr(0, path.rfind('/')));
    Sqlite database;
    ASSERT_TRUE(database.open(home.path(path)));
    for (const std::string& text : sql) {
      ASSERT_TRUE(database.executeQuery(text)) << text;
    }
  }

  /// The texts of the only column that `sql` answers.
  Names texts(const std::string& path, const std::string& sql) {
    Sqlite database;
    EXPECT_TRUE(database.open(home.path(path)));
    Names texts;
    for (const Row& row : database.executeQuery(sql).value_or(RowList{})) {
      texts.push_back(std::get<std::string>(row.values()[0]));
    }
    return texts;
  }

  const KeepList keepList = {"a.example"};
};

TEST_F(WebStorageSweepTest, PrunesSafarisIndexByWhatWentAndItsTrackerByWhatIsLeft) {
  run(kSafari + "Databases/Databases.db",
      {"CREATE TABLE Databases (origin TEXT, name TEXT);", "CREATE TABLE Origins (origin TEXT);",
       "INSERT INTO Databases VALUES ('http_a.example_0', 'x'), ('http_a.example_0', 'y'), "
       "('safari-extension_e_0', 'z'), (NULL, 'n'), (x'41', 'b');",
       "INSERT INTO Origins VALUES ('http_a.example_0'), ('safari-extension_e_0'), ('other');"});
  home.file(kSafari + "Databases/http_a.example_0/1.db").file(kSafari + "Databases/other/1.db");
  run(kSafari + "LocalStorage/StorageTracker.db",
      {"CREATE TABLE Origins (origin TEXT);",
       "INSERT INTO Origins VALUES ('http_a.example_0'), ('http_b.example_0'), ('missing'), "
       "('http_c.example_0');"});
  home.file(kSafari + "LocalStorage/http_a.example_0.localstorage")
      .file(kSafari + "LocalStorage/http_b.example_0.localstorage")
      .socket(kSafari + "LocalStorage/http_c.example_0.localstorage");
  defaults.on = {"secureDeleteData"};

  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Safari", keepList), 4);

  EXPECT_EQ(home.list(kSafari + "Databases"), (Names{"Databases.db", "other"}));
  EXPECT_EQ(texts(kSafari + "Databases/Databases.db", "SELECT name FROM Databases;"),
            (Names{"z", "n", "b"}));
  EXPECT_EQ(texts(kSafari + "Databases/Databases.db", "SELECT origin FROM Origins;"),
            (Names{"safari-extension_e_0", "other"}));
  EXPECT_EQ(texts(kSafari + "LocalStorage/StorageTracker.db", "SELECT origin FROM Origins;"),
            (Names{"http_a.example_0", "http_c.example_0"}))
      << "what could not be wiped keeps its row";
}

TEST_F(WebStorageSweepTest, RemovesChromiumFilesWithTheirJournalsInEveryProfile) {
  home.file(kChrome + "Local State",
            R"({"profile": {"info_cache": {"P": {"name": "p"}, "Q": {"name": "q"}}}})");
  run(kChrome + "P/databases/Databases.db",
      {"CREATE TABLE Databases (origin TEXT);", "CREATE TABLE Origins (origin TEXT);",
       "INSERT INTO Databases VALUES ('http_b.example_0'), ('chrome-extension_e_0'), (''), "
       "('../Bookmarks');",
       "INSERT INTO Origins VALUES ('http_b.example_0');"});
  home.file(kChrome + "P/databases/http_b.example_0/1.db").file(kChrome + "P/Bookmarks");
  for (const char* profile : {"P", "Q", "R"}) {
    const std::string folder = kChrome + profile + "/Local Storage/";
    home.file(folder + "http_b.example_0.localstorage")
        .file(folder + "http_b.example_0.localstorage-journal")
        .file(folder + "http_a.example_0.localstorage-journal");
  }

  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Google Chrome", keepList), 5);

  EXPECT_EQ(home.list(kChrome + "P"), (Names{"Bookmarks", "Local Storage"}))
      << "an empty origin names the folder itself, and nothing leads out of it";
  for (const char* profile : {"P", "Q"}) {
    EXPECT_EQ(home.list(kChrome + profile + "/Local Storage"),
              Names{"http_a.example_0.localstorage-journal"});
  }
  EXPECT_EQ(home.list(kChrome + "R/Local Storage").size(), 3U) << "no profile of the list";
}

TEST_F(WebStorageSweepTest, LeavesAnIndexAloneForAQuoteAndRemovesTheFiles) {
  const std::string folder = "Library/Application Support/com.operasoftware.Opera/databases/";
  run(folder + "Databases.db",
      {"CREATE TABLE Databases (origin TEXT);",
       "INSERT INTO Databases VALUES ('http_b'') OR (''1''=''1_0'), ('chrome-extension_e_0');"});
  home.file(folder + "http_b') OR ('1'='1_0/1.db");

  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Opera", keepList), 1);

  EXPECT_EQ(home.list(folder), Names{"Databases.db"});
  EXPECT_EQ(texts(folder + "Databases.db", "SELECT origin FROM Databases;").size(), 2U);
}

TEST_F(WebStorageSweepTest, OffersScopesOfOneFirefoxProfileToTheNext) {
  for (const char* profile : {"one", "two"}) {
    run(kFirefox + profile + "/webappsstore.sqlite",
        {"CREATE TABLE webappsstore2 (scope TEXT, key TEXT);",
         "INSERT INTO webappsstore2 VALUES ('elpmaxe." + std::string(profile) +
             ".:http:80', 'k'), ('elpmaxe.a.:http:80', 'k'), (NULL, 'k'), ('', 'k');"});
  }
  home.link(kFirefox + "linked", "one").file(kFirefox + "plain");

  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Firefox", keepList), 3);

  for (const char* profile : {"one", "two"}) {
    EXPECT_EQ(texts(kFirefox + profile + "/webappsstore.sqlite",
                    "SELECT ifnull(scope, 'null') FROM webappsstore2;"),
              (Names{"elpmaxe.a.:http:80", "null", ""}));
  }
}

TEST_F(WebStorageSweepTest, RunsItsStatementsWithNothingChosen) {
  const std::string camino = "Library/Application Support/Camino/webappsstore.sqlite";
  run(camino, {"CREATE TABLE webappsstore2 (scope TEXT, key TEXT);",
               "INSERT INTO webappsstore2 VALUES ('elpmaxe.a.:http:80', 'k'), ('', 'k');"});

  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("WebKit", keepList), 0);
  EXPECT_EQ(worker.removeNonFavLocalStorage_keep("Camino", keepList), 0);

  EXPECT_EQ(texts(camino, "SELECT scope FROM webappsstore2;"), Names{"elpmaxe.a.:http:80"});
}

}  // namespace
}  // namespace tasselby
