#pragma once

#include <string>
#include <vector>

namespace tasselby {

/// What a run of the worker's binary came to.
struct WorkerRun {
  /// The exit status; 128 plus the signal for one that a signal ended.
  int status = 0;
  /// All that was written to standard output and standard error.
  std::string output;
  double seconds = 0;
};

/// Runs `command`, the binary and its arguments, over the home folder `home`, with the session bus
/// at `busAddress`, from the folder `workingFolder` (none: this process's). The run gets a fresh
/// environment, little of which is this process's, and a umask of 022.
WorkerRun runWorker(std::vector<std::string> command, const std::string& home,
                    const std::string& busAddress = "unix:path=/dev/null",
                    const std::string& workingFolder = ".");

}  // namespace tasselby
