// Shows what a run of the worker would remove from the home folder, and changes nothing there.
//
// A child process does the work, so that whatever ends it, this one is there to remove the scratch
// folder.

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <sys/time.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "app/Browsers.h"
#include "platform/HardError.h"
#include "platform/Process.h"
#include "report/Forecast.h"
#include "report/Print.h"

namespace tasselby {
namespace {

constexpr int kBadInput = 2;
constexpr int kSignalBase = 128;
constexpr int kProgressSeconds = 1;

struct Request {
  /// What the worker would be started with.
  std::vector<std::string> arguments;
  std::string home;
  bool items = false;
  bool json = false;
};

int complain(const std::string& line) {
  std::cerr << "tasselby-preview: " << line << '\n';
  return kBadInput;
}

/// Takes the program's own options out of the arguments.
Request requestOf(int argc, char** argv) {
  Request request;
  const std::vector<std::string> given(argv, argv + argc);
  for (const std::string& argument : given) {
    if (argument == "--items") {
      request.items = true;
    } else if (argument == "--json") {
      request.json = true;
    } else {
      request.arguments.push_back(argument);
    }
  }
  const char* home = std::getenv("HOME");
  std::error_code error;
  if (home != nullptr && *home != '\0') {
    request.home = std::filesystem::absolute(home, error).native();
  }
  return request;
}

std::string browserOf(const Request& request) {
  const auto& names = request.arguments;
  const auto name = std::ranges::find_if(names, [](const std::string& argument) {
    return std::ranges::find(kBrowserNames, argument) != kBrowserNames.end();
  });
  return name == names.end() ? "" : *name;
}

/// The signals that the parent waits for: those that end a program, unless they are ignored, the
/// child's end, and the clock of the progress line.
sigset_t awaitedSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action{};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
      sigaddset(&set, signal);
    }
  }
  sigaddset(&set, SIGCHLD);
  sigaddset(&set, SIGALRM);
  return set;
}

/// Makes the preview in this process and writes it to `path`. Answers the exit status.
int preview(const Request& request, const ScratchFolder& scratch, const std::string& path) {
  raiseOpenFileLimit();
  try {
    const FileManager files(request.home);
    const RunResult result = forecast(request.arguments, files, scratch);
    std::ofstream out(path, std::ios::binary);
    if (request.json) {
      printJson(out, result);
    } else {
      printText(out, result,
                {"What a run for " + result.browser + " would remove from " + request.home +
                     ". Nothing was changed.",
                 request.items, wantsColor()});
    }
    if (!out.flush()) {
      return kBadInput;
    }
    return result.endedAt.empty() ? EXIT_SUCCESS : kHardErrorStatus;
  } catch (const std::exception&) {
    return kBadInput;
  }
}
/// How waiting for the child ended: by its end, or by a signal to this process.
struct Ending {
  int status = 0;
  int signal = 0;
};

Ending waitFor(pid_t child, const sigset_t& awaited) {
  if (::isatty(STDERR_FILENO) != 0) {
    const itimerval everySecond = {{kProgressSeconds, 0}, {kProgressSeconds, 0}};
    ::setitimer(ITIMER_REAL, &everySecond, nullptr);
  }
  Ending ending;
  for (int seconds = 0;;) {
    int signal = 0;
    sigwait(&awaited, &signal);
    if (signal == SIGALRM) {
      seconds += kProgressSeconds;
      std::cerr << "\rLooking, " << seconds << " s" << std::flush;
      continue;
    }
    if (signal != SIGCHLD) {
      ending.signal = signal;
      ::kill(child, SIGKILL);
    }
    // A child that was merely stopped is waited for again.
    if (::waitpid(child, &ending.status, signal == SIGCHLD ? WNOHANG : 0) == child) {
      std::cerr << (seconds != 0 ? "\r\033[K" : "") << std::flush;
      return ending;
    }
  }
}

/// Ends this process the way `signal` would have, had it not been held back.
int endBy(int signal, const sigset_t& awaited) {
  std::signal(signal, SIG_DFL);
  ::raise(signal);
  ::sigprocmask(SIG_UNBLOCK, &awaited, nullptr);
  return kSignalBase + signal;
}

int show(const Request& request) {
  std::signal(SIGCHLD, SIG_DFL);
  const sigset_t awaited = awaitedSignals();
  sigset_t before;
  ::sigprocmask(SIG_BLOCK, &awaited, &before);
  std::ifstream output;
  Ending ending;
  {
    const ScratchFolder scratch;
    const std::string path = scratch.path() + "/output";
    const pid_t child = ::fork();
    if (child < 0) {
      return complain("no process can be started");
    }
    if (child == 0) {
      ::sigprocmask(SIG_SETMASK, &before, nullptr);
      ::_exit(preview(request, scratch, path));
    }
    ending = waitFor(child, awaited);
    output.open(path, std::ios::binary);
  }
  if (ending.signal != 0) {
    return endBy(ending.signal, awaited);
  }
  if (WIFSIGNALED(ending.status)) {
    complain("ended by signal " + std::to_string(WTERMSIG(ending.status)));
    return kSignalBase + WTERMSIG(ending.status);
  }
  if (WEXITSTATUS(ending.status) == kBadInput) {
    throw ScratchError();
  }
  std::cout << output.rdbuf() << std::flush;
  return std::cout ? WEXITSTATUS(ending.status) : complain("the output cannot be written");
}

int start(int argc, char** argv) {
  const Request request = requestOf(argc, argv);
  if (browserOf(request).empty()) {
    std::string names;
    for (const std::string_view name : kBrowserNames) {
      names.append(names.empty() ? "" : ", ").append(name);
    }
    return complain("name one of " + names);
  }
  if (request.home.empty() || ::access((request.home + "/").c_str(), R_OK | X_OK) != 0) {
    return complain("HOME is missing or cannot be read: " + request.home);
  }
  try {
    return show(request);
  } catch (const ScratchError&) {
    std::error_code ignored;
    return complain("no room for a scratch folder in " +
                    std::filesystem::temp_directory_path(ignored).native());
  }
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  return tasselby::start(argc, argv);
}
