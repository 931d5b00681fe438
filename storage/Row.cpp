#include "storage/Row.h"

#include <algorithm>
#include <tuple>

namespace tasselby {

const Value* Row::find(std::string_view column) const {
  const auto found = std::ranges::find(*names_, column);
  return found == names_->end() ? nullptr
                                : &values_[static_cast<std::size_t>(found - names_->begin())];
}

const std::string* Row::text(std::string_view column) const {
  return std::get_if<std::string>(find(column));
}

bool Row::operator==(const Row& other) const {
  return std::tie(*names_, values_) == std::tie(*other.names_, other.values_);
}

bool Row::operator<(const Row& other) const {
  return std::tie(*names_, values_) < std::tie(*other.names_, other.values_);
}

}  // namespace tasselby
