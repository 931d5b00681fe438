// Runs in which system calls fail: nothing kept is lost, and nothing is left unsound.

#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include "proof/Trial.h"

namespace tasselby {
namespace {

const std::vector<std::string> kBrowsers = {"Safari", "Google Chrome", "Chromium",
                                            "Camino", "Firefox",       "Opera"};

const std::vector<std::string> kCalls = {"open",     "openat",     "read",   "write",
                                         "fsync",    "ftruncate",  "rename", "unlink",
                                         "unlinkat", "getdents64", "fstat"};

const std::vector<int> kErrors = {EACCES, EIO, ENOSPC, EINTR};

// From the first look at a cookie on, the keep list stands. Before it, a password source that
// cannot be read keeps nothing: that is the rule.
constexpr const char* kAfterKeepList = "Cookies,cookies.sqlite,";

// A folder of Silverlight stores that cannot be listed counts as empty, and with an empty one the
// whole plug-in goes: that is the rule too.
bool losesSilverlight(const std::string& call) {
  return call == "openat" || call == "getdents64";
}

class Faults : public Trial {
 protected:
  /// Every error in turn, or with more than one round all of them at every call.
  std::vector<int> errorsOfThisRound() {
    return rounds() > 1 ? kErrors : std::vector<int>{kErrors[next_++ % kErrors.size()]};
  }

 private:
  std::size_t next_ = 0;
};

TEST_F(Faults, LoseNothingThatIsKept) {
  int runs = 0;
  for (const std::string& browser : kBrowsers) {
    for (const std::string& call : kCalls) {
      for (const int error : errorsOfThisRound()) {
        // SQLite tries again for as long as a call is interrupted, so not every one may be.
        const long first = error == EINTR ? 2 : 1;
        for (long every = first; every < first + 2 * rounds(); every += every < 3 ? 1 : 4) {
          reset();
          const std::string label = browser + " " + call + " " + std::to_string(error) + " every " +
                                    std::to_string(every);
          const WorkerRun result =
              run({browser}, Disturbance{call + ",", error, every, false, kAfterKeepList});
          EXPECT_TRUE(result.status == 0 || result.status == 70) << label << result.status;
          EXPECT_EQ(result.output, "") << label;
          expectKept(browser, label, losesSilverlight(call) ? "Silverlight" : "");
          expectSound(label);
          ++runs;
        }
      }
    }
  }
  std::printf("%d disturbed runs\n", runs);
}

TEST_F(Faults, LeaveEverythingSoundWhileTheKeepListIsBuilt) {
  for (const std::string& browser : kBrowsers) {
    for (const std::string& call : kCalls) {
      reset();
      const std::string label = browser + " " + call;
      const WorkerRun result = run({browser}, Disturbance{call + ",", EIO, 2, false, "/Users/"});
      EXPECT_TRUE(result.status == 0 || result.status == 70) << label << result.status;
      EXPECT_EQ(result.output, "") << label;
      expectSound(label);
    }
  }
}

// With every write failing, overwriting goes on until its count wraps around, as it is meant to:
// four thousand million calls. So here only every second one fails.
TEST_F(Faults, EndWhileOverwriting) {
  for (const std::string& browser : kBrowsers) {
    for (const int error : kErrors) {
      reset();
      const std::string label = browser + " " + std::to_string(error);
      const WorkerRun result = run({browser, "-secureDeleteData", "YES"},
                                   Disturbance{"write,", error, 2, false, kAfterKeepList});
      EXPECT_EQ(result.status, 0) << label;
      expectKept(browser, label);
      expectSound(label);
    }
  }
}

}  // namespace
}  // namespace tasselby
