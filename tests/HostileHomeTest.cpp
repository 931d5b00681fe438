// Homes that were made to mislead: links, loops, pipes, odd names, no home at all. A tree of
// canaries around the home stays as it is.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kCache = "Library/Caches/Camino/Cache";
const std::string kStorage = "Library/Safari/LocalStorage/";
const std::string kLocalState = R"({"profile": {"info_cache": {"Default": {"name": "a"},
    "..": {"name": "b"}, "../..": {"name": "c"}, "/": {"name": "d"}, "a/../..": {"name": "e"}}}})";

/// What a run looks at by name, and then, each by itself, what may end it.
const std::vector<Names> kPaths = {
    {"Library/Keychains/login.keychain-db",
     "Library/Preferences/com.marrowgatestudios.Tasselby.plist",
     "Library/Cookies/Cookies.binarycookies", kCache, "Library/Caches/Firefox/Profiles/p",
     kStorage + "StorageTracker.db", "Library/Preferences/Macromedia/Flash Player/#SharedObjects/R",
     kSupport + "Google/Chrome/Default", kSupport + "Chromium/Default/Local Storage",
     kSupport + "com.operasoftware.Opera/Cookies", kSupport + "Camino/webappsstore.sqlite",
     kSupport + "Firefox/Profiles/p", kSupport + "Microsoft/Silverlight/is/a"},
    {kSupport + "Google/Chrome/Local State"},
    {kSupport + "Microsoft/Silverlight/is/a/b/c/s/store/id.dat"}};

const std::map<std::string, std::string> kCanaries = {
    {"../../canary/deep/file", "a"}, {"../canary", "b"}, {"canary", "c"}};

struct HostileHome : ::testing::Test {
  HostileHome() {
    for (const auto& [canary, contents] : kCanaries) {
      home.file(canary, contents);
    }
    for (const char* root : {"Google/Chrome", "Chromium"}) {
      home.file(kSupport + root + "/Local State", kLocalState);
    }
  }

  /// Runs the worker for every browser and expects it to end, without a word, and the canaries to
  /// be alive.
  void runAll(const std::string& label) const {
    for (const std::string& browser : kEveryBrowser) {
      const WorkerRun result = runWorker({WORKER_BINARY, browser}, home.home());
      EXPECT_TRUE(result.status == 0 || result.status == 70) << label << " " << result.status;
      EXPECT_EQ(result.output, "") << label;
    }
    for (const auto& [canary, contents] : kCanaries) {
      EXPECT_EQ(home.contents(canary), contents) << label;
    }
  }

  ScratchHome home;
};

TEST_F(HostileHome, LinksLoopsPipesAndDevicesLeadNowhereInAnyPlace) {
  const std::string canary = home.path("../../canary");
  for (const Names& paths : kPaths) {
    for (const std::string& target :
         split(canary + "|/|" + canary + "/deep/file|/dev/zero|" + "itself|pipe|socket", '|')) {
      for (const std::string& path : paths) {
        const std::string full = home.path(path);
        fs::remove_all(full);
        fs::create_directories(fs::path(full).parent_path());
        if (target == "pipe") {
          ASSERT_EQ(::mkfifo(full.c_str(), 0600), 0);
        } else if (target == "socket") {
          home.socket(path);
        } else {
          fs::create_symlink(target == "itself" ? full : target, full);
        }
      }
      runAll(paths[0] + " -> " + target);
    }
    for (const std::string& path : paths) {
      fs::remove_all(home.path(path));
    }
  }
}

TEST_F(HostileHome, NamesOfEveryByteAndTreesOfAnyDepthGo) {
  home.file(kCache + "/" + std::string(255, 'n')).file(kStorage + ".localstorage");
  for (char byte = 1; byte < 127; ++byte) {
    const std::string name(2, byte == '/' ? '.' : byte);
    home.file(kCache + "/" + name + "n/in").file(kStorage + name + ".localstorage");
  }
  // Deeper than any path can say.
  int folder = ::open(home.path(kCache).c_str(), O_RDONLY);
  for (int depth = 0; depth < 3000; ++depth) {
    ASSERT_EQ(::mkdirat(folder, "d", 0700), 0);
    const int next = ::openat(folder, "d", O_RDONLY);
    ::close(folder);
    folder = next;
  }
  ::close(folder);
  runAll("odd names");
  EXPECT_FALSE(home.has(kCache));
  EXPECT_TRUE(home.list(kStorage).empty());
}

TEST_F(HostileHome, HomesMayBeLinksRelativeMissingOrEmpty) {
  home.link("../link", home.home());
  for (const std::string& elsewhere : {home.path("../link"), std::string("anna"), std::string(),
                                       home.path("none"), std::string("/dev/null")}) {
    home.file(kCache + "/in");
    const WorkerRun result = runWorker({WORKER_BINARY, "Camino"}, elsewhere, "", home.path(".."));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(home.has(kCache), !elsewhere.ends_with("link") && elsewhere != "anna") << elsewhere;
  }
}

}  // namespace
}  // namespace tasselby
