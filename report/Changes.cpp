#include "report/Changes.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include "keep/WorkerExtras.h"
#include "platform/BinaryCookies.h"
#include "platform/FileManager.h"
#include "platform/Paths.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

using Paths = std::set<std::string>;

constexpr std::array<std::string_view, 8> kStores = {
    "Cookies",      "cookies.sqlite",    "Cookies.binarycookies", "Origin Bound Certs",
    "Databases.db", "StorageTracker.db", "webappsstore.sqlite",   "signons.sqlite"};

constexpr const char* kCookies = "cookies";
constexpr const char* kRows = "rows";
constexpr const char* kNotKept = "not kept";
constexpr const char* kNeverKept = "never kept";

/// One table that a run deletes from, and why. Where it has no names, SQLite takes what is quoted
/// for one.
struct Table {
  const char* query;
  const char* unit;
  const char* why;
};

constexpr std::array<Table, 6> kTables = {{
    {"SELECT host_key AS host, CAST(\"name\" AS TEXT) AS name FROM cookies;", kCookies, kNotKept},
    {"SELECT host, CAST(\"name\" AS TEXT) AS name FROM moz_cookies;", kCookies, kNotKept},
    {"SELECT origin AS host FROM origin_bound_certs;", kRows, kNotKept},
    {"SELECT origin AS host FROM Databases;", kRows, kNeverKept},
    {"SELECT origin AS host FROM Origins;", kRows, kNotKept},
    {"SELECT scope AS host, CAST(\"key\" AS TEXT) AS name FROM webappsstore2;", kRows, kNotKept},
}};

/// Reads the cookies and rows in the store at `path`, sorted, and sets `unit`. SQLite may write
/// beside the store.
std::vector<Item> rowsOf(const std::string& path, const KeepList& keepList, std::string& unit) {
  std::vector<Item> rows;
  const auto add = [&](const char* what, const char* why, std::string host, std::string name) {
    const bool kept = keepList.contains(WorkerExtras::siteWithDomainName(host));
    rows.push_back({std::move(host), std::move(name), kept && what == kCookies ? "tracking" : why});
    unit = what;
  };
  const bool isCookieFile = path.ends_with(".binarycookies");
  const auto file =
      FileManager("").contentsOfFile(isCookieFile ? path : "", kFileLimit).value_or("");
  for (const BinaryCookie& cookie : parseBinaryCookies(file).cookies) {
    add(kCookies, kNotKept, std::string(cookie.domain), std::string(cookie.name));
  }
  Sqlite database;
  database.open(path);
  for (const Table& table : kTables) {
    for (const Row& row : database.executeQuery(table.query).value_or(RowList{})) {
      const std::string* host = row.text("host");
      const std::string* name = row.text("name");
      add(table.unit, table.why, host != nullptr ? *host : "", name != nullptr ? *name : "");
    }
  }
  std::ranges::sort(rows);
  return rows;
}

bool isGone(const Paths& removed, std::string path) {
  while (!path.empty() && !removed.contains(path)) {
    path = folderOf(path);
  }
  return !path.empty();
}

const char* whyFile(const fs::path& path) {
  const std::string name = path.filename().native();
  const std::string folder = path.parent_path().filename().native();
  if (path.native().find("/Library/Caches/") != std::string::npos || name.starts_with("Cache") ||
      name.ends_with("Cache") || name == "ApplicationCache.db") {
    return "cache";
  }
  const bool ofEverySite =
      name.ends_with(".plist") || folder == "Databases" || folder == "databases";
  return ofEverySite ? kNeverKept : kNotKept;
}

/// The files that go with `path`; a folder without any is one itself.
void addFiles(std::vector<Item>& gone, const std::string& path, const Paths& removed) {
  const std::size_t before = gone.size();
  const auto add = [&](const fs::directory_entry& entry) {
    std::error_code error;
    const bool isFile = fs::is_regular_file(entry.symlink_status(error));
    const std::uintmax_t bytes = isFile ? entry.file_size(error) : 0;
    gone.push_back({entry.path().native(), "", whyFile(path), error ? 0 : bytes});
  };
  std::error_code error;
  const fs::directory_entry top(path, error);
  if (fs::is_directory(top.symlink_status(error))) {
    fs::recursive_directory_iterator item(path, error);
    for (; !error && item != end(item); item.increment(error)) {
      if (removed.contains(item->path().native())) {
        item.disable_recursion_pending();
      } else if (!fs::is_directory(item->symlink_status(error))) {
        add(*item);
      }
    }
  }
  if (gone.size() == before) {
    add(top);
  }
}

std::size_t namesLeft(const std::string& folder, const Paths& removed) {
  auto names = FileManager("").contentsOfDirectoryAtPath(isGone(removed, folder) ? "" : folder);
  std::erase_if(names,
                [&](const std::string& name) { return removed.contains(join(folder, name)); });
  return names.size();
}

}  // namespace

bool isStore(std::string_view name) {
  return std::ranges::find(kStores, name) != kStores.end();
}

std::vector<Place> changesOf(const Outcome& outcome, const KeepList& keepList,
                             const ScratchFolder& scratch) {
  std::map<std::string, Place> byPath;
  for (const std::string& folder : outcome.lookedAt) {
    byPath[folder];
  }
  for (const std::string& path : outcome.removed) {
    addFiles(byPath[folderOf(path)].gone, path, outcome.removed);
  }
  for (auto& [folder, place] : byPath) {
    place.stays = place.gone.empty() ? 0 : namesLeft(folder, outcome.removed);
  }
  for (const auto& [path, after] : outcome.stores) {
    if (!isGone(outcome.removed, path)) {
      const std::string before = scratch.path() + "/before" + path;
      scratch.copyStore(path, before);
      Place& place = byPath[path];
      const std::vector<Item> left = rowsOf(after, keepList, place.unit);
      std::ranges::set_difference(rowsOf(before, keepList, place.unit), left,
                                  std::back_inserter(place.gone));
      place.stays = left.size();
    }
  }
  std::vector<Place> places;
  for (auto& [path, place] : byPath) {
    places.push_back(std::move(place));
    places.back().path = path;
  }
  std::ranges::stable_sort(places, [](const Place& one, const Place& other) {
    return one.gone.size() > other.gone.size();
  });
  return places;
}

}  // namespace tasselby
