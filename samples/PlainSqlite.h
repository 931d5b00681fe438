#pragma once

#include <memory>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace tasselby {

using Connection = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

/// A connection of SQLite's own, not the worker's, to the file at `path`, made when missing. What
/// it writes need not outlive a power cut.
Connection plainConnection(const std::string& path);

/// Runs the statements `sql`. Answers every row: its values with "|" between, NULL as "-". Throws
/// what SQLite says when one fails.
std::vector<std::string> plainly(const Connection& connection, const std::string& sql);
std::vector<std::string> plainly(const std::string& path, const std::string& sql);

}  // namespace tasselby
