// The database layer, over sound files and over those that were made to mislead.
#include <regex>
#include <sys/stat.h>
#include <thread>

#include "storage/Sqlite.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using namespace std::string_literals;

struct SqliteTest : ::testing::Test {
  SqliteTest() { EXPECT_TRUE(sqlite.open(path)) << sqlite.errorMessage(); }

  /// How many rows `sql` answers; -1 for no result.
  std::ptrdiff_t rowsOf(const std::string& sql) {
    const auto rows = sqlite.executeQuery(sql);
    return rows ? std::ssize(*rows) : -1;
  }

  ScratchHome home;
  std::string path = home.path("file.sqlite");
  Sqlite sqlite;
};

TEST_F(SqliteTest, AnswersValuesByTheirStorageClass) {
  const auto rowOf = [this](const std::string& sql) {
    return sqlite.executeQuery("SELECT " + sql).value().front();
  };
  EXPECT_EQ(rowOf("1 AS h, 42 AS a, 1.5 AS b, 'a' || char(0) || 'b' AS c, '' AS d, x'00ff' AS e, "
                  "x'' AS f, NULL AS g, 2 AS h; SELECT 7")
                .values(),
            (std::vector<Value>{"42", 1.5, "a", "", Bytes{0, 255}, Bytes(), Null(), "2"}));
  const Row row = rowOf("0.0 AS a, x'01' AS b");
  for (const char* same : {"-0.0 AS a, x'01' AS b", "x'01' AS b, 0.0 AS a"}) {
    EXPECT_TRUE(row == rowOf(same) && !(row < rowOf(same))) << same;
  }
  for (const char* other : {"0.0 AS a, x'01' AS c", "'0.0' AS a, x'01' AS b", "0.0 AS a"}) {
    EXPECT_FALSE(row == rowOf(other)) << other;
    EXPECT_NE(row < rowOf(other), rowOf(other) < row) << other;
  }
}

TEST_F(SqliteTest, TellsNoResultFromNoRowsAndRunsNoTriggers) {
  plainly(path,
          "CREATE TABLE t (a); INSERT INTO t VALUES (1), (2), (1 << 63);"
          "CREATE TRIGGER r AFTER DELETE ON t BEGIN DELETE FROM t; END");
  EXPECT_EQ(rowsOf("SELECT * FROM moz_logins;"), -1);
  EXPECT_NE(sqlite.errorMessage().find("moz_logins"), std::string::npos);
  EXPECT_EQ(rowsOf("SELECT abs(a) FROM t"), 2) << "a failing step ends the list";
  EXPECT_EQ(rowsOf("DELETE FROM t WHERE a > 1"), 0);
  EXPECT_EQ(rowsOf("SELECT * FROM t"), 2);
  EXPECT_TRUE(sqlite.beginTransaction() && sqlite.executeNonQuery("DELETE FROM t") &&
              sqlite.rollback() && sqlite.beginDeferredTransaction() && sqlite.commit());
  EXPECT_EQ(rowsOf("SELECT * FROM t"), 2);
  EXPECT_FALSE(sqlite.executeNonQuery("SELECT 1")) << "a row is no completion";
}

TEST_F(SqliteTest, AnswersNoWithoutAConnectionToAPlainFile) {
  Sqlite never;
  ASSERT_EQ(::mkfifo(home.path("pipe").c_str(), 0600), 0);
  for (const std::string& odd : {home.path("pipe"), home.home(), path + '\0'}) {
    EXPECT_FALSE(sqlite.open(odd)) << odd;
  }
  EXPECT_FALSE(sqlite.open(home.path("missing/file")));
  EXPECT_EQ(sqlite.errorCode(), SQLITE_CANTOPEN);
  for (Sqlite* database : {&never, &sqlite}) {
    Sqlite::Statement statement;
    EXPECT_FALSE(database->prepareSql_inStatament("SELECT 1", statement) ||
                 database->hasData(statement) || database->executeStatament(statement));
    EXPECT_EQ(Sqlite::columnData_columnIndex(statement, 0), Value(Null()));
    EXPECT_EQ(Sqlite::columnName_columnIndex(statement, 0), "");
    EXPECT_EQ(database->executeQuery("SELECT 1"), std::nullopt);
    EXPECT_NE(database->errorMessage(), "");
  }
  for (const std::string& name : {""s, ":memory:"s, path}) {
    EXPECT_TRUE(sqlite.open(name) && sqlite.executeNonQuery("CREATE TABLE t (a)")) << name;
  }
  ASSERT_EQ(::mkfifo((path + "-journal").c_str(), 0600), 0);
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(rowsOf("SELECT * FROM t"), -1) << "a pipe in the journal's place";
}

