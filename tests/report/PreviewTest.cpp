// What a preview announces is the fate of each item, which a run is held to as well, and nothing
// changes for it.
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <tuple>

#include "tests/support/Fates.h"
#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

using Json = nlohmann::json;
using Things = std::multiset<std::string>;

/// The names, contents and times of change of all there is on `volume`.
Things stateOf(const std::string& volume) {
  Things state;
  for (const auto& [path, contents] : snapshotOf(volume)) {
    struct stat status{};
    ::lstat((volume + "/" + path).c_str(), &status);
    state.insert(path + contents + std::to_string(status.st_mtime) + " " +
                 std::to_string(status.st_ctime) + " " + std::to_string(status.st_ino));
  }
  return state;
}

class Preview : public ::testing::TestWithParam<std::tuple<std::string, const char*>> {
 protected:
  WorkerRun preview(const Names& arguments, const std::string& home, const std::string& folder,
                    const Names& by = {}) const {
    Names command = {"/usr/bin/env", "TMPDIR=" + folder};
    command.insert(command.end(), by.begin(), by.end());
    command.emplace_back(PREVIEW_BINARY);
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runWorker(command, home, "", fs::exists(home) ? home + "/../.." : ".");
  }

  /// What a preview of `home` shows. Expects that it changes nothing.
  Json shown(const MacHome& home, const std::string& browser, const std::string& preference) const {
    const Things before = stateOf(home.volume());
    const Names arguments = {"--json", browser, preference, "YES"};
    const WorkerRun run = preview(arguments, home.home(), scratch.volume());
    EXPECT_EQ(stateOf(home.volume()), before);
    const Json json = Json::parse(run.output);
    EXPECT_EQ(run.status, json["endsHardAt"] == "" ? 0 : 70);
    return json;
  }

  /// Expects `json` to announce the items that go, those alone, and each once.
  void expectAnnounced(const MacHome& home, const Json& json, const std::string& browser,
                       const std::string& preference) const {
    // Files by their path; cookies and rows by that of their store, with what they hold.
    Things files;
    std::multimap<std::string, std::string> rows;
    const auto contents = home.contents();
    for (std::size_t i = 0; i < contents.size(); ++i) {
      const SampleItem& item = home.items()[i];
      const bool stays = preference == "-secureDeleteData" && (item.is('s') || item.is('w'));
      if (item.goesFor(browser, preference == "-removeAll") && !stays) {
        const std::string path = home.path(item.path);
        if (item.key.empty()) {
          files.insert(path);
        } else {
          rows.emplace(path, "|" + *contents[i] + "|");
        }
      }
    }
    Things announced;
    for (const Json& place : json["places"]) {
      const bool isStore = place["unit"] != "files";
      for (const Json& item : place["items"]) {
        const std::string what = item["what"];
        const std::string name = item["name"];
        if (isStore) {
          const auto [first, last] = rows.equal_range(place["path"]);
          const auto row = std::find_if(first, last, [&](const auto& one) {
            return one.second.find("|" + what + "|") != std::string::npos &&
                   (name.empty() || one.second.find("|" + name + "|") != std::string::npos);
          });
          ASSERT_TRUE(row != last) << place["path"] << " " << item;
          rows.erase(row);
        } else if (!fs::is_directory(fs::symlink_status(what)) && rows.erase(what) == 0) {
          // A store that goes as a file takes its rows along.
          announced.insert(what);
        }
      }
    }
    EXPECT_EQ(announced, files);
    EXPECT_TRUE(rows.empty()) << rows.begin()->first << " " << rows.begin()->second;
  }

  ~Preview() override { EXPECT_EQ(scratch.list("../.."), Names{"Users"}) << "left behind"; }

  ScratchHome scratch;
};

TEST_P(Preview, AnnouncesWhatARunRemoves) {
  const OddHome odd;
  const auto& [browser, preference] = GetParam();
  const Json json = shown(odd.home, browser, preference);
  expectAnnounced(odd.home, json, browser, preference);
  EXPECT_EQ(json["report"], odd.report(browser, preference == std::string("-removeAll")));
}

INSTANTIATE_TEST_SUITE_P(All, Preview,
                         ::testing::Combine(::testing::ValuesIn(kEveryBrowser),
                                            ::testing::Values("-x", "-removeAll",
                                                              "-secureDeleteData")));

constexpr const char* kLinks = R"(
= Library/Application Support/Google/Chrome/
G Default/Application Cache > ../../../../cache
- ../../../cache/GPUCache/file
+ Default/Cookies: cookies (host_key, name, creation_utc INTEGER)
G Default/Cookies: cookies: 'gone.example', 'a', 1; 'gone.example', 'b', 2
- Profile 1/Cookies > ../Default/Cookies
= Library/
S Cookies/Cookies.binarycookies: 'gone.example', 'a'
- Containers/com.apple.Safari/Data/Library/Cookies > ../../../../Cookies
)";

TEST_F(Preview, FollowsLinksAndFindsNothingBelowWhatIsGone) {
  for (const char* browser : {"Google Chrome", "Safari"}) {
    const ScratchHome volume;
    MacHome home(volume.volume(), 0);
    home.add(kLinks);
    expectAnnounced(home, shown(home, browser, "-x"), browser, "-x");
    const Fates fates(home);
    EXPECT_EQ(runWorker({WORKER_BINARY, browser}, home.home()).status, 0);
    fates.expectMet(browser, false, false);
  }
}

TEST_F(Preview, SaysWhatARunEndsHardAt) {
  const OddHome odd;
  const std::string bad = kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad";
  odd.home.writeFile(bad + "/id.dat", "file:///");
  EXPECT_EQ(shown(odd.home, "Camino", "-x")["endsHardAt"], odd.scratch.path(bad));
  const std::string list = odd.scratch.path(kSupport + "Chromium/Local State");
  fs::remove(list);
  EXPECT_EQ(shown(odd.home, "Chromium", "-x")["endsHardAt"], list);
}

TEST_F(Preview, RefusesBadInputInOneLine) {
  const std::string home = scratch.home();
  const std::string folder = scratch.volume();
  for (const WorkerRun& run :
       {preview({}, home, folder), preview({"firefox"}, home, folder),
        preview({"Camino"}, "", folder), preview({"Camino"}, home + "/none", folder),
        preview({"Camino"}, home, home + "/none")}) {
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 1) << run.output;
  }
}

TEST_F(Preview, LeavesNothingBehindWhereverASignalEndsIt) {
  const OddHome odd;
  int status = 124;
  // The run is over when what removes the scratch folder lets go of the output as well.
  for (double seconds = 0.0005; status == 124; seconds *= 2) {
    status = preview({"Safari"}, odd.home.home(), scratch.volume(),
                     {"timeout", "-s", "HUP", std::to_string(seconds)})
                 .status;
    EXPECT_EQ(scratch.list("../.."), Names{"Users"}) << seconds;
  }
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace tasselby
