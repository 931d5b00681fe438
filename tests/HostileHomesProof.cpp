// Homes that were made to mislead: links, loops, pipes, odd names, no home at all. A tree of
// canaries around the home stays as it is.

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "samples/RunWorker.h"
#include "samples/SampleStores.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;

const std::string kSupport = "Library/Application Support/";
const std::string kLocalState = R"({"profile": {"info_cache": {"Default": {"name": "a"},
    "..": {"name": "b"}, "../..": {"name": "c"}, "/": {"name": "d"}, "a/../..": {"name": "e"}}}})";

/// What a run looks at by name: each is tried as a link, a loop, a pipe, a socket, a device.
const std::vector<std::string> kPaths = {
    "Library/Keychains/login.keychain-db",
    "Library/Preferences/com.marrowgatestudios.Tasselby.plist",
    "Library/Cookies/Cookies.binarycookies",
    "Library/Cookies/Cookies.plist",
    "Library/Caches/Camino/Cache",
    "Library/Caches/Firefox/Profiles/p",
    "Library/Caches/QuickTime/downloads",
    "Library/Safari/Databases/Databases.db",
    "Library/Safari/LocalStorage/http_a.example_0.localstorage",
    "Library/Safari/LocalStorage/StorageTracker.db",
    "Library/Preferences/Macromedia/Flash Player/#SharedObjects/R",
    kSupport + "Google/Chrome/Local State",
    kSupport + "Google/Chrome/Default",
    kSupport + "Chromium/Default/Cookies",
    kSupport + "Chromium/Default/Local Storage",
    kSupport + "com.operasoftware.Opera/Cookies",
    kSupport + "Camino/cookies.sqlite",
    kSupport + "Camino/webappsstore.sqlite",
    kSupport + "Firefox/Profiles/p",
    kSupport + "Microsoft/Silverlight/is/a",
    kSupport + "Microsoft/Silverlight/is/a/b/c/s/store/id.dat",
};

class HostileHomes : public ::testing::Test {
 protected:
  HostileHomes() {
    home.file("../../canary/deep/file", "alive").file("../canary", "alive").file("canary", "alive");
    home.file(kSupport + "Google/Chrome/Local State", kLocalState);
    home.file(kSupport + "Chromium/Local State", kLocalState);
  }

  void runAll(const std::string& label) {
    for (const std::string& browser : kEveryBrowser) {
      const WorkerRun result =
          runWorker({WORKER_BINARY, browser, "-secureDeleteData", "NO"}, home.home());
      EXPECT_TRUE(result.status == 0 || result.status == 70) << label << " " << result.status;
      EXPECT_EQ(result.output, "") << label;
    }
    EXPECT_EQ(home.contents("../../canary/deep/file"), "alive") << label;
    EXPECT_EQ(home.contents("../canary"), "alive") << label;
    EXPECT_EQ(home.contents("canary"), "alive") << label;
  }

  ScratchHome home;
};

TEST_F(HostileHomes, LinksLoopsPipesAndDevicesInEveryPlace) {
  for (const std::string& path : kPaths) {
    const std::string full = home.path(path);
    fs::create_directories(fs::path(full).parent_path());
    for (const std::string& target :
         {home.volume() + "/canary", home.volume() + "/canary/deep/file", std::string("/"),
          std::string("/dev/zero"), std::string("/dev/tty"), full}) {
      fs::remove_all(full);
      fs::create_directories(fs::path(full).parent_path());
      fs::create_symlink(target, full);
      runAll(path + " -> " + target);
    }
    fs::remove_all(full);
    fs::create_directories(fs::path(full).parent_path());
    ASSERT_EQ(::mkfifo(full.c_str(), 0600), 0);
    runAll(path + " a pipe");
    fs::remove_all(full);
    home.socket("socket");
    fs::create_directories(fs::path(full).parent_path());
    fs::rename(home.path("socket"), full);
    runAll(path + " a socket");
    fs::remove_all(full);
  }
}

