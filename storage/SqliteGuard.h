#pragma once

#include <cstdint>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace tasselby {

/// Opens `path` for reading and writing, creating it when missing, and answers SQLite's result
/// code. `connection` is set after most failures too.
///
/// The files come from anybody's home folder. What such a file says stays within it: no code is
/// loaded, no other file is opened or removed, and what its schema would run by itself is not run.
/// No file that a browser writes reads or changes differently for that.
int openGuarded(const std::string& path, sqlite3*& connection);

/// Prepares the first statement of `sql`, whose size may exceed all bounds, and answers SQLite's
/// result code. It fails for a file whose schema calls functions, as no browser's does: a single
/// call could take hours.
int prepareGuarded(sqlite3* connection, const std::string& sql, sqlite3_stmt*& statement);

/// How many bytes a result from the file of `connection` may take. Many times what a sound file of
/// its size can need.
std::int64_t allowanceFor(sqlite3* connection);

/// For so many of those bytes, one step of SQLite's machine may be spent on the file by all
/// statements together.
inline constexpr std::int64_t kBytesPerStep = 4;

/// The steps that every statement may take beyond those. One that finds its row by an index takes
/// some dozens.
inline constexpr std::int64_t kStepsPerStatement = 1 << 12;

/// Counts what is left to spend.
struct StepLimit {
  std::int64_t left = 0;
  /// The processor time at the last count, in nanoseconds; 0 before the first.
  std::int64_t counted = 0;
};

/// Adds `steps` for a statement or a further try of one, less those that the time since the last
/// count stands for. Answers whether there are any to spend.
bool addSteps(StepLimit& limit, std::int64_t steps);

/// Lets every statement on `connection` count its steps down from `limit`, and fail once that is
/// negative. A step that takes long counts as many. `limit` has to live until `removeStepLimit`.
void limitSteps(sqlite3* connection, StepLimit& limit);

/// Ends that; `limit` is not touched again.
void removeStepLimit(sqlite3* connection);

}  // namespace tasselby
