// Shows what a run of the worker would remove from the home folder, and changes nothing there.
//
// A child process does the work, so that whatever ends it, this one is there to remove the scratch
// folder.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
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

constexpr int kNoPreview = 2;

struct Request {
  /// What the worker would be started with.
  std::vector<std::string> arguments;
  std::string home;
  bool items = false;
  bool json = false;
};

/// How waiting for the child ended: by its end, or by a signal to this process.
struct Ending {
  int status = 0;
  int signal = 0;
};

int refuse(const std::string& why) {
  std::cerr << "tasselby-preview: " << why << '\n';
  return kNoPreview;
}

Request requestOf(int argc, char** argv) {
  Request request;
  request.arguments.assign(argv, argv + argc);
  request.items = std::erase(request.arguments, "--items") != 0;
  request.json = std::erase(request.arguments, "--json") != 0;
  const char* home = std::getenv("HOME");
  std::error_code error;
  if (home != nullptr && *home != '\0') {
    request.home = std::filesystem::absolute(home, error).native();
  }
  return request;
}

/// The signals that are waited for: those that end a program, unless they are ignored; the child's
/// end; the clock of the progress line.
sigset_t awaitedSignals() {
  std::signal(SIGCHLD, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD, SIGALRM}) {
    struct sigaction action{};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
      sigaddset(&set, signal);
    }
  }
  return set;
}

/// Makes the preview in this process and writes it to `path`. Answers the exit status.
int preview(const Request& request, const ScratchFolder& scratch, const std::string& path) try {
  raiseOpenFileLimit();
  const RunResult result = forecast(request.arguments, FileManager(request.home), scratch);
  std::ofstream out(path, std::ios::binary);
  if (request.json) {
    printJson(out, result);
  } else {
    printText(
        out, result,
        "A run for " + result.browser + " over " + request.home + " would remove:", request.items);
  }
  const int status = result.endedAt.empty() ? EXIT_SUCCESS : kHardErrorStatus;
  return out.flush() ? status : kNoPreview;
} catch (const std::exception&) {
  return kNoPreview;
}

Ending waitFor(pid_t child, const sigset_t& awaited) {
  if (::isatty(STDERR_FILENO) != 0) {
    const timeval second = {.tv_sec = 1, .tv_usec = 0};
    const itimerval everySecond = {.it_interval = second, .it_value = second};
    ::setitimer(ITIMER_REAL, &everySecond, nullptr);
  }
  Ending ending;
  for (int seconds = 0;;) {
    int signal = 0;
    sigwait(&awaited, &signal);
    if (signal == SIGALRM) {
      std::cerr << "\rLooking, " << ++seconds << " s" << std::flush;
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

int show(const Request& request) {
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
      return refuse("no process can be started");
    }
    if (child == 0) {
      ::sigprocmask(SIG_SETMASK, &before, nullptr);
      ::_exit(preview(request, scratch, path));
    }
    ending = waitFor(child, awaited);
    output.open(path, std::ios::binary);
  }
  if (ending.signal != 0) {
    // Ends this process the way it would have ended at once.
    std::signal(ending.signal, SIG_DFL);
    ::raise(ending.signal);
    ::sigprocmask(SIG_UNBLOCK, &awaited, nullptr);
  }
  if (!WIFEXITED(ending.status)) {
    return refuse("ended by signal " + std::to_string(WTERMSIG(ending.status)));
  }
  if (WEXITSTATUS(ending.status) == kNoPreview) {
    throw ScratchError();
  }
  std::cout << output.rdbuf() << std::flush;
  return std::cout ? WEXITSTATUS(ending.status) : refuse("the output cannot be written");
}

int start(const Request& request) try {
  const auto isBrowser = [](const std::string& argument) {
    return !browserNamed(argument).name.empty();
  };
  if (std::ranges::none_of(request.arguments, isBrowser)) {
    std::string names;
    for (const Browser& browser : kBrowsers) {
      names.append(names.empty() ? "" : ", ").append(browser.name);
    }
    return refuse("name one of " + names);
  }
  if (request.home.empty() || ::access((request.home + "/").c_str(), R_OK | X_OK) != 0) {
    return refuse("HOME is missing or cannot be read: " + request.home);
  }
  return show(request);
} catch (const ScratchError&) {
  std::error_code error;
  const std::string folder = std::filesystem::temp_directory_path(error).native();
  return refuse("no room for a scratch folder in " + (error ? "TMPDIR" : folder));
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  return tasselby::start(tasselby::requestOf(argc, argv));
}
