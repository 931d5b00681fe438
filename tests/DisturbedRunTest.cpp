// Runs in which system calls fail, runs that are killed, and runs beside other processes: nothing
// kept is lost, and nothing is left unsound. strace makes calls fail and says in which order they
// come. A few of each belong to the tests; TEST_ROUNDS in the environment multiplies them.
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/Testing.h"

namespace tasselby {
namespace {

constexpr int kKilled = 128 + SIGKILL;
const std::string kWriteCalls =
    "write,pwrite64,fsync,fdatasync,ftruncate,?rename,renameat,renameat2,?unlink,"
    "unlinkat";
const std::string kCalls = kWriteCalls + ",?open,openat,read,pread64,getdents64,?fstat,?newfstatat";
// From the first look at a cookie on, or for "WebKit" at the Flash player, the keep list stands.
// Before it, a password source that cannot be read keeps nothing: that is the rule.
const Names kAfterKeepList = {"/Cookies", "cookies.sqlite", "Macromedia"};

long rounds() {
  const char* text = std::getenv("TEST_ROUNDS");
  return text != nullptr ? std::max(1L, std::atol(text)) : 1;
}

bool hasOneOf(const std::string& text, const Names& parts) {
  return std::ranges::any_of(parts,
                             [&text](const auto& part) { return text.find(part) != text.npos; });
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
    Names command = {WORKER_BINARY};
    if (!strace.empty()) {
      command = {"/usr/bin/env", "strace", "-qqq", "-o", log};
      command.insert(command.end(), strace.begin(), strace.end());
      command.emplace_back(WORKER_BINARY);
    }
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runWorker(command, home->home());
  }

  /// The calls of a run, each with its name first and its descriptors as paths.
  Names trace(const Names& arguments, const std::string& calls) const {
    EXPECT_EQ(run(arguments, {"-y", "-e", "trace=" + calls}).status, 0);
    Names lines;
    std::ifstream in(log);
    for (std::string line; std::getline(in, line);) {
      line.erase(0, line.find_first_not_of("0123456789 "));
      lines.push_back(line);
    }
    return lines;
  }

