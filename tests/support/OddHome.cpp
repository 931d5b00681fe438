#include "tests/support/OddHome.h"

#include <array>
#include <sstream>
#include <tuple>

#include "samples/SampleStores.h"

namespace tasselby {
namespace {

// For the lines see MacHome::add.

// What Google Chrome (G) and Chromium have below ROOT. Rows that cannot be told from others of
// their host, rows without what they are told by, names that lead out, an empty one for the folder
// itself.
constexpr const char* kProfiles = R"(
= Library/Application Support/ROOT/
- {,Unnamed/,Number/,Bare/Default/}Local Storage/https_gone.example_0.localstorage
+ Odd/Cookies: cookies (host_key, name, creation_utc INTEGER)
G Odd/Cookies: cookies: '.www.example.com', 'of a tracking cookie''s number', TRACKING
Gk Odd/Cookies: cookies: 'www.example.com', 'of another host', TRACKING
G Odd/Cookies: cookies: 'gone.example', NULL, 2; 'gone.example', x'4E4944', 3
- Odd/Cookies: cookies: 'gone.example', 'NID', NULL; NULL, 'NID', 4; x'676f6e65', 'NID', 4; 1.5, 'NID', 4
+ Odd/Origin Bound Certs: origin_bound_certs (origin)
G Odd/Origin Bound Certs: origin_bound_certs: 'Example.com'; 'example.com '
Gk Odd/Origin Bound Certs: origin_bound_certs: 'example.com'
- Odd/Origin Bound Certs: origin_bound_certs: NULL
+ Odd/databases/Databases.db: Databases (origin); CREATE TABLE Origins (origin)
- Odd/databases/Databases.db: Databases: NULL; x'41'
Gk Odd/databases/Databases.db: Databases: 'example.com'
G Odd/databases/Databases.db: Databases: 'http_a.example_0'; 'http_socket.example_0'; '../Bookmarks'
- Odd/databases/Databases.db: Origins: 'http_a.example_0'; 'http_socket.example_0'; '../Bookmarks'
Gk Odd/databases/example.com/1.db
Ga Odd/databases/http_a.example_0
Gs Odd/databases/http_socket.example_0
- Odd/{databases/http_other.example_0/1.db,Bookmarks}
+ Empty/databases/Databases.db: Databases (origin)
G Empty/databases/Databases.db: Databases: ''; 'chrome-extension_e_0'
G Empty/databases/chrome-extension_e_0/1.db
Gs Odd/Local Storage/https_socket.example_0.localstorage
Ga Odd/Local Storage/https_socket.example_0.localstorage-journal
Ga Odd/Local Storage/https_plain.example_0.localstorage
Gs Odd/Local Storage/https_plain.example_0.localstorage-journal
- Odd/Local Storage/https_gone.example_0.localstorage-journal
Ga Odd/Application Cache
= Library/Application Support/ROOT/Odd/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/R1/
G {www.two.example,WWW.two.example,two.example,^nosite}/game.sol
- .hidden.example/game.sol
Ga f.example
Gs socket.example
= Library/Application Support/ROOT/Odd/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/R1/macromedia.com/support/flashplayer/sys/
G ##g/.two.example/a.sol
Gk ##g/www.example.com/a.sol
- unmarked.example/a.sol
Ga {#f.example,##g/f.example}
= Library/Caches/ROOT/
Gs Odd
)";

// The system's Flash player, in the home and below a folder named "~", where most of what is chosen
// is looked for (*).
constexpr const char* kFlash = R"(
= ROOT/#SharedObjects/R2/
* {adverts.example,www.adverts.example,WWW.adverts.example,macromedia.com,^nosite}/game.sol
*k www.example.com/game.sol
- .hidden.example/game.sol
*a file.example
*s socket.example
= ROOT/macromedia.com/support/flashplayer/sys/
* ##group/.dot.example/settings.sol
*k ##group/www.example.com/settings.sol
- unmarked.example/settings.sol
)";

constexpr const char* kHome = R"(
= Library/Safari/
- Databases/Databases.db: Databases (origin): NULL
Sk Databases/Databases.db: Databases (origin): 'example.com'
S Databases/Databases.db: Databases (origin): 'http_a.example_0'; 'http_a.example_0'; 'http_socket.example_0'
S Databases/Databases.db: Origins (origin): 'http_a.example_0'
- Databases/Databases.db: Origins (origin): 'http_other.example_0'
Sa {Databases/http_a.example_0,LocalStorage/https_a.example_0.localstorage}
Ss {Databases/http_socket.example_0,LocalStorage/https_socket.example_0.localstorage}
- LocalStorage/{https_a.example_0.localstorage-journal,without extension,.hidden}
- LocalStorage/StorageTracker.db: Origins (origin): 'StorageTracker'; 'without extension'; '.hidden'; 'https_a.example_0'
Sw LocalStorage/StorageTracker.db: Origins (origin): 'https_socket.example_0'
= Library/Application Support/Firefox/
+ {elsewhere,Profiles/.hidden}/cookies.sqlite: moz_cookies (id INTEGER, host, name)
+ {elsewhere,Profiles/.hidden}/webappsstore.sqlite: webappsstore2 (scope, key)
+ {elsewhere,Profiles/.hidden}/signons.sqlite: moz_logins (hostname)
- Profiles/linked > ../elsewhere
- Profiles/{bare/prefs.js,plain}
- elsewhere/cookies.sqlite: moz_cookies: 1, 'gone.example', 'a'
- elsewhere/signons.sqlite: moz_logins: 'https://a.x.linked.example'
- Profiles/.hidden/signons.sqlite: moz_logins: 'https://plain.com'; 'http://localhost'; NULL; x'61'
- Profiles/.hidden/signons.sqlite: moz_logins: 'file:///x'; 'https://a.b.hidden.example'
F Profiles/.hidden/cookies.sqlite: moz_cookies: 8, '.www.example.com', 'of a tracking cookie''s number'
F Profiles/.hidden/cookies.sqlite: moz_cookies: 9, 'x.linked.example', 'a'; 8, 'plain.com', 'a'
Fk Profiles/.hidden/cookies.sqlite: moz_cookies: 8, 'www.example.com', 'of another host'
Fk Profiles/.hidden/cookies.sqlite: moz_cookies: 9, 'http://localhost', 'a'; 9, 'b.hidden.example', 'a'
- Profiles/.hidden/cookies.sqlite: moz_cookies: NULL, 'gone.example', 'a'
- Profiles/.hidden/webappsstore.sqlite: webappsstore2: NULL, 1; '', 1; 'no scope', 1
F Profiles/.hidden/webappsstore.sqlite: webappsstore2: 'elpmaxe.neddih.:http:80', {1,2,3,4,5,6,7,8}
Fk Profiles/.hidden/webappsstore.sqlite: webappsstore2: 'moc.elpmaxe.:http:80', {1,2,3,4,5,6}
= Library/Caches/
Fa Firefox/Profiles/.hidden/{Cache,startupCache}
Fs Firefox/Profiles/.hidden/OfflineCache
- Firefox/{Profiles/plain,elsewhere/Cache/entry}
- Firefox/Profiles/linked > ../elsewhere
K Camino/Cache/link > ../../../../Documents
= Library/Preferences/Macromedia/Flash Player/macromedia.com/support/flashplayer/sys/
* #alone.example
*w #socket.example
= /~/Library/Preferences/Macromedia/Flash Player/macromedia.com/support/flashplayer/sys/
-s #socket.example
- #gone.example
= Library/Application Support/Microsoft/Silverlight/
- is/ab12cd34.ef5/gh67ij89.kl0/{1,3}/s/.DS_Store
- {outside/file,is/file,is/a/b/without stores/g/group/data}
- {is/.a/b/c,is/a/.b/c,is/a/b/.c,elsewhere,linked}/s/store/id.dat = gone.example
= Library/Application Support/Microsoft/Silverlight/is/ab12cd34.ef5/gh67ij89.kl0/2/
- s/.hidden/id.dat = gone.example
* s/with a line end/id.dat = www.example.com\n
* s/with a line end/group.dat = group
*k s/kept/id.dat = example.com
*k s/kept/group.dat = of the kept
* s/leads out/id.dat = www.gone.example
* s/leads out/group.dat = ../../../../../outside
* s/without a group/id.dat = gone.example
* s/{file,socket}/id.dat = x.gone.example
* s/file/group.dat = file
* s/socket/group.dat = socket
*a g/{group,file}
*k g/of the kept/data
*s g/socket
* s/link > ../../../../../linked/s/store
= Library/Application Support/Microsoft/Silverlight/is/ab12cd34.ef5/gh67ij89.kl0/3/
* s/store/id.dat = gone.example
* s/store/group.dat =
* g/group/data
= /private/var/folders/
S a/b/{C/MediaCache/deep/video,.T/MediaCache/video}
Sa a/b/C/com.apple.WebKit.WebContent+com.apple.Safari/MediaCache
Ss a/b/C/{com.apple.WebProcess+com.apple.Safari/MediaCache,com.apple.Safari/ApplicationCache.db}
- a/b/{D/MediaCache,com.apple.Safari/ApplicationCache.db}
- {a/file,MediaCache/video,c/D/MediaCache/video}
- a/b/L > C
- e > c
- a/b/E/MediaCache > ../C
)";

