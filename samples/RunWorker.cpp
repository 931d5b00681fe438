#include "samples/RunWorker.h"

#include <algorithm>
#include <array>
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

/// What a process is to have of this one's environment: where programs are, the sanitizers' and
/// GNUstep's settings.
constexpr std::array<std::string_view, 5> kHandedOn = {
    "PATH=", "ASAN_OPTIONS=", "UBSAN_OPTIONS=", "LSAN_OPTIONS=", "GNUSTEP_CONFIG_FILE="};

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

}  // namespace

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (const std::string& text : texts) {
    pointers.push_back(const_cast<char*>(text.data()));
  }
  pointers.push_back(nullptr);
  return pointers;
}

WorkerRun runWorker(const std::vector<std::string>& command, const std::string& home,
                    const std::string& busAddress, const std::string& workingFolder) {
  const TemporaryFolder scratch;
  const auto variables = environmentOf(home, busAddress, scratch.path());
  const std::vector<char*> arguments = pointersTo(command);
  const std::vector<char*> environment = pointersTo(variables);
  std::array<int, 2> output{};
  const pid_t child = ::pipe(output.data()) == 0 ? ::fork() : -1;
  if (child == 0) {
    ::dup2(output[1], STDOUT_FILENO);
    ::dup2(output[1], STDERR_FILENO);
    ::close(output[0]);
    ::close(output[1]);
    ::umask(S_IWGRP | S_IWOTH);
    // A run takes milliseconds; one that hangs is ended by the alarm.
    ::alarm(kLongestRunSeconds);
    if (::chdir(workingFolder.c_str()) == 0) {
      ::execve(arguments[0], arguments.data(), environment.data());
    }
    ::_exit(127);
  }
  ::close(output[1]);
  WorkerRun run;
  std::array<char, 4096> buffer;
  for (ssize_t count = 0; (count = ::read(output[0], buffer.data(), buffer.size())) > 0;) {
    run.output.append(buffer.data(), static_cast<std::size_t>(count));
  }
  ::close(output[0]);
  int status = 127 << 8U;
  ::waitpid(child, &status, 0);
  run.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return run;
}

}  // namespace tasselby
