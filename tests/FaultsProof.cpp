// Runs in which system calls fail: nothing kept is lost, and nothing is left unsound.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/Trial.h"

namespace tasselby {
namespace {

const std::vector<std::string> kCalls = {"open",     "openat",     "read",   "write",
                                         "fsync",    "ftruncate",  "rename", "unlink",
                                         "unlinkat", "getdents64", "fstat"};

const std::vector<int> kErrors = {EACCES, EIO, ENOSPC, EINTR};

// From the first look at a cookie on, or for "WebKit" at the Flash player, the keep list stands.
// Before it, a password source that cannot be read keeps nothing: that is the rule.
constexpr const char* kAfterKeepList = "Cookies,cookies.sqlite,Macromedia,";

// A folder of Silverlight stores that cannot be listed counts as empty, and with an empty one the
// whole plug-in goes: that is the rule too.
bool losesSilverlight(const std::string& call) {
  return call == "openat," || call == "getdents64,";
}

class Faults : public Trial {
 protected:
  /// Every call with one error after another, or with more than one round with all of them.
  std::vector<Disturbance> disturbances() {
    std::vector<Disturbance> all;
    for (const std::string& call : kCalls) {
      const int turn = kErrors[next_++ % kErrors.size()];
      for (const int error : rounds() > 1 ? kErrors : std::vector<int>{turn}) {
        // SQLite tries again for as long as a call is interrupted, so not every one may be.
        const long first = error == EINTR ? 2 : 1;
        for (long every = first; every < first + 2 * rounds(); every += every < 3 ? 1 : 4) {
          all.push_back({FAILING_CALLS, call + ",", error, every, false, kAfterKeepList});
        }
      }
    }
    return all;
  }

 private:
  std::size_t next_ = 0;
};

TEST_F(Faults, LoseNothingThatIsKept) {
  int runs = 0;
  for (const std::string& browser : kEveryBrowser) {
    for (const Disturbance& disturbance : disturbances()) {
      reset();
      const std::string label = browser + " " + disturbance.calls +
                                std::to_string(disturbance.error) + " every " +
                                std::to_string(disturbance.every);
      const WorkerRun result = run({browser}, disturbance);
      EXPECT_TRUE(result.status == 0 || result.status == 70) << label << " " << result.status;
      EXPECT_EQ(result.output, "") << label;
      expectKept(browser, label, losesSilverlight(disturbance.calls) ? "Silverlight" : "");
      expectSound(label);
      ++runs;
    }
  }
  std::printf("%d disturbed runs\n", runs);
}

TEST_F(Faults, LeaveOfAFolderWhatCannotBeRemovedAlone) {
  reset();
  namespace fs = std::filesystem;
  const std::string cache = home().home() + "/Library/Caches/Camino/Cache";
  std::ptrdiff_t left = 0;
  // One call for each file, and two for each folder.
  for (long call = 1; call <= 12; ++call) {
    fs::remove_all(cache);
    for (const char* name : {"/1", "/2/3", "/4/5/6", "/7"}) {
      fs::create_directories(fs::path(cache + name).parent_path());
      std::ofstream(cache + name) << "cached";
    }
    run({"Camino"}, Disturbance{FAILING_CALLS, "unlinkat,", EACCES, call, true, cache + ","});
    std::error_code ignored;
    left += std::ranges::count_if(fs::recursive_directory_iterator(cache, ignored),
                                  [](const auto& entry) { return entry.is_regular_file(); });
  }
  EXPECT_EQ(left, 4) << "each file with the one call that removes it";
}

TEST_F(Faults, LeaveEverythingSoundWhileTheKeepListIsBuilt) {
  for (const std::string& browser : kEveryBrowser) {
    for (const std::string& call : kCalls) {
      reset();
      const std::string label = browser + " " + call;
      const WorkerRun result =
          run({browser}, Disturbance{FAILING_CALLS, call + ",", EIO, 2, false, "/Users/"});
      EXPECT_TRUE(result.status == 0 || result.status == 70) << label << result.status;
      EXPECT_EQ(result.output, "") << label;
      expectSound(label);
    }
  }
}

// With every write failing, overwriting goes on until its count wraps around, as it is meant to:
// four thousand million calls. So here only every second one fails.
TEST_F(Faults, EndWhileOverwriting) {
  for (const std::string& browser : kEveryBrowser) {
    for (const int error : kErrors) {
      reset();
      const std::string label = browser + " " + std::to_string(error);
      const WorkerRun result =
          run({browser, "-secureDeleteData", "YES"},
              Disturbance{FAILING_CALLS, "write,", error, 2, false, kAfterKeepList});
      EXPECT_EQ(result.status, 0) << label;
      expectKept(browser, label);
      expectSound(label);
    }
  }
}

}  // namespace
}  // namespace tasselby
