// Deletes from a browser's stores the cookies that have to go, one statement for each. What comes
// of a statement is not looked at.

#include <optional>
#include <string>
#include <vector>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "cleaners/cookies/CookieStores.h"
#include "platform/Text.h"
#include "storage/SqlText.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// The statement that deletes `record` from `table`. None when its host or identity is no text: no
/// row could be told by that.
std::optional<std::string> deletionOf(const CookieRecord& record, const CookieTable& table) {
  const Row* row = std::get_if<Row>(&record);
  const std::string* host = row == nullptr ? nullptr : row->text(table.hostColumn);
  const std::string* identity = row == nullptr ? nullptr : row->text(table.identityColumn);
  if (host == nullptr || identity == nullptr) {
    return std::nullopt;
  }
  return formatted(table.deletion, {doubledQuotes(*host), doubledQuotes(*identity)});
}

/// Runs `sql` in the database at `path`, if there is one, on a connection of its own.
void runOnce(const std::string& path, const std::string& sql) {
  Sqlite database;
  if (FileManager::fileExistsAtPath(path) && database.open(path)) {
    database.executeQuery(sql);
  }
}

/// Deletes `records` on one connection to the database at `path`, which is opened even for none.
void deleteFromMozilla(const std::string& path, const std::vector<CookieRecord>& records) {
  Sqlite database;
  if (!database.open(path)) {
    return;
  }
  for (const CookieRecord& record : records) {
    if (const auto sql = deletionOf(record, kMozillaCookies)) {
      database.executeQuery(*sql);
    }
  }
}

/// Deliberate: the file is looked for, opened and closed for every record anew, where once would
/// do.
void deleteFromChromium(const std::string& path, const std::vector<CookieRecord>& records) {
  for (const CookieRecord& record : records) {
    if (const auto sql = deletionOf(record, kChromiumCookies)) {
      runOnce(path, *sql);
    }
  }
}

}  // namespace

CookieCounts WorkerAppDelegate::removeCookies_keepCookies(const std::string& browser,
                                                          const KeepList& keepList) {
  const CookieInventory inventory = cookies_keepCookies(browser, keepList);
  const CookieCounts counts = {inventory.cookieCount, inventory.trackingCount};
  const std::vector<CookieRecord>& records = inventory.removalList;
  const FileManager& files = platform_.files;
  // Deliberate: every record goes to every profile's database. One with the same host and identity
  // goes too where it was not listed.
  if (browser == "Safari") {
    deleteSafariCookies(records);
  } else if (browser == "Firefox") {
    for (const std::string& path : firefoxDatabases(files, kMozillaCookies.file)) {
      deleteFromMozilla(path, records);
    }
  } else if (browser == "Camino") {
    const std::string path = join(files.expandTilde(kCaminoData), kMozillaCookies.file);
    if (FileManager::fileExistsAtPath(path)) {
      deleteFromMozilla(path, records);
    }
  } else if (isChromiumLike(browser)) {
    const std::vector<std::string> folders = profileFolders(browser);
    deleteChromeChannelID_keep(browser, keepList);
    const std::string root = files.expandTilde(dataRoot(browser));
    for (const std::string& folder : folders) {
      deleteFromChromium(join(join(root, folder), kChromiumCookies.file), records);
    }
  }
  return counts;
}

void WorkerAppDelegate::deleteSafariCookies(const std::vector<CookieRecord>& cookies) {
  for (const CookieRecord& record : cookies) {
    if (const auto* cookie = std::get_if<HTTPCookie>(&record)) {
      platform_.cookieStorage.deleteCookie(*cookie);
    }
  }
  // Else the storage might keep them for later, and the process might not live to see it.
  platform_.cookieStorage.synchronize();
}

}  // namespace tasselby
