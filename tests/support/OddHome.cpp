#include "tests/support/OddHome.h"

#include <filesystem>

#include "samples/BinaryCookieWriter.h"
#include "samples/SampleStores.h"
#include "tests/support/Plain.h"

namespace tasselby {
namespace {

const std::string kSupport = "Library/Application Support/";
const std::string kPlayer = "Library/Preferences/Macromedia/Flash Player/";
const std::string kSettings = kPlayer + "macromedia.com/support/flashplayer/sys/";
const std::string kSilverlight = kSupport + "Microsoft/Silverlight/";
const Browsers kNone;
const Browsers kAll = {"Safari", "WebKit",  "Google Chrome", "Chromium",
                       "Camino", "Firefox", "Opera"};

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
  addCookies();
  addProfiles("Google Chrome", "Google/Chrome");
  addProfiles("Chromium", "Chromium");
  addSafari();
  addFirefox();
  addFlash();
  addSilverlight();
  addCaches();
}

void OddHome::file(const std::string& path, const Browsers& goneFor, bool kept) {
  home.addFile("odd", path, goneFor, kept);
}

void OddHome::alone(const std::string& path, const Browsers& goneFor, bool kept) {
  file(path, goneFor, kept);
  overwritten.insert(home.items().back().path);
}

void OddHome::socket(const std::string& path, const Browsers& goneFor) {
  home.addItem("odd", path, "", goneFor);
  const std::string& onVolume = home.items().back().path;
  scratch.socket(std::string("../../").append(onVolume));
  stubborn.insert(onVolume);
}

/// Adds the row `values` to `table`, which has nothing else to tell it by.
void OddHome::row(const std::string& path, const std::string& table, const std::string& values,
                  const Browsers& goneFor, bool kept) {
  const Connection database = plainConnection(scratch.path(path));
  plainly(database, "INSERT INTO " + table + " VALUES (" + values + ");");
  home.addItem("odd", path,
               "SELECT * FROM " + table.substr(0, table.find(' ')) + " WHERE rowid = " +
                   std::to_string(sqlite3_last_insert_rowid(database.get())) + ";",
               goneFor, kept);
}

void OddHome::addCookies() {
  struct Odd {
    std::string host;
    std::string name;
    bool stays;
    bool kept;
  };
  const std::vector<Odd> cookies = {
      // Case counts, and so does where a name begins; of a kept site tracking cookies go.
      {"www.example.com", "nid", false, true},
      {"www.example.com", "XNID", false, true},
      {"WWW.Example.COM", "prefs", false, true},
      {"www.example.com", "_cookie", false, false},
      {"www.example.com", "OAX1", false, false},
      {"www.example.com", ".ASPXANONYMOUS", false, false},
      // What names no site stays whatever its name; no password of a web form keeps these sites.
      {"x.file:///", "NID", true, false},
      {"", "without a host", false, false},
      {"www.o'neil.example", "it's", false, false},
      {"localhost", "a", false, false},
      {"printer.local", "a", false, false},
      {"mail.example.org", "a", false, false},
  };
  std::vector<SampleCookie> safari;
  for (const SampleItem& item : home.items()) {
    if (item.path == "Users/anna/Library/Cookies/Cookies.binarycookies") {
      const std::size_t blank = item.key.find(' ');
      safari.push_back({.domain = item.key.substr(0, blank), .name = item.key.substr(blank + 1)});
    }
  }
  int number = 900000;
  for (const Odd& cookie : cookies) {
    const std::string id = std::to_string(++number);
    const std::string texts = sqlText(cookie.host) + ", " + sqlText(cookie.name);
    const auto goneFor = [&cookie](const char* browser) {
      return cookie.stays ? kNone : Browsers{browser};
    };
    for (const auto& [browser, folder] : {std::pair{"Google Chrome", "Google/Chrome/Default"},
                                          {"Chromium", "Chromium/Default"},
                                          {"Opera", "com.operasoftware.Opera"}}) {
      const bool today = std::string(browser) == "Google Chrome";
      row(kSupport + folder + "/Cookies",
          std::string("cookies (creation_utc, host_key, name, value, path, expires_utc, "
                      "last_access_utc, encrypted_value") +
              (today ? ")" : ", secure, httponly)"),
          id + ", " + texts + ", '', '/', 1, 1, x'00'" + (today ? "" : ", 0, 0"), goneFor(browser),
          cookie.kept);
    }
    for (const auto& [browser, folder] :
         {std::pair{"Firefox", "Firefox/Profiles/z81m0cde.work"}, {"Camino", "Camino"}}) {
      row(kSupport + folder + "/cookies.sqlite", "moz_cookies (id, host, name)", id + ", " + texts,
          goneFor(browser), cookie.kept);
    }
    const std::string path = "Library/Cookies/Cookies.binarycookies";
    safari.push_back({.domain = cookie.host, .name = cookie.name});
    home.addItem("odd", path, cookie.host + " " + cookie.name, goneFor("Safari"), cookie.kept);
    home.writeFile(path, binaryCookieFile(safari, StringOrder::kDomainFirst, "a tail"));
  }
}

void OddHome::addProfiles(const std::string& browser, const std::string& root) {
  const std::string data = kSupport + root + "/";
  const Browsers goneFor = {browser};
  home.writeFile(data + "Local State",
                 R"({"profile": {"info_cache": {"Default": {"name": "a"}, "Profile 1": {"name": ""},
                     "Odd": {"name": "o"}, "Empty": {"name": "e"}, "Bare": {"name": "b"},
                     "Missing": {"name": "m"}, "Profile 1/../Unnamed": {"name": "x"},
                     ".": {"name": "x"}, "Unnamed": {}, "Number": {"name": 1}}}})");
  for (const char* none : {"Unnamed/", "Number/", "", "Bare/Default/"}) {
    file(data + none + "Local Storage/https_gone.example_0.localstorage", kNone);
  }
  // Rows that cannot be told from others of their host, and rows without what they are told by.
  const std::string cookies = data + "Odd/Cookies";
  home.writeDatabase(cookies, {"CREATE TABLE cookies (host_key, name, creation_utc INTEGER);"});
  const std::string tracking = root == "Chromium" ? "13000000000000001" : "13000000000001001";
  row(cookies, "cookies", "'.www.example.com', 'of a tracking cookie''s number', " + tracking,
      goneFor);
  row(cookies, "cookies", "'www.example.com', 'of another host', " + tracking, goneFor, true);
  row(cookies, "cookies", "'gone.example', NULL, 2", goneFor);
  row(cookies, "cookies", "'gone.example', x'4E4944', 3", goneFor);
  row(cookies, "cookies", "'gone.example', 'NID', NULL", kNone);
  for (const char* host : {"NULL", "x'676f6e65'", "1.5"}) {
    row(cookies, "cookies", std::string(host) + ", 'NID', 4", kNone);
  }
  const std::string certificates = data + "Odd/Origin Bound Certs";
  home.writeDatabase(certificates, {"CREATE TABLE origin_bound_certs (origin);"});
  row(certificates, "origin_bound_certs", "NULL", kNone);
  row(certificates, "origin_bound_certs", "'example.com'", goneFor, true);
  row(certificates, "origin_bound_certs", "'Example.com'", goneFor);
  row(certificates, "origin_bound_certs", "'example.com '", goneFor);

  const std::string index = data + "Odd/databases/Databases.db";
  home.writeDatabase(index, {"CREATE TABLE Databases (origin); CREATE TABLE Origins (origin);"});
  row(index, "Databases", "NULL", kNone);
  row(index, "Databases", "x'41'", kNone);
  row(index, "Databases", "'example.com'", goneFor, true);
  for (const char* origin : {"http_a.example_0", "http_socket.example_0", "../Bookmarks"}) {
    row(index, "Databases", sqlText(origin), goneFor);
    row(index, "Origins", sqlText(origin), kNone);
  }
  file(data + "Odd/databases/example.com/1.db", goneFor, true);
  file(data + "Odd/databases/http_other.example_0/1.db", kNone);
  file(data + "Odd/Bookmarks", kNone);
  alone(data + "Odd/databases/http_a.example_0", goneFor);
  socket(data + "Odd/databases/http_socket.example_0", goneFor);
  // The empty origin names the folder itself.
  home.writeDatabase(data + "Empty/databases/Databases.db", {"CREATE TABLE Databases (origin);"});
  row(data + "Empty/databases/Databases.db", "Databases", "''", goneFor);
  row(data + "Empty/databases/Databases.db", "Databases", "'chrome-extension_e_0'", goneFor);
  file(data + "Empty/databases/chrome-extension_e_0/1.db", goneFor);

  const std::string storage = data + "Odd/Local Storage/";
  socket(storage + "https_socket.example_0.localstorage", goneFor);
  alone(storage + "https_socket.example_0.localstorage-journal", goneFor);
  alone(storage + "https_plain.example_0.localstorage", goneFor);
  socket(storage + "https_plain.example_0.localstorage-journal", goneFor);
  file(storage + "https_gone.example_0.localstorage-journal", kNone);
  alone(data + "Odd/Application Cache", goneFor);
  socket("Library/Caches/" + root + "/Odd", goneFor);

  const std::string objects =
      data + "Odd/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/R1/";
  for (const char* host : {"www.two.example", "WWW.two.example", "two.example", "^nosite"}) {
    file(objects + host + "/game.sol", goneFor);
  }
  file(objects + ".hidden.example/game.sol", kNone);
  file(objects + "macromedia.com/support/flashplayer/sys/##g/.two.example/a.sol", goneFor);
  file(objects + "macromedia.com/support/flashplayer/sys/##g/www.example.com/a.sol", goneFor, true);
  file(objects + "macromedia.com/support/flashplayer/sys/unmarked.example/a.sol", kNone);
  alone(objects + "file.example", goneFor);
  socket(objects + "socket.example", goneFor);
  alone(objects + "macromedia.com/support/flashplayer/sys/#file.example", goneFor);
  alone(objects + "macromedia.com/support/flashplayer/sys/##g/file.example", goneFor);
}

