#include "storage/SqliteFiles.h"

#include <filesystem>
#include <sqlite3.h>
#include <system_error>

namespace tasselby {
namespace {

constexpr const char* kFileSystem = "tasselby-plain-files";

/// Whether nothing or a plain file is at `path`, links followed.
bool isPlain(const char* path) {
  std::error_code ignored;
  const std::filesystem::file_type type = std::filesystem::status(path, ignored).type();
  return type == std::filesystem::file_type::not_found ||
         type == std::filesystem::file_type::regular;
}

/// Opens what is plain. With a pipe in a journal's place SQLite would wait. A journal shared by
/// several databases is not opened at all: after a recovery SQLite removes it, by whatever name the
/// file gives.
int openFile(sqlite3_vfs* fileSystem, const char* path, sqlite3_file* file, int flags,
             int* flagsUsed) {
  // Temporary files have no path.
  if (path != nullptr && ((flags & SQLITE_OPEN_SUPER_JOURNAL) != 0 || !isPlain(path))) {
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

}  // namespace

int openDatabase(const std::string& path, sqlite3*& connection) {
  if (path.empty() || path == ":memory:") {
    return sqlite3_open(path.c_str(), &connection);
  }
  static const int registered = registerFileSystem();
  if (registered != SQLITE_OK) {
    return registered;
  }
  return sqlite3_open_v2(path.c_str(), &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                         kFileSystem);
}

}  // namespace tasselby
