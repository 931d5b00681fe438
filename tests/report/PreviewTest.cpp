// What a preview announces is what a run then does, item by item, and nothing changes for it.
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sqlite3.h>
#include <string>
#include <sys/stat.h>
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
const std::vector<std::string> kQueries = {
    "SELECT ifnull(host_key, '') || ' ' || ifnull(name, '') FROM cookies;",
    "SELECT ifnull(host, '') || ' ' || ifnull(name, '') FROM moz_cookies;",
    "SELECT origin || ' ' FROM origin_bound_certs;",
    "SELECT ifnull(origin, '') || ' ' FROM Databases;",
    "SELECT ifnull(origin, '') || ' ' FROM Origins;",
    "SELECT ifnull(scope, '') || ' ' || ifnull(key, '') FROM webappsstore2;"};

/// `text` as JSON has it, bytes that are none replaced.
std::string inJson(const std::string& text) {
  return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

/// Adds what `kQueries` answer of the database at `path`. SQLite writes beside it.
void addRows(Things& things, const std::string& path, const std::string& prefix) {
  sqlite3* database = nullptr;
  sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr);
  for (const std::string& query : kQueries) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, query.c_str(), -1, &statement, nullptr);
    while (statement != nullptr && sqlite3_step(statement) == SQLITE_ROW) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
      things.insert(inJson(prefix + (text == nullptr ? " " : text)));
    }
    sqlite3_finalize(statement);
  }
  sqlite3_close(database);
}

/// Every file, cookie and row on `volume`, by its path there.
Things thingsOn(const std::string& volume) {
  Things paths;
  for (const auto& entry : fs::recursive_directory_iterator(volume)) {
    const std::string path = entry.path().native();
    if (!fs::is_directory(entry.symlink_status()) && !path.ends_with("-wal") &&
        !path.ends_with("-shm")) {
      paths.insert(path);
    }
  }
  Things things;
  for (const std::string& path : paths) {
    const std::string prefix = path.substr(volume.size());
    things.insert(inJson(prefix));
    const auto bytes = FileManager("").contentsOfFile(path, SIZE_MAX);
    if (fs::is_symlink(path) || !bytes) {
      continue;
    }
    for (const BinaryCookie& cookie : parseBinaryCookies(*bytes).cookies) {
      things.insert(
          std::string(prefix).append("\n").append(cookie.domain).append(" ").append(cookie.name));
    }
    if (bytes->starts_with("SQLite format 3")) {
      addRows(things, path, prefix + "\n");
    }
  }
  return things;
}

Things without(const Things& some, const Things& others) {
  Things left;
  std::ranges::set_difference(some, others, std::inserter(left, left.end()));
  return left;
}

/// What went between `before` and `after`; the rows of a file that went are no more than the file.
Things goneBetween(const Things& before, const Things& after) {
  Things gone = without(before, after);
  std::erase_if(gone, [&](const std::string& thing) {
    const std::size_t end = thing.find('\n');
    return end != std::string::npos && !after.contains(thing.substr(0, end));
  });
  return gone;
}

/// What a preview announces, in the same words; folders that are empty are left out.
Things announcedIn(const Json& preview, const std::string& volume) {
  Things announced;
  for (const Json& place : preview["places"]) {
    const std::string path = std::string(place["path"]).substr(volume.size());
    for (const Json& item : place["items"]) {
      if (!item.contains("path")) {
        announced.insert(path + "\n" + std::string(item["host"]) + " " + std::string(item["name"]));
      } else if (!fs::is_directory(fs::symlink_status(std::string(item["path"])))) {
        announced.insert(std::string(item["path"]).substr(volume.size()));
      }
    }
  }
  return announced;
}

class PreviewTest : public ::testing::TestWithParam<std::tuple<const char*, const char*>> {
 protected:
  WorkerRun preview(const std::vector<std::string>& arguments, const std::string& home) {
    std::vector<std::string> command = {"/usr/bin/env", "TMPDIR=" + scratch.volume(),
                                        PREVIEW_BINARY};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runWorker(command, home, bus.address(), odd.workingFolder());
  }

  /// Everything there is, with its contents and times of change.
  std::map<std::string, std::tuple<std::string, fs::file_time_type, time_t, ino_t>> state() const {
    std::map<std::string, std::tuple<std::string, fs::file_time_type, time_t, ino_t>> state;
    for (const auto& [path, contents] : odd.scratch.snapshot()) {
      const std::string full = odd.home.path(path);
      struct stat status{};
      ::lstat(full.c_str(), &status);
      state[path] = {contents,
                     S_ISLNK(status.st_mode) ? fs::file_time_type() : fs::last_write_time(full),
                     status.st_ctime, status.st_ino};
    }
    return state;
  }

