#pragma once

#include <string>

namespace tasselby {

/// The application's own resources.
class Bundle {
 public:
  virtual ~Bundle() = default;

  /// The text under `key` in the main localization table. A missing text, or an empty `value` for
  /// one, answers `key` itself.
  virtual std::string localizedString(const std::string& key, const std::string& value) const = 0;
};

}  // namespace tasselby
