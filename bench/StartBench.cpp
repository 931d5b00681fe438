// What starting costs, against the smallest program there is.

#include "bench/Bench.h"

namespace tasselby {
namespace {

constexpr int kStarts = 400;

/// The processor time of many runs of `command` over that of as many of the smallest program.
double startRatio(const std::vector<std::string>& command, const std::string& home) {
  double ours = 0;
  double theirs = 0;
  for (int i = 0; i < kStarts; ++i) {
    ours += usageOf(command, home).processor;
    theirs += usageOf({"/bin/true"}).processor;
  }
  return ours / theirs;
}

}  // namespace

std::vector<Comparison> startBenchmarks(const std::string& worker) {
  const Scratch scratch;
  const std::string home = scratch.path("Users/anna/");
  return {{"refused start, processor time", "/bin/true", startRatio({worker}, home), 1.35},
          {"run over an empty home, processor time", "/bin/true",
           startRatio({worker, "Safari"}, home), 1.5}};
}

}  // namespace tasselby