void OddHome::addSafari() {
  const std::string index = "Library/Safari/Databases/Databases.db";
  row(index, "Databases (origin)", "NULL", kNone);
  row(index, "Databases (origin)", "'example.com'", {"Safari"}, true);
  row(index, "Databases (origin)", "'http_a.example_0'", {"Safari"});
  row(index, "Databases (origin)", "'http_a.example_0'", {"Safari"});
  row(index, "Origins (origin)", "'http_a.example_0'", {"Safari"});
  row(index, "Origins (origin)", "'http_other.example_0'", kNone);
  row(index, "Databases (origin)", "'http_socket.example_0'", {"Safari"});
  alone("Library/Safari/Databases/http_a.example_0", {"Safari"});
  socket("Library/Safari/Databases/http_socket.example_0", {"Safari"});

  const std::string storage = "Library/Safari/LocalStorage/";
  alone(storage + "https_a.example_0.localstorage", {"Safari"});
  file(storage + "https_a.example_0.localstorage-journal", kNone);
  file(storage + "without extension", kNone);
  file(storage + ".hidden", kNone);
  for (const char* name : {"StorageTracker", "without extension", ".hidden", "https_a.example_0"}) {
    row(storage + "StorageTracker.db", "Origins (origin)", sqlText(name), kNone);
  }
  // A file that stays keeps its row.
  socket(storage + "https_socket.example_0.localstorage", {"Safari"});
  row(storage + "StorageTracker.db", "Origins (origin)", "'https_socket.example_0'", {"Safari"});
  stubborn.insert(home.items().back().path + " " + home.items().back().key);
}