// Cookies of every browser. Case counts, and so does where a name begins; of a kept site tracking
// cookies go. What names no site stays whatever its name.
constexpr const char* kCookies = R"(
Lk STORE'www.example.com', 'nid'REST
Lk STORE'www.example.com', 'XNID'REST
Lk STORE'WWW.Example.COM', 'prefs'REST
L STORE'www.example.com', '_cookie'REST
L STORE'www.example.com', 'OAX1'REST
L STORE'www.example.com', '.ASPXANONYMOUS'REST
- STORE'x.file:///', 'NID'REST
L STORE'', 'without a host'REST
L STORE'www.o''neil.example', 'it''s'REST
L STORE'localhost', 'a'REST
L STORE'printer.local', 'a'REST
L STORE'mail.example.org', 'a'REST
)";

// What a run reports, without and with "removeAll": cookies, tracking cookies, databases, Flash,
// Silverlight.
using Counts = std::array<int, 5>;
const std::map<std::string, std::array<Counts, 2>> kCounts = {
    {"Safari", {{{48, 20, 16, 12, 7}, {72, 20, 20, 15, 10}}}},
    {"WebKit", {{{0, 0, 0, 12, 7}, {0, 0, 0, 15, 10}}}},
    {"Google Chrome", {{{52, 21, 30, 28, 7}, {78, 21, 37, 38, 10}}}},
    {"Chromium", {{{52, 21, 28, 28, 7}, {78, 21, 35, 38, 10}}}},
    {"Camino", {{{24, 10, 8, 12, 7}, {36, 10, 14, 15, 10}}}},
    {"Firefox", {{{51, 20, 48, 12, 7}, {79, 20, 84, 15, 10}}}},
    {"Opera", {{{24, 10, 12, 12, 7}, {36, 10, 15, 15, 10}}}},
};

}  // namespace

