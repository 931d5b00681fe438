#include "samples/CookieDatabases.h"

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

#include "app/Browsers.h"
#include "platform/Paths.h"
#include "samples/BinaryCookieWriter.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

constexpr double kUnixTimeOfMacEpoch = 978307200;
// Chromium counts microseconds since 1601-01-01 00:00:00 UTC.
constexpr double kSecondsFrom1601To1970 = 11644473600;

constexpr const char* kChromiumTable =
    "CREATE TABLE cookies (creation_utc INTEGER NOT NULL UNIQUE PRIMARY KEY, "
    "host_key TEXT NOT NULL, name TEXT NOT NULL, value TEXT NOT NULL, path TEXT NOT NULL, "
    "expires_utc INTEGER NOT NULL, secure INTEGER NOT NULL, httponly INTEGER NOT NULL, "
    "last_access_utc INTEGER NOT NULL, encrypted_value BLOB DEFAULT '');";
constexpr const char* kChromiumRow = "INSERT INTO cookies VALUES (?, ?, ?, '', ?, ?, ?, ?, ?, ?);";

constexpr const char* kMozillaTable =
    "CREATE TABLE moz_cookies (id INTEGER PRIMARY KEY, baseDomain TEXT, name TEXT, "
    "value TEXT, host TEXT, path TEXT, expiry INTEGER, lastAccessed INTEGER, creationTime INTEGER, "
    "isSecure INTEGER, isHttpOnly INTEGER);";
constexpr const char* kMozillaRow =
    "INSERT INTO moz_cookies VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?);";

constexpr const char* kChannelIdTable =
    "CREATE TABLE origin_bound_certs (origin TEXT NOT NULL UNIQUE PRIMARY KEY, "
    "private_key BLOB NOT NULL, cert BLOB NOT NULL);";
constexpr const char* kChannelIdRow = "INSERT INTO origin_bound_certs VALUES (?, ?, ?);";

std::int64_t microseconds(double macTime, double secondsFromEpoch) {
  return static_cast<std::int64_t>((macTime + kUnixTimeOfMacEpoch + secondsFromEpoch) * 1e6);
}

/// `place` is the cookie's own among those written: no two may be made in the same microsecond.
Arguments chromiumRow(const SampleCookie& cookie, std::int64_t place) {
  const std::int64_t created = microseconds(cookie.creation, kSecondsFrom1601To1970) + place;
  return {created,
          cookie.domain,
          cookie.name,
          cookie.path,
          microseconds(cookie.expiry, kSecondsFrom1601To1970),
          (cookie.flags & 1) != 0,
          (cookie.flags & 4) != 0,
          created,
          Bytes(cookie.value.begin(), cookie.value.end())};
}

Arguments mozillaRow(const SampleCookie& cookie, std::int64_t place) {
  const std::int64_t created = microseconds(cookie.creation, 0);
  const std::string base = cookie.domain.substr(cookie.domain.starts_with('.') ? 1 : 0);
  const std::int64_t expiry = microseconds(cookie.expiry, 0) / 1000000;
  return {place + 1,
          base,
          cookie.name,
          cookie.value,
          cookie.domain,
          cookie.path,
          expiry,
          created,
          created,
          (cookie.flags & 1) != 0,
          (cookie.flags & 4) != 0};
}

/// Makes the database at `path`: the statement `table`, then `statement` for each of `rows`.
void write(const std::string& path, const std::string& table, const std::string& statement,
           const std::vector<Arguments>& rows) {
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
  Sqlite database;
  database.open(path);
  database.executeNonQuery(table);
  database.beginTransaction();
  for (const Arguments& row : rows) {
    database.executeNonQuery_arguments(statement, row);
  }
  database.commit();
}

std::string inProfile(const std::string& browser, const std::string& profile,
                      const std::string& file) {
  const Browser known = browserNamed(browser);
  return join(join(std::string(known.dataRoot).substr(2), known.hasProfiles ? profile : ""), file);
}

}  // namespace

std::string cookieStore(const std::string& browser, const std::string& profile) {
  if (browser == "Safari") {
    return "Library/Cookies/Cookies.binarycookies";
  }
  const bool chromium = browserNamed(browser).family == Family::kChromium;
  return inProfile(browser, profile, chromium ? "Cookies" : "cookies.sqlite");
}

std::string channelIdStore(const std::string& browser, const std::string& profile) {
  return inProfile(browser, profile, "Origin Bound Certs");
}

std::vector<SampleCookie> cookiesAt(const std::string& domain,
                                    const std::vector<std::string>& names) {
  std::vector<SampleCookie> cookies;
  cookies.reserve(names.size());
  for (const std::string& name : names) {
    cookies.push_back({domain, name});
  }
  return cookies;
}

std::vector<SampleCookie> fifteenCookies() {
  std::vector<SampleCookie> cookies =
      cookiesAt("o'neil.com", {"a", "nid", "XNID", "b", "c", "NID_2", "_cookie", "OAX1"});
  for (const SampleCookie& cookie : cookiesAt("www.o'neil.com", {"d", "e"})) {
    cookies.push_back(cookie);
  }
  for (const SampleCookie& cookie : cookiesAt(".kept.com", {"x", "__utmz", "y", "IDE", "z"})) {
    cookies.push_back(cookie);
  }
  return cookies;
}

void writeCookies(const std::string& path, const std::string& browser,
                  const std::vector<SampleCookie>& cookies) {
  if (browser == "Safari") {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    std::ofstream(path, std::ios::binary) << binaryCookieFile(cookies);
    return;
  }
  const bool chromium = browserNamed(browser).family == Family::kChromium;
  std::vector<Arguments> rows;
  rows.reserve(cookies.size());
  for (const SampleCookie& cookie : cookies) {
    const auto place = static_cast<std::int64_t>(rows.size());
    rows.push_back(chromium ? chromiumRow(cookie, place) : mozillaRow(cookie, place));
  }
  write(path, chromium ? kChromiumTable : kMozillaTable, chromium ? kChromiumRow : kMozillaRow,
        rows);
}

void writeChannelIds(const std::string& path, const std::vector<std::string>& origins) {
  std::vector<Arguments> rows;
  rows.reserve(origins.size());
  for (const std::string& origin : origins) {
    rows.push_back({origin, Bytes(64, 0x5A), Bytes(256, 0xA5)});
  }
  write(path, kChannelIdTable, kChannelIdRow, rows);
}

std::string localState(const std::vector<std::string>& profiles) {
  nlohmann::json document;
  document["profile"]["info_cache"] = nlohmann::json::object();
  for (const std::string& profile : profiles) {
    document["profile"]["info_cache"][profile]["name"] = profile;
  }
  return document.dump();
}

}  // namespace tasselby
