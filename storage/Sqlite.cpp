#include "storage/Sqlite.h"

#include <algorithm>
#include <cassert>
#include <random>
#include <sqlite3.h>
#include <thread>
#include <utility>

namespace tasselby {
namespace {

constexpr std::chrono::microseconds kBusyPause(20);

/// The columns of a statement's result: each name once, and where its value stands.
struct Columns {
  ColumnNames names;
  std::vector<int> indexes;
};

Columns columnsOf(const Sqlite::Statement& statement) {
  std::vector<std::string> names;
  std::vector<int> indexes;
  const int count = sqlite3_column_count(statement.get());
  for (int index = 0; index < count; ++index) {
    std::string name = Sqlite::columnName_columnIndex(statement, index);
    const auto same = std::find(names.begin(), names.end(), name);
    if (same != names.end()) {
      indexes[static_cast<std::size_t>(same - names.begin())] = index;
      continue;
    }
    names.push_back(std::move(name));
    indexes.push_back(index);
  }
  return {std::make_shared<const std::vector<std::string>>(std::move(names)), std::move(indexes)};
}

/// The bytes that `value` holds beside itself.
std::size_t heapOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    return text->size();
  }
  const auto* bytes = std::get_if<Bytes>(&value);
  return bytes == nullptr ? 0 : bytes->size();
}

/// The ready row. Lessens `bytesLeft` by what it takes; no value once that is negative.
std::optional<Row> rowOf(const Sqlite::Statement& statement, const Columns& columns,
                         std::int64_t& bytesLeft) {
  const std::size_t count = columns.indexes.size();
  bytesLeft -= static_cast<std::int64_t>(sizeof(Row) + count * sizeof(Value));
  std::vector<Value> values;
  values.reserve(count);
  for (const int index : columns.indexes) {
    values.push_back(Sqlite::columnData_columnIndex(statement, index));
    bytesLeft -= static_cast<std::int64_t>(heapOf(values.back()));
    if (bytesLeft < 0) {
      return std::nullopt;
    }
  }
  return Row(columns.names, std::move(values));
}

}  // namespace

void Sqlite::Finalize::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

Sqlite::Sqlite(const std::string& path) : busyRetryTimeout_(0) {
  open(path);
}

bool Sqlite::open(const std::string& path) {
  close();
  if (path.find('\0') != std::string::npos || openGuarded(path, db_) != SQLITE_OK) {
    return false;
  }
  // Another connection to the same file goes on from what has been spent on it.
  if (path != countedPath_) {
    countedPath_ = path;
    allowance_ = 0;
    steps_ = {};
  }
  limitSteps(db_, steps_);
  filePath_ = path;
  return true;
}

void Sqlite::close() {
  if (db_ == nullptr) {
    return;
  }
  removeStepLimit(db_);
  // Deliberate: a connection that is still busy is forgotten, open as it is.
  whileBusy([this] { return sqlite3_close(db_); });
  filePath_.clear();
  db_ = nullptr;
}

void Sqlite::set_db(sqlite3* connection) {
  if (db_ != nullptr) {
    removeStepLimit(db_);
  }
  db_ = connection;
}

std::int64_t Sqlite::errorCode() const {
  return sqlite3_errcode(db_);
}

std::string Sqlite::errorMessage() const {
  return sqlite3_errmsg(db_);
}

std::optional<RowList> Sqlite::executeQuery(const std::string& sql) {
  return executeQuery_arguments(sql, {});
}

std::optional<RowList> Sqlite::executeQuery_arguments(const std::string& sql,
                                                      const Arguments& arguments) {
  Statement statement;
  if (!prepareAndBind(sql, arguments, statement)) {
    return std::nullopt;
  }
  RowList rows;
  Columns columns;
  std::int64_t bytesLeft = allowance_;
  while (hasData(statement)) {
    // Not earlier: the first step prepares anew should the schema have changed meanwhile.
    if (columns.names == nullptr) {
      columns = columnsOf(statement);
    }
    std::optional<Row> row = rowOf(statement, columns, bytesLeft);
    if (!row) {
      break;
    }
    rows.push_back(*std::move(row));
  }
  return rows;
}

bool Sqlite::executeNonQuery(const std::string& sql) {
  return executeNonQuery_arguments(sql, {});
}

bool Sqlite::executeNonQuery_arguments(const std::string& sql, const Arguments& arguments) {
  Statement statement;
  return prepareAndBind(sql, arguments, statement) && executeStatament(statement);
}

bool Sqlite::commit() {
  return executeNonQuery("COMMIT TRANSACTION;");
}

bool Sqlite::rollback() {
  return executeNonQuery("ROLLBACK TRANSACTION;");
}

bool Sqlite::beginTransaction() {
  return executeNonQuery("BEGIN EXCLUSIVE TRANSACTION;");
}

bool Sqlite::beginDeferredTransaction() {
  return executeNonQuery("BEGIN DEFERRED TRANSACTION;");
}

bool Sqlite::prepareSql_inStatament(const std::string& sql, Statement& statement) {
  statement.reset();
  if (db_ == nullptr) {
    return false;
  }
  // The file may have grown since the last statement. One on which too much was spent gets no
  // further statement, until what each may take has made up for it.
  const std::int64_t allowance = std::max(allowance_, allowanceFor(db_));
  const std::int64_t growth = allowance - std::exchange(allowance_, allowance);
  if (!addSteps(steps_, growth / kBytesPerStep + kStepsPerStatement)) {
    return false;
  }
  sqlite3_stmt* prepared = nullptr;
  const int result = whileBusy([&] { return prepareGuarded(db_, sql, prepared); });
  statement.reset(prepared);
  return result == SQLITE_OK;
}

bool Sqlite::executeStatament(const Statement& statement) {
  const int result = whileBusy([&statement] { return sqlite3_step(statement.get()); });
  return result == SQLITE_DONE || result == SQLITE_OK;
}

bool Sqlite::hasData(const Statement& statement) {
  return whileBusy([&statement] { return sqlite3_step(statement.get()); }) == SQLITE_ROW;
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

int Sqlite::whileBusy(const std::function<int()>& call) {
  for (std::int64_t retries = 0;; ++retries) {
    const int result = call();
    if (result != SQLITE_BUSY) {
      return result;
    }
    addSteps(steps_, kStepsPerStatement);
    std::this_thread::sleep_for(kBusyPause);
    // Deliberate: no number of retries that is not negative is ever reached, so zero and above give
    // up after the first pause, and only a negative number goes on, without end.
    if (retries <= busyRetryTimeout_) {
      return result;
    }
  }
}

bool Sqlite::prepareAndBind(const std::string& sql, const Arguments& arguments,
                            Statement& statement) {
  if (!prepareSql_inStatament(sql, statement)) {
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
