#pragma once

#include <cstddef>
#include <cstdint>

struct sqlite3;
struct sqlite3_stmt;

namespace tasselby {

/// Lets nothing that the file behind `connection` says run by itself.
void guard(sqlite3* connection);

/// Prepares the first statement of `sql` and answers SQLite's result code. It fails for a file
/// whose schema calls functions.
int prepareGuarded(sqlite3* connection, const char* sql, sqlite3_stmt*& statement);

/// What one statement may spend while it is prepared and stepped: for each byte of its file and its
/// text several times what the costliest of the worker's own takes. One that a schema makes compute
/// without end fails within seconds.
class Allowance {
 public:
  /// For the statement `sql`, null for none, on `connection`, which is without bounds afterwards.
  /// A null connection has none now.
  Allowance(sqlite3* connection, const char* sql);
  Allowance(const Allowance&) = delete;
  Allowance& operator=(const Allowance&) = delete;
  ~Allowance();

  /// Counts the time anew, as after a wait for a lock.
  void restart();

  /// Takes `bytes` for the result. Answers whether they were left.
  bool take(std::size_t bytes);

 private:
  sqlite3* connection_;
  /// What the result may still weigh, in bytes.
  std::int64_t memory_ = 0;
  /// In nanoseconds of this thread's processor time.
  std::int64_t time_ = 0;
  std::int64_t started_ = 0;
};

}  // namespace tasselby
