#include "tests/support/OddHome.h"

#include <regex>

namespace tasselby {
namespace {

// For the lines see MacHome::add.

// What Google Chrome and Chromium (%) have below ROOT. Rows that cannot be told from others of
// their host, rows without what they are told by, names that lead out, an empty one for the folder
// itself.
constexpr const char* kProfiles = R"(
= Library/Application Support/ROOT/
- {,Unnamed/,Number/,Bare/Default/}Local Storage/https_gone.example_0.localstorage
-s Bare/Cookies
+ Odd/Cookies: cookies (host_key, name, creation_utc INTEGER):
  % '.www.example.com', 'of a tracking cookie''s number', TRACKING;
  %k 'www.example.com', 'of another host', TRACKING;
  % 'gone.example', NULL, 2; % 'gone.example', x'4E4944', 3; - 'gone.example', 'NID', NULL;
  - NULL, 'NID', 4; - x'676f6e65', 'NID', 4; - 1.5, 'NID', 4
+ Odd/Origin Bound Certs: origin_bound_certs (origin):
  % 'Example.com'; % 'example.com '; %k 'example.com'; %e ''; - NULL
+ Odd/databases/Databases.db: Databases (origin): %k 'example.com'; - NULL; - x'41';
  % 'http_a.example_0'; % 'http_socket.example_0'; % '../Bookmarks'
+ Odd/databases/Databases.db: Origins (origin): - 'http_a.example_0'; - '../Bookmarks'
%k Odd/databases/example.com/1.db
%a Odd/{databases/http_a.example_0,Application Cache}
- {Odd/databases/http_other.example_0/1.db,Odd/Bookmarks,Empty/other,Odd/Local Storage/https_gone.example_0.localstorage-journal}
+ Empty/databases/Databases.db: Databases (origin): % ''; % 'chrome-extension_e_0'
% Empty/databases/chrome-extension_e_0/1.db
%s Odd/{databases/http_socket.example_0,Local Storage/https_socket.example_0.localstorage}
%a Odd/Local Storage/{https_socket.example_0.localstorage-journal,https_plain.example_0.localstorage}
%s Odd/Local Storage/https_plain.example_0.localstorage-journal
= Library/Application Support/ROOT/Odd/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/R1/
% {two.example,WWW.two.example,one.example,www.one.example,^nosite}/game.sol
- .hidden.example/game.sol
%a f.example
%s socket.example
= Library/Application Support/ROOT/Odd/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/R1/macromedia.com/support/flashplayer/sys/
% ##g/.two.example/a.sol
%k ##g/www.example.com/a.sol
- unmarked.example/a.sol
%a {#f.example,##g/f.example}
= Library/Caches/ROOT/
%s Odd
)";

// The system's Flash player, in the home and below a folder named "~", where most of what is chosen
// is looked for (%).
constexpr const char* kFlash = R"(
= ROOT/#SharedObjects/R2/
% {adverts.example,WWW.adverts.example,one.example,www.one.example,macromedia.com,^nosite}/game.sol
%k www.example.com/game.sol
- .hidden.example/game.sol
%a file.example
%s socket.example
= ROOT/macromedia.com/support/flashplayer/sys/
% ##group/.dot.example/settings.sol
%k ##group/www.example.com/settings.sol
- unmarked.example/settings.sol
)";

constexpr const char* kHome = R"(
= Library/Safari/
S Databases/Databases.db: Databases (origin): 'http_a.example_0'; 'http_a.example_0';
  'http_socket.example_0'; Sk 'example.com'; - NULL
S Databases/Databases.db: Origins (origin): 'http_a.example_0'; - 'http_other.example_0'
Sa {Databases/http_a.example_0,LocalStorage/https_a.example_0.localstorage}
Ss {Databases/http_socket.example_0,LocalStorage/https_socket.example_0.localstorage}
- LocalStorage/{https_a.example_0.localstorage-journal,without extension,.hidden}
- LocalStorage/StorageTracker.db: Origins (origin): 'StorageTracker'; 'without extension'; '.hidden';
  'https_a.example_0'; Sw 'https_socket.example_0'
= Library/Application Support/Firefox/
- Profiles/linked > ../elsewhere
- Profiles/{bare/prefs.js,plain}
+ elsewhere/cookies.sqlite: moz_cookies (id INTEGER, host, name): - 1, 'gone.example', 'a'
+ elsewhere/signons.sqlite: moz_logins (hostname): - 'https://a.x.linked.example'
= Library/Application Support/Firefox/Profiles/.hidden/
+ signons.sqlite: moz_logins (hostname): - 'https://plain.com'; - 'http://a.local'; - NULL;
  - x'61'; - 'file:///x'; - 'https://a.b.hidden.example'
+ cookies.sqlite: moz_cookies (id INTEGER, host, name): - NULL, 'gone.example', 'a';
  F 8, '.www.example.com', 'of a tracking cookie''s number'; Fk 8, 'www.example.com', 'of another host';
  F 9, 'x.linked.example', 'a'; F 8, 'plain.com', 'a';
  Fk 9, 'http://a.local', 'a'; Fk 9, 'b.hidden.example', 'a'
+ webappsstore.sqlite: webappsstore2 (scope, key): - NULL, 1; - '', 1; - 'no scope', 1
F webappsstore.sqlite: webappsstore2: 'elpmaxe.neddih.:http:80', {1,2,3,4,5,6,7,8}
Fk webappsstore.sqlite: webappsstore2: 'moc.elpmaxe.:http:80', {1,2,3,4,5,6}
= Library/Caches/
- {Adobe/Flash Player,Metadata,Firefox/Profiles/.hidden}/other
- ../Application Support/{Google/Chrome,Chromium,com.operasoftware.Opera}Pepper Data/Shockwave Flash/other
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
- is/ab12cd34.ef5/gh67ij89.kl0/{1/s,3/s,4/s,1/g,2/g}/.DS_Store
- {outside/file,is/file,is/a/b/without stores/g/group/data}
- {is/.a/b/c,is/a/.b/c,is/a/b/.c,elsewhere,linked}/s/store/id.dat = gone.example
= Library/Application Support/Microsoft/Silverlight/is/ab12cd34.ef5/gh67ij89.kl0/2/
- s/.hidden/id.dat = gone.example
* s/with a line end/{id.dat = www.example.com\n,group.dat = group}
*k s/kept/{id.dat = example.com,group.dat = of the kept}
* s/leads out/{id.dat = www.gone.example,group.dat = ../../../../../outside}
* s/without a group/id.dat = gone.example
* s/file/{id.dat = x.gone.example,group.dat = file}
* s/socket/{id.dat = x.gone.example,group.dat = socket}
*a g/{group,file}
*k g/of the kept/data
*s g/socket
* s/link > ../../../../../linked/s/store
* s/.tasselby-cut off/group.dat = of the cut off
* {g/of the cut off,../../../../../.tasselby-Silverlight/is/a/b/c/s/store}/data
= Library/Application Support/Microsoft/Silverlight/is/ab12cd34.ef5/gh67ij89.kl0/
* 3/s/store/{id.dat = gone.example,group.dat =}
* 3/g/group/data
*k 4/s/kept/id.dat = example.com
* 4/s/1/{id.dat = one.example,group.dat = 2}
* 4/s/2/{id.dat = two.example,group.dat = 1}
- 4/g > s
= /private/var/folders/
- {zz/zyxvpxvq6csfxvn_n0000000000000/T,a/b/C}/com.apple.WebProcess+com.apple.Safari/other
- a/b/{.T,C/com.apple.Safari,C/com.apple.WebKit.WebContent+com.apple.Safari}/other
S a/b/{C/MediaCache/deep/video,.T/MediaCache/video}
Sa a/b/C/com.apple.WebKit.WebContent+com.apple.Safari/MediaCache
Ss a/b/C/{com.apple.WebProcess+com.apple.Safari/MediaCache,com.apple.Safari/ApplicationCache.db}
- a/b/{D/MediaCache,com.apple.Safari/ApplicationCache.db}
- {a/file,MediaCache/video,c/D/MediaCache/video}
- e > c
- a/b/E/MediaCache > ../C
)";

