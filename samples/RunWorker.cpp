#include "samples/RunWorker.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "samples/TemporaryFolder.h"

#ifdef __APPLE__
extern char** environ;
#endif

namespace tasselby {
namespace {

constexpr unsigned kLongestRunSeconds = 600;

/// What a process is to have of this one's environment: where programs are, and what holds a test's
/// disturbances, the sanitizers' and GNUstep's settings.
constexpr std::array<std::string_view, 7> kHandedOn = {
    "PATH=",         "LD_PRELOAD=",         "FAIL_", "ASAN_OPTIONS=", "UBSAN_OPTIONS=",
    "LSAN_OPTIONS=", "GNUSTEP_CONFIG_FILE="};

/// The environment of a run: nothing of it is the user's, whose caches, language and folders would
/// decide what the libraries of a run do. What they write goes to `scratch`.
std::vector<std::string> environmentOf(const std::string& home, const std::string& busAddress,
                                       const std::string& scratch) {
  std::vector<std::string> variables = {"HOME=" + home, "DBUS_SESSION_BUS_ADDRESS=" + busAddress,
                                        "LANG=C.UTF-8"};
  for (const char* name : {"TMPDIR=", "XDG_CACHE_HOME=", "XDG_CONFIG_HOME=", "XDG_DATA_HOME=",
                           "XDG_STATE_HOME=", "XDG_RUNTIME_DIR="}) {
    variables.push_back(name + scratch);
  }
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (std::ranges::any_of(kHandedOn, [&](auto prefix) { return text.starts_with(prefix); })) {
      variables.emplace_back(text);
    }
  }
  return variables;
}

/// The form that the system wants; points into `texts`.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

[[noreturn]] void become(const std::vector<char*>& command, const std::vector<char*>& environment,
                         const std::string& workingFolder, int output) {
  ::dup2(output, STDOUT_FILENO);
  ::dup2(output, STDERR_FILENO);
  ::close(output);
  ::umask(S_IWGRP | S_IWOTH);
  // A run takes milliseconds; one that hangs is ended by the alarm.
  ::alarm(kLongestRunSeconds);
  if (::chdir(workingFolder.c_str()) == 0) {
    ::execve(command[0], command.data(), environment.data());
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

WorkerRun runWorker(std::vector<std::string> command, const std::string& home,
                    const std::string& busAddress, const std::string& workingFolder) {
  WorkerRun run;
  const TemporaryFolder scratch;
  auto variables = environmentOf(home, busAddress, scratch.path().native());
  const std::vector<char*> arguments = pointersTo(command);
  const std::vector<char*> environment = pointersTo(variables);
  std::array<int, 2> output{};
  if (::pipe(output.data()) != 0) {
    run.status = 127;
    return run;
  }
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(output[0]);
    become(arguments, environment, workingFolder, output[1]);
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
