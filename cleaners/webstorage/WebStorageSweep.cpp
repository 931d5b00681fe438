// Web databases and local storage, by browser, and the browsers' own indexes of them.

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <variant>
#include <vector>

#include "app/Profiles.h"
#include "app/WorkerAppDelegate.h"
#include "platform/Paths.h"
#include "storage/Disposal.h"
#include "storage/RunStatement.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

using Names = std::vector<std::string>;

constexpr const char* kTracker = "StorageTracker.db";

constexpr const char* kDeleteDatabases = "DELETE FROM Databases WHERE origin IN ('%@');";
constexpr const char* kDeleteOrigins = "DELETE FROM Origins WHERE origin IN ('%@');";
constexpr const char* kDeleteOtherOrigins = "DELETE FROM Origins WHERE origin NOT IN ('%@');";
constexpr const char* kDeleteScopes = "DELETE FROM webappsstore2 WHERE scope IN ('%@');";

/// What every step of a sweep needs. Each step answers how many items it chose.
struct Sweep {
  const FileManager& files;
  const KeepList& keepList;
  Browser browser;
  bool secure;
};

/// Disposes of the items of `folder` that an index names. An index is somebody's data: a name that
/// leads out of the folder is passed over.
void disposeOfOrigins(const Sweep& sweep, const std::string& folder, const Names& origins) {
  for (const std::string& origin : origins) {
    if (staysBelow(origin)) {
      dispose(sweep.files, join(folder, origin), sweep.secure);
    }
  }
}

Names chosenOrigins(const Sweep& sweep, Sqlite& index) {
  Names origins;
  for (const Row& row : index.executeQuery("SELECT origin FROM Databases;").value_or(RowList{})) {
    // Every value of the row: how the column is called is up to the schema. No text is no origin.
    for (const Value& value : row.values()) {
      if (const auto* origin = std::get_if<std::string>(&value)) {
        origins.push_back(*origin);
      }
    }
  }
  return WorkerAppDelegate::databaseArray_keep(origins, sweep.keepList);
}

std::int64_t sweepDatabases(const Sweep& sweep, const std::string& folder) {
  Sqlite index;
  if (!openIfThere(sweep.files, index, join(folder, "Databases.db"))) {
    return 0;
  }
  const Names chosen = chosenOrigins(sweep, index);
  // Deliberate: for Safari the files before two tables, and for the others one table before the
  // files. Of a run that dies in between Safari's next finds the rest, and theirs does not.
  if (sweep.browser.family == Family::kSafari) {
    disposeOfOrigins(sweep, folder, chosen);
    runListStatement(index, kDeleteDatabases, chosen);
    runListStatement(index, kDeleteOrigins, chosen);
  } else {
    runListStatement(index, kDeleteDatabases, chosen);
    disposeOfOrigins(sweep, folder, chosen);
  }
  return std::ssize(chosen);
}

std::int64_t sweepFiles(const Sweep& sweep, const std::string& folder) {
  const Names chosen = WorkerAppDelegate::localStorageArray_browser_keep(
      sweep.files.contentsOfDirectoryAtPath(folder), std::string(sweep.browser.name),
      sweep.keepList);
  for (const std::string& name : chosen) {
    const std::string path = join(folder, name);
    dispose(sweep.files, path, sweep.secure);
    if (sweep.browser.family == Family::kChromium) {
      dispose(sweep.files, path + "-journal", sweep.secure);
    }
  }
  return std::ssize(chosen);
}

/// Deletes the tracker's rows for files that `folder` no longer has.
///
/// Deliberate: by naming what is left, not what was removed. A row goes whenever its file is
/// missing for any reason, and stays with a file that could not be wiped.
void pruneTracker(const FileManager& files, const std::string& folder) {
  Sqlite tracker;
  if (!openIfThere(files, tracker, join(folder, kTracker))) {
    return;
  }
  Names left = files.contentsOfDirectoryAtPath(folder);
  // Deliberate: a listing without the tracker itself is none. The folder could not be read just
  // now, and no row goes for that.
  if (std::ranges::find(left, kTracker) == left.end()) {
    return;
  }
  for (std::string& name : left) {
    name.resize(withoutExtension(name).size());
  }
  runListStatement(tracker, kDeleteOtherOrigins, left);
}

/// Sweeps one "webappsstore.sqlite", whose scopes join those already in `scopes`.
std::int64_t sweepScopes(const Sweep& sweep, const std::string& path, Names& scopes) {
  Sqlite store;
  if (!openIfThere(sweep.files, store, path)) {
    return 0;
  }
  for (const Row& row : store.executeQuery("SELECT * FROM webappsstore2;").value_or(RowList{})) {
    if (const std::string* scope = row.text("scope")) {
      scopes.push_back(*scope);
    }
  }
  const Names chosen = WorkerAppDelegate::mozillaLocalStorage_keep(scopes, sweep.keepList);
  runListStatement(store, kDeleteScopes, chosen);
  return std::ssize(chosen);
}

}  // namespace

std::int64_t WorkerAppDelegate::removeNonFavLocalStorage_keep(const std::string& browser,
                                                              const KeepList& keepList) {
  const FileManager& files = platform_.files;
  const Sweep sweep{files, keepList, browserNamed(browser),
                    platform_.userDefaults.boolForKey("secureDeleteData")};
  const Family family = sweep.browser.family;
  std::int64_t count = 0;
  if (family == Family::kSafari) {
    const std::string data = files.expandTilde(sweep.browser.dataRoot);
    count += sweepDatabases(sweep, join(data, "Databases"));
    count += sweepFiles(sweep, join(data, "LocalStorage"));
    pruneTracker(files, join(data, "LocalStorage"));
  } else if (family == Family::kChromium) {
    for (const std::string& profile : profilePaths(files, sweep.browser)) {
      count += sweepDatabases(sweep, join(profile, "databases"));
      count += sweepFiles(sweep, join(profile, "Local Storage"));
    }
  } else if (family == Family::kMozilla) {
    // Deliberate: one list for all profiles. What an earlier profile held is offered, deleted and
    // counted again with every later one.
    Names scopes;
    for (const std::string& profile : profilePaths(files, sweep.browser)) {
      count += sweepScopes(sweep, join(profile, "webappsstore.sqlite"), scopes);
    }
  }
  return count;
}

}  // namespace tasselby
