#include "storage/Row.h"

#include <algorithm>
#include <functional>

namespace tasselby {
namespace {

std::size_t hashOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    return std::hash<std::string_view>()(*text);
  }
  if (const auto* number = std::get_if<double>(&value)) {
    // Both zeros are equal, and std::hash answers the same for them.
    return std::hash<double>()(*number);
  }
  if (const auto* bytes = std::get_if<Bytes>(&value)) {
    const auto* data = reinterpret_cast<const char*>(bytes->data());
    return std::hash<std::string_view>()({data, bytes->size()});
  }
  return 0;
}

}  // namespace

const Value* Row::find(std::string_view column) const {
  const auto found = std::find(names_->begin(), names_->end(), column);
  if (found == names_->end()) {
    return nullptr;
  }
  return &values_[static_cast<std::size_t>(found - names_->begin())];
}

const std::string* Row::text(std::string_view column) const {
  return std::get_if<std::string>(find(column));
}

bool Row::operator==(const Row& other) const {
  if (names_ == other.names_ || *names_ == *other.names_) {
    return values_ == other.values_;
  }
  return names_->size() == other.names_->size() &&
         std::ranges::all_of(*names_, [this, &other](const std::string& name) {
           const Value* theirs = other.find(name);
           return theirs != nullptr && *theirs == *find(name);
         });
}

std::size_t Row::hash() const {
  std::size_t hash = values_.size();
  for (const Value& value : values_) {
    // The order of the columns does not matter.
    hash += hashOf(value);
  }
  return hash;
}

}  // namespace tasselby
