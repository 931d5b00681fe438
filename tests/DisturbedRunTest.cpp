// Runs in which system calls fail, and runs that are killed: nothing kept is lost, and nothing is
// left unsound. strace makes calls fail and tells their order. A few of each belong to the tests;
// TEST_ROUNDS in the environment multiplies them.
#include <csignal>
#include <cstdlib>
#include <fstream>

#include "platform/BinaryCookies.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kWriteCalls =
    "write,pwrite64,fsync,fdatasync,ftruncate,?rename,renameat,renameat2,?unlink,unlinkat";
const std::string kCalls = kWriteCalls + ",?open,openat,read,pread64,getdents64,?fstat,?newfstatat";
// From the first look at a cookie on, or for "WebKit" at the Flash player, the keep list stands.
// Before it, a password source that cannot be read keeps nothing: that is the rule.
const Names kAfterKeepList = {"/Cookies", "cookies.sqlite", "Macromedia"};

const char* const kMore = std::getenv("TEST_ROUNDS");
const long kRounds = kMore != nullptr ? std::max(1L, std::atol(kMore)) : 1;

bool hasOneOf(const std::string& text, const Names& parts) {
  const auto isIn = [&text](const std::string& part) { return text.find(part) != text.npos; };
  return std::ranges::any_of(parts, isIn);
}

/// Copies of one sample home, each for one disturbed run, and what must hold of them afterwards.
class DisturbedRun : public ::testing::Test {
 protected:
  void SetUp() override {
    if (runWorker({"/usr/bin/env", "strace", "-o", "/dev/null", "true"}, "/").status != 0) {
      GTEST_SKIP() << "needs strace, and a system that lets it trace";
    }
    reset();
  }

  /// Makes the home anew, as it was before any run.
  void reset() {
    fs::remove_all(scratch.path("../../copy"));
    home.emplace(original.copyTo(scratch.path("../../copy")));
  }

  WorkerRun run(const Names& arguments, const Names& strace = {}) const {
    Names command = {"/usr/bin/env"};
    command.insert(command.end(), strace.begin(), strace.end());
    command.emplace_back(WORKER_BINARY);
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runWorker(command, home->home());
  }

