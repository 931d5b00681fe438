// Homes that were made to mislead: links, loops, pipes, odd names, no home at all. A tree of
// canaries around the home stays as it is.
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
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
  for (const std::string& path : kPaths) {
    const std::string full = home.path(path);
    for (const std::string& target :
         {home.volume() + "/canary", std::string("/"), home.volume() + "/canary/deep/file",
          std::string("/dev/zero"), full, std::string("pipe"), std::string("socket")}) {
      fs::remove_all(full);
      fs::create_directories(fs::path(full).parent_path());
      if (target == "pipe") {
        ASSERT_EQ(::mkfifo(full.c_str(), 0600), 0);
      } else if (target == "socket") {
        home.socket(path);
      } else {
        fs::create_symlink(target, full);
      }
      runAll(path + " -> " + target);
    }
    fs::remove_all(full);
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
  fs::create_directory_symlink(home.home(), home.path("../link"));
  for (const auto& [elsewhere, isHome] : std::map<std::string, bool>{{home.path("../link"), true},
                                                                     {"anna", true},
                                                                     {"", false},
                                                                     {"/missing", false},
                                                                     {"/dev/null", false}}) {
    home.file(kCache + "/in");
    const WorkerRun result = runWorker({WORKER_BINARY, "Camino"}, elsewhere, "", home.path(".."));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(home.has(kCache), !isHome) << elsewhere;
  }
}

#ifdef __linux__
TEST_F(HostileHome, FoldersSwappedForLinksLeadNowhere) {
  const std::string link = home.path("../link");
  const std::string log = home.path("../log");
  std::ofstream(log) << "";
  const int counter = ::open(log.c_str(), O_WRONLY | O_APPEND);
  while (fs::file_size(log) < 1000) {
    for (int i = 0; i < 400; ++i) {
      home.file(kCache + "/folder" + std::to_string(i / 20) + "/deep/" + std::to_string(i));
    }
    fs::remove_all(link);
    fs::create_symlink("../../canary", link);
    const pid_t child = ::fork();
    if (child == 0) {
      for (int i = 0;; i = (i + 1) % 40) {
        const std::string folder = home.path(kCache + "/folder" + std::to_string(i / 2));
        if (::renameat2(AT_FDCWD, folder.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE) == 0 &&
            ::write(counter, "x", 1) != 1) {
          ::_exit(1);
        }
      }
    }
    EXPECT_EQ(runWorker({WORKER_BINARY, "Camino"}, home.home()).status, 0);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ASSERT_EQ(home.contents("../../canary/deep/file"), "a");
  }
  ::close(counter);
}
#endif

}  // namespace
}  // namespace tasselby
