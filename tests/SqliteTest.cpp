// The database layer, over sound files and over those that were made to mislead.
#include <numeric>
#include <sys/stat.h>
#include <thread>

#include "storage/Sqlite.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kEndless = "WITH c(host) AS (SELECT 1 UNION ALL SELECT host FROM c) ";

struct SqliteTest : ::testing::Test {
  ScratchHome home;
  std::string path = home.path("file.sqlite");
  Sqlite sqlite;

  std::size_t rowsOf(const std::string& sql) { return sqlite.executeQuery(sql).value().size(); }
  void open(const std::string& sql = "") {
    plainly(path, sql);
    ASSERT_TRUE(sqlite.open(path)) << sqlite.errorMessage();
  }
};

TEST_F(SqliteTest, AnswersValuesByTheirStorageClass) {
  open();
  const auto rows = sqlite.executeQuery(
      "SELECT 42 AS i, 1.5 AS f, 'a' || char(0) || 'b' AS t, '' AS e, x'00ff' AS b, x'' AS eb, "
      "NULL AS n, 1 AS twice, 2 AS twice; SELECT 7");
  const Names names = {"b", "e", "eb", "f", "i", "n", "t", "twice"};
  const std::vector<Value> values = {Bytes{0, 255}, "", Bytes(), 1.5, "42", Null(), "a", "2"};
  EXPECT_EQ(rows.value().front(), Row(std::make_shared<const Names>(names), values));
  const auto rowOf = [this](const std::string& sql) {
    return sqlite.executeQuery(sql).value().front();
  };
  const Row row = rowOf("SELECT 0.0 AS a, x'01' AS b");
  for (const char* same : {"SELECT -0.0 AS a, x'01' AS b", "SELECT x'01' AS b, 0.0 AS a"}) {
    EXPECT_TRUE(row == rowOf(same)) << same;
  }
  for (const char* other : {"SELECT 0.0 AS a, x'01' AS c", "SELECT '0.0' AS a, x'01' AS b",
                            "SELECT 0.0 AS a", "SELECT 0.0 AS a, x'01' AS b, 1 AS c"}) {
    EXPECT_FALSE(row == rowOf(other)) << other;
  }
}

TEST_F(SqliteTest, TellsNoResultFromNoRows) {
  open("CREATE TABLE t (a); INSERT INTO t VALUES (1), (2), (1 << 63)");
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM moz_logins;"), std::nullopt);
  EXPECT_NE(sqlite.errorMessage().find("moz_logins"), std::string::npos);
  EXPECT_EQ(rowsOf("SELECT abs(a) FROM t"), 2U) << "a failing step ends the list";
  EXPECT_EQ(sqlite.executeQuery("DELETE FROM t WHERE a > 1"), RowList());
  EXPECT_EQ(rowsOf("SELECT * FROM t"), 2U);
  EXPECT_TRUE(sqlite.executeNonQuery("DELETE FROM t"));
  EXPECT_FALSE(sqlite.executeNonQuery("SELECT 1")) << "a row is no completion";
}

TEST_F(SqliteTest, AnswersNoInEveryStateWithoutAnOpenDatabase) {
  Sqlite never, folder, given(path), failed(home.path("missing/x.db"));
  EXPECT_FALSE(folder.open(home.path("..")));
  const Connection owned(given._db(), &sqlite3_close);
  given.set_db(nullptr);
  for (Sqlite* database : {&never, &failed, &folder, &given}) {
    Sqlite::Statement statement;
    EXPECT_FALSE(database->prepareSql_inStatament("SELECT 1", statement));
    EXPECT_FALSE(database->hasData(statement) || database->executeStatament(statement));
    EXPECT_EQ(Sqlite::columnData_columnIndex(statement, 0), Value(Null()));
    EXPECT_EQ(Sqlite::columnName_columnIndex(statement, 0), "");
    EXPECT_EQ(database->executeQuery("SELECT 1"), std::nullopt);
    EXPECT_FALSE(database->beginTransaction() || database->beginDeferredTransaction() ||
                 database->commit() || database->rollback());
    EXPECT_NE(database->errorMessage(), "");
  }
  EXPECT_EQ(failed.errorCode(), SQLITE_CANTOPEN);
  EXPECT_TRUE(failed.open(path)) << failed.errorMessage();
}

