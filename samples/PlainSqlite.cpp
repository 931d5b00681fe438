#include "samples/PlainSqlite.h"

#include <stdexcept>

namespace tasselby {

Connection plainConnection(const std::string& path) {
  sqlite3* connection = nullptr;
  sqlite3_open(path.c_str(), &connection);
  sqlite3_exec(connection, "PRAGMA synchronous = OFF;", nullptr, nullptr, nullptr);
  return {connection, &sqlite3_close};
}

std::vector<std::string> plainly(const Connection& connection, const std::string& sql) {
  std::vector<std::string> rows;
  const auto append = [](void* to, int count, char** values, char** /*names*/) {
    std::string row;
    for (int i = 0; i < count; ++i) {
      row.append(i == 0 ? "" : "|").append(values[i] != nullptr ? values[i] : "-");
    }
    static_cast<std::vector<std::string>*>(to)->push_back(row);
    return 0;
  };
  if (sqlite3_exec(connection.get(), sql.c_str(), append, &rows, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sql + ": " + sqlite3_errmsg(connection.get()));
  }
  return rows;
}

std::vector<std::string> plainly(const std::string& path, const std::string& sql) {
  return plainly(plainConnection(path), sql);
}

}  // namespace tasselby
