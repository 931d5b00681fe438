// Which cookies of a browser have to go. Nothing is changed here.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "cleaners/cookies/CookieStores.h"
#include "cleaners/cookies/TrackingNames.h"
#include "keep/WorkerExtras.h"
#include "platform/Paths.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// Collects the records that have to go and counts them.
class Inventory {
 public:
  Inventory(const FileManager& files, const std::vector<std::string>& catalogue,
            const KeepList& keepList)
      : files_(files), tracking_(catalogue), keepList_(keepList) {}

  /// Takes in `record`. One whose host is no site is neither counted nor removed.
  void classify(CookieRecord record, const std::string& host, std::string_view name) {
    const std::optional<std::string> site = WorkerExtras::siteWithDomainName(host);
    if (!site) {
      return;
    }
    const bool isKept = keepList_.contains(site);
    // Deliberate: the keep list does not protect a site's tracking cookies.
    const bool isTracking = tracking_.match(name);
    // Deliberate: a tracking cookie of a site that is not kept counts twice.
    result_.cookieCount += (isKept ? 0 : 1) + (isTracking ? 1 : 0);
    result_.trackingCount += isTracking ? 1 : 0;
    if (!isKept || isTracking) {
      result_.removalList.push_back(std::move(record));
    }
  }

  /// Takes in every row of the database at `path`, if it can be read.
  void classifyDatabase(const std::string& path, const CookieStore& store) {
    Sqlite database;
    if (!openIfThere(files_, database, path)) {
      return;
    }
    for (Row& row : database.executeQuery(store.select).value_or(RowList{})) {
      // Neither text dies with the row that is moved on: its values stay where they are.
      const std::string* host = row.text(store.hostColumn);
      const std::string* name = row.text(kCookieNameColumn);
      if (host != nullptr) {
        classify(std::move(row), *host, name != nullptr ? std::string_view(*name) : "");
      }
    }
  }

  /// The result, each record once. Nothing may be taken in afterwards.
  CookieInventory finish();

 private:
  const FileManager& files_;
  TrackingNames tracking_;
  const KeepList& keepList_;
  CookieInventory result_;
};

std::size_t hashOf(const CookieRecord* record) {
  if (const auto* row = std::get_if<Row>(record)) {
    return row->hash();
  }
  return std::hash<std::uint64_t>{}(std::get<HTTPCookie>(*record).identity);
}

/// A platform cookie is itself; rows are the same when they are equal in every column.
bool isSame(const CookieRecord* one, const CookieRecord* other) {
  const auto* row = std::get_if<Row>(one);
  const auto* otherRow = std::get_if<Row>(other);
  if (row != nullptr && otherRow != nullptr) {
    return *row == *otherRow;
  }
  return row == otherRow &&
         std::get<HTTPCookie>(*one).identity == std::get<HTTPCookie>(*other).identity;
}

CookieInventory Inventory::finish() {
  std::unordered_set<const CookieRecord*, decltype(&hashOf), decltype(&isSame)> seen(
      result_.removalList.size(), hashOf, isSame);
  std::vector<CookieRecord> once;
  std::vector<bool> isFirst;
  isFirst.reserve(result_.removalList.size());
  for (const CookieRecord& record : result_.removalList) {
    isFirst.push_back(seen.insert(&record).second);
  }
  once.reserve(seen.size());
  for (std::size_t i = 0; i < isFirst.size(); ++i) {
    if (isFirst[i]) {
      once.push_back(std::move(result_.removalList[i]));
    }
  }
  result_.removalList = std::move(once);
  return std::move(result_);
}

}  // namespace

CookieInventory WorkerAppDelegate::cookies_keepCookies(const std::string& browser,
                                                       const KeepList& keepList) const {
  const FileManager& files = platform_.files;
  Inventory inventory(files, defaultTrackingCookies(), keepList);
  // Deliberate: "WebKit" has no store here.
  if (browser == "Safari") {
    for (const HTTPCookie& cookie : platform_.cookieStorage.cookies()) {
      inventory.classify(cookie, cookie.domain, cookie.name);
    }
  } else if (isChromiumLike(browser)) {
    const std::string data = files.expandTilde(dataRoot(browser));
    for (const std::string& folder : profileFolders(browser)) {
      inventory.classifyDatabase(join(join(data, folder), kChromiumCookies.fileName),
                                 kChromiumCookies);
    }
  } else if (browser == "Firefox") {
    for (const std::string& path : firefoxDatabases(files, kMozillaCookies.fileName)) {
      inventory.classifyDatabase(path, kMozillaCookies);
    }
  } else if (browser == "Camino") {
    inventory.classifyDatabase(join(files.expandTilde(kCaminoData), kMozillaCookies.fileName),
                               kMozillaCookies);
  }
  return inventory.finish();
}

}  // namespace tasselby
