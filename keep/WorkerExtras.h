#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Keychain.h"

namespace tasselby {

/// Why a keychain search failed. There is no further information.
struct KeychainError {
  std::string domain;
  /// The keychain's own status.
  std::int32_t code = 0;
};

/// Site names, and the search for saved passwords.
class WorkerExtras {
 public:
  /// The attribute dictionaries of the items found; no value after a failed search.
  using Accounts = std::optional<std::vector<KeychainAttributes>>;

  WorkerExtras() = delete;

  /// The site that the host name `domain` belongs to: lower case, without one leading "." and one
  /// "www.", cut to its last two labels when the last has three characters, else to three. No value
  /// for no host name, for a "file:///" address and for text that begins with "^".
  static std::optional<std::string> siteWithDomainName(const std::optional<std::string>& domain);

  /// The attributes of every internet password in `keychain`. A failed search fills `error`, where
  /// one is given.
  static Accounts allAccounts(const Keychain& keychain) { return allAccounts(keychain, nullptr); }
  static Accounts allAccounts(const Keychain& keychain, KeychainError* error) {
    return accountsForService_error(keychain, std::nullopt, error);
  }

  /// The same, for `service` only where one is given.
  static Accounts accountsForService(const Keychain& keychain,
                                     const std::optional<std::string>& service) {
    return accountsForService_error(keychain, service, nullptr);
  }
  static Accounts accountsForService_error(const Keychain& keychain,
                                           const std::optional<std::string>& service,
                                           KeychainError* error);

  /// A search for internet passwords with the values given, for one item and no attributes yet.
  static KeychainQuery _queryForService_account(const std::optional<std::string>& service,
                                                const std::optional<std::string>& account);
};

}  // namespace tasselby
