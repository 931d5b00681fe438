// The stores of the sample home, each item with its fate; see MacHome::add.

#include "samples/SampleStores.h"

namespace tasselby {
namespace {

constexpr const char* kSystem = R"(
= Library/Safari/
- Bookmarks.plist
+ Databases/Databases.db: Databases (guid INTEGER PRIMARY KEY AUTOINCREMENT, origin TEXT, name TEXT,
  displayName TEXT, estimatedSize INTEGER, path TEXT)
+ Databases/Databases.db: Origins (origin TEXT UNIQUE, quota INTEGER)
S Databases/https_@_0/0001.db
S Databases/Databases.db: Databases (origin): 'https_@_0'
S Databases/Databases.db: Origins (origin): 'https_@_0'
- Databases/safari-extension_com.example.ext-0123456789_0/0001.db
- Databases/Databases.db: Databases (origin): 'safari-extension_com.example.ext-0123456789_0'
- Databases/Databases.db: Origins (origin): 'safari-extension_com.example.ext-0123456789_0'
+ LocalStorage/StorageTracker.db: Origins (origin TEXT UNIQUE, path TEXT)
Ska LocalStorage/https_@_0.localstorage
Sk LocalStorage/StorageTracker.db: Origins: 'https_@_0', 'https_@_0.localstorage'
S LocalStorage/StorageTracker.db: Origins (origin): 'http_gone.example_0'
- LocalStorage/safari-extension_com.example.ext-0123456789_0.localstorage
- LocalStorage/StorageTracker.db: Origins (origin): 'safari-extension_com.example.ext-0123456789_0'
= Library/Caches/
Sa com.apple.Safari/Cache.db
S com.apple.Safari/fsCachedData/0A1B/data
- com.apple.Safari/Webpage Previews/page.png
K Camino/Cache/entry
K Metadata/Camino/bookmark
- Camino/Icons/icon
* Adobe/Flash Player/AssetCache/asset.swz
* QuickTime/downloads/film.mov
- QuickTime/settings
- ../../Documents/letter.txt
Sa ../Cookies/{Cookies,HSTS}.plist
= /private/var/folders/zz/zyxvpxvq6csfxvn_n0000000000000/
S C/{,com.apple.WebKit.WebContent+com.apple.Safari/}MediaCache/video
S T/com.apple.WebProcess+com.apple.Safari/MediaCache/video
Sa C/com.apple.Safari/ApplicationCache.db
- {C/com.apple.Safari/,C/com.apple.Preview/,}MediaCache/video
- C/com.apple.WebKit.WebContent+com.apple.Safari/other
= Library/Preferences/Macromedia/Flash Player/
- #SharedObjects/Q7XK2MPA/{@/game.sol,.DS_Store}
*k macromedia.com/support/flashplayer/sys/#@/settings.sol
- macromedia.com/support/flashplayer/sys/{,##group/grouped.example.net/}settings.sol
= Library/Application Support/Microsoft/Silverlight/
*k is/ab12cd34.ef5/gh67ij89.kl0/1/{s/@/f/data,g/group-@/quota.dat}
*k is/ab12cd34.ef5/gh67ij89.kl0/1/s/@/id.dat = @
*k is/ab12cd34.ef5/gh67ij89.kl0/1/s/@/group.dat = group-@
- mssl.lck
)";

// A data folder of Chromium's kind. Browsers differ in which extensions they spare (EXTENSION).
constexpr const char* kChromiumData = R"(
= Library/Application Support/ROOT/
- {Bookmarks,IndexedDB/origin/000003.log,Local Storage/leveldb/000003.log}
+ Origin Bound Certs: origin_bound_certs (origin TEXT NOT NULL UNIQUE PRIMARY KEY, private_key BLOB,
  cert BLOB, cert_type INTEGER, expiration_time INTEGER, creation_time INTEGER)
%k Origin Bound Certs: origin_bound_certs (origin, cert): 'example.com', x'ff'; 'example.co.uk', x'00'
% Origin Bound Certs: origin_bound_certs (origin, cert): 'www.example.com', x'ff'; 'example.org', x'ff'
+ databases/Databases.db: Databases (id INTEGER PRIMARY KEY AUTOINCREMENT, origin TEXT NOT NULL,
  name TEXT NOT NULL, description TEXT NOT NULL DEFAULT '', estimated_size INTEGER NOT NULL DEFAULT 0)
% databases/https_@_0/0001.db
% databases/Databases.db: Databases (origin, name): 'https_@_0', 'data'
- databases/chrome-extension_abcdefghijklmnop_0/0001.db
- databases/Databases.db: Databases (origin, name): 'chrome-extension_abcdefghijklmnop_0', 'data'
%ka Local Storage/https_@_0.localstorage{,-journal}
EXTENSION Local Storage/chrome-extension_abcdefghij_0.localstorage{,-journal}
)";

constexpr const char* kChromiumProfiles = R"(
= Library/Application Support/ROOT/{Default,Profile 1}/
% Application Cache/{GPUCache/data_0,Index}
- GPUCache/data_0
= Library/Application Support/ROOT/{Default,Profile 1}/Pepper Data/Shockwave Flash/WritableRoot/
%k #SharedObjects/7YUL8MEX/{,macromedia.com/support/flashplayer/sys/#}@/game.sol
% #SharedObjects/7YUL8MEX/macromedia.com/support/flashplayer/sys/##group/grouped.example.net/a.sol
- #SharedObjects/7YUL8MEX/macromedia.com/support/flashplayer/sys/settings.sol
= Library/Caches/ROOT/
% {Default,Profile 1}/Cache/data_1
- Guest Profile/Cache/data_1
= Library/Application Support/
% ROOTPepper Data/Shockwave Flash/CacheWritableAdobeRoot/asset
- ROOT/Pepper Data/Shockwave Flash/CacheWritableAdobeRoot/asset
)";

