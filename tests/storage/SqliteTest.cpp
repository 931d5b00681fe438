#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

#include "samples/ScratchHome.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

/// A connection that has none of the guards, with `sql` run on it.
Connection plainly(const std::string& path, const std::string& sql) {
  sqlite3* connection = nullptr;
  sqlite3_open(path.c_str(), &connection);
  EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  return {connection, &sqlite3_close};
}

struct SqliteTest : ::testing::Test {
  ScratchHome home;
  std::string path = home.path("cookies.sqlite");
  Sqlite sqlite;
};

TEST_F(SqliteTest, AnswersValuesByTheirStorageClass) {
  ASSERT_TRUE(sqlite.open(path));
  const auto rows = sqlite.executeQuery(
      "SELECT 42 AS i, 1.5 AS f, 'a' || char(0) || 'b' AS t, '' AS e, x'00ff' AS b, x'' AS eb, "
      "NULL AS n, 1 AS twice, 2 AS twice; SELECT 7");
  ASSERT_EQ(rows.value_or(RowList()).size(), 1U);
  const Names names = {"i", "f", "t", "e", "b", "eb", "n", "twice"};
  const std::vector<Value> values = {"42", 1.5, "a", "", Bytes{0, 255}, Bytes(), Null(), "2"};
  EXPECT_EQ(rows->front(), Row(std::make_shared<const Names>(names), values));
}

TEST_F(SqliteTest, TellsNoResultFromNoRows) {
  EXPECT_EQ(sqlite.executeQuery("SELECT 1"), std::nullopt) << "nothing is open";
  plainly(path, "CREATE TABLE t (a); INSERT INTO t VALUES (1), (2), (3)");
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM moz_logins;"), std::nullopt);
  EXPECT_NE(sqlite.errorMessage().find("moz_logins"), std::string::npos);
  EXPECT_EQ(sqlite.executeQuery("DELETE FROM t WHERE a > 1"), RowList());
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t")->size(), 1U);
  EXPECT_EQ(
      sqlite.executeQuery("SELECT abs(a) FROM (SELECT a FROM t UNION ALL SELECT 1 << 63)")->size(),
      1U)
      << "a failing step ends the list";
  EXPECT_TRUE(sqlite.executeNonQuery("DELETE FROM t"));
  EXPECT_FALSE(sqlite.executeNonQuery("SELECT 1")) << "a row is no completion";
}

TEST_F(SqliteTest, BindsArgumentsByTheirKind) {
  ASSERT_TRUE(sqlite.open(path));
  const std::chrono::system_clock::time_point date(std::chrono::milliseconds(1500));
  const std::vector<std::pair<Argument, std::string>> quoted = {
      {Null(), "NULL"},
      {Bytes{0, 255}, "X'00FF'"},
      {Bytes(), "X''"},
      {date, "1.5"},
      {true, "1"},
      {-7, "-7"},
      {std::int64_t{1} << 40, "1099511627776"},
      {0.5F, "0.5"},
      {0.1, "0.1"},
      {~std::uint64_t{0}, "'18446744073709551615'"},
      {std::string("a'b\0c", 5), "'a''b'"},
      {Description{"thing"}, "'thing'"},
  };
  for (const auto& [argument, literal] : quoted) {
    const auto rows = sqlite.executeQuery_arguments("SELECT quote(?) AS q", {argument});
    EXPECT_EQ(*rows->front().text("q"), literal);
  }
}

TEST_F(SqliteTest, WaitsForALockOnlyWithANegativeTimeout) {
  const Connection holder = plainly(path, "CREATE TABLE t (a); BEGIN EXCLUSIVE");
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), std::nullopt);
  EXPECT_EQ(sqlite.errorCode(), SQLITE_BUSY);
  EXPECT_EQ(Sqlite(path).executeQuery("SELECT * FROM t"), std::nullopt);

  sqlite.setBusyRetryTimeout(-1);
  std::thread release([&holder] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    sqlite3_exec(holder.get(), "COMMIT", nullptr, nullptr, nullptr);
  });
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), RowList());
  release.join();
}

TEST_F(SqliteTest, ForgetsAConnectionThatIsBusyWhenItIsClosed) {
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_TRUE(home.has("cookies.sqlite")) << "a missing file is created";
  Sqlite::Statement statement;
  ASSERT_TRUE(sqlite.prepareSql_inStatament("SELECT 1", statement));
  const Connection forgotten(sqlite._db(), &sqlite3_close);
  sqlite.close();
  sqlite.close();
  EXPECT_EQ(sqlite._db(), nullptr);
  EXPECT_EQ(sqlite.filePath(), "");
  EXPECT_TRUE(sqlite.hasData(statement));
  statement.reset();
}

