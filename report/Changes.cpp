#include "report/Changes.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <tuple>

#include "keep/WorkerExtras.h"
#include "report/Stores.h"

namespace tasselby {
namespace fs = std::filesystem;

namespace {

bool isBelowOne(const std::set<std::string>& removed, std::string path) {
  while (!path.empty() && !removed.contains(path)) {
    path.erase(path.rfind('/'));
  }
  return !path.empty();
}

const char* whyRow(const StoredRow& row, const KeepList& keepList) {
  if (!row.canBeKept) {
    return "never kept";
  }
  const bool kept = keepList.contains(WorkerExtras::siteWithDomainName(row.host));
  return kept && row.unit == "cookies" ? "tracking" : "not kept";
}

const char* whyFile(const fs::path& path) {
  const std::string name = path.filename().native();
  const std::string folder = path.parent_path().filename().native();
  if (path.native().find("/Library/Caches/") != std::string::npos || folder == "MediaCache" ||
      name.ends_with("Cache") || name.starts_with("Cache") || name == "ApplicationCache.db") {
    return "cache";
  }
  return name.ends_with(".plist") || folder == "Databases" || folder == "databases" ? "never kept"
                                                                                    : "not kept";
}

/// Adds the files that go with `path`; an empty folder is one itself.
void addFiles(Place& place, const std::string& path, const std::set<std::string>& removed) {
  const char* why = whyFile(path);
  std::error_code error;
  const auto add = [&](const fs::directory_entry& entry) {
    const bool isFile = entry.is_regular_file(error) && !entry.is_symlink(error);
    const std::uintmax_t bytes = isFile ? entry.file_size(error) : 0;
    place.gone.push_back({entry.path().native(), "", "", why, error ? 0 : bytes});
    place.bytes += place.gone.back().bytes;
  };
  const fs::directory_entry top(path, error);
  const std::size_t before = place.gone.size();
  if (fs::is_directory(top.symlink_status(error))) {
    fs::recursive_directory_iterator item(path, error);
    for (const fs::recursive_directory_iterator end; !error && item != end; item.increment(error)) {
      if (removed.contains(item->path().native())) {
        item.disable_recursion_pending();
      } else if (!fs::is_directory(item->symlink_status(error))) {
        add(*item);
      }
    }
  }
  if (place.gone.size() == before) {
    add(top);
  }
}

std::size_t namesLeft(const std::string& folder, const std::set<std::string>& removed) {
  std::size_t left = 0;
  std::error_code error;
  fs::directory_iterator item(isBelowOne(removed, folder) ? "" : folder, error);
  for (const fs::directory_iterator end; !error && item != end; item.increment(error)) {
    left += removed.contains(item->path().native()) ? 0 : 1;
  }
  return left;
}

std::map<std::string, Place> folderChanges(const std::set<std::string>& removed) {
  std::map<std::string, Place> places;
  for (const std::string& path : removed) {
    const std::string folder = path.substr(0, path.rfind('/'));
    Place& place = places[folder];
    if (place.unit.empty()) {
      place = {folder, "files", {}, 0, namesLeft(folder, removed)};
    }
    addFiles(place, path, removed);
  }
  return places;
}

Place storeChanges(const std::string& before, const std::string& after, const KeepList& keepList) {
  const std::vector<StoredRow> old = rowsOf(before);
  const std::vector<StoredRow> left = rowsOf(after);
  std::vector<StoredRow> gone;
  std::ranges::set_difference(old, left, std::back_inserter(gone));
  Place place;
  for (const StoredRow& row : gone) {
    place.unit = row.unit;
    place.gone.push_back({"", row.host, row.name, whyRow(row, keepList)});
  }
  place.stays = left.size();
  return place;
}

}  // namespace

Changes changesOf(const Outcome& outcome, const KeepList& keepList, const ScratchFolder& scratch) {
  Changes changes;
  std::set<std::string> lookedAt = outcome.lookedAt;
  for (auto& [folder, place] : folderChanges(outcome.removed)) {
    lookedAt.erase(folder);
    changes.places.push_back(std::move(place));
  }
  for (const auto& [path, after] : outcome.stores) {
    const std::string before = scratch.path() + "/before" + path;
    scratch.copyDatabase(path, before);
    Place place = storeChanges(before, after, keepList);
    if (!place.gone.empty() && !isBelowOne(outcome.removed, path)) {
      place.path = path;
      changes.places.push_back(std::move(place));
    } else {
      lookedAt.insert(path);
    }
  }
  std::ranges::sort(changes.places, [](const Place& one, const Place& other) {
    return std::tuple(other.gone.size(), other.bytes, one.path) <
           std::tuple(one.gone.size(), one.bytes, other.path);
  });
  changes.untouched = lookedAt.size();
  return changes;
}

}  // namespace tasselby