// Cookies of every browser. Case counts, and so does where a name begins; of a kept site tracking
// cookies go. What names no site stays whatever its name.
constexpr const char* kCookies = R"(
%k STORE'www.example.com', 'nid'REST; %k 'www.example.com', 'XNID'REST; %k 'WWW.Example.COM', 'prefs'REST
% STORE'www.example.com', '_cookie'REST; 'www.example.com', 'OAX1'REST; 'www.example.com', '.ASPXANONYMOUS'REST
- STORE'x.file:///', 'NID'REST; % '', 'without a host'REST; % 'www.o''neil.example', 'it''s'REST;
  % 'localhost', 'a'REST; % 'printer.local', 'a'REST; % 'mail.example.org', 'a'REST
)";

}  // namespace

const std::map<std::string, Names> kCounts = {
    {"Safari", {"48 20 16 13 8", "72 20 20 16 11", "103928 13 2 49 21 102 2 82 12"}},
    {"WebKit", {"0 0 0 13 8", "0 0 0 16 11", "54438 2 22 54 28"}},
    {"Google Chrome", {"52 21 30 30 8", "78 21 37 40 11", "184186 11 3 47 33 145 6 132 13"}},
    {"Chromium", {"52 21 28 30 8", "78 21 35 40 11", "176611 11 3 47 33 141 6 136 13"}},
    {"Camino", {"24 10 8 13 8", "36 10 14 16 11", "56704 5 1 24 76 1 44 6"}},
    {"Firefox", {"51 20 48 13 8", "79 20 84 16 11", "67882 11 3 30 108 3 72 13"}},
    {"Opera", {"24 10 12 13 8", "36 10 15 16 11", "91632 6 1 27 14 80 2 63 6"}},
};

