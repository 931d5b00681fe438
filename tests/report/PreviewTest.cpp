// What a preview announces is what a run then does, item by item, and nothing changes for it.
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <sqlite3.h>
#include <string>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>
#include <vector>

#include "platform/BinaryCookies.h"
#include "platform/FileManager.h"
#include "samples/NotificationBus.h"
#include "samples/RunWorker.h"
#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Things = std::multiset<std::string>;

const std::string kSupport = "Library/Application Support/";

/// Host and name of whatever a run can delete from a database.
const std::vector<std::string> kQueries = {"host_key || ' ' || ifnull(name, '') FROM cookies",
                                           "host || ' ' || ifnull(name, '') FROM moz_cookies",
                                           "origin || ' ' FROM origin_bound_certs",
                                           "origin || ' ' FROM Databases",
                                           "origin || ' ' FROM Origins",
                                           "scope || ' ' || ifnull(key, '') FROM webappsstore2"};

/// The cookies and rows in the file at `path`. SQLite writes beside it.
Things rowsIn(const std::string& path) {
  Things rows;
  const std::string bytes = FileManager("").contentsOfFile(path, SIZE_MAX).value_or("");
  for (const BinaryCookie& cookie : parseBinaryCookies(bytes).cookies) {
    rows.insert(std::string(cookie.domain).append(" ").append(cookie.name));
  }
  sqlite3* database = nullptr;
  if (bytes.starts_with("SQLite format 3")) {
    sqlite3_open(path.c_str(), &database);
  }
  const auto add = [](void* to, int, char** values, char**) {
    static_cast<Things*>(to)->insert(values[0] == nullptr ? "" : values[0]);
    return 0;
  };
  for (const std::string& query : kQueries) {
    sqlite3_exec(database, ("SELECT " + query).c_str(), add, &rows, nullptr);
  }
  sqlite3_close(database);
  return rows;
}

/// Every file on `volume`, and "\n" with every cookie and row of those that are no links.
Things thingsOn(const std::string& volume) {
  Things paths;
  for (const auto& entry : fs::recursive_directory_iterator(volume)) {
    const std::string path = entry.path().native();
    if (!fs::is_directory(entry.symlink_status()) && path.find(".sqlite-") == path.npos) {
      paths.insert(path);
    }
  }
  Things things = paths;
  for (const std::string& path : paths) {
    for (const std::string& row : fs::is_symlink(path) ? Things() : rowsIn(path)) {
      things.insert(std::string(path).append("\n").append(row));
    }
  }
  return things;
}

/// The names, contents and times of change of all there is on `home`'s volume.
Things stateOf(const ScratchHome& home) {
  Things state;
  for (const auto& [path, contents] : home.snapshot()) {
    struct stat status{};
    ::lstat((home.volume() + "/" + path).c_str(), &status);
    state.insert(path + contents + std::to_string(status.st_mtime) + " " +
                 std::to_string(status.st_ctime) + " " + std::to_string(status.st_ino));
  }
  return state;
}

Things without(const Things& some, const Things& others) {
  Things left;
  std::ranges::set_difference(some, others, std::inserter(left, left.end()));
  return left;
}

class Preview : public ::testing::TestWithParam<std::tuple<const char*, const char*>> {
 protected:
  WorkerRun preview(std::vector<std::string> arguments, const std::string& home,
                    const std::string& folder) {
    arguments.insert(arguments.begin(), {"/usr/bin/env", "TMPDIR=" + folder, PREVIEW_BINARY});
    return runWorker(arguments, home, bus.address(), odd.workingFolder());
  }

  /// Expects that a preview changes nothing, and that a run does what it says. Answers what the run
  /// is to end hard at.
  std::string endOfForeseen(std::vector<std::string> arguments) {
    const Things before = stateOf(odd.scratch);
    arguments.insert(arguments.begin(), "--json");
    const WorkerRun shown = preview(arguments, odd.home.home(), scratch.volume());
    EXPECT_EQ(stateOf(odd.scratch), before);
    const Json json = Json::parse(shown.output);
    const std::string volume = fs::canonical(odd.home.volume()).native();
    Things announced;
    for (const Json& place : json["places"]) {
      for (const Json& item : place["items"]) {
        const std::string what = item["what"];
        if (place["unit"] != "files") {
          announced.insert(std::string(place["path"]) + "\n" + what + " " +
                           std::string(item["name"]));
        } else if (!fs::is_directory(fs::symlink_status(what))) {
          announced.insert(what);
        }
      }
    }
    const Things things = thingsOn(volume);
    arguments[0] = WORKER_BINARY;
    arguments.insert(arguments.end(), {"-displayNotifications", "YES"});
    EXPECT_EQ(runWorker(arguments, odd.home.home(), bus.address(), odd.workingFolder()).status,
              shown.status);
    const Things after = thingsOn(volume);
    Things gone = without(things, after);
    std::erase_if(gone, [&](const std::string& thing) {
      // The rows of a file that went are no more than the file.
      return thing.find('\n') != thing.npos && !after.contains(thing.substr(0, thing.find('\n')));
    });
    EXPECT_EQ(without(announced, gone), Things()) << "announced, and still there";
    EXPECT_EQ(without(gone, announced), Things()) << "gone unannounced";
    EXPECT_EQ(json["report"], bus.received().empty() ? "" : bus.received().back().body);
    return json["endsHardAt"];
  }

