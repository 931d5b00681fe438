#include "storage/Sqlite.h"

#include <algorithm>
#include <cassert>
#include <map>
#include <random>
#include <ranges>
#include <sqlite3.h>
#include <thread>
#include <utility>

#include "storage/SqliteFiles.h"
#include "storage/SqliteGuard.h"

namespace tasselby {
namespace {

constexpr std::chrono::microseconds kBusyPause(20);

/// Where in a statement's result the value of each name stands.
using Columns = std::map<std::string, int>;

Columns columnsOf(const Sqlite::Statement& statement) {
  Columns columns;
  for (int index = 0; index < sqlite3_column_count(statement.get()); ++index) {
    columns[Sqlite::columnName_columnIndex(statement, index)] = index;
  }
  return columns;
}

/// The bytes that `value` holds beside itself.
std::size_t heapOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    return text->size();
  }
  const auto* bytes = std::get_if<Bytes>(&value);
  return bytes == nullptr ? 0 : bytes->size();
}

/// The values of the ready row; no value once the result weighs more than allowed.
std::optional<std::vector<Value>> valuesOf(const Sqlite::Statement& statement,
                                           const Columns& columns, Allowance& allowance) {
  std::vector<Value> values;
  values.reserve(columns.size());
  for (const auto& [name, index] : columns) {
    values.push_back(Sqlite::columnData_columnIndex(statement, index));
    if (!allowance.take(sizeof(Value) + heapOf(values.back()))) {
      return std::nullopt;
    }
  }
  return values;
}

bool isComplete(int result) {
  return result == SQLITE_DONE || result == SQLITE_OK;
}

}  // namespace

void Sqlite::Finalize::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

bool Sqlite::open(const std::string& path) {
  close();
  if (path.find('\0') != std::string::npos || openDatabase(path, db_) != SQLITE_OK) {
    return false;
  }
  const char* file = sqlite3_db_filename(db_, "main");
  isBounded_ = file != nullptr && *file != '\0';
  if (isBounded_) {
    guard(db_);
  }
  filePath_ = path;
  return true;
}

void Sqlite::close() {
  if (db_ == nullptr) {
    return;
  }
  // Deliberate: a connection that is still busy is forgotten, open as it is.
  Allowance unbounded(nullptr, nullptr);
  whileBusy(unbounded, [this] { return sqlite3_close(db_); });
  filePath_.clear();
  set_db(nullptr);
}

void Sqlite::set_db(sqlite3* connection) {
  db_ = connection;
  isBounded_ = false;
}

std::int64_t Sqlite::errorCode() const {
  return sqlite3_errcode(db_);
}

std::string Sqlite::errorMessage() const {
  return sqlite3_errmsg(db_);
}

std::optional<RowList> Sqlite::executeQuery_arguments(const std::string& sql,
                                                      const Arguments& arguments) {
  Statement statement;
  Allowance allowance(bounded(), sql.c_str());
  if (!prepareAndBind(sql, arguments, statement, allowance)) {
    return std::nullopt;
  }
  RowList rows;
  Columns columns;
  ColumnNames names;
  while (step(statement, allowance) == SQLITE_ROW) {
    // Not earlier: the first step prepares anew should the schema have changed meanwhile.
    if (names == nullptr) {
      columns = columnsOf(statement);
      const auto keys = std::views::keys(columns);
      names = std::make_shared<const std::vector<std::string>>(keys.begin(), keys.end());
    }
    std::optional<std::vector<Value>> values = valuesOf(statement, columns, allowance);
    if (!values) {
      break;
    }
    rows.emplace_back(names, *std::move(values));
  }
  return rows;
}

bool Sqlite::executeNonQuery_arguments(const std::string& sql, const Arguments& arguments) {
  Statement statement;
  Allowance allowance(bounded(), sql.c_str());
  return prepareAndBind(sql, arguments, statement, allowance) &&
         isComplete(step(statement, allowance));
}

bool Sqlite::prepareSql_inStatament(const std::string& sql, Statement& statement) {
  Allowance allowance(bounded(), sql.c_str());
  return prepare(sql, statement, allowance);
}

bool Sqlite::executeStatament(const Statement& statement) {
  Allowance allowance(bounded(), sqlite3_sql(statement.get()));
  return isComplete(step(statement, allowance));
}

bool Sqlite::hasData(const Statement& statement) {
  Allowance allowance(bounded(), sqlite3_sql(statement.get()));
  return step(statement, allowance) == SQLITE_ROW;
}

std::string Sqlite::version() {
  return sqlite3_libversion();
}

std::string Sqlite::createUuid() {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string uuid = "xxxxxxxx-xxxx-4xxx-Nxxx-xxxxxxxxxxxx";
  std::random_device random("/dev/urandom");
  for (char& character : uuid) {
    if (character == 'x') {
      character = kDigits[random() % 16];
    } else if (character == 'N') {
      character = kDigits[8 + random() % 4];
    }
  }
  return uuid;
}

int Sqlite::whileBusy(Allowance& allowance, const std::function<int()>& call) {
  for (std::int64_t retries = 0;; ++retries) {
    const int result = call();
    if (result != SQLITE_BUSY) {
      return result;
    }
    allowance.restart();
    std::this_thread::sleep_for(kBusyPause);
    // Deliberate: no number of retries that is not negative is ever reached, so zero and above give
    // up after the first pause, and only a negative number goes on, without end.
    if (retries <= busyRetryTimeout_) {
      return result;
    }
  }
}

int Sqlite::step(const Statement& statement, Allowance& allowance) {
  return whileBusy(allowance, [&] { return sqlite3_step(statement.get()); });
}

bool Sqlite::prepare(const std::string& sql, Statement& statement, Allowance& allowance) {
  statement.reset();
  if (db_ == nullptr) {
    return false;
  }
  sqlite3_stmt* prepared = nullptr;
  const int result = whileBusy(
      allowance, [&] { return sqlite3_prepare_v2(db_, sql.c_str(), -1, &prepared, nullptr); });
  statement.reset(prepared);
  return result == SQLITE_OK;
}

bool Sqlite::prepareAndBind(const std::string& sql, const Arguments& arguments,
                            Statement& statement, Allowance& allowance) {
  if (!prepare(sql, statement, allowance)) {
    return false;
  }
  const auto parameters = static_cast<std::size_t>(sqlite3_bind_parameter_count(statement.get()));
  assert(parameters <= arguments.size());
  // A parameter that is left without an argument is NULL.
  for (std::size_t i = 0; i < std::min(parameters, arguments.size()); ++i) {
    bindObject_toColumn_inStatament(arguments[i], static_cast<int>(i) + 1, statement);
  }
  return true;
}

bool openIfThere(const FileManager& files, Sqlite& database, const std::string& path) {
  return files.fileExistsAtPath(path) && database.open(path);
}

}  // namespace tasselby