std::string OddHome::report(const std::string& browser, bool removeAll) const {
  const Counts& counts = kCounts.at(browser)[removeAll ? 1 : 0];
  std::ostringstream report;
  report << counts[0] << " Cookies (" << counts[1] << " Tracking Cookies), " << counts[2]
         << " Databases, " << counts[3] << " Flash, " << counts[4]
         << " Silverlight, and Cache removed from " << browser;
  return report.str();
}

OddHome::OddHome() : home(scratch.volume()) {
  home.add(cookieLines(kCookies)).add(kHome);
  for (const auto& [letter, root, tracking] :
       {std::tuple{"G", "Google/Chrome", "13000000000001007"},
        {"C", "Chromium", "13000000000000007"}}) {
    home.writeFile(kSupport + root + "/Local State", R"({"profile": {"info_cache": {
        "Default": {"name": "a"}, "Profile 1": {"name": ""}, "Odd": {"name": "o"},
        "Empty": {"name": "e"}, "Bare": {"name": "b"}, "Missing": {"name": "m"},
        "Profile 1/../Unnamed": {"name": "x"}, ".": {"name": "x"}, "Unnamed": {},
        "Number": {"name": 1}}}})");
    const std::string lines = replaced(replaced(kProfiles, "ROOT", root), "TRACKING", tracking);
    home.add(replaced(lines, "\nG", std::string("\n") + letter));
  }
  const std::string player = "Library/Preferences/Macromedia/Flash Player";
  home.add(replaced(kFlash, "ROOT", "/~/" + player));
  // In the home all of that stays, though it counts.
  std::string lines = replaced(kFlash, "ROOT", player);
  for (const char* fate : {"*a ", "*k ", "*s ", "* "}) {
    lines = replaced(lines, fate, "- ");
  }
  home.add(lines);
}

}  // namespace tasselby