  /// The calls of a run, each with its name first and its descriptors as paths.
  Names trace(const Names& arguments, const std::string& calls) const {
    EXPECT_EQ(run(arguments, {"strace", "-qqq", "-o", log, "-y", "-e", "trace=" + calls}).status,
              0);
    Names lines;
    std::ifstream in(log);
    for (std::string line; std::getline(in, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  WorkerRun runInjected(const Names& arguments, const std::string& call, const std::string& what,
                        const std::string& when) const {
    return run(arguments, {"strace", "-qqq", "-o", log, "-e", "trace=" + call, "-e",
                           "inject=" + call + what + ":when=" + when});
  }

  /// Expects all that a run for `browser` keeps, but for paths with `except` in them, to be as it
  /// was, and every store to be sound; when `finished`, nothing to be there that it removes. What
  /// went first, by the rule, is not there to lead a later run to the rest: rows to folders of
  /// Chromium's kind, files to their journals, Safari's one table to the other.
  void expectKept(const std::string& browser, const std::string& when,
                  const std::string& except = "-", bool finished = false) {
    const auto now = home->contents();
    const Names lost = browser == "Safari" ? Names{"Origins"} : Names{"/databases/", "-journal"};
    std::set<std::string> stores;
    for (std::size_t i = 0; i < now.size(); ++i) {
      const SampleItem& item = home->items()[i];
      const std::string label = when + ": " + item.path + " " + item.key;
      if (!item.goesFor(browser) && !hasOneOf(item.path, {except})) {
        EXPECT_EQ(now[i], contents[i]) << label;
      }
      EXPECT_FALSE(finished && now[i] && item.goesFor(browser) && !hasOneOf(label, lost)) << label;
      if (!item.key.empty() && stores.insert(item.path).second) {
        const std::string path = "../../copy/" + item.path;
        EXPECT_TRUE(item.key.starts_with("SELECT")
                        ? plainly(scratch.path(path), "PRAGMA integrity_check") == Names{"ok"}
                        : parseBinaryCookies(scratch.contents(path)).parsedWholly)
            << label;
      }
    }
  }

  ScratchHome scratch;
  const std::string log = scratch.path("../../log");
  const MacHome original{scratch.path("../../original")};
  const std::vector<std::optional<std::string>> contents = original.contents();
  std::optional<MacHome> home;
};

/// How often each call is in `trace`, and how often before the first with one of `marks` in it.
std::map<std::string, std::pair<long, long>> counted(const Names& trace, const Names& marks) {
  std::map<std::string, std::pair<long, long>> counts;
  bool before = true;
  for (const std::string& line : trace) {
    auto& [all, first] = counts[line.substr(0, line.find('('))];
    before = before && !hasOneOf(line, marks);
    ++all;
    first += before ? 1 : 0;
  }
  return counts;
}

TEST_F(DisturbedRun, FailingCallsLoseNothingThatIsKept) {
  const Names errors = {"EACCES", "EIO", "ENOSPC", "EINTR"};
  std::size_t turn = 0;
  for (const std::string& browser : kEveryBrowser) {
    reset();
    for (const auto& [call, counts] : counted(trace({browser}, kCalls), kAfterKeepList)) {
      // A folder of Silverlight stores that cannot be listed counts as empty, and with an empty one
      // the whole plug-in goes: that is the rule.
      const bool lists = call == "open" || call == "openat" || call == "getdents64";
      for (long round = 0; round < kRounds; ++round) {
        // SQLite tries again for as long as a call is interrupted, so not every one may be.
        const std::string error = errors[turn++ % errors.size()];
        const long step = 1 + round % 5 + (error == "EINTR" ? 1 : 0);
        const std::string when =
            std::to_string(counts.second + 1 + round / 5) + "+" + std::to_string(step);
        reset();
        // With every write failing, overwriting goes on until its count wraps around, as it is
        // meant to: four thousand million calls.
        const bool secure = turn % 2 == 0 && (call != "write" || step > 1);
        const WorkerRun result = runInjected({browser, "-secureDeleteData", secure ? "YES" : "NO"},
                                             call, ":error=" + error, when);
        const std::string label = browser + " " + call + " " + error + " " + when;
        EXPECT_TRUE(result.status == 0 || result.status == 70) << label << " " << result.status;
        EXPECT_EQ(result.output, "") << label;
        expectKept(browser, label, lists ? "Silverlight" : "-");
      }
    }
  }
}

TEST_F(DisturbedRun, KillsAtWriteCallsLoseNothing) {
  long turn = 0;
  for (const std::string& browser : kEveryBrowser) {
    reset();
    for (const auto& [call, counts] : counted(trace({browser}, kWriteCalls), {})) {
      const long step = std::max(1L, 60 / kRounds);
      for (long at = 1 + ++turn * 37 % step; at <= counts.first; at += step) {
        reset();
        const std::string label = browser + " killed at " + call + " " + std::to_string(at);
        const WorkerRun killed = runInjected({browser}, call, ":signal=KILL", std::to_string(at));
        EXPECT_EQ(killed.status, 128 + SIGKILL) << label;
        expectKept(browser, label);
        EXPECT_EQ(run({browser}).status, 0) << label;
        expectKept(browser, label + ", second run", "-", true);
      }
    }
  }
}

// What each run changes one after the other, as parts of paths.
const std::map<std::string, Names> kOrder = {
    {"Opera",
     {"Origin Bound Certs", "Opera/Cookies", "Databases.db", "databases/https_www.example.com_0",
      "https_10.0.0.7_0.localstorage\"", "https_10.0.0.7_0.localstorage-journal\"",
      "Flash Player/macromedia.com/support/flashplayer/sys/#10.0.0.7", "s/10.0.0.7",
      "g/group-10.0.0.7", "Opera/GPUCache", "OperaPepper Data", "Caches/com.operasoftware.Opera",
      "Application Cache", "AssetCache", "QuickTime"}},
    {"Safari",
     {"anna/Library/Cookies/Cookies.binarycookies", "Data/Library/Cookies/Cookies.binarycookies",
      "Databases/https_www.example.com_0", "Databases.db", "https_10.0.0.7_0.localstorage\"",
      "StorageTracker.db", "Flash Player/macromedia.com/support/flashplayer/sys/#10.0.0.7",
      "g/group-10.0.0.7", "Caches/com.apple.Safari/Cache.db", "fsCachedData", "var/folders",
      "Cookies.plist", "HSTS.plist", "AssetCache", "QuickTime"}}};

TEST_F(DisturbedRun, StoresAreChangedInTheirOrder) {
  for (const auto& [browser, order] : kOrder) {
    reset();
    Names visited;
    for (const std::string& line : trace({browser}, kWriteCalls)) {
      for (const std::string& place : order) {
        if (hasOneOf(line, {place}) && (visited.empty() || visited.back() != place)) {
          visited.push_back(place);
        }
      }
    }
    EXPECT_EQ(visited, order);
  }
}

TEST_F(DisturbedRun, DatabasesAndPasswordsAreOpenedAsOftenAsTheyShould) {
  const auto opened = [this](const std::string& browser, const std::string& file,
                             const std::string& removeAll = "NO") {
    const Names lines = trace({browser, "-removeAll", removeAll}, "?open,openat");
    return std::ranges::count_if(lines, [&](auto& line) { return hasOneOf(line, {file + "\""}); });
  };
  EXPECT_EQ(opened("Camino", "login.keychain-db", "YES"), 0);
  EXPECT_EQ(opened("Firefox", "login.keychain-db"), 0);
  EXPECT_EQ(opened("Firefox", "signons.sqlite", "YES"), 0);
  // Firefox's and Camino's are opened for an empty list of deletions as well, and once for all.
  for (const auto& [browser, file] : {std::pair{"Firefox", "k3x9q2ab.default/cookies.sqlite"},
                                      {"Camino", "Camino/cookies.sqlite"}}) {
    reset();
    const auto all = opened(browser, file);
    EXPECT_EQ(opened(browser, file), all) << browser;
  }
  // Chromium's kind: once for each record, so that a lock costs only those tried meanwhile.
  const std::string cookies = "com.operasoftware.Opera/Cookies";
  const auto records = std::ranges::count_if(home->items(), [&](const SampleItem& item) {
    return item.path.ends_with(cookies) && item.goesFor("Opera");
  });
  const auto first = opened("Opera", cookies);
  EXPECT_EQ(first, (1 + records) * opened("Opera", cookies));
}

TEST_F(DisturbedRun, ATrackerIsNotPrunedByAListingThatFailed) {
  const std::string tracker = home->home() + "/Library/Safari/LocalStorage/StorageTracker.db";
  const Names rows = plainly(tracker, "SELECT * FROM Origins");
  // Two calls a listing: the entries, and their end. The second listing is the tracker's.
  std::vector<std::size_t> calls;
  for (std::size_t i = 0; const std::string& line : trace({"Safari"}, "getdents64")) {
    ++i;
    if (hasOneOf(line, {"Safari/LocalStorage>"})) {
      calls.push_back(i);
    }
  }
  ASSERT_EQ(calls.size(), 4U);
  reset();
  runInjected({"Safari"}, "getdents64", ":error=EIO", std::to_string(calls[2]));
  EXPECT_EQ(plainly(tracker, "SELECT * FROM Origins"), rows);
}

TEST_F(DisturbedRun, RemovalLeavesAloneWhatCannotBeRemoved) {
  const std::string cache = home->home() + "/Library/Caches/Camino/Cache";
  const auto fill = [&] {
    fs::remove_all(cache);
    home->add("= Library/Caches/Camino/Cache/\n- {1,2/3,4/5/6,7}\n");
  };
  run({"Camino"});
  fill();
  const long before =
      counted(trace({"Camino"}, "unlinkat"), {"Camino/Cache"}).at("unlinkat").second;
  std::ptrdiff_t left = 0;
  for (long call = 1; call <= 12; ++call) {
    fill();
    runInjected({"Camino"}, "unlinkat", ":error=EACCES", std::to_string(before + call));
    std::error_code ignored;
    left += std::ranges::count_if(fs::recursive_directory_iterator(cache, ignored),
                                  [](const auto& entry) { return entry.is_regular_file(); });
  }
  EXPECT_EQ(left, 4) << "of one call for each file and two for each folder, those of the files";
}

}  // namespace
}  // namespace tasselby
