// Prints one table: what the worker costs against another program doing the same work.
//
//   worker-bench WORKER

#include <cstdio>

#include "bench/Bench.h"

namespace {

bool print(const std::vector<tasselby::Comparison>& comparisons) {
  bool allHold = true;
  for (const tasselby::Comparison& line : comparisons) {
    const bool holds = line.ratio <= line.bar;
    allHold = allHold && holds;
    std::printf("%-52s %-36s %8.3f %7.3g  %s\n", line.name.c_str(), line.peer.c_str(), line.ratio,
                line.bar, holds ? "holds" : "MISSED");
    std::fflush(stdout);
  }
  return allHold;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: worker-bench WORKER\n");
    return 2;
  }
  std::printf("%-52s %-36s %8s %7s\n", "worker", "peer", "ratio", "bar");
  bool allHold = print(tasselby::startBenchmarks(argv[1]));
  allHold = print(tasselby::storageBenchmarks(argv[1])) && allHold;
  allHold = print(tasselby::sqliteBenchmarks()) && allHold;
  allHold = print(tasselby::cookieBenchmarks(argv[1])) && allHold;
  allHold = print(tasselby::webStorageBenchmarks(argv[1])) && allHold;
  allHold = print(tasselby::memoryBenchmarks(argv[1])) && allHold;
  allHold = print(tasselby::wholeRunBenchmarks(argv[1])) && allHold;
  return allHold ? 0 : 1;
}
