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

/// `hash` with every bit spread over all others.
std::size_t mixed(std::uint64_t hash) {
  hash = (hash ^ (hash >> 32)) * 0x9E3779B97F4A7C15U;
  return static_cast<std::size_t>(hash ^ (hash >> 29));
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
  // A sum, as the order of the columns does not matter. Each value is bound to its column first:
  // rows that hold the same values in other columns must not all have one hash.
  std::size_t hash = values_.size();
  for (std::size_t i = 0; i < values_.size(); ++i) {
    hash += mixed(hashOf(values_[i]) + mixed(std::hash<std::string>()((*names_)[i])));
  }
  return hash;
}

}  // namespace tasselby
