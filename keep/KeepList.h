#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace tasselby {

/// The sites whose data stays, each once, in the order they were added.
class KeepList {
 public:
  KeepList() = default;
  /// A list of `sites` in their order.
  KeepList(std::initializer_list<std::string> sites);

  /// Appends `site` unless it is there.
  void add(const std::string& site);

  /// Whether `site` is kept, in constant time. No site is never kept.
  bool contains(const std::optional<std::string>& site) const;

  /// All sites, in the order they were added.
  const std::vector<std::string>& sites() const { return sites_; }

 private:
  std::vector<std::string> sites_;
  std::unordered_set<std::string> members_;
};

}  // namespace tasselby
