#include "cleaners/cookies/PrefixMatcher.h"

#include <algorithm>
#include <cassert>

namespace tasselby {
namespace {

constexpr std::size_t kStartLength = 2;
constexpr std::size_t kStarts = 65536;

std::size_t startOf(std::string_view text) {
  return std::size_t{static_cast<std::uint8_t>(text[0])} << 8 | static_cast<std::uint8_t>(text[1]);
}

}  // namespace

PrefixMatcher::PrefixMatcher(const std::vector<std::string>& prefixes)
    : groupByStart_(kStarts), groups_(1) {
  for (const std::string& prefix : prefixes) {
    assert(prefix.size() >= kStartLength);
    std::uint8_t& group = groupByStart_[startOf(prefix)];
    if (group == 0) {
      assert(groups_.size() <= UINT8_MAX);
      group = static_cast<std::uint8_t>(groups_.size());
      groups_.emplace_back();
    }
    groups_[group].push_back(prefix);
  }
}

bool PrefixMatcher::matches(std::string_view name) const {
  if (name.size() < kStartLength) {
    return false;
  }
  const std::uint8_t group = groupByStart_[startOf(name)];
  return group != 0 && std::ranges::any_of(groups_[group], [name](const std::string& prefix) {
           return name.starts_with(prefix);
         });
}

}  // namespace tasselby
