// Channel-ID certificates, which browsers of the Chromium family keep by origin. Nothing is
// counted.

#include <string>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "platform/Paths.h"
#include "storage/RunStatement.h"
#include "storage/Sqlite.h"

namespace tasselby {

void WorkerAppDelegate::deleteChromeChannelID_keep(const std::string& browser,
                                                   const KeepList& keepList) {
  if (!isChromiumLike(browser)) {
    return;
  }
  const std::string data = platform_.files.expandTilde(dataRoot(browser));
  for (const std::string& folder : profileFolders(browser)) {
    const std::string path = join(join(data, folder), "Origin Bound Certs");
    Sqlite database;
    if (openIfThere(platform_.files, database, path)) {
      // Deliberate: only an origin that is a kept site to the letter stays, and with nothing kept
      // only the empty one.
      runListStatement(database, "DELETE FROM origin_bound_certs WHERE origin NOT IN ('%@');",
                       keepList.sites());
    }
  }
}

}  // namespace tasselby
