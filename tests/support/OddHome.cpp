#include "tests/support/OddHome.h"

#include <sstream>

#include "samples/BinaryCookieWriter.h"

namespace tasselby {
namespace {

// A line for each item. Its fate is a letter for each browser whose run removes it (K is Camino's,
// * everyone's, - nobody's), and behind it k for a kept site's, a for a file removed by itself, s
// for a socket, which cannot be overwritten, and w for what stays with one. Then its path below the
// folder that a line "=" names, with alternatives in braces; behind " = " a file's contents; behind
// ": " a table and rows of a database, which a line "+" makes; behind " > " what a link names.

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
F Profiles/.hidden/cookies.sqlite: moz_cookies: 2, '.www.example.com', 'of a tracking cookie''s number'
F Profiles/.hidden/cookies.sqlite: moz_cookies: 9, 'x.linked.example', 'a'; 8, 'plain.com', 'a'
Fk Profiles/.hidden/cookies.sqlite: moz_cookies: 2, 'www.example.com', 'of another host'
Fk Profiles/.hidden/cookies.sqlite: moz_cookies: 9, 'http://localhost', 'a'; 9, 'b.hidden.example', 'a'
- Profiles/.hidden/cookies.sqlite: moz_cookies: NULL, 'gone.example', 'a'
- Profiles/.hidden/webappsstore.sqlite: webappsstore2: NULL, 1; '', 1; 'no scope', 1
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

// Cookies of every browser, with who keeps them as above. Case counts, and so does where a name
// begins; of a kept site tracking cookies go. What names no site stays whatever its name.
const std::vector<Names> kCookies = {
    {"k", "www.example.com", "nid"},    {"k", "www.example.com", "XNID"},
    {"k", "WWW.Example.COM", "prefs"},  {"", "www.example.com", "_cookie"},
    {"", "www.example.com", "OAX1"},    {"", "www.example.com", ".ASPXANONYMOUS"},
    {"-", "x.file:///", "NID"},         {"", "", "without a host"},
    {"", "www.o'neil.example", "it's"}, {"", "localhost", "a"},
    {"", "printer.local", "a"},         {"", "mail.example.org", "a"}};

std::string replaced(std::string text, const std::string& part, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(part, at)) != text.npos; at += with.size()) {
    text.replace(at, part.size(), with);
  }
  return text;
}

/// What stands behind `mark` in `text`, and goes from it; no value without one.
std::optional<std::string> cut(std::string& text, const std::string& mark) {
  const std::size_t at = text.find(mark);
  std::optional<std::string> rest;
  if (at != text.npos) {
    rest = text.substr(at + mark.size());
    text.resize(at);
  }
  return rest;
}

class Maker {
 public:
  explicit Maker(OddHome& odd) : odd_(odd) {}

  void add(const std::string& lines) {
    std::istringstream in(lines);
    std::string folder;
    for (std::string line; std::getline(in, line);) {
      const std::string fate = line.substr(0, line.find(' '));
      std::string path = line.substr(std::min(line.size(), fate.size() + 1));
      std::string ending = path;
      const std::size_t brace = path.find('{');
      if (fate == "=") {
        folder = path;
      } else if (brace == path.npos && !fate.empty()) {
        item(fate, folder + path);
      } else if (!fate.empty()) {
        std::istringstream names(path.substr(brace + 1, path.find('}') - brace - 1));
        for (std::string name; std::getline(names, name, ',');) {
          item(fate, folder + path.substr(0, brace) + name + path.substr(path.find('}') + 1));
        }
      }
    }
  }

  void row(const std::string& fate, const std::string& path, const std::string& table,
           const std::string& values) {
    const Connection database = plainConnection(odd_.scratch.path(path));
    plainly(database, "INSERT INTO " + table + " VALUES (" + values + ");");
    const auto number = std::to_string(sqlite3_last_insert_rowid(database.get()));
    put(fate, path,
        "SELECT * FROM " + table.substr(0, table.find(' ')) + " WHERE rowid = " + number);
  }

  void put(const std::string& fate, const std::string& path, const std::string& key) {
    Browsers browsers;
    for (std::size_t i = 0; i < kEveryBrowser.size(); ++i) {
      if (has(fate, '*') || has(fate, "SWGCKFO"[i])) {
        browsers.push_back(kEveryBrowser[i]);
      }
    }
    odd_.home.addItem("odd", path, key, browsers, has(fate, 'k'));
    const std::string label = odd_.home.items().back().path + (key.empty() ? "" : " ") + key;
    if (has(fate, 's') || has(fate, 'w')) {
      odd_.stubborn.insert(label);
    }
    if (has(fate, 'a')) {
      odd_.overwritten.insert(label);
    }
  }

 private:
  static bool has(const std::string& fate, char letter) { return fate.find(letter) != fate.npos; }

