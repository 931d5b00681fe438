// Removal against rm, overwriting against a plain loop and shred.

#include <array>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "bench/Bench.h"
#include "storage/SecureDelete.h"

namespace tasselby {
namespace {

constexpr int kCacheFiles = 100000;
constexpr off_t kFileSize = off_t{256} << 20;

/// A cache of `kCacheFiles` small files, a thousand to a folder.
void makeCache(const std::string& folder) {
  for (int i = 0; i < kCacheFiles; ++i) {
    const std::string path = folder + "/" + std::to_string(i / 1000);
    if (i % 1000 == 0) {
      std::filesystem::create_directories(path);
    }
    std::ofstream(path + "/" + std::to_string(i)) << "cached";
  }
}

/// Writes the file anew and has the system forget it.
void makeColdFile(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
  const std::string block(1 << 20, 'x');
  for (off_t written = 0; written < kFileSize; written += static_cast<off_t>(block.size())) {
    if (::write(file, block.data(), block.size()) < 0) {
      break;
    }
  }
  ::fsync(file);
  ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
  ::close(file);
}

/// The plain way: the buffer written once with every call.
void overwriteByCalls(const std::string& path) {
  for (const int byte : {0x55, 0xAA, 0x33}) {
    std::array<char, 1024> buffer;
    std::memset(buffer.data(), byte, buffer.size());
    const int file = ::open(path.c_str(), O_RDWR);
    for (off_t left = kFileSize; left > 0; left -= static_cast<off_t>(buffer.size())) {
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
  const double removal = leastRatio(
      3, [&] { makeCache(cache); }, [&] { usageOf({worker, "Camino"}, home); },
      [&] { usageOf({"/bin/rm", "-rf", cache}); });

  const std::string file = scratch.path("file");
  const auto prepare = [&] { makeColdFile(file); };
  const auto wipe = [&] { SecureDelete::wipe(FileManager(""), file); };
  const double loop = leastRatio(1, prepare, wipe, [&] { overwriteByCalls(file); });
  const double shred =
      leastRatio(2, prepare, wipe, [&] { usageOf({"/usr/bin/shred", "-n", "3", file}); });
  return {{"run that removes a cache of 100,000 files", "rm -rf", removal, 1.0},
          {"three passes over 256 MiB not in memory", "1024-byte writes", loop, 0.1},
          {"three passes over 256 MiB not in memory", "shred -n 3", shred, 0.5}};
}

}  // namespace tasselby