void OddHome::addFirefox() {
  const std::string profiles = kSupport + "Firefox/Profiles/";
  const auto database = [](const std::string& path, const std::string& table) {
    plainly(path, "CREATE TABLE " + table + ";");
  };
  for (const std::string& folder : {profiles + ".hidden", kSupport + "Firefox/elsewhere"}) {
    scratch.folder(folder);
    database(scratch.path(folder + "/cookies.sqlite"), "moz_cookies (id INTEGER, host, name)");
    database(scratch.path(folder + "/webappsstore.sqlite"), "webappsstore2 (scope, key)");
    database(scratch.path(folder + "/signons.sqlite"), "moz_logins (hostname)");
  }
  scratch.link(profiles + "linked", "../elsewhere");
  file(profiles + "bare/prefs.js", kNone);
  file(profiles + "plain", kNone);
  row(kSupport + "Firefox/elsewhere/cookies.sqlite", "moz_cookies", "1, 'gone.example', 'a'",
      kNone);
  row(kSupport + "Firefox/elsewhere/signons.sqlite", "moz_logins", "'https://a.x.linked.example'",
      kNone);

  const std::string logins = profiles + ".hidden/signons.sqlite";
  for (const char* login : {"'https://plain.com'", "'http://localhost'", "NULL", "x'61'",
                            "'file:///x'", "'https://a.b.hidden.example'"}) {
    row(logins, "moz_logins", login, kNone);
  }
  const std::string cookies = profiles + ".hidden/cookies.sqlite";
  row(cookies, "moz_cookies", "2, '.www.example.com', 'of a tracking cookie''s number'",
      {"Firefox"});
  row(cookies, "moz_cookies", "2, 'www.example.com', 'of another host'", {"Firefox"}, true);
  row(cookies, "moz_cookies", "8, 'plain.com', 'kept with its scheme alone'", {"Firefox"});
  row(cookies, "moz_cookies", "9, 'http://localhost', 'a'", {"Firefox"}, true);
  row(cookies, "moz_cookies", "9, 'b.hidden.example', 'a'", {"Firefox"}, true);
  row(cookies, "moz_cookies", "9, 'x.linked.example', 'a'", {"Firefox"});
  row(cookies, "moz_cookies", "NULL, 'gone.example', 'a'", kNone);
  const std::string scopes = profiles + ".hidden/webappsstore.sqlite";
  // As many as the other profiles have: whatever their order, the report is the same.
  for (int i = 0; i < 8; ++i) {
    row(scopes, "webappsstore2", "'elpmaxe.neddih.:http:80', 'a'", {"Firefox"});
  }
  for (int i = 0; i < 6; ++i) {
    row(scopes, "webappsstore2", "'moc.elpmaxe.:http:80', 'a'", {"Firefox"}, true);
  }
  row(scopes, "webappsstore2", "NULL, 'a'", kNone);
  row(scopes, "webappsstore2", "'', 'a'", kNone);
  row(scopes, "webappsstore2", "'no scope', 'a'", kNone);

  const std::string caches = "Library/Caches/Firefox/Profiles/";
  alone(caches + ".hidden/Cache", {"Firefox"});
  socket(caches + ".hidden/OfflineCache", {"Firefox"});
  alone(caches + ".hidden/startupCache", {"Firefox"});
  file(caches + "plain", kNone);
  file("Library/Caches/Firefox/elsewhere/Cache/entry", kNone);
  scratch.link(caches + "linked", "../elsewhere");
}