constexpr const char* kOpera = R"(
= Library/Application Support/com.operasoftware.Opera
O {/GPUCache/data_0,/Application Cache/Index,Pepper Data/Shockwave Flash/CacheWritableAdobeRoot/asset}
O /../../Caches/com.operasoftware.Opera/Cache/data_1
)";

// A profile of Firefox's, or Camino's data.
constexpr const char* kMozillaData = R"(
= Library/Application Support/ROOT/
+ webappsstore.sqlite: webappsstore2 (scope TEXT, key TEXT, value TEXT, secure INTEGER, owner TEXT)
%k webappsstore.sqlite: webappsstore2: '@reversed.:https:443', 'first', 'value', 0, ''
%k webappsstore.sqlite: webappsstore2: '@reversed.:https:443', 'second', 'value', 0, ''
)";

constexpr const char* kFirefox = R"(
= Library/Caches/Firefox/Profiles/{k3x9q2ab.default,z81m0cde.work}/
F {Cache,OfflineCache,startupCache}/entry
- thumbnails/page.png
= Library/Application Support/Firefox/Profiles/{k3x9q2ab.default,z81m0cde.work}/
+ signons.sqlite: moz_logins (id INTEGER PRIMARY KEY, hostname TEXT NOT NULL, httpRealm TEXT,
  formSubmitURL TEXT, encryptedUsername TEXT, encryptedPassword TEXT, guid TEXT, encType INTEGER)
- signons.sqlite: moz_logins (hostname): 'https://$'
)";

constexpr const char* kCookieTables = R"(
= Library/Application Support/
+ {Chromium/Default,Chromium/Profile 1,com.operasoftware.Opera}/Cookies: cookies (
  creation_utc INTEGER NOT NULL UNIQUE PRIMARY KEY, host_key TEXT NOT NULL, name TEXT NOT NULL,
  value TEXT NOT NULL, path TEXT NOT NULL, expires_utc INTEGER NOT NULL, secure INTEGER NOT NULL,
  httponly INTEGER NOT NULL, last_access_utc INTEGER NOT NULL, has_expires INTEGER NOT NULL
  DEFAULT 1, persistent INTEGER NOT NULL DEFAULT 1, priority INTEGER NOT NULL DEFAULT 1,
  encrypted_value BLOB DEFAULT '')
+ Google/Chrome/{Default,Profile 1}/Cookies: cookies (creation_utc INTEGER NOT NULL, host_key TEXT
  NOT NULL, top_frame_site_key TEXT NOT NULL DEFAULT '', name TEXT NOT NULL, value TEXT NOT NULL,
  encrypted_value BLOB NOT NULL, path TEXT NOT NULL, expires_utc INTEGER NOT NULL, is_secure INTEGER
  NOT NULL DEFAULT 1, is_httponly INTEGER NOT NULL DEFAULT 0, last_access_utc INTEGER NOT NULL,
  has_expires INTEGER NOT NULL DEFAULT 1, is_persistent INTEGER NOT NULL DEFAULT 1, priority INTEGER
  NOT NULL DEFAULT 1, samesite INTEGER NOT NULL DEFAULT -1, source_scheme INTEGER NOT NULL DEFAULT
  2, source_port INTEGER NOT NULL DEFAULT 443, last_update_utc INTEGER NOT NULL DEFAULT 0,
  source_type INTEGER NOT NULL DEFAULT 0, has_cross_site_ancestor INTEGER NOT NULL DEFAULT 0)
+ {Firefox/Profiles/z81m0cde.work,Camino}/cookies.sqlite: moz_cookies (id INTEGER PRIMARY KEY,
  baseDomain TEXT, appId INTEGER DEFAULT 0, inBrowserElement INTEGER DEFAULT 0, name TEXT, value
  TEXT, host TEXT, path TEXT, expiry INTEGER, lastAccessed INTEGER, creationTime INTEGER, isSecure
  INTEGER, isHttpOnly INTEGER,
  CONSTRAINT moz_uniqueid UNIQUE (name, host, path, appId, inBrowserElement))
