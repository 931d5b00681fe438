// How the worker's memory grows with what it walks: it should not.

#include <string>

#include "bench/Bench.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

/// The peak memory of a run over ten times `files` files, over that of a run over `files`. Where
/// the file with a number is on the volume, `place` answers.
double growth(const std::string& worker, int files, std::string (*place)(int number)) {
  const auto memory = [&](int count) {
    const Scratch scratch;
    for (int i = 0; i < count; ++i) {
      makeFile(scratch.path(place(i)));
    }
    return usageOf({worker, "Safari"}, scratch.path("Users/anna/")).memory;
  };
  return memory(10 * files) / memory(files);
}

std::string inCache(int number) {
  return "Users/anna/Library/Caches/com.apple.Safari/fsCachedData/" + std::to_string(number % 100) +
         "/" + std::to_string(number);
}

std::string inFlashTree(int number) {
  return "Users/anna/Library/Preferences/Macromedia/Flash Player/#SharedObjects/" +
         std::to_string(number / 100) + "/host" + std::to_string(number % 100) + ".example/x.sol";
}

std::string inTemporaryFolder(int number) {
  return "private/var/folders/" + std::to_string(number % 10) + "/" + std::to_string(number / 10) +
         "/C/MediaCache/video";
}

}  // namespace

std::vector<Comparison> memoryBenchmarks(const std::string& worker) {
  return {{"peak memory, cache of 20,000 files", "2,000 files", growth(worker, 2000, inCache), 1.1},
          {"peak memory, Flash tree of 20,000 folders", "2,000 folders",
           growth(worker, 2000, inFlashTree), 1.1},
          {"peak memory, 5,000 temporary folders", "500 folders",
           growth(worker, 500, inTemporaryFolder), 1.1}};
}

}  // namespace tasselby
