#include "bench/Bench.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tasselby {
namespace {

constexpr auto kTurn = std::chrono::milliseconds(20);

/// Starts `command` with HOME, which is `home`, as all of its environment. Answers 0 on failure.
pid_t start(const std::vector<std::string>& command, const std::string& home) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  std::string variable = "HOME=" + home;
  const std::array<char*, 2> environment = {variable.data(), nullptr};
  pid_t child = 0;
  const int error =
      ::posix_spawn(&child, arguments[0], nullptr, nullptr, arguments.data(), environment.data());
  return error == 0 ? child : 0;
}

double secondsIn(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

double secondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double leastRatio(int rounds, const std::function<void()>& prepare,
                  const std::function<void()>& ours, const std::function<void()>& peer) {
  double bestOurs = 0;
  double bestPeer = 0;
  for (int round = 0; round < rounds; ++round) {
    prepare();
    const double our = secondsOf(ours);
    prepare();
    const double their = secondsOf(peer);
    bestOurs = round == 0 ? our : std::min(bestOurs, our);
    bestPeer = round == 0 ? their : std::min(bestPeer, their);
  }
  return bestOurs / bestPeer;
}

Usage usageOf(const std::vector<std::string>& command, const std::string& home) {
  Usage usage;
  usage.elapsed = secondsOf([&] {
    const pid_t child = start(command, home);
    int status = 0;
    rusage used{};
    ::wait4(child, &status, 0, &used);
    usage.processor = secondsIn(used.ru_utime) + secondsIn(used.ru_stime);
    usage.memory = static_cast<double>(used.ru_maxrss) * 1024;
  });
  return usage;
}

double ratioInTurns(const std::vector<std::string>& command, const std::string& home,
                    const std::function<void()>& peer) {
  std::array<pid_t, 2> children = {start(command, home), ::fork()};
  if (children[1] == 0) {
    peer();
    ::_exit(0);
  }
  if (children[0] <= 0 || children[1] < 0) {
    return std::numeric_limits<double>::infinity();
  }
  for (const pid_t child : children) {
    ::kill(child, SIGSTOP);
  }
  std::array<double, 2> seconds{};
  while (children[0] != 0 || children[1] != 0) {
    for (std::size_t i = 0; i < children.size(); ++i) {
      if (children[i] == 0) {
        continue;
      }
      ::kill(children[i], SIGCONT);
      int status = 0;
      pid_t ended = 0;
      seconds[i] += secondsOf([&] {
        std::this_thread::sleep_for(kTurn);
        ended = ::waitpid(children[i], &status, WNOHANG);
      });
      if (ended == 0) {
        ::kill(children[i], SIGSTOP);
      } else {
        children[i] = 0;
      }
    }
  }
  return seconds[0] / seconds[1];
}

Scratch::Scratch() {
  std::filesystem::create_directories("build");
  std::string pattern = std::filesystem::absolute("build/bench-XXXXXX").native();
  root_ = ::mkdtemp(pattern.data());
}

Scratch::~Scratch() {
  std::error_code ignored;
  std::filesystem::remove_all(root_, ignored);
}

std::string Scratch::path(const std::string& path) const {
  const std::filesystem::path full = std::filesystem::path(root_) / path;
  std::filesystem::create_directories(full.parent_path());
  return full.native();
}

}  // namespace tasselby
