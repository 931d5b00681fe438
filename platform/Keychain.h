#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tasselby {

/// Which saved passwords to look for and what to answer of them. There is deliberately no way to
/// ask for a password itself or for a reference to an item.
struct KeychainQuery {
  /// The kinds of item there are to look for.
  enum class ItemClass { kInternetPassword };

  /// How many of the items that match are answered: the first, or every one.
  enum class MatchLimit { kOne, kAll };

  /// The kind of item looked for.
  ItemClass itemClass = ItemClass::kInternetPassword;
  /// What the item's attribute has to be; any will do when there is no value.
  std::optional<std::string> service;
  std::optional<std::string> account;
  /// Whether the answer has items at all, or only a status.
  bool returnAttributes = false;
  /// How many are answered.
  MatchLimit matchLimit = MatchLimit::kOne;

  bool operator==(const KeychainQuery&) const = default;
};

/// The attributes of one item by their four-letter codes, as text. An attribute without a value is
/// missing.
using KeychainAttributes = std::map<std::string, std::string>;

/// The user's store of saved passwords, read-only.
class Keychain {
 public:
  /// The system's statuses of an answer: with items, and with none that match.
  static constexpr std::int32_t kSuccess = 0;
  static constexpr std::int32_t kItemNotFound = -25300;

  /// What a search comes back with.
  struct Answer {
    /// `kSuccess`, or why there are no items: `kItemNotFound`, or another status of the system.
    std::int32_t status = kItemNotFound;
    /// One dictionary per item, in the store's order; empty unless attributes were asked for.
    std::vector<KeychainAttributes> items;
  };

  virtual ~Keychain() = default;

  /// The items that match every value `query` gives. An item lacking the attribute does not match.
  virtual Answer copyMatching(const KeychainQuery& query) const = 0;
};

}  // namespace tasselby
