// Whole runs of the worker over the Mac adapter, started by the application object.

#include <gtest/gtest.h>
#include <sstream>

#include "samples/MacHome.h"
#include "samples/NotificationBus.h"
#include "samples/RunWorker.h"
#include "tests/contract/Adapter.h"

namespace tasselby {
namespace {

/// The paths of what is on the volume, without what belongs to GNUstep and the stand-ins.
// The running system's own, which are not on the volume of the home.
constexpr const char* kTemporaryFolders = "private/var/folders";

Names entries(const ScratchHome& volume) {
  Names paths;
  for (const auto& [path, contents] : volume.snapshot()) {
    if (path.find("anna/GNUstep") == std::string::npos && !path.ends_with(".lck") &&
        path.find(kTemporaryFolders) == std::string::npos) {
      paths.push_back(path);
    }
  }
  return paths;
}

/// What of `output` is the worker's own: GNUstep's log lines bear the process's name.
std::string printed(const std::string& output) {
  std::string rest;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    rest += line.find("Tasselby.Worker[") == std::string::npos ? line + '\n' : "";
  }
  return rest;
}

struct MacRunTest : ::testing::TestWithParam<std::string> {
  WorkerRun run(const std::string& browser) {
    prepareAdapter(volume);
    return runWorker({XVFB_RUN, "-a", MAC_WORKER, browser}, sample.home());
  }

  ScratchHome volume;
  MacHome sample{volume.volume(), 1};
};

TEST_P(MacRunTest, LeavesAndReportsWhatTheOfflineRunDoes) {
  const ScratchHome offlineVolume;
  const MacHome offline = sample.copyTo(offlineVolume.volume());
  const NotificationBus bus;
  EXPECT_EQ(runWorker({OFFLINE_WORKER, GetParam()}, offline.home(), bus.address()).status, 0);
  const WorkerRun result = run(GetParam());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(printed(result.output), "");

  EXPECT_EQ(entries(volume), entries(offlineVolume));
  const auto left = sample.contents();
  const auto expected = offline.contents();
  for (std::size_t i = 0; i < left.size(); ++i) {
    const SampleItem& item = sample.items()[i];
    EXPECT_TRUE(left[i] == expected[i] || item.path.find(kTemporaryFolders) != std::string::npos)
        << item.path << item.key;
  }
  const auto received = bus.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(volume.contents("GNUstep/Notifications"),
            received[0].summary + "|" + received[0].body + "|(null)|0|(null)|1\n");
}

INSTANTIATE_TEST_SUITE_P(Browsers, MacRunTest,
                         ::testing::Values("Safari", "Google Chrome", "Firefox"));

TEST_F(MacRunTest, EndsHardAndReachesNothingMore) {
  volume.file("Library/Application Support/Microsoft/Silverlight/is/a/b/c/s/bad/id.dat",
              "file:///");
  const WorkerRun result = run("Camino");
  EXPECT_EQ(result.status, 70);
  EXPECT_EQ(printed(result.output), "");
  EXPECT_TRUE(volume.has("Library/Caches/Camino/Cache"));
  EXPECT_FALSE(volume.has("GNUstep/Notifications"));
}

TEST_F(MacRunTest, EndsAtOnceWithoutABrowserName) {
  const Names before = entries(volume);
  EXPECT_EQ(run("safari").status, 0);
  EXPECT_EQ(entries(volume), before);
}

}  // namespace
}  // namespace tasselby
