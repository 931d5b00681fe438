// Whole runs of the worker's binary over homes with everything in them, and previews of the same
// runs. What is to become of an item stands where the item is made; here it is only compared.
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <tuple>

#include "samples/BinaryCookieWriter.h"
#include "samples/KeychainWriter.h"
#include "samples/NotificationBus.h"
#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

using Json = nlohmann::json;

const std::string kFilm = "Library/Caches/QuickTime/downloads/film.mov";

class WholeRun : public ::testing::TestWithParam<std::tuple<std::string, bool, bool>> {
 protected:
  /// Without a standard input: what is opened first has the number 0, which is one like others.
  WorkerRun run(const std::string& home, Names command) const {
    command.insert(command.begin(), {"/bin/bash", "-c", R"(exec "$@" <&-)", "-"});
    return runWorker(command, home, bus.address(), home + "/../..");
  }

  /// Expects the preview `json` of a run over `home` to announce what goes, that alone, and each
  /// once: files by their path, cookies and rows by that of their store and what they hold. Answers
  /// how much goes for which reason, and stays beside it.
  std::string expectAnnounced(const Json& json, const MacHome& home) const {
    const auto& [browser, removeAll, secure] = GetParam();
    std::multimap<std::string, std::string> going;
    for (std::size_t i = 0; const auto& contents : home.contents()) {
      const SampleItem& item = home.items()[i++];
      if (item.goesFor(browser, removeAll, secure)) {
        going.emplace(home.path(item.path), item.key.empty() ? "" : "|" + *contents + "|");
      }
    }
    std::map<std::string, long> tally;
    for (const Json& place : json["places"]) {
      tally["stays"] += place["stays"].get<long>();
      for (const Json& item : place["items"]) {
        const std::string what = item["what"], name = item["name"];
        tally["bytes"] += item["bytes"].get<long>();
        ++tally[item["why"]];
        const bool isFile = place["unit"] == "files";
        const auto [first, last] = going.equal_range(isFile ? what : std::string(place["path"]));
        const auto row = std::find_if(first, last, [&](const auto& one) {
          return isFile || (one.second.find("|" + what + "|") != what.npos &&
                            (name.empty() || one.second.find("|" + name + "|") != name.npos));
        });
        EXPECT_TRUE(row != last || (isFile && fs::is_directory(what))) << place["path"] << item;
        // A store that goes as a file takes its rows along.
        going.erase(row, row == last ? last : isFile ? last : std::next(row));
      }
    }
    EXPECT_TRUE(going.empty()) << going.begin()->first << going.begin()->second;
    std::string counts;
    for (const auto& [what, count] : tally) {
      counts += " " + std::to_string(count);
    }
    return counts;
  }

  /// Expects a preview to announce what goes and to change nothing, and a run to let every item
  /// meet its fate. Answers the report of both, and what the preview tells beyond it.
  std::string expectFates(const MacHome& home) const {
    const auto& [browser, removeAll, secure] = GetParam();
    const auto answer = [](bool yes) { return yes ? "YES" : "NO"; };
    Names command = {PREVIEW_BINARY, "-removeAll", answer(removeAll), "-secureDeleteData",
                     answer(secure), "-x",         browser,           "Opera",
                     "--json"};
    const Fates fates(home);
    const Json json = Json::parse(run(home.home(), command).output);
    fates.expectMet("");
    const std::string tally = expectAnnounced(json, home);
    command.front() = WORKER_BINARY;
    command.pop_back();
    const WorkerRun real = run(home.home(), command);
    EXPECT_EQ(std::to_string(real.status) + real.output, "0");
    fates.expectMet(browser, removeAll, secure);
    const std::string report = json["report"];
    const auto received = bus.received();
    // A Mac has no such bus.
    EXPECT_EQ(received.size(), bus.address().ends_with("/dev/null") ? 0U : 1U);
    EXPECT_TRUE(received.empty() || received[0].summary + received[0].body == "Tasselby" + report);
    return report + (removeAll || secure ? "" : tally);
  }

  NotificationBus bus;
};

TEST_P(WholeRun, EveryItemMeetsTheFateWrittenBesideIt) {
  const OddHome odd;
  const auto& [browser, removeAll, secure] = GetParam();
  EXPECT_EQ(expectFates(odd.home),
            odd.report(browser, removeAll) + (removeAll || secure ? "" : kCounts.at(browser)[2]));
}

