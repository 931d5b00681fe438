// Deletes the cookies that the inventory found. The counts are the inventory's own, whatever comes
// of the deletions.

#include <string>
#include <variant>
#include <vector>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "cleaners/cookies/CookieStores.h"
#include "platform/Paths.h"
#include "storage/RunStatement.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// Deletes the row that `record` came from, and any other with its host and identifying value. A
/// record without one of them is passed over.
void deleteRow(Sqlite& database, const CookieStore& store, const CookieRecord& record) {
  const Row& row = std::get<Row>(record);
  const std::string* host = row.text(store.hostColumn);
  const std::string* identifier = row.text(store.identifyingColumn);
  if (host != nullptr && identifier != nullptr) {
    runStatement(database, store.deleteFormat, {*host, *identifier});
  }
}

/// Deletes every record over one connection.
///
/// Deliberate: from every profile's database, since a record does not remember its own. A row of
/// another profile with the same host and number goes too.
void deleteMozillaRows(const FileManager& files, const std::string& path,
                       const std::vector<CookieRecord>& records) {
  Sqlite database;
  if (!openIfThere(files, database, path)) {
    return;
  }
  for (const CookieRecord& record : records) {
    deleteRow(database, kMozillaCookies, record);
  }
}

/// Deliberate: every record gets a connection of its own. A lock that another program holds for a
/// while costs only the records tried in that while.
void deleteChromiumRows(const FileManager& files, const std::string& path,
                        const std::vector<CookieRecord>& records) {
  // A list of profiles may be long, and most of it stale: each of those costs one look.
  if (!files.fileExistsAtPath(path)) {
    return;
  }
  Sqlite database;
  for (const CookieRecord& record : records) {
    if (openIfThere(files, database, path)) {
      deleteRow(database, kChromiumCookies, record);
    }
  }
}

}  // namespace

CookieCounts WorkerAppDelegate::removeCookies_keepCookies(const std::string& browser,
                                                          const KeepList& keepList) {
  const CookieInventory inventory = cookies_keepCookies(browser, keepList);
  const std::vector<CookieRecord>& records = inventory.removalList;
  const FileManager& files = platform_.files;
  if (browser == "Safari") {
    deleteSafariCookies(records);
  } else if (browser == "Firefox") {
    for (const std::string& path : firefoxDatabases(files, kMozillaCookies.fileName)) {
      deleteMozillaRows(files, path, records);
    }
  } else if (browser == "Camino") {
    deleteMozillaRows(files, join(files.expandTilde(kCaminoData), kMozillaCookies.fileName),
                      records);
  } else if (isChromiumLike(browser)) {
    const std::vector<std::string> folders = profileFolders(browser);
    deleteChromeChannelID_keep(browser, keepList);
    const std::string data = files.expandTilde(dataRoot(browser));
    for (const std::string& folder : folders) {
      deleteChromiumRows(files, join(join(data, folder), kChromiumCookies.fileName), records);
    }
  }
  return {inventory.cookieCount, inventory.trackingCount};
}

void WorkerAppDelegate::deleteSafariCookies(const std::vector<CookieRecord>& cookies) {
  HTTPCookieStorage& storage = platform_.cookieStorage;
  for (const CookieRecord& cookie : cookies) {
    storage.deleteCookie(std::get<HTTPCookie>(cookie));
  }
  // Whatever ends the run from here on, these deletions have been made.
  storage.synchronize();
}

}  // namespace tasselby
