#include "storage/SqliteGuard.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <limits>
#include <sqlite3.h>
#include <sys/stat.h>

namespace tasselby {
namespace {

// Nanoseconds and bytes for each byte of the file and the statement's text. What was measured is
// the costliest of the worker's own.

/// So many more than there are: what a few rows cost does not depend on the file.
constexpr std::int64_t kBase = 32 << 10;
constexpr std::int64_t kTime = 250;  // Measured: 78.
/// Added beyond what SQLite holds of a file in memory. Measured: 386 with 4,000,000 rows.
constexpr std::int64_t kFurtherTime = 2000;
constexpr std::int64_t kHeldInMemory = 2 << 20;
/// For SQLite, and again for the result. Measured: 18. 900 concatenations in one row of a file of 4
/// MB took 3.4 GB.
constexpr std::int64_t kMemory = 64;
constexpr std::int64_t kMemoryForAny = 32 << 20;
/// No value is longer in a file that is smaller. A thousand steps copy it so often within a second.
constexpr std::int64_t kLongestValue = 4 << 20;
/// What any statement may compile to, beside one for each byte of its text: a listed name takes
/// three. 22 columns that each double the one before take 13 s, with no step to count.
constexpr std::int64_t kInstructions = 1 << 17;
constexpr int kStepsBetweenCounts = 1000;

/// SQLite lowers what is beyond the most that it was built with.
constexpr std::int64_t kMost = std::numeric_limits<int>::max();

void setLimit(sqlite3* connection, int limit, std::int64_t value) {
  sqlite3_limit(connection, limit, static_cast<int>(std::min(value, kMost)));
}

/// What the file takes on the disk, as a sparse one claims any size; where the system counts no
/// blocks, what it claims. 0 when it is missing.
std::int64_t sizeOf(const char* path) {
  struct stat status{};
  const bool isCounted = ::stat(path, &status) == 0 && status.st_blocks != 0;
  return isCounted ? std::int64_t{status.st_blocks} * 512 : std::int64_t{status.st_size};
}

std::int64_t processorTime() {
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

}  // namespace

void guard(sqlite3* connection) {
  // Deliberate: no browser's table has triggers. One that is there could delete what is kept.
  sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  // Deliberate: what stands in a table's place as a view cannot be read. 14 that each name the one
  // before twice take 14 s to prepare, with no step to count.
  sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  // Deliberate: no virtual table. Browsers keep none of these stores in one, and full-text search
  // calls a function of the file's choice: one row took 33 s and 6.9 GB.
  sqlite3_drop_modules(connection, nullptr);
}

int prepareGuarded(sqlite3* connection, const char* sql, sqlite3_stmt*& statement) {
  // Deliberate: a schema that calls functions is none. No browser's does, and one instr() of two
  // values in a file of 1 MB takes 20 s. The statement itself is not the file's: once something was
  // asked that had to read the schema, it may.
  setLimit(connection, SQLITE_LIMIT_FUNCTION_ARG, 0);
  if (sqlite3_table_column_metadata(connection, nullptr, "sqlite_master", nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr) == SQLITE_OK) {
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
  time_ = kTime * size + kFurtherTime * std::max<std::int64_t>(size - kHeldInMemory, 0);
  memory_ = kMemoryForAny + kMemory * size;
  sqlite3_hard_heap_limit64(sqlite3_memory_used() + memory_);
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
    sqlite3_hard_heap_limit64(0);
    setLimit(connection_, SQLITE_LIMIT_VDBE_OP, kMost);
    setLimit(connection_, SQLITE_LIMIT_LENGTH, kMost);
  }
}

void Allowance::restart() {
  started_ = processorTime();
}

bool Allowance::take(std::size_t bytes) {
  memory_ -= static_cast<std::int64_t>(bytes);
  return connection_ == nullptr || memory_ >= 0;
}

}  // namespace tasselby
