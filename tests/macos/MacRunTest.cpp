// Whole runs of the worker over the Mac adapter, started by the application object. What they print
// is GNUstep's.

#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

/// What belongs to GNUstep and the stand-ins; and the temporary folders, where a Mac's are the
/// running system's own.
const Names kForeign = {"/GNUstep", ".lck", "private/var/folders", "Library/Preferences/.GNUstep"};

struct MacRunTest : ::testing::TestWithParam<std::string> {
  int run(const std::string& browser) const {
    const std::vector<std::string> command = {XVFB_RUN, "-a", MAC_WORKER, browser};
    return runWorker(command, odd.home.home(), "", odd.workingFolder()).status;
  }

  OddHome odd;
};

TEST_P(MacRunTest, EveryItemMeetsTheFateWrittenBesideIt) {
  const Fates fates(odd.home);
  EXPECT_EQ(run(GetParam()), 0);
  fates.expectMet(GetParam(), false, false, kForeign);
  EXPECT_EQ(odd.scratch.contents("GNUstep Notifications"),
            GetParam() == "safari"
                ? ""
                : "Tasselby|" + odd.report(GetParam(), false) + "|(null)|0|(null)|1\n");
}

INSTANTIATE_TEST_SUITE_P(Browsers, MacRunTest,
                         ::testing::Values("Safari", "Google Chrome", "Firefox", "safari"));

TEST_F(MacRunTest, EndsHardAndReachesNothingMore) {
  odd.scratch.file(kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad/id.dat", "file:///");
  EXPECT_EQ(run("Camino"), 70);
  EXPECT_TRUE(odd.scratch.has("Library/Caches/Camino/Cache"));
  EXPECT_FALSE(odd.scratch.has("GNUstep Notifications"));
}

}  // namespace
}  // namespace tasselby
