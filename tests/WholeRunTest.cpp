// Whole runs of the worker's binary over a home with everything in it. What is to become of an item
// stands where the item is made; here it is only compared.
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
  /// Runs the worker, expects it to end with `status`, and what there is on the volume not to
  /// change.
  void expectNothingRemoved(const std::string& browser, int status) const {
    const auto before = scratch.snapshot();
    const WorkerRun result = runWorker({WORKER_BINARY, browser}, scratch.home());
    EXPECT_EQ(result.status, status) << browser;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(scratch.snapshot(), before) << browser;
  }

  ScratchHome scratch;
};

TEST_F(RunTest, MakesNothingInAnEmptyHome) {
  MacHome home(scratch.volume(), 0);
  for (const char* root : {"Google/Chrome/Default", "Chromium/Profile 1", "com.operasoftware.Opera",
                           "Camino", "Firefox/Profiles/p", "../Safari/Databases"}) {
    scratch.folder(kSupport + root);
  }
  scratch.folder("Library/Safari/LocalStorage");
  for (const std::string& browser : kEveryBrowser) {
    expectNothingRemoved(browser, 0);
  }
  scratch.file("Library/Caches/Camino/Cache/in").file("Library/Caches/QuickTime/downloads/in");
  for (const char* refused : {"-x", "safari", "Chrome", "Camino ", ""}) {
    expectNothingRemoved(refused, 0);
  }
}

TEST_F(RunTest, EndsHardWithoutAListOfProfilesOrAtAStoreWithoutASite) {
  const MacHome sample(scratch.volume());
  const std::string list = scratch.path(kSupport + "Google/Chrome/Local State");
  fs::remove(list);
  fs::create_directory(list);
  expectNothingRemoved("Google Chrome", 70);
  sample.writeFile(kSupport + "Chromium/Local State", "{\"\xFF\": 1}");
  expectNothingRemoved("Chromium", 70);
  for (const char* identity : {"file:///", "\xFF"}) {
    sample.writeFile(kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad/id.dat", identity);
    EXPECT_EQ(runWorker({WORKER_BINARY, "Camino"}, scratch.home()).status, 70);
    EXPECT_TRUE(scratch.has("Library/Caches/Camino/Cache")) << "caches come behind it";
    EXPECT_TRUE(scratch.has(kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad"));
  }
}

}  // namespace
}  // namespace tasselby
