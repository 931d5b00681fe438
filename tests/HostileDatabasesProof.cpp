// Database files that were made to mislead, or were damaged.

#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <sqlite3.h>
#include <string>
#include <sys/stat.h>

#include "platform/Text.h"
#include "tests/support/DatabaseTest.h"

namespace tasselby {
namespace {

using HostileDatabases = DatabaseTest;

const std::string kEndless = "WITH c(host) AS (SELECT 1 UNION ALL SELECT host FROM c) ";

TEST_F(HostileDatabases, OpensPlainFilesOnly) {
  ASSERT_EQ(::mkfifo(home.path("pipe").c_str(), 0600), 0);
  for (const std::string& odd : {home.path("pipe"), home.home(), home.path("nul") + '\0',
                                 std::string("file:///tmp?mode=ro")}) {
    EXPECT_FALSE(sqlite.open(odd)) << odd;
  }
  plainly(path, "CREATE TABLE t (a)");
  ASSERT_EQ(::mkfifo((path + "-journal").c_str(), 0600), 0);
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("SELECT * FROM t"), std::nullopt);
}

TEST_F(HostileDatabases, ReadsNothingFromWhatIsNoSoundTable) {
  // Each column doubles the one before: the last would compile to 2^40 instructions. SQLite 3.46
  // does so when it makes such a table, too.
  std::string doublings = "c0";
  for (int i = 1; i <= 40; ++i) {
    const std::string before = std::to_string(i - 1);
    doublings += formatted(", c%@ AS (c%@ || c%@)", {std::to_string(i), before, before});
  }
  const std::map<std::string, std::string> madeBy = {
      {"view", "CREATE VIEW moz_cookies AS SELECT name AS host FROM sqlite_schema"},
      {"endless view", "CREATE VIEW moz_cookies AS " + kEndless + " SELECT * FROM c"},
      {"virtual table", "CREATE VIRTUAL TABLE moz_cookies USING fts5(host)"},
      {"damaged schema",
       "CREATE TABLE moz_cookies (host); PRAGMA writable_schema = ON;"
       "UPDATE sqlite_schema SET sql = 'CREATE TABLE moz_cookies ((('"},
      {"huge", "CREATE TABLE moz_cookies (host)"},
      {"computed by a function", "CREATE TABLE moz_cookies (x, host AS (length(hex(x))))"},
      {"computed from one another",
       "CREATE TABLE moz_cookies (c0); PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = "
       "'CREATE TABLE moz_cookies (" +
           doublings + ", host AS (c40))'"},
  };
  for (const auto& [name, sql] : madeBy) {
    plainly(home.path(name), sql);
  }
  home.file("huge", home.contents("huge").replace(28, 4, "\x7F\xFF\xFF\xFF")).file("text", "none");
  for (const std::string& name : home.list("")) {
    ASSERT_TRUE(sqlite.open(home.path(name)));
    EXPECT_EQ(sqlite.executeQuery("SELECT * FROM moz_cookies;"), std::nullopt) << name;
    EXPECT_EQ(sqlite.executeQuery("DELETE FROM moz_cookies WHERE host = 'a'"), std::nullopt);
  }
}

TEST_F(HostileDatabases, EndsStatementsThatWouldNotEndAndGoesOnWithTheNext) {
  ASSERT_TRUE(sqlite.open(path));
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

TEST_F(HostileDatabases, RunsNoTriggers) {
  plainly(path,
          "CREATE TABLE t (a); INSERT INTO t VALUES ('gone'), ('kept');"
          "CREATE TRIGGER r AFTER DELETE ON t BEGIN DELETE FROM t; END");
  ASSERT_TRUE(sqlite.open(path));
  EXPECT_EQ(sqlite.executeQuery("DELETE FROM t WHERE a = 'gone'"), RowList());
  EXPECT_EQ(rowsOf("SELECT * FROM t"), 1U);
}

TEST_F(HostileDatabases, RemovesNoFileThatAJournalNames) {
  plainly(path, "CREATE TABLE t (a)");
  const std::string victim = home.file("precious").path("precious");
  const auto number = [](int value) {
    return std::string({'\0', '\0', static_cast<char>(value >> 8), static_cast<char>(value)});
  };
  const std::string magic = "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7";
  std::string journal = magic + number(0) + number(0) + number(2) + number(512) + number(4096);
  journal.resize(512);
  journal += number(1) + victim + number(static_cast<int>(victim.size())) +
             number(std::accumulate(victim.begin(), victim.end(), 0)) + magic;
  home.file("cookies.sqlite-journal", journal);

  ASSERT_TRUE(sqlite.open(path));
  sqlite.executeQuery("SELECT * FROM t");
  EXPECT_EQ(home.list(""), (Names{"cookies.sqlite", "precious"})) << "recovered";
}

}  // namespace
}  // namespace tasselby