TEST_F(SqliteTest, OpensMissingFilesAndDatabasesWithoutOne) {
  for (const std::string& name : {std::string(), std::string(":memory:"), home.path("new")}) {
    ASSERT_TRUE(sqlite.open(name));
    EXPECT_TRUE(sqlite.beginTransaction() && sqlite.executeNonQuery("CREATE TABLE t (a)") &&
                sqlite.rollback() && sqlite.beginDeferredTransaction() && sqlite.commit());
    EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), std::nullopt);
  }
  EXPECT_TRUE(home.has("new"));
  EXPECT_FALSE(fs::exists(":memory:"));
}

TEST_F(SqliteTest, BindsArgumentsByTheirKind) {
  open();
  const std::chrono::system_clock::time_point date(std::chrono::milliseconds(1500));
  const std::vector<std::pair<Argument, std::string>> quoted = {
      {Null(), "NULL"},
      {Bytes{0, 255}, "X'00FF'"},
      {Bytes(), "X''"},
      {date, "1.5"},
      {true, "1"},
      {-7, "-7"},
      {1LL << 40, "1099511627776"},
      {0.5F, "0.5"},
      {0.1, "0.1"},
      {~0ULL, "'18446744073709551615'"},
      {std::string("a'b\0c", 5), "'a''b'"},
      {Description{"thing"}, "'thing'"}};
  for (const auto& [argument, text] : quoted) {
    const auto rows = sqlite.executeQuery_arguments("SELECT quote(?) AS q", {argument});
    EXPECT_EQ(*rows.value().front().text("q"), text);
  }
  EXPECT_EQ(Sqlite::createUuid().size(), 36U);
}

TEST_F(SqliteTest, WaitsForALockOnlyWithANegativeTimeout) {
  const Connection holder = plainConnection(path);
  plainly(holder, "CREATE TABLE t (a); BEGIN EXCLUSIVE");
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), std::nullopt);
  EXPECT_EQ(sqlite.errorCode(), SQLITE_BUSY);
  EXPECT_EQ(Sqlite(path).executeQuery("SELECT * FROM t"), std::nullopt);
  sqlite.setBusyRetryTimeout(-1);
  std::thread release([&holder] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    plainly(holder, "COMMIT");
  });
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), RowList());
  release.join();
}

TEST_F(SqliteTest, ForgetsAConnectionThatIsBusyWhenItIsClosed) {
  open();
  Sqlite::Statement statement;
  ASSERT_TRUE(sqlite.prepareSql_inStatament("SELECT 1", statement));
  const Connection forgotten(sqlite._db(), &sqlite3_close);
  sqlite.close();
  sqlite.close();
  EXPECT_EQ(sqlite._db(), nullptr);
  EXPECT_EQ(sqlite.filePath(), "");
  EXPECT_EQ(plainly(forgotten, "SELECT 1"), Names{"1"});
  statement.reset();
}

TEST_F(SqliteTest, OpensPlainFilesOnly) {
  ASSERT_EQ(::mkfifo(home.path("pipe").c_str(), 0600), 0);
  for (const std::string& odd : {home.path("pipe"), home.home(), home.path("nul") + '\0',
                                 std::string("file:///tmp?mode=ro")}) {
    EXPECT_FALSE(sqlite.open(odd)) << odd;
  }
  open("CREATE TABLE t (a)");
  ASSERT_EQ(::mkfifo((path + "-journal").c_str(), 0600), 0);
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), std::nullopt);
}

