#include "cleaners/cookies/TrackingNames.h"

#include <algorithm>
#include <cstdint>

namespace tasselby {

TrackingNames::TrackingNames(const std::vector<std::string>& catalogue) {
  for (const std::string& entry : catalogue) {
    byFirstByte_.at(static_cast<std::uint8_t>(entry.front())).push_back(entry);
  }
}

bool TrackingNames::match(std::string_view name) const {
  if (name.empty()) {
    return false;
  }
  const std::vector<std::string>& entries = byFirstByte_[static_cast<std::uint8_t>(name.front())];
  return std::ranges::any_of(entries,
                             [name](const std::string& entry) { return name.starts_with(entry); });
}

}  // namespace tasselby
