#include "samples/TemporaryFolder.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace tasselby {
namespace fs = std::filesystem;

namespace {

/// A container's is of 64 MiB, and the tests of one machine share it.
constexpr std::uintmax_t kRoom = std::uintmax_t{512} << 20U;

fs::path newFolder(const char* parent) {
  std::error_code error;
  const fs::space_info memory = fs::space("/dev/shm", error);
  const char* shared = !error && memory.available >= kRoom ? "/dev/shm" : nullptr;
  for (const char* place :
       {parent, shared, static_cast<const char*>(std::getenv("TMPDIR")), "/tmp"}) {
    std::string pattern = std::string(place != nullptr ? place : "") + "/tasselby-XXXXXX";
    if (place != nullptr && ::mkdtemp(pattern.data()) != nullptr) {
      return fs::canonical(pattern);
    }
  }
  std::fputs("There is no folder for temporary files: /dev/shm, $TMPDIR and /tmp refuse one.\n",
             stderr);
  std::exit(1);
}

}  // namespace

TemporaryFolder::TemporaryFolder(const char* parent) : path_(newFolder(parent)) {}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace tasselby
