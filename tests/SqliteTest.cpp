// The database layer, over sound files and over those that were made to mislead.
#include <sys/stat.h>

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

TEST_F(SqliteTest, BindsArgumentsByTheirKindAndAnswersValuesByTheirStorageClass) {
  const std::chrono::system_clock::time_point date(std::chrono::milliseconds(1500));
  const Arguments arguments = {
      Null(), Bytes(), Bytes{0, 255}, date, 0.5F,      0.1,  "a'b\0c"s, Description{"thing"},
      ""s,    true,    false,         -7,   1LL << 40, ~0ULL};
  const auto rowOf = [&](const std::string& sql) {
    return sqlite.executeQuery_arguments("SELECT " + sql, arguments).value().front();
  };
  EXPECT_EQ(rowOf("1 AS n, ? AS a, ? AS b, ? AS c, ? AS d, ? AS e, ? AS f, ? AS g, ? AS h, ? AS i, "
                  "quote(?) AS j, quote(?) AS k, quote(?) AS l, quote(?) AS m, quote(?) AS n, "
                  "'a' || char(0) || 'b' AS o; SELECT 7")
                .values(),
            (std::vector<Value>{Null(), Bytes(), Bytes{0, 255}, 1.5, 0.5, 0.1, "a'b", "thing", "",
                                "1", "0", "-7", "1099511627776", "'18446744073709551615'", "a"}));
  EXPECT_TRUE(rowOf("0.0 AS a, x'01' AS b") == rowOf("x'01' AS b, -0.0 AS a"));
  EXPECT_FALSE(rowOf("0.0 AS a") == rowOf("0.0 AS b") || rowOf("0.0 AS a") == rowOf("'0.0' AS a"));
}

TEST_F(SqliteTest, TellsNoResultFromNoRowsAndRunsNoTriggers) {
  plainly(path,
          "CREATE TABLE t (a); INSERT INTO t VALUES (1), (2), (1 << 63);"
          "CREATE TRIGGER r AFTER DELETE ON t BEGIN DELETE FROM t; END");
  EXPECT_EQ(rowsOf("SELECT * FROM moz_logins;"), -1);
  EXPECT_NE(sqlite.errorMessage().find("moz_logins"), std::string::npos);
  EXPECT_EQ(rowsOf("SELECT abs(a) FROM t"), 2) << "a failing step ends the list";
  EXPECT_EQ(rowsOf("DELETE FROM t WHERE a > 1"), 0);
  EXPECT_TRUE(sqlite.beginTransaction() && sqlite.executeNonQuery("DELETE FROM t") &&
              sqlite.rollback() && sqlite.beginDeferredTransaction() && sqlite.commit());
  EXPECT_FALSE(sqlite.executeNonQuery("SELECT * FROM t")) << "with a row left it is not complete";
  const std::string uuid =
      replaced(replaced("xxxxxxxx-xxxx-4xxx-Nxxx-xxxxxxxxxxxx", "x", "[0-9A-F]"), "N", "[89AB]");
  EXPECT_EQ(rowsOf("SELECT 1 WHERE '" + Sqlite::createUuid() + "' GLOB '" + uuid + "'"), 1);
}

TEST_F(SqliteTest, AnswersNoWithoutAConnectionToAPlainFile) {
  for (const std::string& name : {""s, ":memory:"s, path}) {
    EXPECT_TRUE(sqlite.open(name) && sqlite.executeNonQuery("CREATE TABLE t (a)")) << name;
  }
  const std::string pipe = path + "-journal";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(Sqlite(path).executeQuery("SELECT * FROM t"), std::nullopt);
  for (const std::string& odd : {pipe, home.home(), path + '\0', home.path("missing/file")}) {
    EXPECT_FALSE(sqlite.open(odd)) << odd;
  }
  EXPECT_EQ(sqlite.errorCode(), SQLITE_CANTOPEN);
  Sqlite never;
  for (Sqlite* database : {&never, &sqlite}) {
    Sqlite::Statement none;
    EXPECT_FALSE(database->prepareSql_inStatament("SELECT 1", none) || database->hasData(none) ||
                 database->executeStatament(none) || database->executeQuery("SELECT 1"));
    EXPECT_TRUE(Sqlite::columnData_columnIndex(none, 0) == Value(Null()) &&
                Sqlite::columnName_columnIndex(none, 0).empty());
    EXPECT_NE(database->errorMessage(), "");
  }
}

