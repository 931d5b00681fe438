#include "storage/SqliteGuard.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <limits>
#include <sqlite3.h>
#include <sys/stat.h>

namespace tasselby {
namespace {

constexpr auto kTurnedOff = std::to_array<int>({
    // Deliberate: no browser's table has triggers. One that is there could delete what is kept.
    SQLITE_DBCONFIG_ENABLE_TRIGGER,
    // Deliberate: what stands in a table's place as a view cannot be read. A few that each name the
    // one before twice take hours to prepare, with no step to count.
    SQLITE_DBCONFIG_ENABLE_VIEW,
});

// Times are in nanoseconds, sizes in bytes. What is measured is the worker's own at its costliest.

/// All of a size counts as so much more: what a few rows cost does not depend on the file.
constexpr std::int64_t kBase = 32 << 10;
/// Measured: 78.
constexpr std::int64_t kTimePerByte = 250;
/// The same beyond what SQLite holds in memory, where each row costs reads and writes. Measured:
/// 386 with 4,000,000 rows.
constexpr std::int64_t kHeldInMemory = 2 << 20;
constexpr std::int64_t kTimePerFurtherByte = 2000;
/// Measured: 14, with cookies.
constexpr std::int64_t kResultPerByte = 32;
/// No value is longer in a file that is smaller. A thousand steps copy it so often within a second.
constexpr std::int64_t kLongestValue = 4 << 20;
/// What any statement may compile to, beside one for each byte of its text: a listed name takes
/// three. Forty columns that each double the one before would be 2^40, with no step to count.
constexpr std::int64_t kInstructions = 1 << 17;
constexpr int kStepsBetweenCounts = 1000;

/// The most that SQLite takes as a limit, which it lowers to what it was built with.
constexpr int kMost = std::numeric_limits<int>::max();

void setLimit(sqlite3* connection, int limit, std::int64_t value) {
  sqlite3_limit(connection, limit, static_cast<int>(std::min<std::int64_t>(value, kMost)));
}

/// What the file takes on the disk, as a sparse one claims any size. Where the system counts no
/// blocks, what it claims.
std::int64_t sizeOf(const char* path) {
  constexpr std::int64_t kBlock = 512;
  struct stat status{};
  if (path == nullptr || ::stat(path, &status) != 0) {
    return 0;
  }
  return status.st_blocks == 0 ? status.st_size : status.st_blocks * kBlock;
}

std::int64_t processorTime() {
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

/// Whether the schema has been read. A statement that finds it unread reads it itself.
bool hasReadSchema(sqlite3* connection) {
  return sqlite3_table_column_metadata(connection, nullptr, "sqlite_master", nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace

void guard(sqlite3* connection) {
  for (const int setting : kTurnedOff) {
    sqlite3_db_config(connection, setting, 0, nullptr);
  }
  // Deliberate: no virtual table. Browsers keep none of these stores in one, and one of full-text
  // search calls a function of the file's choice for every value.
  sqlite3_drop_modules(connection, nullptr);
}

int prepareGuarded(sqlite3* connection, const char* sql, sqlite3_stmt*& statement) {
  // Deliberate: a schema that calls functions is none. No browser's does, and one LIKE could take
  // hours. The statement itself is not the file's.
  setLimit(connection, SQLITE_LIMIT_FUNCTION_ARG, 0);
  if (hasReadSchema(connection)) {
    setLimit(connection, SQLITE_LIMIT_FUNCTION_ARG, kMost);
  }
  const int result = sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr);
  setLimit(connection, SQLITE_LIMIT_FUNCTION_ARG, kMost);
  return result;
}

Allowance::Allowance(sqlite3* connection, const char* sql) : connection_(connection) {
  if (connection_ == nullptr) {
    return;
  }
  const char* path = sqlite3_db_filename(connection_, "main");
  const std::int64_t file = sizeOf(path) + sizeOf(sqlite3_filename_wal(path));
  const auto text = static_cast<std::int64_t>(sql == nullptr ? 0 : std::strlen(sql));
  const std::int64_t size = kBase + file + text;
  const std::int64_t further = std::max<std::int64_t>(size - kHeldInMemory, 0);
  time_ = kTimePerByte * (size - further) + kTimePerFurtherByte * further;
  resultBytes_ = kResultPerByte * size;
  setLimit(connection_, SQLITE_LIMIT_LENGTH, std::max(file, kLongestValue));
  setLimit(connection_, SQLITE_LIMIT_VDBE_OP, kInstructions + text);
  const auto isSpent = [](void* allowance) {
    const auto& self = *static_cast<const Allowance*>(allowance);
    return processorTime() - self.started_ > self.time_ ? 1 : 0;
  };
  sqlite3_progress_handler(connection_, kStepsBetweenCounts, isSpent, this);
  restart();
}

Allowance::~Allowance() {
  if (connection_ != nullptr) {
    sqlite3_progress_handler(connection_, 0, nullptr, nullptr);
    setLimit(connection_, SQLITE_LIMIT_VDBE_OP, kMost);
    setLimit(connection_, SQLITE_LIMIT_LENGTH, kMost);
  }
}

void Allowance::restart() {
  started_ = processorTime();
}

bool Allowance::take(std::size_t bytes) {
  resultBytes_ -= static_cast<std::int64_t>(bytes);
  return connection_ == nullptr || resultBytes_ >= 0;
}

}  // namespace tasselby
