// The two keep lists: the sites of saved web-form passwords, from the keychain or, for Firefox,
// from its own profiles.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/KeychainAttributeCodes.h"
#include "storage/Sqlite.h"

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
      sites.add(*site, *valueOf(item, kServerCode) + " in the login keychain");
    }
  }
  return sites;
}

KeepList WorkerAppDelegate::getFirefoxSmartFavouritesArray() const {
  KeepList sites;
  for (const std::string& path : firefoxDatabases(platform_.files, "signons.sqlite")) {
    Sqlite database;
    if (!database.open(path)) {
      continue;
    }
    const std::string profile = std::filesystem::path(path).parent_path().filename().native();
    for (const Row& login :
         database.executeQuery("SELECT * FROM moz_logins;").value_or(RowList{})) {
      const std::string* host = login.text("hostname");
      // Deliberate: nothing is filtered. The scheme stored with a host stays in a name that is not
      // cut ("https://example.com"), and machines of the user's own network are sites here.
      const auto site = host != nullptr ? WorkerExtras::siteWithDomainName(*host) : std::nullopt;
      if (site) {
        sites.add(*site, *host + " in Firefox's profile " + profile);
      }
    }
  }
  return sites;
}

}  // namespace tasselby