TEST_F(SqliteTest, WaitsForALockOnlyWithANegativeTimeout) {
  const Connection holder = plainConnection(path);
  plainly(holder, "CREATE TABLE t (a); INSERT INTO t VALUES (1)");
  // The lock goes when it is met for the first time.
  const auto release = [](void* to, int) {
    return sqlite3_exec(static_cast<sqlite3*>(to), "COMMIT", nullptr, nullptr, nullptr);
  };
  sqlite3_busy_handler(sqlite._db(), release, holder.get());
  for (const int timeout : {-1, 0, 1000}) {
    plainly(holder, "BEGIN EXCLUSIVE");
    sqlite.setBusyRetryTimeout(timeout);
    EXPECT_EQ(rowsOf("SELECT * FROM t"), timeout < 0 ? 1 : 0) << timeout;
  }
  EXPECT_EQ(sqlite.errorCode(), SQLITE_BUSY);
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
  // The last doubles each column before it: it would compile to 20,000 instructions. Newer versions
  // do not even make such a table.
  std::string
      a = "a",
      tables =
          "VIEW moz_cookies AS SELECT name AS host FROM sqlite_schema;TABLE moz_cookies (host);"
          "VIRTUAL TABLE moz_cookies USING fts5(host);"
          "TABLE moz_cookies (x, host AS (length(hex(x))));TABLE moz_cookies (a";
  for (; a.size() <= 12; a += 'a') {
    tables.append(", a" + a + " AS (" + a + " || " + a + ")");
  }
  // Each in a file that is named after how its statement begins.
  for (const std::string& sql : split(tables + ", host AS (" + a + "))", ';')) {
    const Connection database = plainConnection(home.path(sql.substr(0, 20)));
    sqlite3_exec(database.get(), ("CREATE " + sql).c_str(), nullptr, nullptr, nullptr);
  }
  const std::string sound = "TABLE moz_cookies (h", bytes = home.contents(sound);
  home.file("huge", std::string(bytes).replace(28, 4, "\x7F\xFF\xFF\xFF")).file("text", "none");
  home.file(sound, std::string(bytes).replace(bytes.rfind("(host"), 5, "((((("));
  for (const std::string& name : home.list("")) {
    EXPECT_TRUE(sqlite.open(home.path(name)));
    EXPECT_EQ(rowsOf("SELECT * FROM moz_cookies"), -1) << name;
    EXPECT_EQ(rowsOf("DELETE FROM moz_cookies WHERE host = 'a'"), -1) << name;
  }
}

TEST_F(SqliteTest, EndsStatementsThatWouldNotEndAndGoesOnWithTheNext) {
  const std::string endless = "WITH c(host) AS (SELECT 1 UNION ALL SELECT host FROM c) SELECT ";
  plainly(path, "CREATE TABLE s (a)");
  fs::resize_file(path, 8 << 20);  // Of which almost nothing is on the disk.
  for (int i = 0; i < 2; ++i) {
    EXPECT_LT(rowsOf(endless + "zeroblob(1 << 20) FROM c LIMIT 9"), 9) << "a result's memory";
    EXPECT_EQ(rowsOf("SELECT length(hex(zeroblob(4 << 20)))"), 0) << "a step's memory";
    EXPECT_EQ(rowsOf(endless + "* FROM c WHERE host = 2"), 0);
    EXPECT_EQ(sqlite.errorCode(), SQLITE_INTERRUPT);
  }
  // Of a store larger than what SQLite holds in memory all is read.
  plainly(path, "CREATE TABLE t AS " + endless + "zeroblob(1000) FROM c LIMIT 5000");
  EXPECT_EQ(rowsOf("SELECT 1 FROM t"), 5000);
  // More than a file may ask for, on a connection that is used as it is.
  sqlite.set_db(sqlite._db());
  EXPECT_EQ(rowsOf("SELECT zeroblob(8 << 20) UNION ALL SELECT hex(1)"), 2);
}

TEST_F(SqliteTest, RemovesNoFileThatAJournalNames) {
  plainly(path, "CREATE TABLE t (a)");
  // One page of journal, then the number of no page, the other journal's name, its length and the
  // sum of its bytes, each in four bytes.
  const std::string magic = "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7";
  home.file("file.sqlite-journal", magic + "\0\0\0\0\0\0\0\0\0\0\0\2\0\0\2\0\0\0\x10"s +
                                       std::string(485, '\0') +
                                       "\0\0\0\1precious\0\0\0\x08\0\0\3\x6A"s + magic);
  const fs::path before = fs::current_path();
  fs::current_path(home.file("precious").home());
  rowsOf("SELECT * FROM t");
  fs::current_path(before);
  EXPECT_EQ(home.list(""), (Names{"file.sqlite", "precious"})) << "recovered";
}

}  // namespace
}  // namespace tasselby
