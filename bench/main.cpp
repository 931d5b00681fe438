// Prints one table: what the worker costs against another program doing the same work.
//
//   worker-bench WORKER [ROOM ...]

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/Bench.h"

namespace tasselby {
namespace {

struct Room {
  const char* name;
  std::vector<Comparison> (*run)(const std::string& worker);
};

/// Runs the rooms in `names`, all of them when it is empty. Answers whether every bar held.
bool runRooms(const std::string& worker, const std::vector<std::string>& names) {
  const std::vector<Room> rooms = {
      {"start", startBenchmarks},           {"storage", storageBenchmarks},
      {"sqlite", sqliteBenchmarks},         {"cookies", cookieBenchmarks},
      {"webstorage", webStorageBenchmarks}, {"memory", memoryBenchmarks},
      {"whole", wholeRunBenchmarks}};
  std::filesystem::create_directories("build");
  std::printf("%-52s %-36s %8s %7s\n", "worker", "peer", "ratio", "bar");
  bool allHold = true;
  for (const Room& room : rooms) {
    if (!names.empty() && std::ranges::count(names, room.name) == 0) {
      continue;
    }
    for (const Comparison& line : room.run(worker)) {
      const bool holds = line.ratio <= line.bar;
      allHold = allHold && holds;
      std::printf("%-52s %-36s %8.3f %7.3g  %s\n", line.name.c_str(), line.peer.c_str(), line.ratio,
                  line.bar, holds ? "holds" : "MISSED");
      std::fflush(stdout);
    }
  }
  return allHold;
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  if (argc < 2) {
    std::fprintf(
        stderr,
        "usage: worker-bench WORKER [start|storage|sqlite|cookies|webstorage|memory|whole ...]\n");
    return 2;
  }
  return tasselby::runRooms(argv[1], {argv + 2, argv + argc}) ? 0 : 1;
}