TEST_F(HostileHomes, NamesOfEveryByteAndLengthGo) {
  const std::string cache = "Library/Caches/Camino/Cache/";
  const std::string storage = "Library/Safari/LocalStorage/";
  Names names = {std::string(255, 'n')};
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '/') {
      names.push_back(std::string("n") + static_cast<char>(byte));
    }
  }
  for (const std::string& name : names) {
    home.file(cache + name + "/in").file(storage + name.substr(0, 242) + ".localstorage");
  }
  runAll("odd names");
  EXPECT_FALSE(home.has("Library/Caches/Camino/Cache"));
  EXPECT_TRUE(home.list(storage).empty());
}

TEST_F(HostileHomes, DeepTreesGo) {
  // Deeper than any path can say.
  home.folder("Library/Caches/Camino/Cache");
  int folder = ::open(home.path("Library/Caches/Camino/Cache").c_str(), O_RDONLY);
  for (int depth = 0; depth < 3000; ++depth) {
    ASSERT_EQ(::mkdirat(folder, "d", 0700), 0);
    const int next = ::openat(folder, "d", O_RDONLY);
    ::close(folder);
    folder = next;
  }
  ::close(folder);
  runAll("deep");
  EXPECT_FALSE(home.has("Library/Caches/Camino/Cache"));
}

TEST_F(HostileHomes, HomesThatAreLinksRelativeMissingOrEmpty) {
  const std::string cache = "Library/Caches/Camino/Cache/in";
  home.file(cache);
  fs::create_directory_symlink(home.home(), home.path("../link"));
  EXPECT_EQ(runWorker({WORKER_BINARY, "Camino"}, home.path("../link")).status, 0);
  EXPECT_FALSE(home.has(cache)) << "a link to the home";

  home.file(cache);
  const std::string none = "unix:path=/dev/null";
  EXPECT_EQ(runWorker({WORKER_BINARY, "Camino"}, "anna", none, home.path("..")).status, 0);
  EXPECT_FALSE(home.has(cache)) << "a relative home";

  home.file(cache).file("Library/Caches/QuickTime/downloads/in");
  for (const char* elsewhere : {"", "/missing", "/dev/null"}) {
    const WorkerRun result = runWorker({WORKER_BINARY, "Camino"}, elsewhere, none, home.home());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
  }
  EXPECT_TRUE(home.has(cache)) << "no home";
}

TEST_F(HostileHomes, HardLinksKeepTheirOtherNames) {
  home.file("Library/Caches/Camino/Cache/in/file", "shared");
  fs::create_hard_link(home.path("Library/Caches/Camino/Cache/in/file"), home.path("other"));
  runAll("hard links");
  EXPECT_EQ(home.contents("other"), "shared");
}

TEST_F(HostileHomes, FoldersThatCannotBeReadAreLeftToAnOrdinaryUser) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "needs a superuser to make somebody else's folders";
  }
  home.file("Library/Caches/Camino/Cache/closed/in").file("Library/Caches/QuickTime/downloads/in");
  for (const auto& entry : fs::recursive_directory_iterator(home.volume())) {
    ASSERT_EQ(::lchown(entry.path().c_str(), 65534, 65534), 0);
  }
  ASSERT_EQ(::chmod(home.volume().c_str(), 0755), 0);
  const std::string closed = home.path("Library/Caches/Camino/Cache/closed");
  ASSERT_EQ(::chown(closed.c_str(), 0, 0) | ::chmod(closed.c_str(), 0700), 0);
  const WorkerRun result =
      runWorker({"/usr/bin/setpriv", "--reuid=65534", "--clear-groups", WORKER_BINARY, "Camino"},
                home.home());
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(home.has("Library/Caches/Camino/Cache/closed/in"));
  EXPECT_FALSE(home.has("Library/Caches/QuickTime/downloads")) << "the run goes on";
}

}  // namespace
}  // namespace tasselby
