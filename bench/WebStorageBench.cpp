// Local storage against listing the folder and unlinking in a loop.

#include <cstring>
#include <dirent.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "bench/Bench.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

constexpr int kFiles = 50000;

/// Local-storage files of as many origins. Every second one has a name the loop below unlinks.
void makeFiles(const std::string& folder) {
  for (int i = 0; i < kFiles; ++i) {
    const char* name = i % 2 == 0 ? "https_" : "safari-extension_com.example.";
    makeFile(folder + name + std::to_string(i) + ".example_0.localstorage");
  }
}

void unlinkByHand(const std::string& folder) {
  std::vector<std::string> chosen;
  DIR* listing = ::opendir(folder.c_str());
  while (const dirent* entry = ::readdir(listing)) {
    if (std::strncmp(entry->d_name, "https", 5) == 0) {
      chosen.push_back(folder + entry->d_name);
    }
  }
  ::closedir(listing);
  for (const std::string& path : chosen) {
    ::unlink(path.c_str());
  }
}

}  // namespace

std::vector<Comparison> webStorageBenchmarks(const std::string& worker) {
  const Scratch scratch;
  const std::string home = scratch.path("Users/anna");
  const std::string folder = scratch.path("Users/anna/Library/Safari/LocalStorage/");
  const auto prepare = [&] { makeFiles(folder); };
  const auto run = [&] { usageOf({worker, "Safari"}, home); };
  const double ratio = leastRatio(3, prepare, run, [&] { unlinkByHand(folder); });
  return {{"run over 50,000 local-storage files, half go", "readdir and unlink", ratio, 1.2}};
}

}  // namespace tasselby
