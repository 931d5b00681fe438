// Whole runs of the worker over the Mac adapter, started by the application object.

#include <sstream>
#include <utility>

#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

/// What belongs to GNUstep and the stand-ins; and the temporary folders, where a Mac's are the
/// running system's own.
const Names kForeign = {"/GNUstep", ".lck", "private/var/folders", "Library/Preferences/.GNUstep"};

/// Runs the worker. Answers its status, and what it printed without GNUstep's log lines, which bear
/// the process's name.
WorkerRun run(const OddHome& odd, const std::string& browser) {
  WorkerRun result =
      runWorker({XVFB_RUN, "-a", MAC_WORKER, browser}, odd.home.home(), "", odd.workingFolder());
  std::istringstream lines(std::exchange(result.output, ""));
  for (std::string line; std::getline(lines, line);) {
    result.output += line.find("Tasselby.Worker[") == std::string::npos ? line + '\n' : "";
  }
  return result;
}

struct MacRunTest : ::testing::TestWithParam<std::string> {
  OddHome odd;
};

TEST_P(MacRunTest, EveryItemMeetsTheFateWrittenBesideIt) {
  const Fates fates(odd.home);
  const WorkerRun result = run(odd, GetParam());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  fates.expectMet(GetParam(), false, false, kForeign);
  EXPECT_EQ(odd.scratch.contents("GNUstep Notifications"),
            "Tasselby|" + odd.report(GetParam(), false) + "|(null)|0|(null)|1\n");
}

INSTANTIATE_TEST_SUITE_P(Browsers, MacRunTest,
                         ::testing::Values("Safari", "Google Chrome", "Firefox"));

TEST_F(MacRunTest, EndsHardAndReachesNothingMore) {
  odd.scratch.file(kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad/id.dat", "file:///");
  const WorkerRun result = run(odd, "Camino");
  EXPECT_EQ(result.status, 70);
  EXPECT_EQ(result.output, "");
  EXPECT_TRUE(odd.scratch.has("Library/Caches/Camino/Cache"));
  EXPECT_FALSE(odd.scratch.has("GNUstep Notifications"));
}

TEST_F(MacRunTest, EndsAtOnceWithoutABrowserName) {
  const Fates fates(odd.home);
  EXPECT_EQ(run(odd, "safari").status, 0);
  fates.expectMet("", false, false, kForeign);
}

}  // namespace
}  // namespace tasselby