void OddHome::addFlash() {
  // The same below a folder named "~", where most of what is chosen is looked for.
  for (const std::string& root : {std::string(), std::string("/~/")}) {
    const Browsers goneFor = root.empty() ? kNone : kAll;
    const std::string objects = root + kPlayer + "#SharedObjects/R2/";
    for (const char* host : {"adverts.example", "www.adverts.example", "WWW.adverts.example",
                             "macromedia.com", "^nosite"}) {
      file(objects + host + "/game.sol", goneFor);
    }
    file(objects + "www.example.com/game.sol", goneFor, true);
    file(objects + ".hidden.example/game.sol", kNone);
    root.empty() ? file(objects + "file.example", kNone) : alone(objects + "file.example", kAll);
    root.empty() ? file(objects + "socket.example", kNone)
                 : socket(objects + "socket.example", kAll);
    const std::string settings = root + kSettings;
    file(settings + "unmarked.example/settings.sol", kNone);
    file(settings + "##group/.dot.example/settings.sol", goneFor);
    file(settings + "##group/www.example.com/settings.sol", goneFor, true);
  }
  // Overwriting is tried below "~", removing in the home.
  file(kSettings + "#alone.example", kAll);
  file(kSettings + "#socket.example", kAll);
  stubborn.insert("Users/anna/" + kSettings + "#socket.example");
  file("/~/" + kSettings + "#gone.example", kNone);
  home.addItem("odd", "/~/" + kSettings + "#socket.example", "", kNone);
  scratch.socket(std::string("../../~/").append(kSettings).append("#socket.example"));
}