std::string numbersIn(const std::string& text) {
  return std::regex_replace(text, std::regex("[^0-9]+"), " ");
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
    home.add(
        replaced(replaced(replaced(kProfiles, "ROOT", root), "TRACKING", tracking), "%", letter));
  }
  // In the home all of the player's stays, though it counts.
  const std::string player =
      replaced(kFlash, "ROOT", "/~/Library/Preferences/Macromedia/Flash Player");
  home.add(replaced(player, "%", "*")).add(replaced(replaced(player, "%", "-"), "/~/", ""));
}

Fates::Fates(const MacHome& home) : home_(home), entries_(snapshotOf(home.volume())) {
  fs::create_directory(witnesses_);
  for (std::size_t i = 0; i < items_.size(); ++i) {
    const fs::path path = home.path(home.items()[i].path);
    if (home.items()[i].key.empty() && fs::is_regular_file(fs::symlink_status(path))) {
      fs::create_hard_link(path, witnesses_ + "/" + std::to_string(i));
    }
  }
}

void Fates::expectMet(const std::string& browser, bool removeAll, bool secure,
                      const Names& foreign) const {
  const auto isForeign = [&foreign](const auto& path) {
    return std::ranges::any_of(foreign,
                               [&](const auto& part) { return path.find(part) != path.npos; });
  };
  // A group of the Flash player's stays when all in it has gone; any other folder goes with it.
  const auto isGroup = [](const auto& path) { return path.rfind("/##") == path.rfind('/'); };
  const auto witnesses = snapshotOf(witnesses_);
  const auto items = home_.contents();
  std::set<std::string> going;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const SampleItem& item = home_.items()[i];
    const std::string label = item.path + " " + item.key;
    const bool goes = item.goesFor(browser, removeAll, secure) && !isForeign(item.path);
    EXPECT_TRUE(items_[i]) << label;
    EXPECT_EQ(items[i], goes ? std::nullopt : items_[i]) << label;
    const auto bytes = witnesses.find(std::to_string(i));
    if (bytes != witnesses.end()) {
      const bool wiped = bytes->second.size() == items_[i]->size() && bytes->second != *items_[i] &&
                         bytes->second.find('\xFF') == std::string::npos;
      EXPECT_EQ(wiped, secure && goes && item.is('a')) << label;
    }
    if (goes) {
      going.insert(item.path);
    }
  }
  const auto entries = snapshotOf(home_.volume());
  for (const auto& [path, contents] : entries_) {
    const auto now = entries.find(path);
    EXPECT_TRUE(going.contains(path) || (now == entries.end() ? contents == "/" && !isGroup(path)
                                                              : now->second == contents))
        << path << " has changed or gone";
  }
  for (const auto& [path, contents] : entries) {
    const auto next = entries.upper_bound(path + "/");
    EXPECT_TRUE(isForeign(path) ||
                (entries_.contains(path) &&
                 (contents != "/" || isGroup(path) ||
                  (next != entries.end() && next->first.starts_with(path + "/")))))
        << path << " is new or empty";
  }
}

}  // namespace tasselby
