// Runs that are killed: what is kept is there and sound, and a second run finishes the work.

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/Trial.h"

namespace tasselby {
namespace {

constexpr const char* kWriteCalls = "write,fsync,ftruncate,rename,unlink,unlinkat,";
constexpr int kKilled = 128 + SIGKILL;

class Kills : public Trial {
 protected:
  void expectAll(const std::string& browser, const std::string& label) {
    expectKept(browser, label);
    expectSound(label);
    EXPECT_EQ(run({browser}).status, 0) << label;
    expectKept(browser, label + ", second run");
    // A later run does not find folders whose rows went first, as Chromium's do, or a journal whose
    // file went first: that order is the rule. Safari's is the other.
    expectFinished(browser, label + ", second run",
                   browser == "Safari" ? std::vector<std::string>{}
                                       : std::vector<std::string>{browser + " web databases",
                                                                  browser + " local storage"});
  }
};

// Every write-class call of a run; with few rounds only some of them.
TEST_F(Kills, AtWriteCallsLoseNothing) {
  int kills = 0;
  const long step = std::max(1L, 40 / rounds());
  for (const std::string& browser : kEveryBrowser) {
    for (long call = 1;; call += step) {
      reset();
      const std::string label = browser + " killed at call " + std::to_string(call);
      const WorkerRun result =
          run({browser}, Disturbance{FAILING_CALLS, kWriteCalls, 0, call, true, ""});
      if (result.status != kKilled) {
        EXPECT_EQ(result.status, 0) << label;
        break;
      }
      expectAll(browser, label);
      ++kills;
    }
  }
  std::printf("%d kills\n", kills);
}

TEST_F(Kills, AtRandomMomentsLoseNothing) {
  std::mt19937 random(1);
  for (const std::string& browser : kEveryBrowser) {
    reset();
    const auto whole = static_cast<unsigned>(run({browser}).seconds * 1e6);
    for (long round = 0; round < 3 * rounds(); ++round) {
      reset();
      const unsigned moment = static_cast<unsigned>(random()) % (whole + 1);
      const pid_t child = start({browser});
      ::usleep(moment);
      ::kill(child, SIGKILL);
      ::waitpid(child, nullptr, 0);
      expectAll(browser, browser + " killed after " + std::to_string(moment) + " us");
    }
  }
}

}  // namespace
}  // namespace tasselby