// What a home with everything in it cannot show: caches that are plain files, links to stores,
// names for which no statement is run, tables without a row that goes, a folder of Silverlight
// stores that becomes empty, with which the whole plug-in goes.
constexpr const char* kSmallHome = R"(
= Library/Caches/
Sa com.apple.Safari/fsCachedData
Ka {Camino/Cache,Metadata/Camino}
Oa com.operasoftware.Opera
*a {Adobe/Flash Player/AssetCache,QuickTime/downloads}
- {com.apple.Safari,Camino,Metadata,Adobe/Flash Player,QuickTime}/other
= Library/Application Support/
Oa com.operasoftware.Opera{/GPUCache,/Application Cache,Pepper Data/Shockwave Flash/CacheWritableAdobeRoot}
Ga Google/ChromePepper Data/Shockwave Flash/CacheWritableAdobeRoot
Ca ChromiumPepper Data/Shockwave Flash/CacheWritableAdobeRoot
* Microsoft/Silverlight/is/a/b/{1/s/store/id.dat = gone.example,2/s/store/id.dat = two.example}
* Microsoft/Silverlight/{is/a/b/3/s/store/id.dat = www.example.com,other/file}
- {com.operasoftware.Opera,Microsoft/Office}/other
- {Google/Chrome,Chromium,com.operasoftware.Opera}Pepper Data/Shockwave Flash/other
+ Camino/webappsstore.sqlite: webappsstore2 (scope, key): Ke '', 1; Kk 'moc.elpmaxe.:http:80', 1
G Google/Chrome/Default/Application Cache > ../../../../cache
- ../cache/GPUCache/file
+ Google/Chrome/Default/Cookies: cookies (host_key, name, creation_utc INTEGER):
  G 'gone.example', 'a', 1; G 'gone.example', 'b', 2
- Google/Chrome/Profile 1/Cookies > ../Default/Cookies
+ Chromium/Default/databases/Databases.db: Databases (origin):
  - 'http_c_0'; - 'http_b'') OR (''1''=''1_0'
C Chromium/Default/databases/http_b') OR ('1'='1_0/1.db
= Library/
S Cookies/Cookies.binarycookies: 'gone.example', 'a'
- Containers/com.apple.Safari/Data/Library/Cookies > ../../../../Cookies
+ Safari/Databases/Databases.db: Origins (origin): S ''
- Safari/LocalStorage/it's of no site
+ Safari/LocalStorage/StorageTracker.db: Origins (origin): - 'without a file'
)";

TEST_P(WholeRun, ItemsOfASmallHomeMeetTheirFates) {
  const ScratchHome scratch;
  MacHome home(scratch.volume(), 0);
  home.add(kSmallHome);
  const std::string report = expectFates(home);
  EXPECT_NE(report.find(" 1 Silverlight"), report.npos) << report;
}

INSTANTIATE_TEST_SUITE_P(All, WholeRun,
                         ::testing::Combine(::testing::ValuesIn(kEveryBrowser), ::testing::Bool(),
                                            ::testing::Bool()));

TEST_F(WholeRun, MakesNothingInAnEmptyHomeAndRemovesNothingForOtherNames) {
  ScratchHome scratch;
  const MacHome home(scratch.volume(), 0);
  for (const char* folder :
       {"Google/Chrome/Default", "Chromium/Profile 1", "com.operasoftware.Opera", "Camino",
        "Firefox/Profiles/p", "../Safari/Databases", "../Safari/LocalStorage"}) {
    scratch.folder(kSupport + folder);
  }
  Names names = kEveryBrowser;
  names.insert(names.end(), {"-x", "safari", "Chrome", "Camino ", ""});
  for (const std::string& name : names) {
    if (name == "-x") {
      scratch.file("Library/Caches/Camino/Cache/in").file(kFilm);
    }
    const auto before = scratch.snapshot();
    EXPECT_EQ(run(home.home(), {WORKER_BINARY, name}).status, 0);
    EXPECT_EQ(scratch.snapshot(), before) << name;
  }
}

