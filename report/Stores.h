#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

/// A cookie or row that a run can remove.
struct StoredRow {
  std::string host;
  /// Empty where it has none.
  std::string name;
  /// "cookies" or "rows".
  std::string_view unit;
  /// Whether the keep list has a say in whether it goes.
  bool canBeKept = true;

  auto operator<=>(const StoredRow&) const = default;
};

/// Whether a run opens the file `name` by its path, and may change what it holds.
bool isStore(std::string_view name);

/// The cookies and rows in the store at `path`, sorted. SQLite may write beside it. None in what is
/// no store.
std::vector<StoredRow> rowsOf(const std::string& path);

}  // namespace tasselby