void OddHome::addSilverlight() {
  const std::string is = kSilverlight + "is/ab12cd34.ef5/gh67ij89.kl0/";
  const auto store = [this](const std::string& folder, const std::string& name,
                            const std::string& identity, const std::string& group,
                            const Browsers& goneFor, bool kept = false) {
    home.addFile("odd", folder + "s/" + name + "/id.dat", goneFor, kept, identity);
    if (!group.empty()) {
      home.addFile("odd", folder + "s/" + name + "/group.dat", goneFor, kept, group);
    }
  };
  // An entry that is no store keeps its folder from being empty.
  file(is + "1/s/.DS_Store", kNone);
  store(is + "2/", ".hidden", "gone.example", "group", kNone);
  store(is + "2/", "with a line end", "www.example.com\n", "group", kAll);
  store(is + "2/", "kept", "example.com", "of the kept", kAll, true);
  store(is + "2/", "leads out", "www.gone.example", "../../../../../outside", kAll);
  store(is + "2/", "without a group", "gone.example", "", kAll);
  store(is + "2/", "file", "x.gone.example", "file", kAll);
  store(is + "2/", "socket", "x.gone.example", "socket", kAll);
  alone(is + "2/g/group", kAll);
  file(is + "2/g/of the kept/data", kAll, true);
  alone(is + "2/g/file", kAll);
  socket(is + "2/g/socket", kAll);
  file(kSilverlight + "outside/file", kNone);
  for (const char* hidden : {"is/.a/b/c/", "is/a/.b/c/", "is/a/b/.c/", "elsewhere/"}) {
    store(kSilverlight + hidden, "store", "gone.example", "", kNone);
  }
  file(kSilverlight + "is/file", kNone);
  file(kSilverlight + "is/a/b/without stores/g/group/data", kNone);
  store(kSilverlight + "linked/", "store", "gone.example", "", kNone);
  home.addItem("odd", is + "2/s/link", "", kAll);
  scratch.link(is + "2/s/link", "../../../../../linked/s/store");
  // The empty name is the folder of groups itself.
  home.addFile("odd", is + "3/s/store/id.dat", kAll, false, "gone.example");
  home.writeFile(is + "3/s/store/group.dat", "");
  home.addItem("odd", is + "3/s/store/group.dat", "", kAll);
  file(is + "3/s/.DS_Store", kNone);
  file(is + "3/g/group/data", kAll);
}

void OddHome::addCaches() {
  const std::string folders = "/private/var/folders/";
  file(folders + "a/b/C/MediaCache/deep/video", {"Safari"});
  file(folders + "a/b/.T/MediaCache/video", {"Safari"});
  alone(folders + "a/b/C/com.apple.WebKit.WebContent+com.apple.Safari/MediaCache", {"Safari"});
  socket(folders + "a/b/C/com.apple.WebProcess+com.apple.Safari/MediaCache", {"Safari"});
  socket(folders + "a/b/C/com.apple.Safari/ApplicationCache.db", {"Safari"});
  file(folders + "a/b/D/MediaCache", kNone);
  file(folders + "a/b/com.apple.Safari/ApplicationCache.db", kNone);
  file(folders + "MediaCache/video", kNone);
  file(folders + "a/file", kNone);
  file(folders + "c/D/MediaCache/video", kNone);
  scratch.link(std::string("../..").append(folders) + "a/b/L", "C");
  scratch.link(std::string("../..").append(folders) + "e", "c");
  scratch.link(std::string("../..").append(folders) + "a/b/E/MediaCache", "../C/other");
}

}  // namespace tasselby