TEST_F(WholeRun, EndsHardWithoutAListOfProfilesOrAtAStoreWithoutASite) {
  const std::string store = kSupport + "Microsoft/Silverlight/is/a/b/c/s/bad";
  for (const auto& [browser, place, file, contents] :
       {std::tuple{"Google Chrome", kSupport + "Google/Chrome/Local State", "/folder", ""},
        {"Chromium", kSupport + "Chromium/Local State", "", "{\"\xFF\": 1}"},
        {"Camino", store, "/id.dat", "file:///"},
        {"Safari", store, "/id.dat", "\xFF"},
        {"Opera", store, "/other", ""}}) {
    ScratchHome scratch;
    const MacHome home(scratch.volume());
    fs::remove(scratch.path(place));
    scratch.file(place + file, contents);
    const auto before = scratch.snapshot();
    const WorkerRun preview = run(home.home(), {PREVIEW_BINARY, browser, "--json"});
    EXPECT_EQ(Json::parse(preview.output)["endsHardAt"], scratch.path(place));
    EXPECT_EQ(scratch.snapshot(), before);
    const WorkerRun real = run(home.home(), {WORKER_BINARY, browser});
    EXPECT_TRUE(real.status == 70 && preview.status == 70 && real.output.empty()) << browser;
    // Caches come behind all else, and a list of profiles before.
    EXPECT_TRUE(scratch.has(kFilm) && scratch.has(place + file));
    EXPECT_TRUE(place == store || scratch.snapshot() == before) << browser;
  }
}