  /// Expects that a preview changes nothing, and that a run does what it says. Answers the preview.
  Json expectForeseen(std::vector<std::string> arguments) {
    const auto before = state();
    arguments.insert(arguments.begin(), "--json");
    const WorkerRun shown = preview(arguments, odd.home.home());
    EXPECT_EQ(state(), before);
    EXPECT_EQ(scratch.list("../.."), Names{"Users"});
    const std::string volume = fs::canonical(odd.home.volume()).native();
    const Json json = Json::parse(shown.output);
    const Things announced = announcedIn(json, volume);
    const Things things = thingsOn(volume);
    arguments[0] = WORKER_BINARY;
    arguments.insert(arguments.end(), {"-displayNotifications", "YES"});
    const WorkerRun run = runWorker(arguments, odd.home.home(), bus.address(), odd.workingFolder());
    EXPECT_EQ(run.status, shown.status);
    const Things gone = goneBetween(things, thingsOn(volume));
    EXPECT_EQ(without(announced, gone), Things()) << "announced, and still there";
    EXPECT_EQ(without(gone, announced), Things()) << "gone unannounced";
    EXPECT_EQ(json["report"], bus.received().empty() ? "" : bus.received().back().body);
    return json;
  }

  OddHome odd;
  ScratchHome scratch;
  NotificationBus bus;
};

TEST_P(PreviewTest, AnnouncesWhatARunRemoves) {
  const auto& [browser, preference] = GetParam();
  const Json json = expectForeseen({browser, preference, "YES"});
  EXPECT_EQ(json["kept"].empty(), std::string(preference) == "-removeAll");
}

INSTANTIATE_TEST_SUITE_P(
    All, PreviewTest,
    ::testing::Combine(::testing::Values("Safari", "WebKit", "Google Chrome", "Chromium", "Camino",
                                         "Firefox", "Opera"),
                       ::testing::Values("-x", "-removeAll", "-secureDeleteData")));

using OddPreviewTest = PreviewTest;

TEST_F(OddPreviewTest, FollowsLinksAndSeesNothingBelowWhatIsGone) {
  const std::string chrome = kSupport + "Google/Chrome/";
  fs::remove_all(odd.scratch.path(chrome + "Profile 1/Application Cache"));
  fs::remove(odd.scratch.path(chrome + "Profile 1/Cookies"));
  odd.scratch.link(chrome + "Profile 1/Application Cache", "../../../../cache")
      .file("Library/cache/GPUCache/file")
      .link(chrome + "Profile 1/Cookies", "../Default/Cookies");
  expectForeseen({"Google Chrome"});
  const std::string container = "Library/Containers/com.apple.Safari/Data/Library/Cookies";
  fs::remove_all(odd.scratch.path(container));
  odd.scratch.link(container, odd.scratch.path("Library/Cookies"));
  expectForeseen({"Safari"});
}

TEST_F(OddPreviewTest, SaysWhereARunEndsHard) {
  const std::string bad = kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad";
  odd.scratch.file(bad + "/id.dat", "file:///");
  EXPECT_TRUE(std::string(expectForeseen({"Camino"})["endsHardAt"]).ends_with(bad));
  const std::string list = kSupport + "Chromium/Local State";
  fs::remove(odd.scratch.path(list));
  EXPECT_TRUE(std::string(expectForeseen({"Chromium"})["endsHardAt"]).ends_with(list));
}

TEST_F(OddPreviewTest, RefusesBadInputInOneLine) {
  const std::string home = odd.home.home();
  for (const WorkerRun& run :
       {preview({}, home), preview({"firefox"}, home), preview({"Firefox"}, home + "/none"),
        preview({"Firefox"}, ""),
        runWorker({"/usr/bin/env", "TMPDIR=" + home + "/none", PREVIEW_BINARY, "Firefox"}, home)}) {
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 1) << run.output;
  }
  EXPECT_EQ(scratch.list("../.."), Names{"Users"});
}

TEST_F(OddPreviewTest, LeavesNothingBehindWhenASignalEndsIt) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const pid_t child = ::fork();
    if (child == 0) {
      // It is there already when the preview first looks for one.
      sigset_t set;
      sigemptyset(&set);
      sigaddset(&set, signal);
      ::sigprocmask(SIG_BLOCK, &set, nullptr);
      std::signal(signal, SIG_DFL);
      ::raise(signal);
      ::setenv("TMPDIR", scratch.volume().c_str(), 1);
      ::setenv("HOME", odd.home.home().c_str(), 1);
      ::execl(PREVIEW_BINARY, PREVIEW_BINARY, "Safari", nullptr);
      ::_exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
    EXPECT_EQ(scratch.list("../.."), Names{"Users"});
  }
}

}  // namespace
}  // namespace tasselby
