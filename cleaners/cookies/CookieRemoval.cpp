// Deletes the cookies that the inventory found. The counts are the inventory's own, whatever comes
// of the deletions.

#include <set>
#include <string>
#include <vector>

#include "app/Profiles.h"
#include "app/WorkerAppDelegate.h"
#include "cleaners/cookies/CookieStores.h"
#include "platform/Paths.h"
#include "storage/RunStatement.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// Deletes `row`, and any other with its host and identifying value. One without either is passed
/// over.
void deleteRow(Sqlite& database, const CookieStore& store, const Row& row) {
  const std::string* host = row.text(store.hostColumn);
  const std::string* identifier = row.text(store.identifyingColumn);
  if (host != nullptr && identifier != nullptr) {
    runStatement(database, store.deleteFormat, {*host, *identifier});
  }
}

/// Deletes all `rows` over one connection.
///
/// Deliberate: from every profile's database, since a row does not remember its own. One of
/// another profile with the same host and number goes too.
void deleteMozillaRows(const FileManager& files, const std::string& path,
                       const std::set<Row>& rows) {
  Sqlite database;
  if (!openIfThere(files, database, path)) {
    return;
  }
  for (const Row& row : rows) {
    deleteRow(database, kMozillaCookies, row);
  }
}

/// Deliberate: every row gets a connection of its own. A lock that another program holds for a
/// while costs only the rows tried in that while.
void deleteChromiumRows(const FileManager& files, const std::string& path,
                        const std::set<Row>& rows) {
  // A list of profiles may be long, and most of it stale: each of those costs one look.
  if (!files.fileExistsAtPath(path)) {
    return;
  }
  Sqlite database;
  for (const Row& row : rows) {
    if (openIfThere(files, database, path)) {
      deleteRow(database, kChromiumCookies, row);
    }
  }
}

}  // namespace

CookieCounts WorkerAppDelegate::removeCookies_keepCookies(const std::string& browser,
                                                          const KeepList& keepList) {
  const CookieInventory inventory = cookies_keepCookies(browser, keepList);
  const Browser known = browserNamed(browser);
  const FileManager& files = platform_.files;
  if (known.family == Family::kSafari) {
    deleteSafariCookies(inventory.cookies);
  } else if (known.family == Family::kMozilla) {
    for (const std::string& profile : profilePaths(files, known)) {
      deleteMozillaRows(files, join(profile, kMozillaCookies.fileName), inventory.rows);
    }
  } else if (known.family == Family::kChromium) {
    deleteChromeChannelID_keep(browser, keepList);
    for (const std::string& profile : profilePaths(files, known)) {
      deleteChromiumRows(files, join(profile, kChromiumCookies.fileName), inventory.rows);
    }
  }
  return {inventory.cookieCount, inventory.trackingCount};
}

void WorkerAppDelegate::deleteSafariCookies(const std::vector<HTTPCookie>& cookies) {
  for (const HTTPCookie& cookie : cookies) {
    platform_.cookieStorage.deleteCookie(cookie);
  }
  // Whatever ends the run from here on, these deletions have been made.
  platform_.cookieStorage.synchronize();
}

}  // namespace tasselby
