#include "storage/SqliteGuard.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <limits>
#include <sqlite3.h>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace tasselby {
namespace fs = std::filesystem;

namespace {

constexpr const char* kFileSystem = "tasselby-guarded";
constexpr std::int64_t kMebi = 1 << 20;

/// In a file that is smaller no single value is as long.
constexpr std::int64_t kLongestValue = 64 * kMebi;

constexpr std::int64_t kAllowanceForAnyFile = 64 * kMebi;
constexpr std::int64_t kAllowancePerByte = 32;

/// The callback that counts is called once in so many steps.
constexpr int kStepsBetweenCounts = 1000;

/// What a long step takes at the least, in nanoseconds of processor time: several times the usual.
constexpr std::int64_t kLongStep = 250;

/// What a statement may take besides its steps, in the same unit: many times what writing to the
/// disk needs.
constexpr std::int64_t kFreePerStatement = 5'000'000;

/// A statement compiles to a few steps for each column, index and listed name. With columns that
/// are computed from one another it could be any number, before a step is taken.
constexpr int kInstructionsForAnyStatement = 1 << 17;
constexpr std::size_t kInstructionsPerByte = 4;

constexpr auto kSettings = std::to_array<std::pair<int, int>>({
    // No SQL can damage the file's own structure, or write what virtual tables keep in it.
    {SQLITE_DBCONFIG_DEFENSIVE, 1},
    // Defaults, generated columns and indexes call no function that has side effects.
    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    // Deliberate: no browser's table has triggers. One that is there is not the browser's, and
    // does not run; the rows are deleted all the same.
    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
    // Deliberate: what stands in a table's place as a view cannot be read. It may never end.
    {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
    // Some builds of SQLite load libraries unless told otherwise.
    {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
});

constexpr auto kLimits = std::to_array<std::pair<int, int>>({
    // A statement reaches no second file.
    {SQLITE_LIMIT_ATTACHED, 0},
    // Deliberate: a schema that calls functions is none. No browser's does, and one call could take
    // hours.
    {SQLITE_LIMIT_FUNCTION_ARG, 0},
});

/// Pages are checked as they are read, for which a sound page passes; and none is mapped, as a
/// file that is cut short meanwhile would end the process.
constexpr const char* kPragmas = "PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0;";

/// Whether nothing or a plain file is at `path`, links followed.
bool isPlain(const fs::path& path) {
  std::error_code ignored;
  const fs::file_type type = fs::status(path, ignored).type();
  return type == fs::file_type::not_found || type == fs::file_type::regular;
}

/// Whether SQLite may open `path` with `flags`. Not what would make it wait, as a pipe does in a
/// journal's place; and no journal shared by several databases, as SQLite removes one after a
/// recovery, by whatever name the file gives.
bool mayOpen(const std::string& path, int flags) {
  if ((flags & SQLITE_OPEN_SUPER_JOURNAL) != 0 || !isPlain(path)) {
    return false;
  }
  // The shared memory of a write-ahead log is opened past here, as soon as the log is.
  const std::string log = "-wal";
  return !path.ends_with(log) || isPlain(path.substr(0, path.size() - log.size()) + "-shm");
}

int openFile(sqlite3_vfs* fileSystem, const char* path, sqlite3_file* file, int flags,
             int* flagsUsed) {
  // Temporary files have no path.
  if (path != nullptr && !mayOpen(path, flags)) {
    file->pMethods = nullptr;
    return SQLITE_CANTOPEN;
  }
  return sqlite3_vfs_find(nullptr)->xOpen(fileSystem, path, file, flags, flagsUsed);
}

/// Makes the system's file system, with openFile in its place, known to SQLite.
int registerFileSystem() {
  static sqlite3_vfs fileSystem = *sqlite3_vfs_find(nullptr);
  fileSystem.zName = kFileSystem;
  fileSystem.xOpen = openFile;
  return sqlite3_vfs_register(&fileSystem, 0);
}

/// The bytes that the file takes on the disk, and not those it claims: a sparse one claims any.
std::int64_t sizeOf(const char* path) {
  constexpr std::int64_t kBlock = 512;
  struct stat status{};
  return ::stat(path, &status) == 0 ? status.st_blocks * kBlock : 0;
}

std::int64_t processorTime() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

/// How many long steps fit into the time since the last count, less `free` of it.
std::int64_t longStepsSinceCount(StepLimit& limit, std::int64_t free) {
  const std::int64_t now = processorTime();
  const std::int64_t last = std::exchange(limit.counted, now);
  return last == 0 ? 0 : std::max<std::int64_t>(now - last - free, 0) / kLongStep;
}

int countSteps(void* context) {
  auto& limit = *static_cast<StepLimit*>(context);
  limit.left -= std::max<std::int64_t>(kStepsBetweenCounts, longStepsSinceCount(limit, 0));
  return limit.left < 0 ? 1 : 0;
}

/// Whether the file's schema has been read, with no function called in it. A statement that finds
/// it unread reads it itself.
bool hasReadSchema(sqlite3* connection) {
  return sqlite3_table_column_metadata(connection, nullptr, "sqlite_master", nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr) == SQLITE_OK;
}

}  // namespace

int openGuarded(const std::string& path, sqlite3*& connection) {
  static const int registered = registerFileSystem();
  if (registered != SQLITE_OK) {
    return registered;
  }
  // SQLite gives "", ":memory:" and "file:..." meanings of their own; here they are relative paths.
  const std::string plain = path.starts_with('/') ? path : "./" + path;
  const int result = sqlite3_open_v2(plain.c_str(), &connection,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, kFileSystem);
  if (result != SQLITE_OK) {
    return result;
  }
  for (const auto& [setting, value] : kSettings) {
    sqlite3_db_config(connection, setting, value, nullptr);
  }
  for (const auto& [limit, value] : kLimits) {
    sqlite3_limit(connection, limit, value);
  }
  // A few bytes of schema can compute a value of a gigabyte.
  sqlite3_limit(connection, SQLITE_LIMIT_LENGTH,
                static_cast<int>(std::clamp<std::int64_t>(sizeOf(plain.c_str()), kLongestValue,
                                                          std::numeric_limits<int>::max())));
  // Deliberate: no virtual table. Browsers keep none of these stores in one, and their code would
  // run on data that was made to mislead it.
  sqlite3_drop_modules(connection, nullptr);
  sqlite3_exec(connection, kPragmas, nullptr, nullptr, nullptr);
  return SQLITE_OK;
}

int prepareGuarded(sqlite3* connection, const std::string& sql, sqlite3_stmt*& statement) {
  constexpr std::size_t kMost = std::numeric_limits<int>::max();
  sqlite3_limit(connection, SQLITE_LIMIT_VDBE_OP,
                static_cast<int>(std::min(
                    kMost, kInstructionsForAnyStatement + kInstructionsPerByte * sql.size())));
  // The statement is not the file's, and may call functions: as many arguments as SQLite takes.
  if (hasReadSchema(connection)) {
    sqlite3_limit(connection, SQLITE_LIMIT_FUNCTION_ARG, std::numeric_limits<int>::max());
  }
  const int result = sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
  sqlite3_limit(connection, SQLITE_LIMIT_FUNCTION_ARG, 0);
  return result;
}

std::int64_t allowanceFor(sqlite3* connection) {
  const char* path = sqlite3_db_filename(connection, "main");
  const std::int64_t size = sizeOf(path) + sizeOf(sqlite3_filename_wal(path));
  return kAllowanceForAnyFile + kAllowancePerByte * size;
}

bool addSteps(StepLimit& limit, std::int64_t steps) {
  limit.left += steps - longStepsSinceCount(limit, kFreePerStatement);
  return limit.left >= 0;
}

void limitSteps(sqlite3* connection, StepLimit& limit) {
  sqlite3_progress_handler(connection, kStepsBetweenCounts, countSteps, &limit);
}

void removeStepLimit(sqlite3* connection) {
  sqlite3_progress_handler(connection, 0, nullptr, nullptr);
}

}  // namespace tasselby
