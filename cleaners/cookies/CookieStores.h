#pragma once

#include "app/Browsers.h"

namespace tasselby {

/// How a family of browsers keeps cookies in databases.
struct CookieStore {
  /// The database's name in a profile folder.
  const char* fileName;
  /// Answers all rows.
  const char* select;
  /// The column with the host a cookie belongs to.
  const char* hostColumn;
  /// The column that with the host tells a row from the others of its database.
  const char* identifyingColumn;
  /// Deletes a row by its host and its identifying value, in this order.
  const char* deleteFormat;
};

/// What Chromium's kind and Opera have.
inline constexpr CookieStore kChromiumCookies = {
    "Cookies", "SELECT * FROM cookies;", "host_key", "creation_utc",
    "DELETE FROM cookies WHERE host_key = '%@' AND creation_utc = '%@';"};

/// What Firefox and Camino have.
inline constexpr CookieStore kMozillaCookies = {
    "cookies.sqlite", "SELECT * FROM moz_cookies;", "host", "id",
    "DELETE FROM moz_cookies WHERE host = '%@' AND id = '%@';"};

/// How the browsers of `family` keep cookies; null for those that have no databases of them.
constexpr const CookieStore* cookieStoreOf(Family family) {
  return family == Family::kChromium  ? &kChromiumCookies
         : family == Family::kMozilla ? &kMozillaCookies
                                      : nullptr;
}

/// The column with a cookie's name, in every store.
inline constexpr const char* kCookieNameColumn = "name";

}  // namespace tasselby
