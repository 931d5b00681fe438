// Which cookies of a browser have to go. Nothing is changed here.

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/Profiles.h"
#include "app/WorkerAppDelegate.h"
#include "cleaners/cookies/CookieStores.h"
#include "keep/WorkerExtras.h"
#include "platform/Paths.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// Counts the cookie `name` of `host` in `inventory`, and answers whether it has to go. One whose
/// host is no site is not counted and stays.
bool hasToGo(const std::string& host, std::string_view name,
             const std::vector<std::string>& catalogue, const KeepList& keepList,
             CookieInventory& inventory) {
  const std::optional<std::string> site = WorkerExtras::siteWithDomainName(host);
  if (!site) {
    return false;
  }
  const bool isKept = keepList.contains(site);
  // Deliberate: the keep list does not protect a site's tracking cookies.
  const bool isTracking = std::ranges::any_of(
      catalogue, [name](const std::string& entry) { return name.starts_with(entry); });
  // Deliberate: a tracking cookie of a site that is not kept counts twice, for being each.
  inventory.cookieCount += (isKept ? 0 : 1) + (isTracking ? 1 : 0);
  inventory.trackingCount += isTracking ? 1 : 0;
  return !isKept || isTracking;
}

}  // namespace

CookieInventory WorkerAppDelegate::cookies_keepCookies(const std::string& browser,
                                                       const KeepList& keepList) const {
  CookieInventory inventory;
  const std::vector<std::string> catalogue = defaultTrackingCookies();
  const Browser known = browserNamed(browser);
  // Deliberate: nothing for "WebKit". It has no store of its own, and Safari's is Safari's.
  if (known.family == Family::kSafari) {
    for (const HTTPCookie& cookie : platform_.cookieStorage.cookies()) {
      if (hasToGo(cookie.domain, cookie.name, catalogue, keepList, inventory)) {
        inventory.cookies.push_back(cookie);
      }
    }
  }
  const CookieStore* const store = cookieStoreOf(known.family);
  if (store == nullptr) {
    return inventory;
  }
  for (const std::string& profile : profilePaths(platform_.files, known)) {
    Sqlite database;
    openIfThere(platform_.files, database, join(profile, store->fileName));
    for (Row& row : database.executeQuery(store->select).value_or(RowList{})) {
      const std::string* host = row.text(store->hostColumn);
      // A name that is no text begins with no entry of the catalogue, as the empty one.
      const std::string* text = row.text(kCookieNameColumn);
      const std::string_view name = text != nullptr ? std::string_view(*text) : "";
      if (host != nullptr && hasToGo(*host, name, catalogue, keepList, inventory)) {
        inventory.rows.insert(std::move(row));
      }
    }
  }
  return inventory;
}

}  // namespace tasselby
