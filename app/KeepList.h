#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tasselby {

/// The sites whose data stays, each once, in the order they were added.
class KeepList {
 public:
  KeepList() = default;
  /// A list of `sites` in their order.
  KeepList(std::initializer_list<std::string> sites);

  /// Appends `site` unless it is there. `source` says for a reader what keeps it.
  void add(const std::string& site, const std::string& source = "");

  /// Whether `site` is kept, in constant time. No site is never kept.
  bool contains(const std::optional<std::string>& site) const;

  /// All sites, in the order they were added.
  const std::vector<std::string>& sites() const { return sites_; }

  /// What keeps `site`, one that is kept, in the words with which it was first added.
  const std::string& sourceOf(const std::string& site) const { return sources_.at(site); }

 private:
  std::vector<std::string> sites_;
  std::unordered_map<std::string, std::string> sources_;
};

}  // namespace tasselby
