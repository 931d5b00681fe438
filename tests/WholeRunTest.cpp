// Whole runs of the worker's binary over homes with everything in them, and previews of the same
// runs. What is to become of an item stands where the item is made; here it is only compared.
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "samples/BinaryCookieWriter.h"
#include "samples/KeychainWriter.h"
#include "samples/NotificationBus.h"
#include "tests/support/OddHome.h"

namespace tasselby {
namespace {

using Json = nlohmann::ordered_json;

const std::string kFilm = "Library/Caches/QuickTime/downloads/film.mov";

constexpr const char* kAsAnyone = R"(ulimit -n 24
[ $UID = 0 ] && set -- setpriv --bounding-set=-dac_override,-dac_read_search "$@"
exec "$@" <&-)";

class WholeRun : public ::testing::TestWithParam<std::tuple<std::string, bool, bool>> {
 protected:
  /// As a user who may not do everything, with few open files, and without a standard input: what
  /// is opened first has the number 0, which is one like others.
  WorkerRun run(const std::string& home, Names command) const {
    command.insert(command.begin(), {"/bin/bash", "-c", kAsAnyone, "-"});
    return runWorker(command, home, bus.address(), home + "/../..");
  }

  /// Expects the preview `json` of a run over `home` to announce what goes, that alone, and each
  /// once: files by their path, cookies and rows by that of their store. Answers how much goes for
  /// which reason, and stays beside it.
  std::string expectAnnounced(const Json& json, const MacHome& home) const {
    const auto& [browser, removeAll, secure] = GetParam();
    std::map<std::string, long> going, announced, tally;
    for (const SampleItem& item : home.items()) {
      if (item.goesFor(browser, removeAll, secure)) {
        ++going[home.path(item.path)];
      }
    }
    for (const Json& place : json["places"]) {
      const std::string path = place["path"];
      EXPECT_EQ(path, fs::canonical(path));
      ++tally[place["unit"]];
      tally["stays"] += place["stays"].get<long>();
      for (const Json& item : place["items"]) {
        const std::string what = item["what"], name = item["name"];
        const bool isFile = place["unit"] == "files";
        ++tally[item["why"]];
        tally["bytes"] += isFile ? item["bytes"].get<long>() : std::ssize(what + name);
        // A store that goes as a file takes its rows along.
        const std::string& at = isFile ? what : path;
        if (going.contains(at) || !fs::is_directory(what)) {
          announced[at] += isFile ? std::max(1L, going[at]) : 1;
        }
      }
    }
    EXPECT_EQ(announced, going);
    std::string counts, names = "bytes cache cookies files never kept not kept rows stays tracking";
    for (const auto& [what, count] : tally) {
      EXPECT_NE(names.find(what), names.npos) << what;
      counts += " " + std::to_string(count);
    }
    return counts;
  }

