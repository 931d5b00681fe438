// The keep list of every browser but Firefox: the sites whose web-form passwords are in the
// keychain.

#include <optional>
#include <string>
#include <string_view>

#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/KeychainAttributeCodes.h"

namespace tasselby {
namespace {

/// The value under `code`; no value when `item` has none.
std::optional<std::string> valueOf(const KeychainAttributes& item, const char* code) {
  const auto attribute = item.find(code);
  return attribute == item.end() ? std::nullopt : std::optional(attribute->second);
}

/// Whether `site` names a machine in the user's own network, or no machine at all.
bool isLocal(std::string_view site) {
  const std::string_view lastLabel = site.substr(site.rfind('.') + 1);
  return site == "localhost" || lastLabel == "local" || lastLabel == "certificate";
}

}  // namespace

KeepList WorkerAppDelegate::getSmartFavouritesArray() const {
  KeepList sites;
  const WorkerExtras::Accounts accounts = WorkerExtras::allAccounts(platform_.keychain);
  if (!accounts) {
    return sites;
  }
  for (const KeychainAttributes& item : *accounts) {
    if (valueOf(item, kAuthenticationTypeCode) != "form") {
      continue;
    }
    const auto site = WorkerExtras::siteWithDomainName(valueOf(item, kServerCode));
    if (site && !isLocal(*site)) {
      sites.add(*site);
    }
  }
  return sites;
}

}  // namespace tasselby
