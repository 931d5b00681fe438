#pragma once

namespace tasselby {

/// The cookie table of a family of browsers. Both families keep a cookie's name under the same
/// column.
struct CookieTable {
  /// The database file's name.
  const char* file;
  const char* query;
  /// Deletes one row: places for its host and its identity.
  const char* deletion;
  const char* hostColumn;
  /// An integer that tells a host's rows apart.
  const char* identityColumn;
};

inline constexpr const char* kCookieNameColumn = "name";

/// Google Chrome's, Chromium's and Opera's.
inline constexpr CookieTable kChromiumCookies = {
    "Cookies", "SELECT * FROM cookies;",
    "DELETE FROM cookies WHERE host_key = '%@' AND creation_utc = '%@';", "host_key",
    "creation_utc"};

/// Firefox's and Camino's.
inline constexpr CookieTable kMozillaCookies = {
    "cookies.sqlite", "SELECT * FROM moz_cookies;",
    "DELETE FROM moz_cookies WHERE host = '%@' AND id = '%@';", "host", "id"};

}  // namespace tasselby
