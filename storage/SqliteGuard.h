#pragma once

#include <cstdint>
#include <string>

struct sqlite3;

namespace tasselby {

/// Opens `path` for reading and writing, creating it when missing, and answers SQLite's result
/// code. `connection` is set after most failures too.
///
/// The files come from anybody's home folder. What such a file says stays within it: no code is
/// loaded, no other file is opened or removed, and what its schema would run by itself is not run.
/// No file that a browser writes reads or changes differently for that.
int openGuarded(const std::string& path, sqlite3*& connection);

/// How much one statement may cost on the file of `connection`: steps of SQLite's machine, and
/// bytes of a result. Many times what a sound file of its size can need.
std::int64_t allowanceFor(sqlite3* connection);

/// Lets every statement on `connection` count its steps down from `stepsLeft`, and fail once that
/// is negative. `stepsLeft` has to live until `removeStepLimit`.
void limitSteps(sqlite3* connection, std::int64_t& stepsLeft);
void removeStepLimit(sqlite3* connection);

}  // namespace tasselby
