#include "storage/SqliteGuard.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <limits>
#include <sqlite3.h>
#include <sys/stat.h>

namespace tasselby {
namespace {

// For each byte of a statement's file and text, and for kBase more, as what a few rows cost does
// not depend on the file: in time 13 ms, where a store of one row or none took at most 1.6.
// Measured was the costliest of the worker's own: DELETE with a list of every scope there is, and
// the time of the same with auto_vacuum.
constexpr std::int64_t kBase = 32 << 10;
constexpr std::int64_t kTime = 400;  // In ns. Measured: 78 and 131.
/// Added beyond what SQLite holds of a file in memory. Measured: 386 with 4,000,000 rows.
constexpr std::int64_t kFurtherTime = 2000;
constexpr std::int64_t kHeldInMemory = 2 << 20;
/// In bytes, for SQLite and again for the result. Measured: 25. Without it 900 concatenations in
/// one row of a file of 4 MB take 3.4 GB.
constexpr std::int64_t kMemory = 64;
/// Measured: 2,008 for a row of 2,000 columns, three for a name in a list, for which SQLite makes
/// room twice. 22 columns that each double the one before take 13 s, with no step to count.
constexpr std::int64_t kInstructions = 1 << 14;
constexpr int kStepsBetweenCounts = 1000;  // At most 0.7 s when each copies 4 MB.

constexpr int kMost = std::numeric_limits<int>::max();  // SQLite lowers it to its own.

/// What the file takes on the disk, as a sparse one claims any size; where the system counts no
/// blocks, what it claims. 0 when it is missing.
std::int64_t sizeOf(const char* path) {
  struct stat status = {};
  const bool isCounted = ::stat(path, &status) == 0 && status.st_blocks != 0;
  return isCounted ? status.st_blocks * 512 : status.st_size;
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

Allowance::Allowance(sqlite3* connection, const char* sql) : connection_(connection) {
  if (connection_ == nullptr) {
    return;
  }
  const char* path = sqlite3_db_filename(connection_, "main");
  const auto text = static_cast<std::int64_t>(sql == nullptr ? 0 : std::strlen(sql));
  const std::int64_t size = kBase + sizeOf(path) + sizeOf(sqlite3_filename_wal(path)) + text;
  time_ = kTime * size + kFurtherTime * std::max<std::int64_t>(size - kHeldInMemory, 0);
  memory_ = kMemory * size;
  sqlite3_hard_heap_limit64(sqlite3_memory_used() + memory_);
  sqlite3_limit(connection_, SQLITE_LIMIT_VDBE_OP, static_cast<int>(kInstructions + 2 * text));
  const auto isSpent = [](void* allowance) {
    return processorTime() > static_cast<const Allowance*>(allowance)->end_ ? 1 : 0;
  };
  sqlite3_progress_handler(connection_, kStepsBetweenCounts, isSpent, this);
  restart();
  // Deliberate: a schema that calls functions is none. No browser's does, and one instr() of two
  // values in a file of 1 MB takes 20 s. The statement itself may, once the schema was read.
  sqlite3_limit(connection_, SQLITE_LIMIT_FUNCTION_ARG, 0);
  if (sqlite3_table_column_metadata(connection_, nullptr, "sqlite_master", nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr) == SQLITE_OK) {
    sqlite3_limit(connection_, SQLITE_LIMIT_FUNCTION_ARG, kMost);
  }
}

Allowance::~Allowance() {
  if (connection_ != nullptr) {
    sqlite3_progress_handler(connection_, 0, nullptr, nullptr);
    sqlite3_hard_heap_limit64(0);
  }
}

void Allowance::restart() {
  end_ = processorTime() + time_;
}

}  // namespace tasselby
