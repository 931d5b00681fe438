#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "samples/TemporaryFolder.h"

namespace tasselby {

/// One line of the table: the worker's cost as a multiple of a peer's that does the same work in
/// the same run.
struct Comparison {
  std::string name;
  std::string peer;
  double ratio = 0;
  /// The most that `ratio` may be.
  double bar = 0;
};

/// What a child process used.
struct Usage {
  /// User and system time, in seconds.
  double processor = 0;
  /// The largest resident set, in bytes.
  double memory = 0;
};

/// The seconds that `work` takes.
double secondsOf(const std::function<void()>& work);

/// The least of `rounds` times of ours over the least of the peer's, ours first in each round.
/// `prepare` runs before every measurement and is not measured.
double leastRatio(int rounds, const std::function<void()>& prepare,
                  const std::function<void()>& ours, const std::function<void()>& peer);

/// Runs `command` with HOME, which is `home`, as all of its environment.
Usage usageOf(const std::vector<std::string>& command, const std::string& home = "/");

/// The elapsed time of `command`, run as by `usageOf`, over that of `peer`, which runs in a process
/// of its own. The two take turns of some milliseconds, so that a disk that is slow for a while is
/// slow for both.
double ratioInTurns(const std::vector<std::string>& command, const std::string& home,
                    const std::function<void()>& peer);

/// A folder for one benchmark, removed at the end. On the disk the build is on, since a temporary
/// folder may be in memory.
class Scratch {
 public:
  /// The full path of `path`, whose folders are made.
  std::string path(const std::string& path) const;

 private:
  TemporaryFolder folder_{"build"};
};

/// Makes a cache of `files` small files in a hundred folders.
void makeCache(const std::filesystem::path& folder, int files);

// The benchmarks by room. `worker` is the path of the worker's binary.

std::vector<Comparison> startBenchmarks(const std::string& worker);
std::vector<Comparison> storageBenchmarks(const std::string& worker);
std::vector<Comparison> sqliteBenchmarks(const std::string& worker);
std::vector<Comparison> cookieBenchmarks(const std::string& worker);
std::vector<Comparison> webStorageBenchmarks(const std::string& worker);
std::vector<Comparison> memoryBenchmarks(const std::string& worker);
std::vector<Comparison> wholeRunBenchmarks(const std::string& worker);

}  // namespace tasselby
