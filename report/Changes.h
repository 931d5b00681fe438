#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "keep/KeepList.h"
#include "report/ScratchFolder.h"

namespace tasselby {

/// What a run did, or would do, to the files of a home. Paths are absolute and without links.
struct Outcome {
  /// Files, links and folders that went, folders with all that was in them.
  std::set<std::string> removed;
  /// Stores that rows were removed from, perhaps: each as it was, and its copy as it is afterwards.
  std::map<std::string, std::string> stores;
  /// Folders in which something could have gone.
  std::set<std::string> lookedAt;
};

/// Something that goes.
struct Item {
  /// A file or folder: its path. A cookie or row: its host and name, as far as it has them.
  std::string path;
  std::string host;
  std::string name;
  /// "cache", "tracking", "not kept", or "never kept" for what goes of every site.
  std::string why;
  std::uintmax_t bytes = 0;
};

/// A place that loses something: a store its cookies or rows, a folder its files.
struct Place {
  std::string path;
  /// "cookies", "rows" or "files".
  std::string unit;
  std::vector<Item> gone;
  /// The size of the files that go.
  std::uintmax_t bytes = 0;
  /// What stays there: cookies or rows of a store, names in a folder.
  std::size_t stays = 0;
};

struct Changes {
  /// The places, those that lose most first.
  std::vector<Place> places;
  /// How many other places were looked at.
  std::size_t untouched = 0;
};

/// What `outcome` comes to, with the sites in `keepList` kept. What was there before the run is
/// read from copies that are made in `scratch`.
Changes changesOf(const Outcome& outcome, const KeepList& keepList, const ScratchFolder& scratch);

}  // namespace tasselby
