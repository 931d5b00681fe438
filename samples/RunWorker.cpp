#include "samples/RunWorker.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace tasselby {
namespace {

constexpr unsigned kLongestRunSeconds = 120;

[[noreturn]] void become(const std::vector<std::string>& command, const std::string& home,
                         const std::string& busAddress, const std::string& workingFolder,
                         int output) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  ::setenv("HOME", home.c_str(), 1);
  ::setenv("DBUS_SESSION_BUS_ADDRESS", busAddress.c_str(), 1);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(output, STDERR_FILENO);
  ::close(output);
  // A run takes milliseconds; one that hangs is ended by the alarm.
  ::alarm(kLongestRunSeconds);
  if (::chdir(workingFolder.c_str()) == 0) {
    ::execv(arguments[0], arguments.data());
  }
  ::_exit(127);
}

std::string readToEnd(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer;
  for (ssize_t count = 1; count > 0;) {
    count = ::read(descriptor, buffer.data(), buffer.size());
    text.append(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  return text;
}

}  // namespace

WorkerRun runWorker(const std::vector<std::string>& command, const std::string& home,
                    const std::string& busAddress, const std::string& workingFolder) {
  WorkerRun run;
  std::array<int, 2> output{};
  if (::pipe(output.data()) != 0) {
    run.status = 127;
    return run;
  }
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(output[0]);
    become(command, home, busAddress, workingFolder, output[1]);
  }
  ::close(output[1]);
  run.output = readToEnd(output[0]);
  ::close(output[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  run.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return run;
}

}  // namespace tasselby