+ Firefox/Profiles/k3x9q2ab.default/cookies.sqlite: PRAGMA page_size = 32768;
  PRAGMA journal_mode = WAL
+ Firefox/Profiles/k3x9q2ab.default/cookies.sqlite: moz_cookies (id INTEGER PRIMARY KEY,
  originAttributes TEXT NOT NULL DEFAULT '', name TEXT, value TEXT, host TEXT, path TEXT, expiry
  INTEGER, lastAccessed INTEGER, creationTime INTEGER, isSecure INTEGER, isHttpOnly INTEGER,
  inBrowserElement INTEGER DEFAULT 0, sameSite INTEGER DEFAULT 0, rawSameSite INTEGER DEFAULT 0,
  schemeMap INTEGER DEFAULT 0, isPartitionedAttributeSet INTEGER DEFAULT 0,
  CONSTRAINT moz_uniqueid UNIQUE (name, host, path, originAttributes))
)";

// Of every site an ordinary and a tracking cookie; an apostrophe; a host that is no site.
constexpr const char* kCookies = R"(
%k STORE'@', 'session'REST
% STORE'.@', '__utmz'REST
% STORE'o''neil.example', 'theme'REST
- STORE'^internal', 'NID'REST
)";

std::string dataOf(const char* lines, const std::string& letter, const std::string& root) {
  return replaced(replaced(lines, "%", letter), "ROOT", root);
}

}  // namespace

std::string cookieLines(const std::string& cookies) {
  struct Store {
    const char *fate, *path, *table, *rest;
  };
  const char* today =
      "cookies (host_key, name, creation_utc, value, path, expires_utc, last_access_utc, "
      "encrypted_value)";
  const char* older =
      "cookies (host_key, name, creation_utc, value, path, expires_utc, last_access_utc, secure, "
      "httponly)";
  const char* mozilla = "moz_cookies (host, name, id, value, path, expiry, isSecure)";
  // Two Google Chrome profiles with numbers of their own, two Chromium profiles with equal rows;
  // Safari's cookies in the old place, and in the one that an update of the system made.
  const std::vector<Store> stores = {
      {"G", "Google/Chrome/Default/Cookies", today, "13000000000001000"},
      {"G", "Google/Chrome/Profile 1/Cookies", today, "13000000000101000"},
      {"C", "Chromium/Default/Cookies", older, "13000000000000000"},
      {"C", "Chromium/Profile 1/Cookies", older, "13000000000000000"},
      {"O", "com.operasoftware.Opera/Cookies", older, "13000000000000000"},
      {"F", "Firefox/Profiles/k3x9q2ab.default/cookies.sqlite", mozilla, "1"},
      {"F", "Firefox/Profiles/z81m0cde.work/cookies.sqlite", mozilla, "100001"},
      {"K", "Camino/cookies.sqlite", mozilla, "1"},
      {"S", "../Cookies/Cookies.binarycookies", "", ""},
      {"S", "../Containers/com.apple.Safari/Data/Library/Cookies/Cookies.binarycookies", "", ""}};
  std::string lines = "\n= Library/Application Support/";
  for (const auto& [fate, path, table, first] : stores) {
    std::string place = std::string(path) + ": ";
    std::string rest;
    if (*table != '\0') {
      const std::string name = std::string(table).substr(0, std::string(table).find(' '));
      place.append(table).append(": ");
      rest = ", (SELECT count(*) FROM " + name + ") + " + first + ", 'v', '/', 2000000000, 1" +
             (table == today   ? ", x'76313000ff'"
              : table == older ? ", 0, 1"
                               : "");
    }
    lines += replaced(replaced(dataOf(cookies.c_str(), fate, ""), "STORE", place), "REST", rest);
  }
  return lines;
}

void addStores(MacHome& home) {
  home.add(kSystem).add(kOpera).add(kFirefox).add(kCookieTables).add(cookieLines(kCookies));
  struct Data {
    const char *fate, *root, *extension;
  };
  for (const auto& [fate, root, extension] : {Data{"G", "Google/Chrome", "Ga"},
                                              {"C", "Chromium", "-"},
                                              {"O", "com.operasoftware.Opera", "Oa"}}) {
    const bool profiles = *fate != 'O';
    const std::string data = profiles ? root + std::string("/{Default,Profile 1}") : root;
    home.add(replaced(dataOf(kChromiumData, fate, data), "EXTENSION", extension))
        .add(profiles ? dataOf(kChromiumProfiles, fate, root) : "");
  }
  home.add(dataOf(kMozillaData, "F", "Firefox/Profiles/{k3x9q2ab.default,z81m0cde.work}"))
      .add(dataOf(kMozillaData, "K", "Camino"));
}

}  // namespace tasselby
