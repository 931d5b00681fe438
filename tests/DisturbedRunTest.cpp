// Runs in which system calls fail, and runs that are killed: nothing kept is lost, and nothing is
// left unsound. strace makes calls fail and tells their order. Every repetition of a test disturbs
// other calls.
#include <csignal>
#include <fcntl.h>
#include <regex>
#include <thread>

#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kWriteCalls =
    "write,pwrite64,fsync,fdatasync,ftruncate,?rename,renameat,renameat2,?unlink,unlinkat";
const std::string kOpenCalls = "?open,openat";
const std::string kCalls =
    kWriteCalls + "," + kOpenCalls + ",read,pread64,getdents64,?fstat,?newfstatat";
// From the first look at a cookie on, or for "WebKit" at the Flash player, the keep list stands.
// Before it, a password source that cannot be read keeps nothing: that is the rule.
const std::regex kAfterKeepList("/Cookies|cookies.sqlite|Macromedia");

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

  /// A run under strace, with what comes of `calls`, those that have to do with `path` if there is
  /// one: such as ":error=EIO:when=3".
  WorkerRun run(const Names& arguments, const std::string& calls, const std::string& what = "",
                const std::string& path = "") const {
    Names command = {"/usr/bin/env", "strace", "-qqqyo", log, "-e", "trace=" + calls};
    for (const Names& more : {what.empty() ? Names() : Names{"-e", "inject=" + calls + what},
                              path.empty() ? Names() : Names{"-P", home->home() + path},
                              Names{WORKER_BINARY}, arguments}) {
      command.insert(command.end(), more.begin(), more.end());
    }
    return runWorker(command, home->home());
  }

  /// The calls of an undisturbed run, each with its name first and its descriptors as paths.
  Names trace(const Names& arguments, const std::string& calls) const {
    EXPECT_EQ(run(arguments, calls).status, 0);
    return split(bytesOf(log), '\n');
  }

  /// How often a run for `browser` over the home as it was makes each of `calls`, and how often
  /// before the keep list stands.
  std::map<std::string, std::pair<long, long>> counted(const std::string& browser,
                                                       const std::string& calls) {
    reset();
    std::map<std::string, std::pair<long, long>> counts;
    bool before = true;
    for (const std::string& line : trace({browser}, calls)) {
      before = before && !std::regex_search(line, kAfterKeepList);
      auto& [all, first] = counts[line.substr(0, line.find('('))];
      ++all;
      first += before ? 1 : 0;
    }
    return counts;
  }

  /// Expects all that a run for `browser` keeps, but for paths with `except` in them, to be as it
  /// was, and every database to be sound; when `finished`, nothing to be there that it removes.
  /// What went first, by the rule, is not there to lead a later run to the rest: rows to folders of
  /// Chromium's kind, files to their journals, Safari's one table to the other.
  void expectKept(const std::string& browser, const std::string& when,
                  const std::string& except = "^$", bool finished = false) const {
    const auto now = home->contents();
    const std::regex lost(browser == "Safari" ? "Origins" : "/databases/|-journal");
    std::set<std::string> stores;
    for (std::size_t i = 0; i < now.size(); ++i) {
      const SampleItem& item = home->items()[i];
      const std::string label = when + ": " + item.path + " " + item.key;
      const bool goes = item.goesFor(browser);
      EXPECT_TRUE(goes || now[i] == contents[i] || std::regex_search(item.path, std::regex(except)))
          << label;
      EXPECT_FALSE(finished && goes && now[i] && !std::regex_search(label, lost)) << label;
      if (item.key.starts_with("SELECT") && stores.insert(item.path).second) {
        EXPECT_EQ(plainly(home->path(item.path), "PRAGMA integrity_check"), Names{"ok"}) << label;
      }
    }
  }

  ScratchHome scratch;
  static inline long turn = 0;
  const std::string log = scratch.path("../../log");
  const MacHome original{scratch.path("../../original")};
  const std::vector<std::optional<std::string>> contents = original.contents();
  std::optional<MacHome> home;
};

TEST_F(DisturbedRun, FailingCallsAndKillsLoseNothingThatIsKept) {
  for (const std::string& browser : kEveryBrowser) {
    for (const auto& [call, counts] : counted(browser, kCalls)) {
      const Names errors = {"EACCES", "EIO", "ENOSPC"};
      const long at = ++turn / 5 % std::max(1L, counts.first - counts.second), step = 1 + turn % 5;
      const std::string what = ":error=" + errors[turn % errors.size()] +
                               ":when=" + std::to_string(counts.second + 1 + at) + "+" +
                               std::to_string(step);
      const std::string label = browser + " " + call + what;
      // With every write failing, overwriting goes on until its count wraps around, as it is meant
      // to: four thousand million calls.
      const bool secure = turn % 2 == 0 && (call != "write" || step > 1);
      reset();
      const WorkerRun result =
          run({browser, "-secureDeleteData", secure ? "YES" : "NO"}, call, what);
      EXPECT_TRUE((result.status == 0 || result.status == 70) && result.output.empty())
          << label << " " << result.status << result.output;
      // A folder of Silverlight stores that cannot be listed counts as empty, and with an empty one
      // the whole plug-in goes: that is the rule.
      expectKept(browser, label,
                 std::regex_search(call, std::regex("open|getdents|stat")) ? "Silverlight" : "^$");
      if (kWriteCalls.find(call) != kWriteCalls.npos) {
        const std::string kill =
            ":signal=KILL:when=" + std::to_string(1 + turn * 37 % counts.first);
        reset();
        EXPECT_EQ(run({browser}, call, kill).status, 128 + SIGKILL) << call << kill;
        expectKept(browser, call + kill);
        EXPECT_EQ(run({browser}, "none").status, 0) << call << kill;
        expectKept(browser, call + kill + ", second run", "^$", true);
      }
    }
  }
}