TEST_F(SqliteTest, ReadsNothingFromWhatIsNoSoundTable) {
  // Each column doubles the one before: the last would compile to 2^40 instructions. Newer versions
  // do not even make such a table.
  std::string doublings = "c0";
  for (int i = 1; i <= 40; ++i) {
    const std::string before = std::string("c").append(std::to_string(i - 1));
    doublings.append(", c").append(std::to_string(i)).append(" AS (").append(before);
    doublings.append(" || ").append(before).append(")");
  }
  const std::map<std::string, std::string> madeBy = {
      {"view", "VIEW moz_cookies AS SELECT name AS host FROM sqlite_schema"},
      {"endless view", "VIEW moz_cookies AS " + kEndless + " SELECT * FROM c"},
      {"virtual table", "VIRTUAL TABLE moz_cookies USING fts5(host)"},
      {"damaged schema", "TABLE moz_cookies (host)"},
      {"huge", "TABLE moz_cookies (host)"},
      {"computed by a function", "TABLE moz_cookies (x, host AS (length(hex(x))))"},
      {"computed from one another",
       std::string("TABLE moz_cookies (").append(doublings).append(", host AS (c40))")},
  };
  for (const auto& [name, sql] : madeBy) {
    const Connection database = plainConnection(home.path(name));
    sqlite3_exec(database.get(), ("CREATE " + sql).c_str(), nullptr, nullptr, nullptr);
  }
  const std::string schema = home.contents("damaged schema");
  home.file("damaged schema", std::string(schema).replace(schema.rfind("(host"), 5, "((((("));
  home.file("huge", home.contents("huge").replace(28, 4, "\x7F\xFF\xFF\xFF")).file("text", "none");
  for (const std::string& name : home.list("")) {
    ASSERT_TRUE(sqlite.open(home.path(name)));
    EXPECT_EQ(sqlite.executeQuery("SELECT * FROM moz_cookies;"), std::nullopt) << name;
    EXPECT_EQ(sqlite.executeQuery("DELETE FROM moz_cookies WHERE host = 'a'"), std::nullopt);
  }
}

TEST_F(SqliteTest, EndsStatementsThatWouldNotEndAndGoesOnWithTheNext) {
  open();
  for (int i = 0; i < 2; ++i) {
    EXPECT_LT(rowsOf(kEndless + "SELECT zeroblob(1 << 20) FROM c"), 65U);
    EXPECT_EQ(sqlite.executeQuery(kEndless + "SELECT * FROM c WHERE host = 2"), RowList());
    EXPECT_EQ(sqlite.errorCode(), SQLITE_INTERRUPT);
  }
  // More than a file may ask for, on a connection that is used as it is.
  Sqlite other;
  other.set_db(sqlite._db());
  sqlite.set_db(nullptr);
  const auto rows = other.executeQuery("SELECT zeroblob(8 << 20) UNION ALL SELECT hex(1)");
  EXPECT_EQ(rows.value_or(RowList()).size(), 2U);
}

TEST_F(SqliteTest, RunsNoTriggers) {
  open(
      "CREATE TABLE t (a); INSERT INTO t VALUES ('gone'), ('kept');"
      "CREATE TRIGGER r AFTER DELETE ON t BEGIN DELETE FROM t; END");
  EXPECT_EQ(sqlite.executeQuery("DELETE FROM t WHERE a = 'gone'"), RowList());
  EXPECT_EQ(rowsOf("SELECT * FROM t"), 1U);
}

TEST_F(SqliteTest, RemovesNoFileThatAJournalNames) {
  open("CREATE TABLE t (a)");
  const std::string victim = home.file("precious").path("precious");
  const auto number = [](int value) {
    return std::string({'\0', '\0', static_cast<char>(value >> 8), static_cast<char>(value)});
  };
  const std::string magic = "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7";
  std::string journal = magic + number(0) + number(0) + number(2) + number(512) + number(4096);
  journal.resize(512);
  journal += number(1) + victim + number(static_cast<int>(victim.size())) +
             number(std::accumulate(victim.begin(), victim.end(), 0)) + magic;
  home.file("file.sqlite-journal", journal);
  sqlite.executeQuery("SELECT * FROM t");
  EXPECT_EQ(home.list(""), (Names{"file.sqlite", "precious"})) << "recovered";
}

}  // namespace
}  // namespace tasselby
