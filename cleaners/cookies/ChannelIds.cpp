// Channel-ID certificates, which browsers of the Chromium family keep by origin. Nothing is
// counted.

#include <string>

#include "app/Profiles.h"
#include "app/WorkerAppDelegate.h"
#include "platform/Paths.h"
#include "storage/RunStatement.h"
#include "storage/Sqlite.h"

namespace tasselby {

void WorkerAppDelegate::deleteChromeChannelID_keep(const std::string& browser,
                                                   const KeepList& keepList) {
  const Browser known = browserNamed(browser);
  if (known.family != Family::kChromium) {
    return;
  }
  for (const std::string& profile : profilePaths(platform_.files, known)) {
    Sqlite database;
    if (openIfThere(platform_.files, database, join(profile, "Origin Bound Certs"))) {
      // Deliberate: only an origin that is a kept site to the letter stays, and with nothing kept
      // only the empty one.
      runListStatement(database, "DELETE FROM origin_bound_certs WHERE origin NOT IN ('%@');",
                       keepList.sites());
    }
  }
}

}  // namespace tasselby
