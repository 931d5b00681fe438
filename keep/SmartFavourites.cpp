// The two keep lists: the sites of saved web-form passwords, from the keychain or, for Firefox,
// from its own profiles.

#include <optional>
#include <string>
#include <string_view>

#include "app/Profiles.h"
#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/KeychainAttributeCodes.h"
#include "platform/Paths.h"
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
    const auto server = valueOf(item, kServerCode);
    const auto site = WorkerExtras::siteWithDomainName(server);
    if (server && site && !isLocal(*site)) {
      sites.add(*site, *server + " in the login keychain");
    }
  }
  return sites;
}

KeepList WorkerAppDelegate::getFirefoxSmartFavouritesArray() const {
  KeepList sites;
  const FileManager& files = platform_.files;
  for (const std::string& profile : profilePaths(files, browserNamed("Firefox"))) {
    Sqlite database;
    if (!openIfThere(files, database, join(profile, "signons.sqlite"))) {
      continue;
    }
    for (const Row& login :
         database.executeQuery("SELECT * FROM moz_logins;").value_or(RowList{})) {
      const std::string* host = login.text("hostname");
      // Deliberate: nothing is filtered. The scheme stored with a host stays in a name that is not
      // cut ("https://example.com"), and machines of the user's own network are sites here.
      const auto site = host != nullptr ? WorkerExtras::siteWithDomainName(*host) : std::nullopt;
      if (site) {
        sites.add(*site, *host + " in Firefox's profile " + nameOf(profile));
      }
    }
  }
  return sites;
}

}  // namespace tasselby
