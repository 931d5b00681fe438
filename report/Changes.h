#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/KeepList.h"
#include "report/ScratchFolder.h"

namespace tasselby {

/// What a run did, or would do, to the files of a home. Paths are absolute and without links.
struct Outcome {
  /// Files, links and folders that went, folders with all that was in them.
  std::set<std::string> removed;
  /// Stores that may have lost rows: each as it was, and a copy as it is afterwards.
  std::map<std::string, std::string> stores;
  /// Folders in which something could have gone.
  std::set<std::string> lookedAt;
};

/// Whether a run opens the file `name` by its path, and may change what it holds.
bool isStore(std::string_view name);

/// Something that goes.
struct Item {
  /// The path of a file or empty folder; the host of a cookie or row.
  std::string what;
  /// The name of a cookie or row, if it has one.
  std::string name;
  /// "cache", "tracking", "not kept", or "never kept" for what goes of every site.
  std::string why;
  /// The size of a file.
  std::uintmax_t bytes = 0;

  auto operator<=>(const Item&) const = default;
};

/// A place where something goes or could: a store of cookies or rows, a folder of files.
struct Place {
  std::string path;
  /// "cookies", "rows" or "files".
  std::string unit = "files";
  std::vector<Item> gone;
  /// What stays there: cookies or rows of a store, names in a folder.
  std::size_t stays = 0;
};

/// What `outcome` comes to, those places first that lose most, where the sites in `keepList` were
/// kept. Stores as they were are read from copies made in `scratch`.
std::vector<Place> changesOf(const Outcome& outcome, const KeepList& keepList,
                             const ScratchFolder& scratch);

/// All there is to say of a run.
struct RunResult {
  std::string browser;
  /// The home folder and the volume that it is on, without links in their paths.
  std::string home;
  std::string volume;
  KeepList kept;
  std::vector<Place> places;
  /// The text of its report; empty when it ended before.
  std::string report;
  /// What it ended hard at; empty when it did not.
  std::string endedAt;
};

}  // namespace tasselby