TEST_F(DisturbedRun, StoresAreOpenedAndChangedInTheirOrder) {
  // Firefox's and Camino's cookies are opened for an empty list of deletions as well, and once for
  // all; those of Chromium's kind once for each of the records, so that a lock costs only those
  // tried meanwhile. Behind how often in a first and a second run, what a run changes one after the
  // other, as parts of paths.
  for (const auto& [browser, cookies, first, second, order] :
       {std::tuple{"Firefox", "k3x9q2ab.default/cookies.sqlite", 2, 2, ""},
        {"Camino", "Camino/cookies.sqlite", 2, 2, ""},
        {"Opera", "Opera/Cookies", 13, 1,
         "|Bound Certs|Opera/Cookies|Databases.db|databases/https_www|7_0.localstorage\""
         "|7_0.localstorage-journal|sys/#10|s/10.0|g/group-10|Application Cache|AssetCache"},
        {"Safari", "Library/Cookies/Cookies.binarycookies", 4, 2,
         "|Cookies.binarycookies|Databases/https_www|Databases.db|7_0.localstorage|Tracker.db"
         "|sys/#10|s/10.0|g/group-10|fsCachedData|AssetCache"}}) {
    reset();
    for (const int opens : {first, second}) {
      int opened = 0;
      std::string visited;
      const std::string parts = *order == '|' ? order + 1 : "^$";
      for (const std::string& line : trace({browser}, kWriteCalls + "," + kOpenCalls)) {
        std::smatch place;
        if (line.starts_with("open")) {
          opened += line.find(std::string(cookies) + "\"") != line.npos ? 1 : 0;
        } else if (std::regex_search(line, place, std::regex(parts)) &&
                   !visited.ends_with("|" + place.str())) {
          visited += "|" + place.str();
        }
      }
      EXPECT_EQ(opened, opens) << browser;
      EXPECT_TRUE(opens != first || visited == order) << browser << visited;
    }
  }
}

TEST_F(DisturbedRun, FailedCallsHaveTheConsequencesTheyShould) {
  // What another worker sets aside meanwhile may be there again.
  const std::string all = "/" + kSupport;
  const std::string store = all + "Microsoft/Silverlight/is/ab12cd34.ef5/gh67ij89.kl0/1/s/10.0.0.7";
  EXPECT_EQ(run({"Camino"}, "openat", ":error=ENOENT:when=1", store + "/id.dat").status, 0);
  const std::string storage = "/Library/Safari/LocalStorage";
  const std::string tracker = home->home() + storage + "/StorageTracker.db";
  const Names rows = plainly(tracker, "SELECT * FROM Origins");
  // Two calls a listing: the entries, and their end. The second listing is the tracker's.
  run({"Safari"}, "getdents64", ":error=EIO:when=3", storage);
  EXPECT_EQ(plainly(tracker, "SELECT * FROM Origins"), rows);
  // Of a file's size 2^32 - 8 counts, to which each failed write adds 1: after 8 it wraps around.
  const std::string sparse = all + "Chromium/Default/Local Storage/https_10.0.0.7_0.localstorage";
  fs::resize_file(home->home() + sparse, (std::uintmax_t{1} << 33) - 8);
  run({"Chromium", "-secureDeleteData", "YES"}, "write", ":error=EIO", sparse);
  EXPECT_FALSE(fs::exists(home->home() + sparse));
  const std::string cache = "/Library/Caches/Camino/Cache";
  home->add("= Library/Caches/Camino/Cache/\n- {1,2/3,4/5/6,4/7,8}\n");
  run({"Camino"}, "unlinkat", ":error=EACCES", cache + "/4/5");
  const auto left = snapshotOf(home->home() + cache);
  EXPECT_TRUE(left.size() == 3 && left.contains("4/5/6")) << "the file and its folders";
  home->add("= Library/Cookies/\n- Cookies.binarycookies: 'gone.example', 'a'\n");
  run({"Safari"}, "?rename,renameat,renameat2", ":error=EIO");
  EXPECT_EQ(snapshotOf(home->home() + "/Library/Cookies").size(), 1U) << "no half of a new file";
}

TEST_F(DisturbedRun, FoldersSwappedForLinksLeadNowhere) {
  const std::string cache = home->home() + "/Library/Caches/Camino/Cache/";
  scratch.file("canary/deep/file");
  for (int i = 0; i < 20; ++i) {
    fs::create_directories(cache + std::to_string(i) + "/deep");
    scratch.link("links/" + std::to_string(i), scratch.path("canary"));
  }
  std::jthread swapper([&](const std::stop_token& end) {
    for (int i = 0; !end.stop_requested(); i = (i + 1) % 20) {
      const std::string name = std::to_string(i), link = scratch.path("links/" + name);
      ::renameat2(AT_FDCWD, (cache + name).c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE);
    }
  });
  // Two milliseconds each, in which what was a folder becomes a link.
  run({"Camino"}, kOpenCalls, ":delay_enter=2000");
  swapper.request_stop();
  swapper.join();
  EXPECT_TRUE(scratch.has("canary/deep/file"));
}

}  // namespace
}  // namespace tasselby
