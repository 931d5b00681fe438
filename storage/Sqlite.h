#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/FileManager.h"
#include "storage/Row.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tasselby {

class Allowance;

/// What stands in for an argument of no other kind: its description.
struct Description {
  std::string text;
};

/// A value for a statement's parameter. Bound as:
///
///     Null                      NULL
///     Bytes                     BLOB, empty too
///     a point in time           REAL, seconds since 1970-01-01 00:00:00 UTC
///     bool                      INTEGER, 1 or 0
///     int, std::int64_t         INTEGER
///     float, double             REAL
///     std::uint64_t             TEXT, its decimal digits: SQLite has no such integer
///     std::string, Description  TEXT, up to the first NUL
using Argument = std::variant<Null, Bytes, std::chrono::system_clock::time_point, bool, int,
                              std::int64_t, float, double, std::uint64_t, std::string, Description>;
using Arguments = std::vector<Argument>;

/// One connection to an SQLite file. Runs one statement at a time, in autocommit mode, and hands
/// back rows by column name.
///
/// Nothing here throws or logs: a failure is `false` or no value, and errorCode() and
/// errorMessage() say why. Without a connection, or with one whose opening failed, every operation
/// answers `false` or no value. One thread at a time.
///
/// A file may come from anybody. What its schema says reads and changes that file alone, and each
/// statement ends within bounds that grow with the file's size. One that exceeds them fails.
///
/// Of an SQL text only the first statement is run, and only what stands before the first NUL.
class Sqlite {
 public:
  /// Ends a statement and frees what it holds.
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };

  /// A prepared statement; empty when there is none. It ends before its connection closes.
  using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

  /// No connection, and a busyRetryTimeout of 1.
  Sqlite() = default;

  /// Opens `path`; whether that succeeded is not told. busyRetryTimeout is 0.
  explicit Sqlite(const std::string& path) : busyRetryTimeout_(0) { open(path); }

  Sqlite(const Sqlite&) = delete;
  Sqlite& operator=(const Sqlite&) = delete;
  ~Sqlite() { close(); }

  /// Opens `path` for reading and writing, closing first what was open. "" is a temporary database
  /// and ":memory:" one without a file; the bounds above do not hold for these. A missing file is
  /// created empty, so callers test for the file before they come here. After a failure filePath()
  /// is empty, while _db() may hold the failed connection for errorMessage().
  bool open(const std::string& path);

  /// Closes the connection, if there is one. A connection that is busy with a statement stays open
  /// and is forgotten.
  void close();

  /// The most recent result code of the connection, in SQLite's numbers; that for "out of memory"
  /// without one.
  std::int64_t errorCode() const;

  /// The most recent error of the connection, in SQLite's English words; the same as above without
  /// one.
  std::string errorMessage() const;

  /// Runs `sql` to its end and answers the rows in the order SQLite delivers them. Of two columns
  /// with the same name the later one counts.
  ///
  /// Answers no value when the statement cannot be prepared, and an empty list when it has no rows,
  /// as a DELETE has none. A failing step ends the list early; the rows read so far are answered.
  /// So does a result that is out of all proportion to the file.
  std::optional<RowList> executeQuery(const std::string& sql) {
    return executeQuery_arguments(sql, {});
  }

  /// The same with parameters, each bound to the argument in its place. Fewer arguments than
  /// parameters are a breach of contract.
  std::optional<RowList> executeQuery_arguments(const std::string& sql, const Arguments& arguments);

  /// Takes one step of `sql` and answers whether that completed it: false for a statement with
  /// rows.
  bool executeNonQuery(const std::string& sql) { return executeNonQuery_arguments(sql, {}); }

  /// The same with parameters, as in executeQuery_arguments.
  bool executeNonQuery_arguments(const std::string& sql, const Arguments& arguments);

  /// Each answers whether SQLite did so. beginTransaction() locks the file for itself at once.
  bool commit() { return executeNonQuery("COMMIT TRANSACTION;"); }
  bool rollback() { return executeNonQuery("ROLLBACK TRANSACTION;"); }
  bool beginTransaction() { return executeNonQuery("BEGIN EXCLUSIVE TRANSACTION;"); }
  bool beginDeferredTransaction() { return executeNonQuery("BEGIN DEFERRED TRANSACTION;"); }

  /// Prepares the first statement of `sql` into `statement`, which is empty after a failure and for
  /// a text without a statement. Answers whether that succeeded.
  bool prepareSql_inStatament(const std::string& sql, Statement& statement);

  /// Takes one step and answers whether it completed the statement.
  bool executeStatament(const Statement& statement);

  /// Binds `object` to the parameter at `column`, counted from 1. Bytes and texts are not copied:
  /// `object` has to live until the statement's last step.
  static void bindObject_toColumn_inStatament(const Argument& object, int column,
                                              const Statement& statement);

  /// Takes one step and answers whether a row is ready.
  bool hasData(const Statement& statement);

  /// The value of the ready row at `index`, counted from 0. An INTEGER is its decimal text, a TEXT
  /// its bytes up to the first NUL.
  static Value columnData_columnIndex(const Statement& statement, int index);

  /// The name of the column at `index`, counted from 0, in UTF-8.
  static std::string columnName_columnIndex(const Statement& statement, int index);

  /// The version of the SQLite library, such as "3.40.1".
  static std::string version();

  /// A new random UUID: 36 characters, in upper case.
  static std::string createUuid();

  /// A busy database fails a call after one pause of 20 microseconds; a negative number instead
  /// makes the call go on trying, without end.
  std::int64_t busyRetryTimeout() const { return busyRetryTimeout_; }
  void setBusyRetryTimeout(std::int64_t timeout) { busyRetryTimeout_ = timeout; }

  /// The path of the open database, empty when none is.
  const std::string& filePath() const { return filePath_; }

  /// The connection, owned by this object; null when there is none.
  sqlite3* _db() const { return db_; }

  /// Takes ownership of `connection`, and gives up the one held before without closing it. It is
  /// used as it is: the bounds that open() sets do not hold for it.
  void set_db(sqlite3* connection);

 private:
  int whileBusy(Allowance& allowance, const std::function<int()>& call);
  int step(const Statement& statement, Allowance& allowance);
  bool prepare(const std::string& sql, Statement& statement, Allowance& allowance);
  bool prepareAndBind(const std::string& sql, const Arguments& arguments, Statement& statement,
                      Allowance& allowance);
  /// The connection if the bounds hold for it; else null.
  sqlite3* bounded() const { return isBounded_ ? db_ : nullptr; }

  std::int64_t busyRetryTimeout_ = 1;
  std::string filePath_;
  sqlite3* db_ = nullptr;
  bool isBounded_ = false;
};

/// Opens `path` with `database` if something is there, and answers whether that succeeded. Creates
/// no file.
bool openIfThere(const FileManager& files, Sqlite& database, const std::string& path);

}  // namespace tasselby
