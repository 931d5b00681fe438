// Whole runs of the worker's binary over a home with everything in it. What is to become of an item
// stands where the item is made; here it is only compared.
#include <sstream>
#include <tuple>

#include "samples/NotificationBus.h"
#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

using Contents = std::map<std::string, std::string>;

const std::string kPepperCache = "/Shockwave Flash/CacheWritableAdobeRoot";

/// What a run reports, without and with "removeAll": cookies, tracking cookies, databases, Flash,
/// Silverlight.
using Counts = std::vector<int>;
const std::map<std::string, std::pair<Counts, Counts>> kCounts = {
    {"Safari", {{40, 17, 16, 12, 7}, {58, 17, 20, 15, 10}}},
    {"WebKit", {{0, 0, 0, 12, 7}, {0, 0, 0, 15, 10}}},
    {"Google Chrome", {{44, 18, 30, 28, 7}, {64, 18, 37, 38, 10}}},
    {"Chromium", {{44, 18, 28, 28, 7}, {64, 18, 35, 38, 10}}},
    {"Camino", {{24, 10, 8, 12, 7}, {36, 10, 14, 15, 10}}},
    {"Firefox", {{43, 17, 48, 12, 7}, {65, 17, 84, 15, 10}}},
    {"Opera", {{24, 10, 12, 12, 7}, {36, 10, 15, 15, 10}}},
};

/// The folders that stay when all that was in them has gone. Any other goes with it.
const std::string kStayEmpty =
    "/Empty/Flash Player/Metadata/Shockwave Flash/##g/##group/.T/.hidden/g/com.apple.Safari/"
    "com.apple.WebKit.WebContent+com.apple.Safari/com.apple.WebProcess+com.apple.Safari/";

bool staysEmpty(const std::string& folder) {
  return kStayEmpty.find(folder.substr(folder.rfind('/')) + "/") != std::string::npos;
}

bool isOverwritten(const std::string& before, const std::string& after) {
  return after.size() == before.size() && after != before && after.find('\xFF') == after.npos;
}

class WholeRun : public ::testing::TestWithParam<std::tuple<std::string, bool, bool>> {
 protected:
  const std::string browser = std::get<0>(GetParam());
  const bool removeAll = std::get<1>(GetParam());
  const bool secure = std::get<2>(GetParam());

  bool goes(const SampleItem& item) const {
    const bool stays = odd.stubborn.contains(item.path + (item.key.empty() ? "" : " ") + item.key);
    return item.goesFor(browser, removeAll) && !(secure && stays);
  }

  void run() {
    const auto answer = [](bool yes) { return yes ? "YES" : "NO"; };
    const WorkerRun result =
        runWorker({WORKER_BINARY, "-removeAll", answer(removeAll), "-secureDeleteData",
                   answer(secure), "-x", browser, "Opera"},
                  odd.home.home(), bus.address(), odd.home.volume());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
  }

  /// Gives every file that is an item a second name, by which its bytes are seen after it has gone.
  void linkFiles() {
    for (const SampleItem& item : odd.home.items()) {
      if (item.key.empty() && fs::is_regular_file(fs::symlink_status(odd.home.path(item.path)))) {
        const std::string name = "../../witness/" + std::to_string(witnesses.size());
        odd.scratch.folder("../../witness");
        fs::create_hard_link(odd.home.path(item.path), odd.scratch.path(name));
        witnesses[item.path] = name;
      }
    }
  }

  /// Expects no entry that was not there before, and of what is no item none that changed or went.
  void expectNothingElse(const Contents& before, const Contents& after) const {
    std::set<std::string> going;
    for (const SampleItem& item : odd.home.items()) {
      if (goes(item)) {
        going.insert(item.path);
      }
    }
    for (const auto& [path, contents] : after) {
      EXPECT_TRUE(before.contains(path)) << path;
    }
    for (const auto& [path, contents] : before) {
      const auto now = after.find(path);
      if (now != after.end()) {
        EXPECT_TRUE(now->second == contents || going.contains(path) || path.starts_with("witness/"))
            << path << " has changed";
      } else if (contents == "/") {
        EXPECT_TRUE(!staysEmpty(path) || path.ends_with("/3/g")) << path << " has gone";
      } else {
        EXPECT_TRUE(going.contains(path)) << path << " has gone";
      }
    }
  }

  OddHome odd;
  NotificationBus bus;
  std::map<std::string, std::string> witnesses;
};

Names emptyFolders(const Contents& entries) {
  Names empty;
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    const auto next = entries.upper_bound(entry->first + "/");
    if (entry->second == "/" &&
        (next == entries.end() || !next->first.starts_with(entry->first + "/"))) {
      empty.push_back(entry->first);
    }
  }
  return empty;
}

