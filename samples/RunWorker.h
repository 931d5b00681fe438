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
};

/// Runs `command`, the binary and its arguments, over the home folder `home`, with the session bus
/// at `busAddress`, from the folder `workingFolder` (none: this process's). The run gets a fresh
/// environment, little of which is this process's, and a umask of 022. It is over when all that it
/// started has let go of its output as well.
WorkerRun runWorker(const std::vector<std::string>& command, const std::string& home,
                    const std::string& busAddress = "unix:path=/dev/null",
                    const std::string& workingFolder = ".");

/// `texts` as the system's calls want them, with a null behind the last. Points into them.
std::vector<char*> pointersTo(const std::vector<std::string>& texts);

}  // namespace tasselby
