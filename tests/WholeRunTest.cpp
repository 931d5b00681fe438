// Whole runs of the worker's binary over a home with everything in it. What is to become of an item
// stands where the item is made; here it is only compared.
#include <sstream>
#include <tuple>

#include "samples/NotificationBus.h"
#include "tests/support/Fates.h"
#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

class WholeRun : public ::testing::TestWithParam<std::tuple<std::string, bool, bool>> {
 protected:
  void run(const std::string& home, const std::string& browser, bool removeAll, bool secure) const {
    const auto answer = [](bool yes) { return yes ? "YES" : "NO"; };
    const WorkerRun result =
        runWorker({WORKER_BINARY, "-removeAll", answer(removeAll), "-secureDeleteData",
                   answer(secure), "-x", browser, "Opera"},
                  home, bus.address(), fs::path(home).parent_path().parent_path());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
  }

  NotificationBus bus;
};

TEST_P(WholeRun, EveryItemMeetsTheFateWrittenBesideIt) {
  const OddHome odd;
  const auto& [browser, removeAll, secure] = GetParam();
  const Fates fates(odd.home);
  run(odd.home.home(), browser, removeAll, secure);
  fates.expectMet(browser, removeAll, secure);
  const auto received = bus.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].summary, "Tasselby");
  EXPECT_EQ(received[0].body, odd.report(browser, removeAll));
}

INSTANTIATE_TEST_SUITE_P(All, WholeRun,
                         ::testing::Combine(::testing::ValuesIn(kEveryBrowser), ::testing::Bool(),
                                            ::testing::Bool()));

/// Caches that are folders in most homes. As plain files they show whether they are overwritten.
constexpr const char* kPlainCaches = R"(
= Library/Caches/
Sa com.apple.Safari/fsCachedData
Ka {Camino/Cache,Metadata/Camino}
Oa com.operasoftware.Opera
*a {Adobe/Flash Player/AssetCache,QuickTime/downloads}
- {Camino,QuickTime,../Application Support/com.operasoftware.Opera}/other
= Library/Application Support/
Oa com.operasoftware.Opera{/GPUCache,/Application Cache,Pepper Data/Shockwave Flash/CacheWritableAdobeRoot}
Ga Google/ChromePepper Data/Shockwave Flash/CacheWritableAdobeRoot
Ca ChromiumPepper Data/Shockwave Flash/CacheWritableAdobeRoot
)";

TEST_F(WholeRun, OverwritesCachesThatAreFiles) {
  for (const std::string& browser : kEveryBrowser) {
    const ScratchHome scratch;
    MacHome plain(scratch.volume(), 0);
    plain.add(kPlainCaches);
    const Fates fates(plain);
    run(plain.home(), browser, false, true);
    fates.expectMet(browser, false, true);
  }
}

class RunTest : public ::testing::Test {
 protected:
  WorkerRun run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), WORKER_BINARY);
    return runWorker(arguments, scratch.home(), bus.address());
  }

  ScratchHome scratch;
  NotificationBus bus;
};

TEST_F(RunTest, MakesNothingInAnEmptyHome) {
  for (const char* root : {"Google/Chrome/P", "Chromium/P", "com.operasoftware.Opera", "Camino",
                           "Firefox/Profiles/p"}) {
    scratch.folder(kSupport + root);
  }
  scratch.folder("Library/Safari/Databases").folder("Library/Safari/LocalStorage");
  for (const char* root : {"Google/Chrome", "Chromium"}) {
    scratch.file(kSupport + root + "/Local State",
                 R"({"profile": {"info_cache": {"P": {"name": "p"}, "Q": {"name": "q"}}}})");
  }
  const auto before = scratch.snapshot();
  for (const std::string& browser : kEveryBrowser) {
    EXPECT_EQ(run({browser}).status, 0);
    EXPECT_EQ(scratch.snapshot(), before) << browser;
  }
}

TEST_F(RunTest, TakesTheFirstArgumentThatIsABrowserAndNothingElse) {
  scratch.file("Library/Caches/Camino/Cache/in").file("Library/Caches/QuickTime/downloads/in");
  const auto before = scratch.snapshot();
  for (const char* argument : {"-x", "safari", "Chrome", "Camino ", ""}) {
    const WorkerRun result = run({argument, "-displayNotifications", "YES"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
  }
  EXPECT_EQ(scratch.snapshot(), before);
  EXPECT_EQ(run({"x", "WebKit", "Camino"}).status, 0);
  EXPECT_EQ(scratch.list("Library/Caches/QuickTime"), Names{});
  EXPECT_TRUE(scratch.has("Library/Caches/Camino/Cache"));
  EXPECT_TRUE(bus.received().empty()) << "no report unless it is asked for";
}

TEST_F(RunTest, EndsHardWithoutAListOfProfilesOrAtAStoreWithoutASite) {
  const MacHome sample(scratch.volume());
  const std::string list = kSupport + "Google/Chrome/Local State";
  for (const std::string& text : {std::string(), std::string("{\"\xFF\": 1}")}) {
    fs::remove(scratch.path(list));
    text.empty() ? scratch.folder(list) : scratch.file(list, text);
    const auto before = scratch.snapshot();
    EXPECT_EQ(run({"Google Chrome"}).status, 70);
    EXPECT_EQ(scratch.snapshot(), before);
  }
  for (const char* identity : {"file:///", "\xFF"}) {
    scratch.file(kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad/id.dat", identity);
    const WorkerRun result = run({"Camino"});
    EXPECT_EQ(result.status, 70);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(scratch.has("Library/Caches/Camino/Cache")) << "caches come behind it";
    EXPECT_TRUE(scratch.has(kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad"));
  }
  EXPECT_TRUE(bus.received().empty());
}

}  // namespace
}  // namespace tasselby
