// Which cookies have to go: all at sites that are not kept, and tracking cookies wherever they are.

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "cleaners/cookies/CookieStores.h"
#include "cleaners/cookies/PrefixMatcher.h"
#include "keep/WorkerExtras.h"
#include "platform/Text.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// Hashes and compares the rows in a list of records by their places in it.
struct RowsByPlace {
  const std::vector<CookieRecord>& records;

  const Row& row(std::size_t place) const { return *std::get_if<Row>(&records[place]); }
  std::size_t operator()(std::size_t place) const { return row(place).hash(); }
  bool operator()(std::size_t a, std::size_t b) const { return row(a) == row(b); }
};

/// Takes cookies one by one and puts into the inventory those that have to go.
class StockTaker {
 public:
  StockTaker(const std::vector<std::string>& trackingNames, const KeepList& keepList)
      : trackingNames_(trackingNames), keepList_(keepList) {}

  // The set of rows refers to the inventory beside it.
  StockTaker(const StockTaker&) = delete;
  StockTaker& operator=(const StockTaker&) = delete;
  ~StockTaker() = default;

  /// Each cookie is itself, so none is there twice.
  void takeCookie(HTTPCookie cookie) {
    if (choose(cookie.domain, &cookie.name)) {
      inventory_.removalList.emplace_back(std::move(cookie));
    }
  }

  /// Deliberate: rows that are equal in every column count each and are listed once, whichever
  /// profiles they come from. A row does not remember its profile.
  void takeRow(Row row, const CookieTable& table) {
    const std::string* host = row.text(table.hostColumn);
    if (host == nullptr || !choose(*host, row.text(kCookieNameColumn))) {
      return;
    }
    std::vector<CookieRecord>& list = inventory_.removalList;
    list.emplace_back(std::move(row));
    if (!rows_.insert(list.size() - 1).second) {
      list.pop_back();
    }
  }

  void takeDatabase(const std::string& path, const CookieTable& table) {
    Sqlite database;
    if (!FileManager::fileExistsAtPath(path) || !database.open(path)) {
      return;
    }
    std::optional<RowList> rows = database.executeQuery(table.query);
    if (!rows) {
      return;
    }
    for (Row& row : *rows) {
      takeRow(std::move(row), table);
    }
  }

  CookieInventory finish() { return std::move(inventory_); }

 private:
  /// Counts the cookie and answers whether it has to go. A `name` of null is none of the tracking
  /// names.
  bool choose(const std::string& host, const std::string* name) {
    const std::optional<std::string> site = WorkerExtras::siteWithDomainName(host);
    if (!site) {
      return false;
    }
    const bool notKept = !keepList_.contains(site);
    // Deliberate: asked whether or not the site is kept. The keep list protects a site's ordinary
    // cookies only.
    const bool tracking = name != nullptr && trackingNames_.matches(*name);
    // Deliberate: a tracking cookie at a site that is not kept counts as two cookies.
    inventory_.cookieCount += (notKept ? 1 : 0) + (tracking ? 1 : 0);
    inventory_.trackingCount += tracking ? 1 : 0;
    return notKept || tracking;
  }

  const PrefixMatcher trackingNames_;
  const KeepList& keepList_;
  CookieInventory inventory_;
  std::unordered_set<std::size_t, RowsByPlace, RowsByPlace> rows_{
      0, RowsByPlace{inventory_.removalList}, RowsByPlace{inventory_.removalList}};
};

}  // namespace

CookieInventory WorkerAppDelegate::cookies_keepCookies(const std::string& browser,
                                                       const KeepList& keepList) const {
  StockTaker stock(defaultTrackingCookies(), keepList);
  const std::vector<std::string> folders = profileFolders(browser);
  const FileManager& files = platform_.files;
  // Deliberate: "WebKit" is no Safari here.
  if (browser == "Safari") {
    for (HTTPCookie& cookie : platform_.cookieStorage.cookies()) {
      stock.takeCookie(std::move(cookie));
    }
  } else if (isChromiumLike(browser)) {
    const std::string root = files.expandTilde(dataRoot(browser));
    for (const std::string& folder : folders) {
      stock.takeDatabase(join(join(root, folder), kChromiumCookies.file), kChromiumCookies);
    }
  } else if (browser == "Firefox") {
    for (const std::string& path : firefoxDatabases(files, kMozillaCookies.file)) {
      stock.takeDatabase(path, kMozillaCookies);
    }
  } else if (browser == "Camino") {
    const std::string path = join(files.expandTilde(kCaminoData), kMozillaCookies.file);
    stock.takeDatabase(path, kMozillaCookies);
  }
  return stock.finish();
}

}  // namespace tasselby
