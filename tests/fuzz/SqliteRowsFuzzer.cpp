#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "storage/Sqlite.h"

using namespace tasselby;

namespace {

/// A file of this process's own, in the folder for temporary files.
const std::string& filePath() {
  static const std::string path =
      std::filesystem::temp_directory_path() / ("tasselby-" + std::to_string(::getpid()));
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string& path = filePath();
  FILE* file = ::fopen(path.c_str(), "wb");
  ::fwrite(data, 1, size, file);
  ::fclose(file);
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    ::unlink((path + ending).c_str());
  }
  Sqlite database;
  if (database.open(path)) {
    for (const char* table :
         {"cookies", "moz_cookies", "moz_logins", "webappsstore2", "Databases"}) {
      database.executeQuery("SELECT * FROM " + std::string(table) + ";");
    }
    database.executeQuery("DELETE FROM moz_cookies WHERE host = 'a' AND id = '1';");
    database.executeQuery("DELETE FROM Origins WHERE origin NOT IN ('a','b');");
  }
  return 0;
}
