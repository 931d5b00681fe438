#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

struct sqlite3;

namespace tasselby {

/// Lets nothing that the file behind `connection` says run by itself.
void guard(sqlite3* connection);

/// What one statement may spend while it is prepared and stepped: for each byte of its file and its
/// text several times what the costliest of the worker's own takes. One that a schema makes compute
/// without end fails within seconds, and one on a schema that calls functions at once.
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
  bool take(std::size_t bytes) { return (memory_ -= static_cast<std::int64_t>(bytes)) >= 0; }

 private:
  sqlite3* connection_;
  /// Left for the result, in bytes.
  std::int64_t memory_ = std::numeric_limits<std::int64_t>::max();
  /// In nanoseconds of this thread's processor time.
  std::int64_t time_{};
  std::int64_t end_{};
};

}  // namespace tasselby