TEST_F(SqliteTest, BindsArgumentsByTheirKind) {
  const std::chrono::system_clock::time_point date(std::chrono::milliseconds(1500));
  const Arguments arguments = {
      Bytes{0, 255},        Null(),    Bytes(), date, "a'b\0c"s, true, false, -7, 0.5F, 0.1,
      Description{"thing"}, 1LL << 40, ~0ULL};
  std::string sql = "SELECT ''";
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    sql += " || quote(?) || ' '";
  }
  const auto rows = sqlite.executeQuery_arguments(sql, arguments);
  EXPECT_EQ(rows.value().front().values().front(),
            Value("X'00FF' NULL X'' 1.5 'a''b' 1 0 -7 0.5 0.1 'thing' 1099511627776 "
                  "'18446744073709551615' "));
  EXPECT_TRUE(std::regex_match(
      Sqlite::createUuid(),
      std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")));
}

TEST_F(SqliteTest, WaitsForALockOnlyWithANegativeTimeout) {
  const Connection holder = plainConnection(path);
  plainly(holder, "CREATE TABLE t (a); BEGIN EXCLUSIVE");
  EXPECT_EQ(rowsOf("SELECT * FROM t"), -1);
  EXPECT_EQ(sqlite.errorCode(), SQLITE_BUSY);
  EXPECT_EQ(Sqlite(path).executeQuery("SELECT * FROM t"), std::nullopt);
  sqlite.setBusyRetryTimeout(-1);
  std::thread release([&holder] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    plainly(holder, "COMMIT");
  });
  EXPECT_EQ(rowsOf("SELECT * FROM t"), 0);
  release.join();
}

TEST_F(SqliteTest, ForgetsAConnectionThatIsBusyWhenItIsClosed) {
  Sqlite::Statement statement;
  ASSERT_TRUE(sqlite.prepareSql_inStatament("SELECT 1", statement));
  const Connection forgotten(sqlite._db(), &sqlite3_close);
  sqlite.close();
  EXPECT_TRUE(sqlite._db() == nullptr && sqlite.filePath().empty());
  EXPECT_EQ(plainly(forgotten, "SELECT 1"), Names{"1"});
  statement.reset();
}

TEST_F(SqliteTest, ReadsNothingFromWhatIsNoSoundTable) {
  // Each column doubles the one before: the last would compile to 2^40 instructions. Newer versions
  // do not even make such a table.
  std::string doublings = "TABLE moz_cookies (a0";
  for (int i = 1; i <= 40; ++i) {
    const std::string a = ", a" + std::to_string(i) + " AS (a", before = std::to_string(i - 1);
    doublings.append(a).append(before).append(" || a").append(before).append(")");
  }
  const std::map<std::string, std::string> madeBy = {
      {"view", "VIEW moz_cookies AS SELECT name AS host FROM sqlite_schema"},
      {"virtual table", "VIRTUAL TABLE moz_cookies USING fts5(host)"},
      {"damaged schema", "TABLE moz_cookies (host)"},
      {"huge", "TABLE moz_cookies (host)"},
      {"computed by a function", "TABLE moz_cookies (x, host AS (length(hex(x))))"},
      {"computed from one another", doublings + ", host AS (a40))"}};
  for (const auto& [name, sql] : madeBy) {
    const Connection database = plainConnection(home.path(name));
    sqlite3_exec(database.get(), ("CREATE " + sql).c_str(), nullptr, nullptr, nullptr);
  }
  const std::string schema = home.contents("damaged schema");
  home.file("damaged schema", std::string(schema).replace(schema.rfind("(host"), 5, "((((("));
  home.file("huge", home.contents("huge").replace(28, 4, "\x7F\xFF\xFF\xFF")).file("text", "none");
  for (const std::string& name : home.list("")) {
    ASSERT_TRUE(sqlite.open(home.path(name)));
    EXPECT_EQ(rowsOf("SELECT * FROM moz_cookies;"), -1) << name;
    EXPECT_EQ(rowsOf("DELETE FROM moz_cookies WHERE host = 'a'"), -1) << name;
  }
}

TEST_F(SqliteTest, EndsStatementsThatWouldNotEndAndGoesOnWithTheNext) {
  const std::string endless = "WITH c(host) AS (SELECT 1 UNION ALL SELECT host FROM c) SELECT ";
  for (int i = 0; i < 2; ++i) {
    EXPECT_LT(rowsOf(endless + "zeroblob(1 << 20) FROM c LIMIT 9"), 9) << "a result's memory";
    EXPECT_EQ(rowsOf("SELECT length(hex(zeroblob(4 << 20)))"), 0) << "a step's memory";
    EXPECT_EQ(rowsOf(endless + "* FROM c WHERE host = 2"), 0);
    EXPECT_EQ(sqlite.errorCode(), SQLITE_INTERRUPT);
  }
  // More than a file may ask for, on a connection that is used as it is.
  Sqlite other;
  other.set_db(sqlite._db());
  sqlite.set_db(nullptr);
  EXPECT_EQ(other.executeQuery("SELECT zeroblob(8 << 20) UNION ALL SELECT hex(1)")->size(), 2U);
}

TEST_F(SqliteTest, RemovesNoFileThatAJournalNames) {
  plainly(path, "CREATE TABLE t (a)");
  // One page of journal, then the number of no page, the other journal's name, its length and the
  // sum of its bytes, each in four bytes.
  const std::string magic = "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7";
  std::string journal = magic + "\0\0\0\0\0\0\0\0\0\0\0\2\0\0\2\0\0\0\x10\0"s;
  journal.resize(512);
  home.file("file.sqlite-journal", journal + "\0\0\0\1precious\0\0\0\x08\0\0\3\x6A"s + magic);
  const fs::path before = fs::current_path();
  fs::current_path(home.file("precious").home());
  rowsOf("SELECT * FROM t");
  fs::current_path(before);
  EXPECT_EQ(home.list(""), (Names{"file.sqlite", "precious"})) << "recovered";
}

}  // namespace
}  // namespace tasselby