TEST_P(WholeRun, EveryItemMeetsTheFateWrittenBesideIt) {
  const auto before = odd.home.contents();
  linkFiles();
  const Contents entries = odd.scratch.snapshot();
  run();
  const Contents entriesAfter = odd.scratch.snapshot();
  const auto after = odd.home.contents();
  for (std::size_t i = 0; i < before.size(); ++i) {
    const SampleItem& item = odd.home.items()[i];
    const std::string label = item.path + " " + item.key;
    ASSERT_TRUE(before[i]) << label;
    EXPECT_EQ(after[i], goes(item) ? std::nullopt : before[i]) << label;
    if (witnesses.contains(item.path)) {
      const bool wiped = secure && goes(item) && odd.overwritten.contains(item.path);
      EXPECT_EQ(isOverwritten(*before[i], odd.scratch.contents(witnesses[item.path])), wiped)
          << label;
    }
  }
  expectNothingElse(entries, entriesAfter);
  for (const std::string& folder : emptyFolders(entriesAfter)) {
    EXPECT_TRUE(staysEmpty(folder)) << folder << " is empty";
  }
  const auto received = bus.received();
  ASSERT_EQ(received.size(), 1U);
  EXPECT_EQ(received[0].summary, "Tasselby");
  const Counts& counts = removeAll ? kCounts.at(browser).second : kCounts.at(browser).first;
  std::ostringstream report;
  report << counts[0] << " Cookies (" << counts[1] << " Tracking Cookies), " << counts[2]
         << " Databases, " << counts[3] << " Flash, " << counts[4]
         << " Silverlight, and Cache removed from " << browser;
  EXPECT_EQ(received[0].body, report.str());
}

INSTANTIATE_TEST_SUITE_P(All, WholeRun,
                         ::testing::Combine(::testing::Values("Safari", "WebKit", "Google Chrome",
                                                              "Chromium", "Camino", "Firefox",
                                                              "Opera"),
                                            ::testing::Bool(), ::testing::Bool()));

class RunTest : public ::testing::Test {
 protected:
  WorkerRun run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), WORKER_BINARY);
    return runWorker(arguments, scratch.home(), bus.address());
  }

  ScratchHome scratch;
  NotificationBus bus;
};

/// Caches that are folders in most homes. As plain files they show whether they are overwritten.
const std::vector<std::pair<std::string, std::string>> kCacheAndBrowser = {
    {"Library/Caches/com.apple.Safari/fsCachedData", "Safari"},
    {"Library/Caches/Camino/Cache", "Camino"},
    {"Library/Caches/Metadata/Camino", "Camino"},
    {"Library/Caches/com.operasoftware.Opera", "Opera"},
    {kSupport + "com.operasoftware.Opera/GPUCache", "Opera"},
    {kSupport + "com.operasoftware.Opera/Application Cache", "Opera"},
    {kSupport + "com.operasoftware.OperaPepper Data" + kPepperCache, "Opera"},
    {kSupport + "Google/ChromePepper Data" + kPepperCache, "Google Chrome"},
    {kSupport + "ChromiumPepper Data" + kPepperCache, "Chromium"},
    {"Library/Caches/Adobe/Flash Player/AssetCache", ""},
    {"Library/Caches/QuickTime/downloads", ""},
};

TEST_F(RunTest, OverwritesCachesThatAreFiles) {
  scratch.folder("witness");
  for (const char* root : {"Google/Chrome", "Chromium"}) {
    scratch.file(kSupport + root + "/Local State",
                 R"({"profile": {"info_cache": {"P": {"name": "p"}}}})");
  }
  for (const std::string& browser : kEveryBrowser) {
    for (const auto& [cache, owner] : kCacheAndBrowser) {
      fs::remove(scratch.path("witness/file"));
      scratch.file(cache, "what was cached");
      fs::create_hard_link(scratch.path(cache), scratch.path("witness/file"));
      EXPECT_EQ(run({browser, "-secureDeleteData", "YES"}).status, 0);
      const bool goes = owner.empty() || owner == browser;
      EXPECT_EQ(scratch.has(cache), !goes) << browser << " " << cache;
      EXPECT_EQ(isOverwritten("what was cached", scratch.contents("witness/file")), goes) << cache;
    }
  }
}

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
  const Contents before = scratch.snapshot();
  for (const std::string& browser : kEveryBrowser) {
    EXPECT_EQ(run({browser}).status, 0);
    EXPECT_EQ(scratch.snapshot(), before) << browser;
  }
}

TEST_F(RunTest, TakesTheFirstArgumentThatIsABrowserAndNothingElse) {
  scratch.file("Library/Caches/Camino/Cache/in").file("Library/Caches/QuickTime/downloads/in");
  const Contents before = scratch.snapshot();
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
  const MacHome sample(scratch.volume(), 1);
  const std::string list = kSupport + "Google/Chrome/Local State";
  for (const std::string& text : {std::string(), std::string("{\"\xFF\": 1}")}) {
    fs::remove(scratch.path(list));
    text.empty() ? scratch.folder(list) : scratch.file(list, text);
    const Contents before = scratch.snapshot();
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
