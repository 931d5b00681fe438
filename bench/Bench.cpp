#include "bench/Bench.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "samples/RunWorker.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

constexpr auto kTurn = std::chrono::milliseconds(20);

/// Starts `command` with HOME, which is `home`, as all of its environment. What cannot be started
/// cannot be measured: it ends the program.
pid_t start(const std::vector<std::string>& command, const std::string& home) {
  const std::vector<std::string> variables = {"HOME=" + home};
  pid_t child = 0;
  if (::posix_spawn(&child, command[0].c_str(), nullptr, nullptr, pointersTo(command).data(),
                    pointersTo(variables).data()) != 0) {
    std::perror(command[0].c_str());
    std::exit(2);
  }
  return child;
}

double secondsIn(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// A process that runs only while it has its turn.
struct Runner {
  pid_t process;
  bool isRunning = true;
  double seconds = 0;

  void takeTurn() {
    ::kill(process, SIGCONT);
    seconds += secondsOf([this] {
      std::this_thread::sleep_for(kTurn);
      isRunning = ::waitpid(process, nullptr, WNOHANG) == 0;
    });
    if (isRunning) {
      ::kill(process, SIGSTOP);
    }
  }
};

}  // namespace

double secondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double leastRatio(int rounds, const std::function<void()>& prepare,
                  const std::function<void()>& ours, const std::function<void()>& peer) {
  std::vector<double> our;
  std::vector<double> their;
  for (int round = 0; round < rounds; ++round) {
    prepare();
    our.push_back(secondsOf(ours));
    prepare();
    their.push_back(secondsOf(peer));
  }
  return std::ranges::min(our) / std::ranges::min(their);
}

Usage usageOf(const std::vector<std::string>& command, const std::string& home) {
  rusage used = {};
  ::wait4(start(command, home), nullptr, 0, &used);
  return {secondsIn(used.ru_utime) + secondsIn(used.ru_stime),
          static_cast<double>(used.ru_maxrss) * 1024};
}

double ratioInTurns(const std::vector<std::string>& command, const std::string& home,
                    const std::function<void()>& peer) {
  Runner ours{start(command, home)};
  Runner theirs{::fork()};
  if (theirs.process == 0) {
    peer();
    ::_exit(0);
  }
  ::kill(ours.process, SIGSTOP);
  ::kill(theirs.process, SIGSTOP);
  while (ours.isRunning || theirs.isRunning) {
    for (Runner* runner : {&ours, &theirs}) {
      if (runner->isRunning) {
        runner->takeTurn();
      }
    }
  }
  return ours.seconds / theirs.seconds;
}

std::string Scratch::path(const std::string& path) const {
  const std::filesystem::path full = folder_.path() / path;
  std::filesystem::create_directories(full.parent_path());
  return full.native();
}

void makeCache(const std::filesystem::path& folder, int files) {
  for (int i = 0; i < files; ++i) {
    makeFile(folder / std::to_string(i % 100) / std::to_string(i));
  }
}

}  // namespace tasselby
