#include "samples/BinaryCookieWriter.h"
#include "samples/SampleStores.h"

namespace tasselby {
namespace {

/// One cookie of a store.
struct Cookie {
  std::string host;
  std::string name;
  /// Whether the site is kept and the cookie no tracking cookie.
  bool kept = false;
  /// Whether there is a site at all: without one the cookie stays in every run.
  bool hasSite = true;
};

Browsers goneFor(const Cookie& cookie, const std::string& browser) {
  return cookie.hasSite ? Browsers{browser} : Browsers{};
}

constexpr const char* kOlderChromium =
    "CREATE TABLE cookies (creation_utc INTEGER NOT NULL UNIQUE PRIMARY KEY, host_key TEXT NOT "
    "NULL, name TEXT NOT NULL, value TEXT NOT NULL, path TEXT NOT NULL, expires_utc INTEGER NOT "
    "NULL, secure INTEGER NOT NULL, httponly INTEGER NOT NULL, last_access_utc INTEGER NOT NULL, "
    "has_expires INTEGER NOT NULL DEFAULT 1, persistent INTEGER NOT NULL DEFAULT 1, priority "
    "INTEGER NOT NULL DEFAULT 1, encrypted_value BLOB DEFAULT '');";

constexpr const char* kChromiumOfToday =
    "CREATE TABLE cookies (creation_utc INTEGER NOT NULL, host_key TEXT NOT NULL, "
    "top_frame_site_key TEXT NOT NULL DEFAULT '', name TEXT NOT NULL, value TEXT NOT NULL, "
    "encrypted_value BLOB NOT NULL, path TEXT NOT NULL, expires_utc INTEGER NOT NULL, is_secure "
    "INTEGER NOT NULL DEFAULT 1, is_httponly INTEGER NOT NULL DEFAULT 0, last_access_utc INTEGER "
    "NOT NULL, has_expires INTEGER NOT NULL DEFAULT 1, is_persistent INTEGER NOT NULL DEFAULT 1, "
    "priority INTEGER NOT NULL DEFAULT 1, samesite INTEGER NOT NULL DEFAULT -1, source_scheme "
    "INTEGER NOT NULL DEFAULT 2, source_port INTEGER NOT NULL DEFAULT 443, last_update_utc INTEGER "
    "NOT NULL DEFAULT 0, source_type INTEGER NOT NULL DEFAULT 0, has_cross_site_ancestor INTEGER "
    "NOT NULL DEFAULT 0);";

constexpr const char* kOlderMozilla =
    "CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, baseDomain TEXT, appId INTEGER DEFAULT 0, "
    "inBrowserElement INTEGER DEFAULT 0, name TEXT, value TEXT, host TEXT, path TEXT, expiry "
    "INTEGER, lastAccessed INTEGER, creationTime INTEGER, isSecure INTEGER, isHttpOnly INTEGER, "
    "CONSTRAINT moz_uniqueid UNIQUE (name, host, path, appId, inBrowserElement));";

constexpr const char* kMozillaOfToday =
    "CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, originAttributes TEXT NOT NULL DEFAULT '', "
    "name TEXT, value TEXT, host TEXT, path TEXT, expiry INTEGER, lastAccessed INTEGER, "
    "creationTime INTEGER, isSecure INTEGER, isHttpOnly INTEGER, inBrowserElement INTEGER DEFAULT "
    "0, sameSite INTEGER DEFAULT 0, rawSameSite INTEGER DEFAULT 0, schemeMap INTEGER DEFAULT 0, "
    "isPartitionedAttributeSet INTEGER DEFAULT 0, CONSTRAINT moz_uniqueid UNIQUE (name, host, "
    "path, originAttributes));";

/// An ordinary and a tracking cookie for every site, with the leading dots and the host names with
/// apostrophes that stores have, and one whose host is no site.
std::vector<Cookie> cookiesOf(const MacHome& home) {
  std::vector<Cookie> cookies;
  for (const SampleSite& site : home.sites()) {
    cookies.push_back({site.host, "session", site.kept});
    cookies.push_back({"." + site.host, "__utmz"});
  }
  cookies.push_back({"o'neil.example", "theme"});
  cookies.push_back({"^internal", "NID", false, false});
  return cookies;
}

void addChromiumCookies(MacHome& home, const std::string& browser, const std::string& folder,
                        bool today, int first) {
  std::vector<std::string> sql = {today ? kChromiumOfToday : kOlderChromium};
  const std::string path = folder + "/Cookies";
  int number = first;
  for (const Cookie& cookie : cookiesOf(home)) {
    const std::string id = std::to_string(13000000000000000 + number++);
    const std::string condition =
        "host_key = " + sqlText(cookie.host) + " AND creation_utc = " + id + ";";
    sql.push_back(
        "INSERT INTO cookies (creation_utc, host_key, name, value, path, expires_utc, "
        "last_access_utc, encrypted_value" +
        std::string(today ? "" : ", secure, httponly") + ") VALUES (" + id + ", " +
        sqlText(cookie.host) + ", " + sqlText(cookie.name) + ", 'v', '/', 13999999999999999, " +
        id + ", x'763130" + std::to_string(10 + number % 90) + "00ff'" +
        (today ? ");" : ", 0, 1);"));
    home.addItem(browser + " cookies", path, "SELECT * FROM cookies WHERE " + condition,
                 goneFor(cookie, browser), cookie.kept);
  }
  home.writeDatabase(path, sql);
}

void addChannelIds(MacHome& home, const std::string& browser, const std::string& folder) {
  std::vector<std::string> sql = {
      "CREATE TABLE origin_bound_certs (origin TEXT NOT NULL UNIQUE PRIMARY KEY, private_key BLOB "
      "NOT NULL, cert BLOB NOT NULL, cert_type INTEGER, expiration_time INTEGER, creation_time "
      "INTEGER);"};
  const std::string path = folder + "/Origin Bound Certs";
  // Only an origin that is a kept site to the letter stays.
  for (const char* origin : {"example.com", "example.co.uk", "www.example.com", "example.org"}) {
    sql.push_back("INSERT INTO origin_bound_certs VALUES ('" + std::string(origin) +
                  "', x'00ff', x'ff00', 64, 0, 0);");
    const bool kept =
        std::string(origin) == "example.com" || std::string(origin) == "example.co.uk";
    home.addItem(browser + " channel IDs", path,
                 "SELECT * FROM origin_bound_certs WHERE origin = '" + std::string(origin) + "';",
                 {browser}, kept);
  }
  home.writeDatabase(path, sql);
}

void addMozillaCookies(MacHome& home, const std::string& browser, const std::string& folder,
                       bool today, int first) {
  std::vector<std::string> sql;
  if (today) {
    sql = {"PRAGMA page_size = 32768;", "PRAGMA journal_mode = WAL;"};
  }
  sql.emplace_back(today ? kMozillaOfToday : kOlderMozilla);
  const std::string path = folder + "/cookies.sqlite";
  int number = first;
  for (const Cookie& cookie : cookiesOf(home)) {
    const std::string id = std::to_string(number++);
    sql.push_back(
        "INSERT INTO moz_cookies (id, name, value, host, path, expiry, lastAccessed, "
        "creationTime, isSecure, isHttpOnly) VALUES (" +
        id + ", " + sqlText(cookie.name) + ", 'v" + id + "', " + sqlText(cookie.host) +
        ", '/', 2000000000, 1600000000000000, 1500000000000000, 1, 0);");
    home.addItem(browser + " cookies", path, "SELECT * FROM moz_cookies WHERE id = " + id + ";",
                 goneFor(cookie, browser), cookie.kept);
  }
  home.writeDatabase(path, sql);
}

/// The old place's file, or the container's, which an update of the system leaves side by side.
void addSafariCookies(MacHome& home, const std::string& path) {
  std::vector<SampleCookie> cookies;
  for (const Cookie& cookie : cookiesOf(home)) {
    cookies.push_back({.domain = cookie.host, .name = cookie.name, .value = "v"});
    home.addItem("Safari cookies", path, cookie.host + " " + cookie.name, goneFor(cookie, "Safari"),
                 cookie.kept);
  }
  home.writeFile(path, binaryCookieFile(cookies));
}

}  // namespace

void addCookies(MacHome& home) {
  const std::string support = "Library/Application Support/";
  // Two Google Chrome profiles of today with cookies of their own, two older Chromium profiles
  // with equal rows.
  int first = 1000;
  for (const std::string& profile : kChromiumProfileNames) {
    addChromiumCookies(home, "Google Chrome", support + "Google/Chrome/" + profile, true, first);
    addChannelIds(home, "Google Chrome", support + "Google/Chrome/" + profile);
    addChromiumCookies(home, "Chromium", support + "Chromium/" + profile, false, 0);
    addChannelIds(home, "Chromium", support + "Chromium/" + profile);
    first += 100000;
  }
  addChromiumCookies(home, "Opera", support + "com.operasoftware.Opera", false, 0);
  addChannelIds(home, "Opera", support + "com.operasoftware.Opera");
  addMozillaCookies(home, "Firefox", support + "Firefox/Profiles/" + kFirefoxProfileNames[0], true,
                    1);
  addMozillaCookies(home, "Firefox", support + "Firefox/Profiles/" + kFirefoxProfileNames[1], false,
                    100001);
  addMozillaCookies(home, "Camino", support + "Camino", false, 1);
  const std::string safari = "Library/Cookies/Cookies.binarycookies";
  addSafariCookies(home, safari);
  addSafariCookies(home, "Library/Containers/com.apple.Safari/Data/" + safari);
}

}  // namespace tasselby
