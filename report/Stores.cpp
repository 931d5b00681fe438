#include "report/Stores.h"

#include <algorithm>
#include <array>

#include "platform/BinaryCookies.h"
#include "platform/FileManager.h"
#include "platform/Text.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

constexpr std::array<std::string_view, 8> kStores = {
    "Cookies",      "cookies.sqlite",    "Cookies.binarycookies", "Origin Bound Certs",
    "Databases.db", "StorageTracker.db", "webappsstore.sqlite",   "signons.sqlite"};

/// One table that a run deletes from.
struct Table {
  const char* name;
  const char* hostColumn;
  const char* nameColumn;
  std::string_view unit;
  bool canBeKept;
};

constexpr std::array<Table, 7> kTables = {{
    {"cookies", "host_key", "name", "cookies", true},
    {"moz_cookies", "host", "name", "cookies", true},
    {"origin_bound_certs", "origin", "''", "rows", true},
    {"Databases", "origin", "''", "rows", false},
    {"Origins", "origin", "''", "rows", true},
    {"webappsstore2", "scope", "key", "rows", true},
    // Never deleted from, and asked for what keeps a site.
    {"moz_logins", "hostname", "''", "rows", true},
}};

constexpr std::size_t kCookieFileLimit = std::size_t{64} << 20;

void addRows(std::vector<StoredRow>& rows, Sqlite& database, const Table& table) {
  auto found =
      database.executeQuery(formatted("SELECT %@ AS host, CAST(%@ AS TEXT) AS name FROM %@;",
                                      {table.hostColumn, table.nameColumn, table.name}));
  if (!found) {
    found = database.executeQuery(
        formatted("SELECT %@ AS host FROM %@;", {table.hostColumn, table.name}));
  }
  for (const Row& row : found.value_or(RowList{})) {
    const std::string* host = row.text("host");
    const std::string* name = row.text("name");
    rows.push_back(
        {host != nullptr ? *host : "", name != nullptr ? *name : "", table.unit, table.canBeKept});
  }
}

}  // namespace

bool isStore(std::string_view name) {
  return std::ranges::find(kStores, name) != kStores.end();
}

std::vector<StoredRow> rowsOf(const std::string& path) {
  std::vector<StoredRow> rows;
  Sqlite database;
  const auto file = FileManager("").contentsOfFile(path, kCookieFileLimit);
  if (file && file->starts_with("cook")) {
    for (const BinaryCookie& cookie : parseBinaryCookies(*file).cookies) {
      rows.push_back({std::string(cookie.domain), std::string(cookie.name), "cookies"});
    }
  } else if (file && database.open(path)) {
    for (const Table& table : kTables) {
      addRows(rows, database, table);
    }
  }
  std::ranges::sort(rows);
  return rows;
}

}  // namespace tasselby
