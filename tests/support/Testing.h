#pragma once

// What all tests use: the standard library, and SQLite without the code under test.

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sqlite3.h>
#include <string>
#include <vector>

#include "samples/RunWorker.h"
#include "samples/SampleStores.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace fs = std::filesystem;

inline const std::string kSupport = "Library/Application Support/";

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

/// A connection of SQLite's own to the file at `path`, made when missing.
inline Connection plainConnection(const std::string& path) {
  sqlite3* connection = nullptr;
  EXPECT_EQ(sqlite3_open(path.c_str(), &connection), SQLITE_OK) << path;
  sqlite3_exec(connection, "PRAGMA synchronous = OFF;", nullptr, nullptr, nullptr);
  return {connection, &sqlite3_close};
}

/// Runs the statements `sql`. Answers every row: its values with "|" between, NULL as "-".
inline Names plainly(const Connection& connection, const std::string& sql) {
  Names rows;
  const auto append = [](void* to, int count, char** values, char** /*names*/) {
    std::string row;
    for (int i = 0; i < count; ++i) {
      row.append(i == 0 ? "" : "|").append(values[i] != nullptr ? values[i] : "-");
    }
    static_cast<Names*>(to)->push_back(row);
    return 0;
  };
  EXPECT_EQ(sqlite3_exec(connection.get(), sql.c_str(), append, &rows, nullptr), SQLITE_OK)
      << sql << sqlite3_errmsg(connection.get());
  return rows;
}

inline Names plainly(const std::string& path, const std::string& sql) {
  return plainly(plainConnection(path), sql);
}

}  // namespace tasselby