TEST_F(WholeRun, PreviewShowsPlainTextAndRefusesBadInputInOneLine) {
  ScratchHome scratch;
  std::vector<SavedPassword> saved;
  for (const char* server : {"www.a.com", "b.a.com", "local.a", "localhost", "P.LOCAL", "local",
                             "a.certificate", "^a", "\x1B"}) {
    saved.push_back({.server = server});
  }
  scratch.file("Library/Keychains/login.keychain-db", keychainFile(saved))
      .file("Library/Cookies/Cookies.binarycookies",
            binaryCookieFile({{"b.c", "\xC3\xA9\xFF"}, {"b.c", "\xC3\xA9"}, {"a.com", ""}}))
      .file("../../private/var/folders/a/b/C/MediaCache/\x7F\xC2\x85\xC2\xA1",
            std::string(1 << 20, ' '));
  Names command = {"/usr/bin/env", "CLICOLOR_FORCE=1", PREVIEW_BINARY, "Safari", "--items"};
  const std::string styled = run(scratch.home(), command).output;
  EXPECT_EQ(replaced(replaced(styled, scratch.home(), "HOME"), "\033", "^"),
            R"(^[1mA run for Safari over HOME would remove:^[0m

Sites kept, each for a saved password:
  ^[32ma.com^[0m    www.a.com in the login keychain
  ^[32mlocal.a^[0m  local.a in the login keychain
  ^[32m?^[0m        ? in the login keychain

^[1m  goes                 stays^[0m
  ^[31m2 cookies           ^[0m     1  ~/Library/Cookies/Cookies.binarycookies
      not kept: b.c é
      not kept: b.c ???
  ^[31m1 file, 1.0 MB      ^[0m     0  /private/var/folders/a/b/C
      cache: /private/var/folders/a/b/C/MediaCache/??¡
^[2m  nothing from 3 other places^[0m

Report: 2 Cookies (0 Tracking Cookies), 0 Databases, 0 Flash, 0 Silverlight, and Cache removed from Safari
)");
  std::string refused;
  for (const char* setting : {"A=", "-uHOME", "HOME=/none", "TMPDIR=/none"}) {
    command = {"/usr/bin/env", setting, PREVIEW_BINARY, refused.empty() ? "firefox" : "Camino"};
    const WorkerRun result = run(scratch.home(), command);
    refused += std::to_string(result.status) + " " + result.output;
  }
  EXPECT_EQ(replaced(refused, "2 tasselby-preview: ", ""),
            R"(name one of Safari, WebKit, Google Chrome, Chromium, Camino, Firefox, Opera
HOME is missing or cannot be read
HOME is missing or cannot be read: /none
no room for a scratch folder; TMPDIR names another place
)");
}

TEST_F(WholeRun, PreviewLeavesNothingBehindWhereverASignalEndsIt) {
  const OddHome odd;
  const ScratchHome folder;
  const std::string script =
      "TMPDIR=$1 \"$2\" Safari & sleep $3; kill -HUP $!; wait $! && exit $(ls $1 | wc -l)";
  int status = 129;
  // The run is over when what removes the scratch folder lets go of the output as well.
  for (double seconds = 0.0005; status == 129; seconds *= 2) {
    status = run(odd.home.home(), {"/bin/bash", "-c", script, "-", folder.home(), PREVIEW_BINARY,
                                   std::to_string(seconds)})
                 .status;
    EXPECT_EQ(folder.list(""), Names{}) << seconds;
  }
  EXPECT_EQ(status, 0);
}

// Homes that were made to mislead: links, loops, pipes, endless trees.
const std::string kCache = "Library/Caches/Camino/Cache";
const std::string kLocalState = R"({"profile": {"info_cache": {"Default": {"name": "a"},
    "..": {"name": "b"}, "../..": {"name": "c"}, "/": {"name": "d"}, "a/../..": {"name": "e"}}}})";

/// What a run looks at by name below "Library", and then, each by itself, what may end it.
const std::string kPaths =
    "Keychains/login.keychain-db|Preferences/com.marrowgatestudios.Tasselby.plist|"
    "Cookies/Cookies.binarycookies|Caches/Camino/Cache|Caches/Firefox/Profiles/p|"
    "Safari/LocalStorage/StorageTracker.db|Preferences/Macromedia/Flash Player/#SharedObjects/R|"
    "SUPPORT/Google/Chrome/Default|SUPPORT/Chromium/Default/Local Storage|"
    "SUPPORT/com.operasoftware.Opera/Cookies|SUPPORT/Camino/webappsstore.sqlite|"
    "SUPPORT/Firefox/Profiles/p|SUPPORT/Microsoft/Silverlight/is/a;"
    "SUPPORT/Google/Chrome/Local State;SUPPORT/Microsoft/Silverlight/is/b/b/c/s/store/id.dat";

using HostileHome = WorkerTest;

TEST_F(HostileHome, LinksLoopsPipesAndDevicesLeadNowhereInAnyPlace) {
  const Names canaries = {"../../canary/deep/file", "../canary", "canary"};
  for (const std::string& canary : canaries) {
    home.file(canary, "alive");
  }
  for (const char* root : {"Google/Chrome", "Chromium"}) {
    home.file(kSupport + root + "/Local State", kLocalState);
  }
  const std::string folder = home.path("../../canary");
  for (const std::string& paths : split(replaced(kPaths, "SUPPORT", "Application Support"), ';')) {
    for (const std::string& target :
         split(folder + "|/|" + folder + "/deep/file|/dev/zero|itself|pipe", '|')) {
      for (const std::string& name : split(paths, '|')) {
        const std::string path = "Library/" + name, full = home.path(path);
        fs::remove_all(full);
        if (target == "pipe") {
          ASSERT_EQ(::mkfifo(full.c_str(), 0600), 0);
        } else {
          home.link(path, target == "itself" ? full : target);
        }
      }
      for (const std::string& browser : kEveryBrowser) {
        const WorkerRun result = runWorker({WORKER_BINARY, browser}, home.home());
        EXPECT_TRUE((result.status == 0 || result.status == 70) && result.output.empty())
            << paths << " -> " << target << result.status << result.output;
      }
      for (const std::string& canary : canaries) {
        EXPECT_EQ(home.contents(canary), "alive") << paths << " -> " << target;
      }
    }
  }
}

TEST_F(HostileHome, TreesDeeperThanAnyPathCanSayGo) {
  const fs::path before = fs::current_path();
  fs::current_path(home.folder(kCache).path(kCache));
  for (int depth = 0; depth < 3000; ++depth) {
    fs::create_directory("d");
    fs::current_path("d");
  }
  fs::current_path(before);
  const std::string script = "ulimit -Sn 99; \"$0\" Camino";
  EXPECT_EQ(runWorker({"/bin/bash", "-c", script, WORKER_BINARY}, home.home()).status, 0);
  EXPECT_FALSE(home.has(kCache));
}

}  // namespace
}  // namespace tasselby
