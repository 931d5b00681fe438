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

/// Counts cookies and collects those that have to go.
class Inventory {
 public:
  explicit Inventory(const KeepList& keepList) : keepList_(keepList) {}

  /// Takes in a platform cookie.
  void take(const HTTPCookie& cookie) {
    if (hasToGo(cookie.domain, cookie.name)) {
      result.cookies.push_back(cookie);
    }
  }

  /// Takes in the rows of the database at `path`, if it can be read; equal ones once.
  void takeRows(const FileManager& files, const std::string& path, const CookieStore& store) {
    Sqlite database;
    if (!openIfThere(files, database, path)) {
      return;
    }
    for (Row& row : database.executeQuery(store.select).value_or(RowList{})) {
      const std::string* host = row.text(store.hostColumn);
      const std::string* name = row.text(kCookieNameColumn);
      // A name that is no text begins with no entry of the catalogue, as the empty one.
      if (host != nullptr && hasToGo(*host, name != nullptr ? std::string_view(*name) : "")) {
        result.rows.insert(std::move(row));
      }
    }
  }

  CookieInventory result;

 private:
  /// Counts the cookie `name` of `host`, and answers whether it has to go. One whose host is no
  /// site is not counted and stays.
  bool hasToGo(const std::string& host, std::string_view name) {
    const std::optional<std::string> site = WorkerExtras::siteWithDomainName(host);
    if (!site) {
      return false;
    }
    const bool isKept = keepList_.contains(site);
    // Deliberate: the keep list does not protect a site's tracking cookies.
    const bool isTracking = std::ranges::any_of(
        catalogue_, [name](const std::string& entry) { return name.starts_with(entry); });
    // Deliberate: a tracking cookie of a site that is not kept counts twice, for being each.
    result.cookieCount += (isKept ? 0 : 1) + (isTracking ? 1 : 0);
    result.trackingCount += isTracking ? 1 : 0;
    return !isKept || isTracking;
  }

  const KeepList& keepList_;
  std::vector<std::string> catalogue_ = WorkerAppDelegate::defaultTrackingCookies();
};

}  // namespace

CookieInventory WorkerAppDelegate::cookies_keepCookies(const std::string& browser,
                                                       const KeepList& keepList) const {
  Inventory inventory(keepList);
  const Browser known = browserNamed(browser);
  // Deliberate: nothing for "WebKit". It has no store of its own, and Safari's is Safari's.
  if (known.family == Family::kSafari) {
    std::ranges::for_each(platform_.cookieStorage.cookies(),
                          [&](const HTTPCookie& cookie) { inventory.take(cookie); });
  } else if (const CookieStore* store = cookieStoreOf(known.family)) {
    for (const std::string& profile : profilePaths(platform_.files, known)) {
      inventory.takeRows(platform_.files, join(profile, store->fileName), *store);
    }
  }
  return std::move(inventory.result);
}

}  // namespace tasselby