  ~Preview() override { EXPECT_EQ(scratch.list("../.."), Names{"Users"}) << "left behind"; }

  OddHome odd;
  ScratchHome scratch;
  NotificationBus bus;
};

TEST_P(Preview, AnnouncesWhatARunRemoves) {
  const auto& [browser, preference] = GetParam();
  EXPECT_EQ(endOfForeseen({browser, preference, "YES"}), "");
}

INSTANTIATE_TEST_SUITE_P(
    All, Preview,
    ::testing::Combine(::testing::Values("Safari", "WebKit", "Google Chrome", "Chromium", "Camino",
                                         "Firefox", "Opera"),
                       ::testing::Values("-x", "-removeAll", "-secureDeleteData")));

using OddPreview = Preview;

TEST_F(OddPreview, FollowsLinksAndFindsNothingBelowWhatIsGone) {
  const std::string chrome = kSupport + "Google/Chrome/";
  const std::string container = "Library/Containers/com.apple.Safari/Data/Library/Cookies";
  for (const std::string& path :
       {chrome + "Profile 1/Application Cache", chrome + "Profile 1/Cookies", container}) {
    fs::remove_all(odd.scratch.path(path));
  }
  odd.scratch.link(chrome + "Profile 1/Application Cache", "../../../../cache")
      .file("Library/cache/GPUCache/file")
      .link(chrome + "Profile 1/Cookies", "../Default/Cookies")
      .link(container, odd.scratch.path("Library/Cookies"));
  EXPECT_EQ(endOfForeseen({"Google Chrome"}), "");
  EXPECT_EQ(endOfForeseen({"Safari"}), "");
}

TEST_F(OddPreview, SaysWhatARunEndsHardAt) {
  const std::string bad = kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad";
  odd.scratch.file(bad + "/id.dat", "file:///");
  EXPECT_TRUE(endOfForeseen({"Camino"}).ends_with(bad));
  const std::string list = kSupport + "Chromium/Local State";
  fs::remove(odd.scratch.path(list));
  EXPECT_TRUE(endOfForeseen({"Chromium"}).ends_with(list));
}

TEST_F(OddPreview, RefusesBadInputInOneLine) {
  const std::string home = odd.home.home();
  const std::string folder = scratch.volume();
  for (const WorkerRun& run :
       {preview({}, home, folder), preview({"firefox"}, home, folder),
        preview({"Camino"}, "", folder), preview({"Camino"}, home + "/none", folder),
        preview({"Camino"}, home, home + "/none")}) {
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 1) << run.output;
  }
}

TEST_F(OddPreview, LeavesNothingBehindWhereverASignalEndsIt) {
  // Of its own time: a timer that is set before it starts.
  int status = SIGVTALRM;
  for (suseconds_t time = 500; WIFSIGNALED(status) && time < 1000000; time *= 2) {
    std::array<int, 2> output{};
    ASSERT_EQ(::pipe(output.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
      ::dup2(output[1], STDOUT_FILENO);
      ::close(output[1]);
      ::setenv("TMPDIR", scratch.volume().c_str(), 1);
      ::setenv("HOME", odd.home.home().c_str(), 1);
      const itimerval timer{{0, 0}, {0, time}};
      ::setitimer(ITIMER_VIRTUAL, &timer, nullptr);
      ::execl(PREVIEW_BINARY, PREVIEW_BINARY, "Safari", nullptr);
      ::_exit(127);
    }
    ::close(output[1]);
    // What removes the scratch folder holds the output as well.
    for (std::array<char, 512> shown{}; ::read(output[0], shown.data(), shown.size()) > 0;) {
    }
    ::close(output[0]);
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) ? WTERMSIG(status) == SIGVTALRM : WEXITSTATUS(status) == 0);
    EXPECT_EQ(scratch.list("../.."), Names{"Users"}) << time;
  }
}

}  // namespace
}  // namespace tasselby
