#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

/// Tells whether names begin with any of a fixed set of prefixes, by looking at few of them.
class PrefixMatcher {
 public:
  /// `prefixes` have two bytes at least each and begin with at most 255 different pairs of bytes.
  explicit PrefixMatcher(const std::vector<std::string>& prefixes);

  /// Whether `name` begins with one of the prefixes, byte by byte. Which one makes no difference,
  /// so their order does not either.
  bool matches(std::string_view name) const;

 private:
  // By a name's first two bytes, the group of prefixes that begin so too; group 0 is empty.
  std::vector<std::uint8_t> groupByStart_;
  std::vector<std::vector<std::string>> groups_;
};

}  // namespace tasselby