  void item(const std::string& fate, std::string path) {
    const auto target = cut(path, " > ");
    const auto table = cut(path, ": ");
    const auto contents = cut(path, " =");
    const std::string below = path.starts_with("/") ? "../.." + path : path;
    if (fate == "+") {
      odd_.home.writeDatabase(path, {"CREATE TABLE " + *table + ";"});
      return;
    }
    if (table) {
      std::string name = *table;
      std::istringstream rows(replaced(*cut(name, ": "), "; ", "\n"));
      for (std::string values; std::getline(rows, values);) {
        row(fate, path, name, values);
      }
      return;
    }
    put(fate, path, "");
    if (target) {
      odd_.scratch.link(below, *target);
    } else if (has(fate, 's')) {
      odd_.scratch.socket(below);
    } else {
      const std::string text = contents ? *contents : " " + path;
      odd_.scratch.file(below, text.empty() ? "" : replaced(text.substr(1), "\\n", "\n"));
    }
  }

  OddHome& odd_;
};

/// Adds the odd cookies to the stores that the sample home has.
void addCookies(OddHome& odd, Maker& maker) {
  const std::string path = "Library/Cookies/Cookies.binarycookies";
  std::vector<SampleCookie> safari;
  for (const SampleItem& item : odd.home.items()) {
    if (item.path == "Users/anna/" + path) {
      std::string domain = item.key;
      const std::string name = *cut(domain, " ");
      safari.push_back({.domain = domain, .name = name});
    }
  }
  const std::string columns =
      "cookies (creation_utc, host_key, name, value, path, expires_utc, last_access_utc, ";
  const std::vector<Names> stores = {
      {"G", "Google/Chrome/Default/Cookies", columns + "encrypted_value)", ", '', '/', 1, 1, 1"},
      {"C", "Chromium/Default/Cookies", columns + "secure, httponly)", ", '', '/', 1, 1, 0, 0"},
      {"O", "com.operasoftware.Opera/Cookies", columns + "secure, httponly)",
       ", '', '/', 1, 1, 0, 0"},
      {"F", "Firefox/Profiles/z81m0cde.work/cookies.sqlite", "moz_cookies (id, host, name)", ""},
      {"K", "Camino/cookies.sqlite", "moz_cookies (id, host, name)", ""}};
  int number = 900000;
  for (const Names& cookie : kCookies) {
    const auto fateOf = [&cookie](const std::string& letter) {
      return cookie[0] == "-" ? "-" : letter + cookie[0];
    };
    const std::string values =
        std::to_string(++number) + ", " + sqlText(cookie[1]) + ", " + sqlText(cookie[2]);
    for (const Names& store : stores) {
      maker.row(fateOf(store[0]), kSupport + store[1], store[2], values + store[3]);
    }
    safari.push_back({.domain = cookie[1], .name = cookie[2]});
    maker.put(fateOf("S"), path, cookie[1] + " " + cookie[2]);
  }
  odd.home.writeFile(path, binaryCookieFile(safari, StringOrder::kDomainFirst, "a tail"));
}

}  // namespace

OddHome::OddHome() : home(scratch.volume(), 1) {
  for (const SampleItem& item : home.items()) {
    for (const char* ending : {".localstorage", "-journal", "Cookies.plist", "HSTS.plist",
                               "Caches/com.apple.Safari/Cache.db", "/ApplicationCache.db"}) {
      if (item.path.ends_with(ending)) {
        overwritten.insert(item.path);
      }
    }
  }
  Maker maker(*this);
  addCookies(*this, maker);
  for (const auto& [letter, root, tracking] :
       {std::tuple{"G", "Google/Chrome", "13000000000001001"},
        {"C", "Chromium", "13000000000000001"}}) {
    home.writeFile(kSupport + root + "/Local State", R"({"profile": {"info_cache": {
        "Default": {"name": "a"}, "Profile 1": {"name": ""}, "Odd": {"name": "o"},
        "Empty": {"name": "e"}, "Bare": {"name": "b"}, "Missing": {"name": "m"},
        "Profile 1/../Unnamed": {"name": "x"}, ".": {"name": "x"}, "Unnamed": {},
        "Number": {"name": 1}}}})");
    const std::string lines = replaced(replaced(kProfiles, "ROOT", root), "TRACKING", tracking);
    maker.add(replaced(lines, "\nG", std::string("\n") + letter));
  }
  const std::string player = "Library/Preferences/Macromedia/Flash Player";
  maker.add(replaced(kFlash, "ROOT", "/~/" + player));
  // In the home all of that stays, though it counts.
  std::string lines = replaced(kFlash, "ROOT", player);
  for (const char* fate : {"*a ", "*k ", "*s ", "* "}) {
    lines = replaced(lines, fate, "- ");
  }
  maker.add(lines);
  maker.add(kHome);
  // As many as the other profiles have: whatever their order, the report is the same.
  for (int i = 0; i < 14; ++i) {
    maker.row(i < 8 ? "F" : "Fk", kSupport + "Firefox/Profiles/.hidden/webappsstore.sqlite",
              "webappsstore2",
              i < 8 ? "'elpmaxe.neddih.:http:80', 1" : "'moc.elpmaxe.:http:80', 1");
  }
}

}  // namespace tasselby
