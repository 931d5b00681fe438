// The search for saved passwords: attributes alone, never a password.

#include <utility>

#include "keep/WorkerExtras.h"

namespace tasselby {
namespace {

constexpr const char* kErrorDomain = "com.marrowgatestudios.Tasselby";

}  // namespace

WorkerExtras::Accounts WorkerExtras::accountsForService_error(
    const Keychain& keychain, const std::optional<std::string>& service, KeychainError* error) {
  KeychainQuery query = _queryForService_account(service, std::nullopt);
  query.returnAttributes = true;
  query.matchLimit = KeychainQuery::MatchLimit::kAll;
  Keychain::Answer answer = keychain.copyMatching(query);
  if (answer.status == Keychain::kSuccess) {
    return std::move(answer.items);
  }
  if (error != nullptr) {
    *error = {kErrorDomain, answer.status};
  }
  return std::nullopt;
}

KeychainQuery WorkerExtras::_queryForService_account(const std::optional<std::string>& service,
                                                     const std::optional<std::string>& account) {
  return {.service = service, .account = account};
}

}  // namespace tasselby
