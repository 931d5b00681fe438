// Homes that were made to mislead: links, loops, pipes, endless trees, no home at all.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kCache = "Library/Caches/Camino/Cache";
const std::string kLocalState = R"({"profile": {"info_cache": {"Default": {"name": "a"},
    "..": {"name": "b"}, "../..": {"name": "c"}, "/": {"name": "d"}, "a/../..": {"name": "e"}}}})";

/// What a run looks at by name, and then, each by itself, what may end it.
const std::vector<Names> kPaths = {
    {"Library/Keychains/login.keychain-db",
     "Library/Preferences/com.marrowgatestudios.Tasselby.plist",
     "Library/Cookies/Cookies.binarycookies", kCache, "Library/Caches/Firefox/Profiles/p",
     "Library/Safari/LocalStorage/StorageTracker.db",
     "Library/Preferences/Macromedia/Flash Player/#SharedObjects/R",
     kSupport + "Google/Chrome/Default", kSupport + "Chromium/Default/Local Storage",
     kSupport + "com.operasoftware.Opera/Cookies", kSupport + "Camino/webappsstore.sqlite",
     kSupport + "Firefox/Profiles/p", kSupport + "Microsoft/Silverlight/is/a"},
    {kSupport + "Google/Chrome/Local State"},
    {kSupport + "Microsoft/Silverlight/is/a/b/c/s/store/id.dat"}};

struct HostileHome : ::testing::Test {
  ScratchHome home;
};

TEST_F(HostileHome, LinksLoopsPipesAndDevicesLeadNowhereInAnyPlace) {
  const Names canaries = {"../../canary/deep/file", "../canary", "canary"};
  for (const std::string& canary : canaries) {
    home.file(canary, "alive");
  }
  for (const char* root : {"Google/Chrome", "Chromium"}) {
    home.file(kSupport + root + "/Local State", kLocalState);
  }
  const std::string folder = home.path("../../canary");
  for (const Names& paths : kPaths) {
    for (const std::string& target :
         split(folder + "|/|" + folder + "/deep/file|/dev/zero|itself|pipe|socket", '|')) {
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
      for (const std::string& browser : kEveryBrowser) {
        const WorkerRun result = runWorker({WORKER_BINARY, browser}, home.home());
        EXPECT_TRUE((result.status == 0 || result.status == 70) && result.output.empty())
            << paths[0] << " -> " << target << result.status << result.output;
      }
      for (const std::string& canary : canaries) {
        EXPECT_EQ(home.contents(canary), "alive") << paths[0] << " -> " << target;
      }
    }
    for (const std::string& path : paths) {
      fs::remove_all(home.path(path));
    }
  }
}

TEST_F(HostileHome, TreesDeeperThanAnyPathCanSayGo) {
  home.file(kCache + "/" + std::string(255, 'n'));
  int folder = ::open(home.path(kCache).c_str(), O_RDONLY);
  for (int depth = 0; depth < 3000; ++depth) {
    ASSERT_EQ(::mkdirat(folder, "d", 0700), 0);
    const int next = ::openat(folder, "d", O_RDONLY);
    ::close(folder);
    folder = next;
  }
  ::close(folder);
  EXPECT_EQ(runWorker({WORKER_BINARY, "Camino"}, home.home()).status, 0);
  EXPECT_FALSE(home.has(kCache));
}

TEST_F(HostileHome, HomesMayBeLinksRelativeMissingOrEmpty) {
  home.link("../link", home.home());
  for (const std::string& elsewhere : {home.path("../link"), std::string("anna"), std::string(),
                                       home.path("none"), std::string("/dev/null")}) {
    home.file(kCache + "/in");
    const WorkerRun result = runWorker({WORKER_BINARY, "Camino"}, elsewhere, "", home.path(".."));
    EXPECT_EQ(std::to_string(result.status) + result.output, "0");
    EXPECT_EQ(home.has(kCache), !elsewhere.ends_with("link") && elsewhere != "anna") << elsewhere;
  }
}

}  // namespace
}  // namespace tasselby
