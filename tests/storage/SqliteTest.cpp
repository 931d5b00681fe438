#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/DatabaseTest.h"

namespace tasselby {
namespace {

using SqliteTest = DatabaseTest;

TEST_F(SqliteTest, AnswersValuesByTheirStorageClass) {
  ASSERT_TRUE(sqlite.open(path));
  const auto rows = sqlite.executeQuery(
      "SELECT 42 AS i, 1.5 AS f, 'a' || char(0) || 'b' AS t, '' AS e, x'00ff' AS b, x'' AS eb, "
      "NULL AS n, 1 AS twice, 2 AS twice; SELECT 7");
  const Names names = {"i", "f", "t", "e", "b", "eb", "n", "twice"};
  const std::vector<Value> values = {"42", 1.5, "a", "", Bytes{0, 255}, Bytes(), Null(), "2"};
  EXPECT_EQ(rows.value().front(), Row(std::make_shared<const Names>(names), values));
}

TEST_F(SqliteTest, TellsNoResultFromNoRows) {
  plainly(path, "CREATE TABLE t (a); INSERT INTO t VALUES (1), (2), (1 << 63)");
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM moz_logins;"), std::nullopt);
  EXPECT_NE(sqlite.errorMessage().find("moz_logins"), std::string::npos);
  EXPECT_EQ(rowsOf("SELECT abs(a) FROM t"), 2U) << "a failing step ends the list";
  EXPECT_EQ(sqlite.executeQuery("DELETE FROM t WHERE a > 1"), RowList());
  EXPECT_EQ(rowsOf("SELECT * FROM t"), 2U);
  EXPECT_TRUE(sqlite.executeNonQuery("DELETE FROM t"));
  EXPECT_FALSE(sqlite.executeNonQuery("SELECT 1")) << "a row is no completion";
}

TEST_F(SqliteTest, AnswersNoInEveryStateWithoutAnOpenDatabase) {
  Sqlite never;
  Sqlite failed(home.path("missing/x.db"));
  Sqlite folder;
  EXPECT_FALSE(folder.open(home.path("..")));
  Sqlite given(path);
  const Connection owned(given._db(), &sqlite3_close);
  given.set_db(nullptr);
  for (Sqlite* database : {&never, &failed, &folder, &given}) {
    Sqlite::Statement statement;
    EXPECT_FALSE(database->prepareSql_inStatament("SELECT 1", statement));
    EXPECT_FALSE(database->hasData(statement) || database->executeStatament(statement));
    EXPECT_EQ(Sqlite::columnData_columnIndex(statement, 0), Value(Null()));
    EXPECT_EQ(Sqlite::columnName_columnIndex(statement, 0), "");
    EXPECT_EQ(database->executeQuery("SELECT 1"), std::nullopt);
    EXPECT_FALSE(database->executeNonQuery("SELECT 1") || database->beginTransaction() ||
                 database->beginDeferredTransaction() || database->commit() ||
                 database->rollback());
    EXPECT_NE(database->errorMessage(), "");
  }
  EXPECT_EQ(failed.errorCode(), SQLITE_CANTOPEN);
  EXPECT_TRUE(failed.open(path)) << failed.errorMessage();
}

TEST_F(SqliteTest, OpensDatabasesWithoutAFile) {
  for (const char* name : {"", ":memory:"}) {
    ASSERT_TRUE(sqlite.open(name));
    EXPECT_TRUE(sqlite.executeNonQuery("CREATE TABLE t (a)"));
    EXPECT_EQ(rowsOf("SELECT * FROM t"), 0U);
    EXPECT_FALSE(std::filesystem::exists(":memory:"));
  }
}

TEST_F(SqliteTest, BindsArgumentsByTheirKind) {
  ASSERT_TRUE(sqlite.open(path));
  const std::chrono::system_clock::time_point date(std::chrono::milliseconds(1500));
  const Bytes bytes = {0, 255};
  const std::string text("a'b\0c", 5);
  const Description thing = {"thing"};
  const Arguments arguments = {Null(),    bytes, Bytes(), date,  true, -7,
                               1LL << 40, 0.5F,  0.1,     ~0ULL, text, thing};
  const Names quoted = {"NULL",   "X'00FF'",       "X''", "1.5", "1",
                        "-7",     "1099511627776", "0.5", "0.1", "'18446744073709551615'",
                        "'a''b'", "'thing'"};
  for (std::size_t i = 0; i < quoted.size(); ++i) {
    const auto rows = sqlite.executeQuery_arguments("SELECT quote(?) AS q", {arguments[i]});
    EXPECT_EQ(*rows.value().front().text("q"), quoted[i]);
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
  EXPECT_TRUE(home.has("cookies.sqlite"));
  Sqlite::Statement statement;
  ASSERT_TRUE(sqlite.prepareSql_inStatament("SELECT 1", statement));
  const Connection forgotten(sqlite._db(), &sqlite3_close);
  sqlite.close();
  sqlite.close();
  EXPECT_EQ(sqlite._db(), nullptr);
  EXPECT_EQ(sqlite.filePath(), "");
  EXPECT_EQ(sqlite3_exec(forgotten.get(), "SELECT 1", nullptr, nullptr, nullptr), SQLITE_OK);
  statement.reset();
}

}  // namespace
}  // namespace tasselby
