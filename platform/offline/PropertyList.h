#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tasselby {

/// A larger property list is none that anybody's preferences need.
inline constexpr std::size_t kPropertyListLimit = std::size_t{1} << 20;

/// A property list, binary or XML, as far as booleans go.
///
/// A value is true when it is the boolean true, a number other than 0, or a string that
/// `boolValueOfString` calls true. Any other is false, whatever its type.
class PropertyList {
 public:
  /// Reads the list in `bytes`, which need not outlive it. A list that is damaged, larger than
  /// `kPropertyListLimit`, too deep or too large once its references are followed is no list:
  /// it has no keys, and its own value is false.
  explicit PropertyList(std::string_view bytes);

  /// The value of the root dictionary under `key`. No value when it does not have the key, or the
  /// root is no dictionary.
  std::optional<bool> boolForKey(const std::string& key) const;

  /// The value of the root.
  bool boolValue() const;

 private:
  struct Free {
    void operator()(void* root) const;
  };
  std::unique_ptr<void, Free> root_;
};

/// Whether `text` stands for true: behind spaces and tabs "Y", "y", "T" or "t", or else a sign, if
/// any, zeros, if any, and a digit other than 0. What follows does not matter.
bool boolValueOfString(std::string_view text);

}  // namespace tasselby
