// How the worker's memory grows with what it walks: it should not.

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "bench/Bench.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

void makeFile(const fs::path& path) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << "data";
}

/// The peak memory of a run over what `make` builds at ten times the size, over that at the size.
double growth(const std::string& worker, int size,
              const std::function<void(const fs::path& volume, int size)>& make) {
  std::array<double, 2> memory{};
  for (std::size_t i = 0; i < memory.size(); ++i) {
    const Scratch scratch;
    const fs::path volume = scratch.path("");
    fs::create_directories(volume / "Users/anna");
    make(volume, i == 0 ? size : size * 10);
    memory[i] = usageOf({worker, "Safari"}, volume / "Users/anna").memory;
  }
  return memory[1] / memory[0];
}

void makeCache(const fs::path& volume, int size) {
  const fs::path cache = volume / "Users/anna/Library/Caches/com.apple.Safari/fsCachedData";
  for (int i = 0; i < size; ++i) {
    makeFile(cache / std::to_string(i % 100) / std::to_string(i));
  }
}

void makeFlash(const fs::path& volume, int size) {
  const fs::path player = volume / "Users/anna/Library/Preferences/Macromedia/Flash Player";
  for (int i = 0; i < size; ++i) {
    const std::string host = "host" + std::to_string(i % 100) + ".example";
    makeFile(player / "#SharedObjects" / std::to_string(i / 100) / host / "x.sol");
  }
}

void makeTemporaryFolders(const fs::path& volume, int size) {
  for (int i = 0; i < size; ++i) {
    makeFile(volume / "private/var/folders" / std::to_string(i % 10) / std::to_string(i / 10) /
             "C/MediaCache/video");
  }
}

}  // namespace

std::vector<Comparison> memoryBenchmarks(const std::string& worker) {
  return {
      {"peak memory, cache of 20,000 files", "2,000 files", growth(worker, 2000, makeCache), 1.1},
      {"peak memory, Flash tree of 20,000 folders", "2,000 folders",
       growth(worker, 2000, makeFlash), 1.1},
      {"peak memory, 5,000 temporary folders", "500 folders",
       growth(worker, 500, makeTemporaryFolders), 1.1}};
}

}  // namespace tasselby
