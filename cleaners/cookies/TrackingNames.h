#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

/// Finds names that begin with an entry of a catalogue, with the result of trying the entries one
/// after another but looking only at those that share the name's first byte.
class TrackingNames {
 public:
  /// Copies `catalogue`, whose entries are not empty.
  explicit TrackingNames(const std::vector<std::string>& catalogue);

  /// Whether `name` begins with an entry. Case matters, and the empty name begins with none.
  bool match(std::string_view name) const;

 private:
  std::array<std::vector<std::string>, 256> byFirstByte_;
};

}  // namespace tasselby
