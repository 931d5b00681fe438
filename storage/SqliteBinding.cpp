// What goes into a statement's parameters and what comes out of its columns.

#include <sqlite3.h>

#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// Binds one kind of argument each to the parameter at `column`.
struct Binder {
  sqlite3_stmt* statement;
  int column;

  void operator()(Null) const { sqlite3_bind_null(statement, column); }
  void operator()(const Bytes& bytes) const {
    // A null pointer would bind NULL, and an empty buffer may have one.
    const void* data = bytes.empty() ? static_cast<const void*>("") : bytes.data();
    sqlite3_bind_blob64(statement, column, data, bytes.size(), SQLITE_STATIC);
  }
  void operator()(std::chrono::system_clock::time_point date) const {
    const std::chrono::duration<double> seconds = date.time_since_epoch();
    sqlite3_bind_double(statement, column, seconds.count());
  }
  void operator()(bool flag) const { sqlite3_bind_int(statement, column, flag ? 1 : 0); }
  void operator()(int number) const { sqlite3_bind_int64(statement, column, number); }
  void operator()(std::int64_t number) const { sqlite3_bind_int64(statement, column, number); }
  void operator()(float number) const { (*this)(double{number}); }
  void operator()(double number) const { sqlite3_bind_double(statement, column, number); }
  void operator()(std::uint64_t number) const {
    sqlite3_bind_text(statement, column, std::to_string(number).c_str(), -1, SQLITE_TRANSIENT);
  }
  void operator()(const std::string& text) const {
    sqlite3_bind_text(statement, column, text.c_str(), -1, SQLITE_STATIC);
  }
  void operator()(const Description& description) const { (*this)(description.text); }
};

std::string textOf(const void* characters) {
  return characters == nullptr ? std::string() : static_cast<const char*>(characters);
}

}  // namespace

void Sqlite::bindObject_toColumn_inStatament(const Argument& object, int column,
                                             const Statement& statement) {
  std::visit(Binder{statement.get(), column}, object);
}

Value Sqlite::columnData_columnIndex(const Statement& statement, int index) {
  sqlite3_stmt* row = statement.get();
  // Reading a value may convert it, so its type is asked first.
  switch (sqlite3_column_type(row, index)) {
    case SQLITE_INTEGER:
      // Deliberate: a text and no number. Callers put it straight into the text of a statement.
    case SQLITE_TEXT:
      return textOf(sqlite3_column_text(row, index));
    case SQLITE_FLOAT:
      return sqlite3_column_double(row, index);
    case SQLITE_BLOB: {
      const auto* bytes = static_cast<const std::uint8_t*>(sqlite3_column_blob(row, index));
      return Bytes(bytes, bytes + (bytes == nullptr ? 0 : sqlite3_column_bytes(row, index)));
    }
    default:
      return Null();
  }
}

std::string Sqlite::columnName_columnIndex(const Statement& statement, int index) {
  return textOf(statement ? sqlite3_column_name(statement.get(), index) : nullptr);
}

}  // namespace tasselby