  /// The calls of each name in `trace`, and how many of them come before the first with one of
  /// `marks` in it.
  static std::map<std::string, std::pair<long, long>> counted(const Names& trace,
                                                              const Names& marks = {""}) {
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

  WorkerRun runInjected(const Names& arguments, const std::string& call, const std::string& what,
                        const std::string& when) const {
    return run(arguments, {"-e", "trace=" + call, "-e", "inject=" + call + what + ":when=" + when});
  }

  /// Expects everything that a run for `browser` keeps, paths with `except` in them aside, to hold
  /// what it held at first, and every database to be sound. A cookie file is the old one or the new
  /// one.
  void expectKept(const std::string& browser, const std::string& label,
                  const std::string& except = "") {
    const auto now = home->contents();
    std::string database;
    for (std::size_t i = 0; i < now.size(); ++i) {
      const SampleItem& item = home->items()[i];
      if (!item.goesFor(browser) && (except.empty() || !hasOneOf(item.path, {except}))) {
        EXPECT_EQ(now[i], contents[i]) << label << ": " << item.path << " " << item.key;
      }
      if (item.key.starts_with("SELECT") && item.path != database) {
        database = item.path;
        EXPECT_EQ(plainly(home->path(database), "PRAGMA integrity_check"), Names{"ok"})
            << label << ": " << database;
      }
    }
    for (const char* folder : {"", "Library/Containers/com.apple.Safari/Data/"}) {
      const std::string file = std::string(folder) + "Library/Cookies/Cookies.binarycookies";
      const std::string bytes = scratch.contents("../../copy/Users/anna/" + file);
      EXPECT_TRUE(bytes == scratch.contents("../../original/Users/anna/" + file) ||
                  bytes == finishedCookies(file))
          << label << ": " << file;
    }
  }

  /// After a kill a second run finds what is kept, and finishes the work.
  void expectSecondRun(const std::string& browser, const std::string& label) {
    expectKept(browser, label);
    EXPECT_EQ(run({browser}).status, 0) << label;
    expectKept(browser, label + ", second run");
    const auto now = home->contents();
    for (std::size_t i = 0; i < now.size(); ++i) {
      const SampleItem& item = home->items()[i];
      // What went first, by the rule, is not there to lead a later run to the rest: rows to folders
      // of Chromium's kind, files to their journals, Safari's one table to the other.
      const bool isLost =
          browser == "Safari"
              ? item.path.ends_with("Databases.db") && hasOneOf(item.key, {"Origins"})
              : hasOneOf(item.path, {"/databases/", "/Local Storage/"});
      EXPECT_TRUE(!now[i] || isLost || !item.goesFor(browser))
          << label << ", second run: " << item.path << " " << item.key;
    }
  }

  /// Runs `work` again and again in a process of its own until `meanwhile` is done.
  template <typename Work, typename Meanwhile>
  void aside(const Work& work, const Meanwhile& meanwhile) {
    const pid_t child = ::fork();
    if (child == 0) {
      while (true) {
        work();
      }
    }
    meanwhile();
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
  }

  ScratchHome scratch;
  const std::string log = scratch.path("../../log");
  const MacHome original{scratch.path("../../original")};
  const std::vector<std::optional<std::string>> contents = original.contents();
  std::optional<MacHome> home;

 private:
  std::string finishedCookies(const std::string& file) {
    if (finished_.empty()) {
      original.copyTo(scratch.path("../../finished"));
      runWorker({WORKER_BINARY, "Safari"}, scratch.path("../../finished/Users/anna"));
      finished_ = "../../finished/Users/anna/";
    }
    return scratch.contents(finished_ + file);
  }

  std::string finished_;
};

TEST_F(DisturbedRun, FailingCallsLoseNothingThatIsKept) {
  const Names errors = {"EACCES", "EIO", "ENOSPC", "EINTR"};
  std::size_t turn = 0;
  for (const std::string& browser : kEveryBrowser) {
    reset();
    for (const auto& [call, counts] : counted(trace({browser}, kCalls), kAfterKeepList)) {
      // A folder of Silverlight stores that cannot be listed counts as empty, and with an empty one
      // the whole plug-in goes: that is the rule.
      const bool lists = call == "open" || call == "openat" || call == "getdents64";
      for (long round = 0; round < rounds(); ++round) {
        // SQLite tries again for as long as a call is interrupted, so not every one may be.
        const std::string error = errors[turn++ % errors.size()];
        const long step = 1 + round % 5 + (error == "EINTR" ? 1 : 0);
        const std::string when =
            std::to_string(counts.second + 1 + round / 5) + "+" + std::to_string(step);
        const std::string label = browser + " " + call + " " + error + " " + when;
        reset();
        // With every write failing, overwriting goes on until its count wraps around, as it is
        // meant to: four thousand million calls.
        const bool secure = turn % 2 == 0 && (call != "write" || step > 1);
        const WorkerRun result = runInjected({browser, "-secureDeleteData", secure ? "YES" : "NO"},
                                             call, ":error=" + error, when);
        EXPECT_TRUE(result.status == 0 || result.status == 70) << label << " " << result.status;
        EXPECT_EQ(result.output, "") << label;
        expectKept(browser, label, lists ? "Silverlight" : "");
      }
    }
  }
}

TEST_F(DisturbedRun, KillsAtWriteCallsLoseNothing) {
  std::mt19937 random(1);
  for (const std::string& browser : kEveryBrowser) {
    reset();
    for (const auto& [call, counts] : counted(trace({browser}, kWriteCalls))) {
      const long step = std::max(1L, 60 / rounds());
      for (long at = 1 + static_cast<long>(random()) % step; at <= counts.first; at += step) {
        reset();
        const std::string label = browser + " killed at " + call + " " + std::to_string(at);
        EXPECT_EQ(runInjected({browser}, call, ":signal=KILL", std::to_string(at)).status, kKilled)
            << label;
        expectSecondRun(browser, label);
      }
    }
  }
}

/// Those of `places` that the calls of `trace` name, one after another, each run of one as one.
Names visited(const Names& trace, const Names& places) {
  Names order;
  for (const std::string& line : trace) {
    for (const std::string& place : places) {
      if (line.find(place) != std::string::npos && (order.empty() || order.back() != place)) {
        order.push_back(place);
      }
    }
  }
  return order;
}

TEST_F(DisturbedRun, StoresAreChangedInTheirOrder) {
  const std::string one = R"({"profile": {"info_cache": {"Default": {"name": "a"}}}})";
  home->writeFile("Library/Application Support/Google/Chrome/Local State", one);
  const Names chrome = {"Origin Bound Certs",
                        "Default/Cookies",
                        "Databases.db",
                        "databases/https_www.example.com_0",
                        "https_10.0.0.7_0.localstorage\"",
                        "https_10.0.0.7_0.localstorage-journal\"",
                        "Flash Player/macromedia.com/support/flashplayer/sys/#10.0.0.7",
                        "SharedObjects/7YUL8MEX/10.0.0.7",
                        "s/10.0.0.7",
                        "g/group-10.0.0.7",
                        "ChromePepper Data",
                        "Caches/Google/Chrome/Default",
                        "Application Cache",
                        "AssetCache",
                        "QuickTime"};
  EXPECT_EQ(visited(trace({"Google Chrome"}, kWriteCalls), chrome), chrome);
  const Names safari = {"anna/Library/Cookies/Cookies.binarycookies",
                        "Data/Library/Cookies/Cookies.binarycookies",
                        "Databases/https_www.example.com_0",
                        "Databases.db",
                        "https_10.0.0.7_0.localstorage\"",
                        "StorageTracker.db",
                        "Flash Player/macromedia.com/support/flashplayer/sys/#10.0.0.7",
                        "g/group-10.0.0.7",
                        "Caches/com.apple.Safari/Cache.db",
                        "fsCachedData",
                        "var/folders",
                        "Cookies.plist",
                        "HSTS.plist",
                        "AssetCache",
                        "QuickTime"};
  reset();
  EXPECT_EQ(visited(trace({"Safari"}, kWriteCalls), safari), safari);
}

TEST_F(DisturbedRun, DatabasesAndPasswordsAreOpenedAsOftenAsTheyShould) {
  const auto opened = [this](const std::string& browser, const std::string& file,
                             const std::string& removeAll = "NO") {
    return std::ranges::count_if(
        trace({browser, "-removeAll", removeAll}, "?open,openat"),
        [&](const auto& line) { return line.find(file + "\"") != line.npos; });
  };
  EXPECT_GT(opened("Camino", "login.keychain-db"), 0);
  EXPECT_EQ(opened("Camino", "login.keychain-db", "YES"), 0);
  EXPECT_EQ(opened("Firefox", "login.keychain-db"), 0);
  EXPECT_GT(opened("Firefox", "signons.sqlite"), 0);
  EXPECT_EQ(opened("Firefox", "signons.sqlite", "YES"), 0);
  // Firefox's and Camino's are opened for an empty list of deletions as well, and once for all.
  for (const auto& [browser, file] : {std::pair{"Firefox", "k3x9q2ab.default/cookies.sqlite"},
                                      {"Camino", "Camino/cookies.sqlite"}}) {
    reset();
    const auto first = opened(browser, file);
    EXPECT_EQ(opened(browser, file), first) << browser;
  }
  // Chromium's kind: once for each record, so that a lock costs only those tried meanwhile.
  reset();
  const std::string cookies = "com.operasoftware.Opera/Cookies";
  opened("Opera", cookies);
  const auto none = opened("Opera", cookies);
  for (const long count : {1, 5}) {
    for (long i = 0; i < count; ++i) {
      plainly(home->home() + "/Library/Application Support/" + cookies,
              "INSERT INTO cookies VALUES (" + std::to_string(i) +
                  ", 'gone', 'a', '', '/', 1, 0, 0, 1, 1, 1, 1, '')");
    }
    EXPECT_EQ(opened("Opera", cookies), (1 + count) * none) << count;
  }
}

TEST_F(DisturbedRun, ATrackerIsNotPrunedByAListingThatFailed) {
  const std::string tracker = home->home() + "/Library/Safari/LocalStorage/StorageTracker.db";
  const Names rows = plainly(tracker, "SELECT * FROM Origins");
  std::vector<std::size_t> calls;
  const Names lists = trace({"Safari"}, "getdents64");
  for (std::size_t i = 0; i < lists.size(); ++i) {
    if (hasOneOf(lists[i], {"Safari/LocalStorage>"})) {
      calls.push_back(i + 1);
    }
  }
  // Two calls a listing: the entries, and their end. The second listing is the tracker's.
  ASSERT_EQ(calls.size(), 4U);
  reset();
  runInjected({"Safari"}, "getdents64", ":error=EIO", std::to_string(calls[2]));
  EXPECT_EQ(plainly(tracker, "SELECT * FROM Origins"), rows);
}

TEST_F(DisturbedRun, RemovalLeavesAloneWhatCannotBeRemoved) {
  const std::string cache = home->home() + "/Library/Caches/Camino/Cache";
  const auto fill = [&cache] {
    fs::remove_all(cache);
    for (const char* name : {"/1", "/2/3", "/4/5/6", "/7"}) {
      fs::create_directories(fs::path(cache + name).parent_path());
      std::ofstream(cache + name) << "cached";
    }
  };
  run({"Camino"});
  fill();
  const long before =
      counted(trace({"Camino"}, "unlinkat"), {"Camino/Cache"}).at("unlinkat").second;
  std::ptrdiff_t left = 0;
  // One call for each file, and two for each folder.
  for (long call = 1; call <= 12; ++call) {
    fill();
    runInjected({"Camino"}, "unlinkat", ":error=EACCES", std::to_string(before + call));
    std::error_code ignored;
    left += std::ranges::count_if(fs::recursive_directory_iterator(cache, ignored),
                                  [](const auto& entry) { return entry.is_regular_file(); });
  }
  EXPECT_EQ(left, 4) << "each file with the one call that removes it";
}

TEST_F(DisturbedRun, OwnerWritingToTheDatabasesLosesNothing) {
  const std::string path = home->home() + "/Library/Application Support/Camino/cookies.sqlite";
  for (long round = 0; round < 10 * rounds(); ++round) {
    reset();
    aside(
        [&path] {
          const Connection owner = plainConnection(path);
          sqlite3_busy_timeout(owner.get(), 60000);
          plainly(owner,
                  "UPDATE moz_cookies SET lastAccessed = lastAccessed WHERE host = "
                  "'www.example.com';"
                  "INSERT INTO moz_cookies (name, host) VALUES ('own', 'example.com');"
                  "DELETE FROM moz_cookies WHERE name = 'own';");
        },
        [this] {
          for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(run({"Camino"}).status, 0);
          }
        });
    expectKept("Camino", "round " + std::to_string(round));
  }
}

TEST_F(DisturbedRun, FoldersSwappedForLinksLeadNowhere) {
  const std::string canary = scratch.path("../../canary");
  const std::string link = scratch.path("../../link");
  const fs::path cache = home->home() + "/Library/Caches/Camino/Cache";
  const auto fill = [](const fs::path& folder, int files) {
    fs::create_directories(folder / "deep");
    for (int i = 0; i < files; ++i) {
      std::ofstream(folder / "deep" / std::to_string(i)) << "a file";
    }
  };
  fill(canary, 200);
  std::ofstream(log) << "";
  const int counter = ::open(log.c_str(), O_WRONLY | O_APPEND);
  while (fs::file_size(log) < static_cast<std::uintmax_t>(1000 * rounds())) {
    Names folders;
    for (int i = 0; i < 20; ++i) {
      folders.push_back(cache / ("folder" + std::to_string(i)));
      fill(folders.back(), 20);
    }
    fs::remove_all(link);
    fs::create_symlink(canary, link);
    aside(
        [&] {
          for (const std::string& folder : folders) {
            for (int turn = 0; turn < 2; ++turn) {
              if (::renameat2(AT_FDCWD, folder.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE) ==
                      0 &&
                  ::write(counter, "x", 1) != 1) {
                return;
              }
            }
          }
        },
        [this] { EXPECT_EQ(run({"Camino"}).status, 0); });
    ASSERT_EQ(scratch.list("../../canary/deep").size(), 200U);
  }
  ::close(counter);
}

}  // namespace
}  // namespace tasselby
