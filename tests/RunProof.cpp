#include <algorithm>
#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

#include "samples/MacHome.h"
#include "samples/NotificationBus.h"
#include "samples/RunWorker.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

constexpr std::uint32_t kSeed = 1;

/// What a run over the sample home reports, by browser.
const std::map<std::string, std::string> kCountsByBrowser = {
    {"Safari", "16 Cookies (7 Tracking Cookies), 11 Databases, 5 Flash, 4 Silverlight"},
    {"WebKit", "0 Cookies (0 Tracking Cookies), 0 Databases, 5 Flash, 4 Silverlight"},
    {"Google Chrome", "32 Cookies (14 Tracking Cookies), 24 Databases, 15 Flash, 4 Silverlight"},
    {"Chromium", "32 Cookies (14 Tracking Cookies), 22 Databases, 15 Flash, 4 Silverlight"},
    {"Camino", "16 Cookies (7 Tracking Cookies), 8 Databases, 5 Flash, 4 Silverlight"},
    {"Firefox", "32 Cookies (14 Tracking Cookies), 24 Databases, 5 Flash, 4 Silverlight"},
    {"Opera", "16 Cookies (7 Tracking Cookies), 12 Databases, 5 Flash, 4 Silverlight"},
};

const std::string kFlashSettings =
    "Library/Preferences/Macromedia/Flash Player/macromedia.com/support/flashplayer/sys";

class RunTest : public ::testing::Test {
 protected:
  WorkerRun run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), WORKER_BINARY);
    return runWorker(arguments, sample.home(), bus.address(), volume.volume());
  }

  ScratchHome volume;
  NotificationBus bus;
  MacHome sample{volume.volume(), kSeed};
};

class BrowserRunTest : public RunTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(BrowserRunTest, RemovesExactlyWhatBelongsToTheBrowserAndIsNotKept) {
  const auto before = sample.contents();
  const auto entriesBefore = volume.snapshot();
  const WorkerRun result = run({"-x", GetParam()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");

  const auto after = sample.contents();
  for (std::size_t i = 0; i < before.size(); ++i) {
    const SampleItem& item = sample.items()[i];
    const bool gone = std::ranges::count(item.goneFor, GetParam()) > 0;
    ASSERT_TRUE(before[i]) << item.path << " " << item.key;
    EXPECT_EQ(after[i], gone ? std::nullopt : before[i]) << item.path << " " << item.key;
  }
  for (const auto& [path, contents] : volume.snapshot()) {
    EXPECT_TRUE(entriesBefore.contains(path)) << path;
  }
  const auto received = bus.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].summary, "Tasselby");
  EXPECT_EQ(received[0].body,
            kCountsByBrowser.at(GetParam()) + ", and Cache removed from " + GetParam());
}

INSTANTIATE_TEST_SUITE_P(AllNames, BrowserRunTest,
                         ::testing::Values("Safari", "WebKit", "Google Chrome", "Chromium",
                                           "Camino", "Firefox", "Opera"));

TEST_F(RunTest, TouchesNothingWithoutABrowserName) {
  const auto before = volume.snapshot();
  for (const char* argument : {"-x", "safari", "Chrome"}) {
    const WorkerRun result = run({argument});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
  }
  EXPECT_EQ(volume.snapshot(), before);
  EXPECT_TRUE(bus.received().empty());
}

TEST_F(RunTest, TakesTheFirstBrowserAndThePreferencesOfTheCommandLine) {
  EXPECT_EQ(run({"x", "Camino", "Safari", "-displayNotifications", "NO"}).status, 0);
  EXPECT_TRUE(bus.received().empty());
  EXPECT_FALSE(volume.has("Library/Caches/Camino/Cache"));
  EXPECT_TRUE(volume.has("Library/Caches/com.apple.Safari/Cache.db"));
}

TEST_F(RunTest, RemovesEverySiteWithoutOpeningAPasswordSource) {
  const std::string keychain = "Library/Keychains/login.keychain-db";
  const std::string logins =
      "Library/Application Support/Firefox/Profiles/k3x9q2ab.default/signons.sqlite";
  const int watch = ::inotify_init1(IN_NONBLOCK);
  for (const std::string& path : {keychain, logins}) {
    ASSERT_GE(::inotify_add_watch(watch, volume.path(path).c_str(), IN_OPEN), 0);
  }
  EXPECT_EQ(run({"Firefox", "-removeAll", "YES"}).status, 0);
  EXPECT_EQ(run({"Safari", "-removeAll", "YES"}).status, 0);
  std::array<char, 4096> events;
  EXPECT_LT(::read(watch, events.data(), events.size()), 0) << "a password source was opened";
  EXPECT_EQ(run({"Safari"}).status, 0);
  EXPECT_GT(::read(watch, events.data(), events.size()), 0) << "the watch sees nothing";
  ::close(watch);

  for (std::size_t i = 0; i < sample.items().size(); ++i) {
    if (sample.items()[i].store == "Firefox local storage") {
      EXPECT_FALSE(sample.contents()[i]) << sample.items()[i].key;
    }
  }
}

TEST_F(RunTest, EndsHardAtASilverlightStoreWithoutASite) {
  volume.file("Library/Application Support/Microsoft/Silverlight/is/a/b/c/s/bad/id.dat",
              "file:///");
  const WorkerRun result = run({"Camino"});
  EXPECT_EQ(result.status, 70);
  EXPECT_EQ(result.output, "");
  EXPECT_TRUE(bus.received().empty());
  EXPECT_TRUE(volume.has("Library/Caches/Camino/Cache"));
  EXPECT_EQ(volume.list(kFlashSettings).size(), 5U) << "what came before was done";
}

TEST_F(RunTest, EndsHardBeforeAnythingGoesWithoutAListOfProfiles) {
  std::filesystem::remove(volume.path("Library/Application Support/Google/Chrome/Local State"));
  const auto before = volume.snapshot();
  EXPECT_EQ(run({"Google Chrome"}).status, 70);
  EXPECT_EQ(volume.snapshot(), before);
}

}  // namespace
}  // namespace tasselby
