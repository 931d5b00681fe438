// Homes that were made to mislead: links, loops, pipes, odd names, no home at all. A tree of
// canaries around the home stays as it is.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/Testing.h"

namespace tasselby {
namespace {

const std::string kCache = "Library/Caches/Camino/Cache";
const std::string kLocalState = R"({"profile": {"info_cache": {"Default": {"name": "a"},
    "..": {"name": "b"}, "../..": {"name": "c"}, "/": {"name": "d"}, "a/../..": {"name": "e"}}}})";

/// What a run looks at by name: each is tried as a link, a loop, a pipe, a socket, a device.
const Names kPaths = {"Library/Keychains/login.keychain-db",
                      "Library/Preferences/com.marrowgatestudios.Tasselby.plist",
                      "Library/Cookies/Cookies.binarycookies",
                      kCache,
                      "Library/Caches/Firefox/Profiles/p",
                      "Library/Safari/LocalStorage/StorageTracker.db",
                      "Library/Preferences/Macromedia/Flash Player/#SharedObjects/R",
                      kSupport + "Google/Chrome/Local State",
                      kSupport + "Google/Chrome/Default",
                      kSupport + "Chromium/Default/Local Storage",
                      kSupport + "com.operasoftware.Opera/Cookies",
                      kSupport + "Camino/webappsstore.sqlite",
                      kSupport + "Firefox/Profiles/p",
                      kSupport + "Microsoft/Silverlight/is/a",
                      kSupport + "Microsoft/Silverlight/is/a/b/c/s/store/id.dat"};

struct HostileHome : ::testing::Test {
  HostileHome() {
    for (const char* canary : {"../../canary/deep/file", "../canary", "canary"}) {
      home.file(canary, "alive");
    }
    for (const char* root : {"Google/Chrome", "Chromium"}) {
      home.file(kSupport + root + "/Local State", kLocalState);
    }
  }

  void runAll(const std::string& label) {
    for (const std::string& browser : kEveryBrowser) {
      const WorkerRun result = runWorker({WORKER_BINARY, browser}, home.home());
      EXPECT_TRUE(result.status == 0 || result.status == 70) << label << " " << result.status;
      EXPECT_EQ(result.output, "") << label;
    }
    for (const char* canary : {"../../canary/deep/file", "../canary", "canary"}) {
      EXPECT_EQ(home.contents(canary), "alive") << label;
    }
  }

  ScratchHome home;
};

TEST_F(HostileHome, LinksLoopsPipesAndDevicesLeadNowhereInAnyPlace) {
  for (const std::string& path : kPaths) {
    const std::string full = home.path(path);
    const auto clear = [&full] {
      fs::remove_all(full);
      fs::create_directories(fs::path(full).parent_path());
    };
    for (const std::string& target :
         {home.volume() + "/canary", std::string("/"), home.volume() + "/canary/deep/file",
          std::string("/dev/zero"), full}) {
      clear();
      fs::create_symlink(target, full);
      runAll(path + " -> " + target);
    }
    clear();
    ASSERT_EQ(::mkfifo(full.c_str(), 0600), 0);
    runAll(path + " a pipe");
    clear();
    home.socket(path);
    runAll(path + " a socket");
    clear();
  }
}

TEST_F(HostileHome, NamesOfEveryByteAndTreesOfAnyDepthGo) {
  const std::string storage = "Library/Safari/LocalStorage/";
#ifdef __APPLE__
  const int last = 127;  // Its file system refuses names that are no text.
#else
  const int last = 255;
#endif
  home.file(kCache + "/" + std::string(255, 'n')).file(storage + ".localstorage");
  for (int byte = 1; byte <= last; ++byte) {
    if (byte != '/') {
      const std::string name = std::string("n") + static_cast<char>(byte);
      home.file(kCache + "/" + name + "/in").file(storage + name + ".localstorage");
    }
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
  EXPECT_TRUE(home.list(storage).empty());
}

TEST_F(HostileHome, HomesMayBeLinksRelativeMissingOrEmpty) {
  const std::string none = "unix:path=/dev/null";
  fs::create_directory_symlink(home.home(), home.path("../link"));
  for (const std::string& elsewhere : {home.path("../link"), std::string("anna")}) {
    home.file(kCache + "/in");
    EXPECT_EQ(runWorker({WORKER_BINARY, "Camino"}, elsewhere, none, home.path("..")).status, 0);
    EXPECT_FALSE(home.has(kCache)) << elsewhere;
  }
  home.file(kCache + "/in");
  for (const char* elsewhere : {"", "/missing", "/dev/null"}) {
    const WorkerRun result = runWorker({WORKER_BINARY, "Camino"}, elsewhere, none, home.home());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
  }
  EXPECT_TRUE(home.has(kCache)) << "no home";
}

}  // namespace
}  // namespace tasselby
