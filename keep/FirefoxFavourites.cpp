// Firefox's keep list: the sites of the logins saved in its profiles.

#include <optional>
#include <string>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "keep/WorkerExtras.h"
#include "platform/Text.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

/// Adds the sites in the password database at `path` to `sites`; nothing when it cannot be read.
///
/// Deliberate: nothing is filtered. Host names are stored with their scheme, which stays in a name
/// that is not cut ("https://example.com"), and machines of the own network are sites here.
void addLogins(const std::string& path, KeepList& sites) {
  Sqlite database;
  if (!database.open(path)) {
    return;
  }
  const std::optional<RowList> logins = database.executeQuery("SELECT * FROM moz_logins;");
  if (!logins) {
    return;
  }
  for (const Row& login : *logins) {
    const std::string* host = login.text("hostname");
    if (host == nullptr) {
      continue;
    }
    if (const auto site = WorkerExtras::siteWithDomainName(*host)) {
      sites.add(*site);
    }
  }
}

}  // namespace

KeepList WorkerAppDelegate::getFirefoxSmartFavouritesArray() const {
  KeepList sites;
  const std::string profiles = platform_.files.expandTilde(kFirefoxProfiles);
  for (const std::string& name : FileManager::contentsOfDirectoryAtPath(profiles)) {
    const std::string profile = join(profiles, name);
    if (!FileManager::hasFolderType(profile)) {
      continue;
    }
    const std::string path = join(profile, "signons.sqlite");
    if (FileManager::fileExistsAtPath(path)) {
      addLogins(path, sites);
    }
  }
  return sites;
}

}  // namespace tasselby