  /// Expects a preview to announce what goes and to change nothing, as a run for other names, and
  /// one for the browser to let every item meet its fate. Answers the report of both, and what the
  /// preview tells beyond it.
  std::string expectFates(const MacHome& home) const {
    const auto& [browser, removeAll, secure] = GetParam();
    Names command = {PREVIEW_BINARY,
                     "-removeAll",
                     std::to_string(removeAll),
                     "-secureDeleteData",
                     std::to_string(secure),
                     "-x",
                     browser,
                     "Opera",
                     "--json"};
    const Fates fates(home);
    const std::string text = run(home.home(), command).output;
    const Json json = Json::parse(text);
    EXPECT_EQ(text, json.dump(1) + "\n");
    const Names none = {WORKER_BINARY, "", "safari", "Chrome", "Camino ", "-x"};
    EXPECT_EQ(run(home.home(), none).status, 0);
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
  const Names& counts = kCounts.at(browser);
  EXPECT_EQ(numbersIn(expectFates(odd.home)),
            counts[removeAll ? 1 : 0] + " " + (removeAll || secure ? "" : counts[2]));
}

// What a home with everything in it cannot show: caches that are plain files, links to stores,
// names for which no statement is run, tables without a row that goes, a folder of Silverlight
// stores that becomes empty, with which the whole plug-in goes. Some of Chromium's is read-only.
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
- {../cache/GPUCache,Google/Chrome/Default}/file
+ outside/Cookies: cookies (host_key, name, creation_utc INTEGER):
  G 'gone.example', 'a', 1; G 'gone.example', 'b', 2
- Google/Chrome/Profile 1/Cookies > .//../../../outside/Cookies
O com.operasoftware.Opera/databases > ../outside
+ outside/Databases.db: Databases (origin): O ''
- outside/http_a_0/1.db
+ Chromium/Default/databases/Databases.db: Databases (origin):
  - 'http_c_0'; - 'http_b'') OR (''1''=''1_0'
+ Chromium/{Default,Profile 1}/Cookies: cookies (host_key, name, creation_utc INTEGER): - 'gone.example', 'a', 1
Cs Chromium/Default/Local Storage/http_a_0.localstorage
C Chromium/Profile 1/Application Cache/file
- Chromium/{Profile 1/Application Cache/locked,Default/Local Storage}/file
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
  const std::string data = scratch.path(kSupport + "Chromium/");
  run(data, {"/bin/chmod", "a-w", data + "Profile 1", data + "Profile 1/Application Cache/locked",
             data + "Default/Cookies", data + "Default/Local Storage/http_a_0.localstorage"});
  const std::string report = expectFates(home);
  run(data, {"/bin/chmod", "-R", "u+w", data});
  EXPECT_NE(report.find(" 1 Silverlight"), report.npos) << report;
}

INSTANTIATE_TEST_SUITE_P(All, WholeRun,
                         ::testing::Combine(::testing::ValuesIn(kEveryBrowser), ::testing::Bool(),
                                            ::testing::Bool()));

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
    const char* colours = place == store ? "A=" : "-SNO_COLOR= CLICOLOR_FORCE=";
    const WorkerRun preview =
        run(home.home(), {"/usr/bin/env", colours, PREVIEW_BINARY, browser, "-removeAll", "YES"});
    const std::string told = replaced(preview.output, scratch.home(), "~");
    EXPECT_TRUE(
        told.find(" over ~ would remove:\n\nNo site is kept.\n\n  goes ") != told.npos &&
        told.ends_with("\n\nEnds hard at ~/" + place + ": what would come after is not reached.\n"))
        << told;
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
  MacHome(scratch.volume(), 0).add(R"(
= Library/Application Support/Firefox/Profiles/p/
+ signons.sqlite: moz_logins (hostname): - 'https://www.b.com'; - 'b.com'
+ cookies.sqlite: moz_cookies (id INTEGER, host, name): - 1, 'b.com', 'a'; F 2, 'c.com', 'a')");
  std::vector<SavedPassword> saved;
  for (const std::string& server :
       split("www.a.com b.a.com local.a localhost P.LOCAL local a.certificate ^a \x1B", ' ')) {
    saved.push_back({.server = server});
  }
  scratch.file("Library/Keychains/login.keychain-db", keychainFile(saved))
      .file("Library/Cookies/Cookies.binarycookies",
            binaryCookieFile({{"b.c", "\xC3\xA9\x80"}, {"b.c", "\xC3\xA9"}, {"a.com", ""}}))
      .file(kFilm, std::string(1500, ' '))
      .file("../../private/var/folders/a/b/C/MediaCache/\x7F\xC2\x85\xC2\xA0",
            std::string(1000000, ' '));
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
  ^[31m1 file, 1.5 kB      ^[0m     0  ~/Library/Caches/QuickTime
      cache: ~/Library/Caches/QuickTime/downloads/film.mov
  ^[31m1 file, 1.0 MB      ^[0m     0  /private/var/folders/a/b/C
      cache: /private/var/folders/a/b/C/MediaCache/?? 
^[2m  nothing from 3 other places^[0m

Report: 2 Cookies (0 Tracking Cookies), 0 Databases, 0 Flash, 0 Silverlight, and Cache removed from Safari
)");
  Json json = Json::parse(run(scratch.home(), {PREVIEW_BINARY, "Firefox", "--json"}).output);
  json.erase("places");
  EXPECT_EQ(
      replaced(json.dump(), scratch.home(), "HOME"),
      R"({"browser":"Firefox","home":"HOME","kept":[{"site":"b.com","from":"https://www.b.com in Firefox's profile p"}],"report":"1 Cookies (0 Tracking Cookies), 0 Databases, 0 Flash, 0 Silverlight, and Cache removed from Firefox","endsHardAt":""})");
  std::string refused;
  for (const char* setting : {"A=", "-uHOME", "HOME=/none", "TMPDIR=/none", "TMPDIR=/proc",
                              "-Sbash -c '\"$0\" $1 > /dev/full'"}) {
    command = {"/usr/bin/env", setting, PREVIEW_BINARY, refused.empty() ? "firefox" : "Camino"};
    const WorkerRun result = run(scratch.home(), command);
    refused += std::to_string(result.status) + " " + result.output;
  }
  EXPECT_EQ(replaced(refused, "2 tasselby-preview: ", ""),
            R"(name one of Safari, WebKit, Google Chrome, Chromium, Camino, Firefox, Opera
HOME is missing or cannot be read
HOME is missing or cannot be read: /none
no room for a scratch folder; TMPDIR names another place
no room for a scratch folder; TMPDIR names another place
the output cannot be written
)");
  const std::string locked = "chmod a-w $1; \"$0\" Safari; echo $?; chmod u+w $1";
  command = {"/bin/bash", "-c", locked, WORKER_BINARY, "Users/anna/Library/Cookies"};
  EXPECT_EQ(run(scratch.home(), command).output, "0\n") << "without a new file of cookies";
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
using HostileHome = WorkerTest;

TEST_F(HostileHome, LinksLoopsPipesAndDevicesLeadNowhereInAnyPlace) {
  const std::string canary = home.file("canary/deep/file", "alive").path("canary");
  for (const std::string& target : split(
           canary + "|" + home.volume() + "|" + canary + "/deep/file|/dev/zero|itself|pipe", '|')) {
    for (const bool folders : {false, true}) {
      const ScratchHome misleading;
      const MacHome sample(misleading.volume());
      std::set<std::string> paths = {"Users/anna/Library/Keychains/login.keychain-db"};
      for (const SampleItem& item : sample.items()) {
        paths.insert(folders ? fs::path(item.path).parent_path().native() : item.path);
      }
      for (const std::string& path : paths) {
        const std::string full = sample.path(path), folder = fs::path(full).parent_path();
        std::error_code gone;
        if (fs::canonical(folder + "/.", gone) != folder) {
          continue;
        }
        fs::remove_all(full);
        if (target == "pipe") {
          ::mkfifo(full.c_str(), 0600);
        } else {
          fs::create_symlink(target == "itself" ? full : target, full);
        }
      }
      for (const std::string& browser : kEveryBrowser) {
        const WorkerRun preview = runWorker({PREVIEW_BINARY, browser}, sample.home());
        const WorkerRun result = runWorker({WORKER_BINARY, browser}, sample.home());
        EXPECT_TRUE((result.status == 0 || result.status == 70) && result.output.empty() &&
                    preview.status == result.status)
            << browser << " -> " << target << result.status << result.output << preview.output;
      }
      EXPECT_EQ(home.contents("canary/deep/file"), "alive") << target;
    }
  }
}

const std::string kCache = "Library/Caches/Camino/Cache";

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
