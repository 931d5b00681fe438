#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <sqlite3.h>
#include <string>

#include "samples/ScratchHome.h"
#include "storage/Sqlite.h"

namespace tasselby {

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

/// A connection that has none of the guards, with `sql` run on it.
inline Connection plainly(const std::string& path, const std::string& sql) {
  sqlite3* connection = nullptr;
  sqlite3_open(path.c_str(), &connection);
  // A Mac's connections start out defensive, and then no schema can be damaged.
  sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
  EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  return {connection, &sqlite3_close};
}

/// A database in a folder of its own, not yet opened.
struct DatabaseTest : ::testing::Test {
  ScratchHome home;
  std::string path = home.path("cookies.sqlite");
  Sqlite sqlite;

  std::size_t rowsOf(const std::string& sql) { return sqlite.executeQuery(sql).value().size(); }
};

}  // namespace tasselby