TEST_F(SqliteTest, OpensPlainFilesOnly) {
  ASSERT_EQ(::mkfifo(home.path("pipe").c_str(), 0600), 0);
  for (const std::string& odd : {std::string(), home.path("pipe"), home.home(),
                                 home.path("nul") + '\0', std::string("file:///tmp?mode=ro")}) {
    EXPECT_FALSE(sqlite.open(odd)) << odd;
  }
  plainly(path, "CREATE TABLE t (a)");
  ASSERT_EQ(::mkfifo((path + "-journal").c_str(), 0600), 0);
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), std::nullopt);
}

TEST_F(SqliteTest, ReadsNothingFromWhatIsNoSoundTable) {
  const std::string endless = "WITH RECURSIVE c(host) AS (SELECT 1 UNION ALL SELECT host FROM c)";
  const std::map<std::string, std::string> madeBy = {
      {"view", "CREATE VIEW moz_cookies AS SELECT name AS host FROM sqlite_schema"},
      {"endless view", "CREATE VIEW moz_cookies AS " + endless + " SELECT * FROM c"},
      {"virtual table", "CREATE VIRTUAL TABLE moz_cookies USING fts5(host)"},
      {"damaged schema",
       "CREATE TABLE moz_cookies (host); PRAGMA writable_schema = ON;"
       "UPDATE sqlite_schema SET sql = 'CREATE TABLE moz_cookies ((('"},
  };
  for (const auto& [label, sql] : madeBy) {
    plainly(home.path(label), sql);
    ASSERT_TRUE(sqlite.open(home.path(label)));
    EXPECT_EQ(sqlite.executeQuery("SELECT * FROM moz_cookies;"), std::nullopt) << label;
    EXPECT_EQ(sqlite.executeQuery("DELETE FROM moz_cookies WHERE host = 'a'"), std::nullopt);
  }
  plainly(path, "CREATE TABLE moz_cookies (host)");
  std::string bytes = home.contents("cookies.sqlite");
  home.file("huge", bytes.replace(28, 4, "\x7F\xFF\xFF\xFF")).file("text", "no database");
  for (const char* name : {"huge", "text"}) {
    ASSERT_TRUE(sqlite.open(home.path(name)));
    EXPECT_EQ(sqlite.executeQuery("SELECT * FROM moz_cookies;"), std::nullopt) << name;
  }
}

TEST_F(SqliteTest, EndsStatementsThatWouldNotEnd) {
  const std::string endless = "WITH RECURSIVE c(a) AS (SELECT 1 UNION ALL SELECT a FROM c) ";
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_FALSE(sqlite.executeQuery(endless + "SELECT a FROM c")->empty());
  EXPECT_EQ(sqlite.executeQuery(endless + "SELECT a FROM c WHERE a = 2"), RowList());
  EXPECT_EQ(sqlite.errorCode(), SQLITE_INTERRUPT);
}

TEST_F(SqliteTest, RunsNoTriggers) {
  plainly(path,
          "CREATE TABLE t (a); INSERT INTO t VALUES ('gone'), ('kept');"
          "CREATE TRIGGER r AFTER DELETE ON t BEGIN DELETE FROM t; END");
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("DELETE FROM t WHERE a = 'gone'"), RowList());
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t")->size(), 1U);
}

TEST_F(SqliteTest, RemovesNoFileThatAJournalNames) {
  plainly(path, "CREATE TABLE t (a)");
  home.file("precious");
  const std::string victim = home.path("precious");
  const auto number = [](std::size_t value) {
    return std::string({'\0', '\0', static_cast<char>(value >> 8), static_cast<char>(value)});
  };
  std::size_t sum = 0;
  for (const char character : victim) {
    sum += static_cast<std::size_t>(character);
  }
  const std::string magic = "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7";
  std::string journal = magic + number(0) + number(0) + number(2) + number(512) + number(4096);
  journal.resize(512);
  journal += number(1) + victim + number(victim.size()) + number(sum) + magic;
  home.file("cookies.sqlite-journal", journal);

  ASSERT_TRUE(sqlite.open(path));
  sqlite.executeQuery("SELECT * FROM t");
  EXPECT_FALSE(home.has("cookies.sqlite-journal")) << "the file was recovered";
  EXPECT_TRUE(home.has("precious"));
}

}  // namespace
}  // namespace tasselby
