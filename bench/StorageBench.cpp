// Removal against rm, overwriting against a plain loop and shred.

#include <cstddef>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>

#include "bench/Bench.h"
#include "storage/SecureDelete.h"

namespace tasselby {
namespace {

constexpr std::size_t kFileSize = std::size_t{256} << 20;

/// Writes the file anew and has the system forget it.
void makeColdFile(const std::string& path) {
  std::ofstream(path) << std::string(kFileSize, 'x');
  const int file = ::open(path.c_str(), O_RDWR);
  ::fsync(file);
  ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
  ::close(file);
}

/// The plain way: a buffer written once with every call.
void overwriteByCalls(const std::string& path) {
  for (const char byte : {'\x55', '\xAA', '\x33'}) {
    const std::string buffer(1024, byte);
    const int file = ::open(path.c_str(), O_RDWR);
    for (std::size_t written = 0; written < kFileSize; written += buffer.size()) {
      if (::write(file, buffer.data(), buffer.size()) < 0) {
        break;
      }
    }
    ::close(file);
  }
}

}  // namespace

std::vector<Comparison> storageBenchmarks(const std::string& worker) {
  const Scratch scratch;
  const std::string home = scratch.path("Users/anna");
  const std::string cache = scratch.path("Users/anna/Library/Caches/Camino/Cache");
  const auto fill = [&] { makeCache(cache, 100000); };
  const auto run = [&] { usageOf({worker, "Camino"}, home); };
  const double removal = leastRatio(3, fill, run, [&] { usageOf({"/bin/rm", "-rf", cache}); });

  const std::string file = scratch.path("file");
  const auto prepare = [&] { makeColdFile(file); };
  const auto wipe = [&] { SecureDelete::wipe(FileManager(""), file); };
  const auto loop = [&] { overwriteByCalls(file); };
  const auto shred = [&] { usageOf({"/usr/bin/shred", "-n", "3", file}); };
  return {{"run that removes a cache of 100,000 files", "rm -rf", removal, 1.0},
          {"three passes over 256 MiB not in memory", "1024-byte writes",
           leastRatio(1, prepare, wipe, loop), 0.1},
          {"three passes over 256 MiB not in memory", "shred -n 3",
           leastRatio(2, prepare, wipe, shred), 0.5}};
}

}  // namespace tasselby
