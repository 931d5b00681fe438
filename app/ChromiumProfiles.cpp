// The profiles of Google Chrome and Chromium, as the browser's own "Local State" lists them.

#include <optional>
#include <string>
#include <vector>

#include "app/Browsers.h"
#include "app/WorkerAppDelegate.h"
#include "platform/HardError.h"
#include "platform/Paths.h"

namespace tasselby {

ProfileMap WorkerAppDelegate::userProfiles(const std::string& browser) const {
  const std::string root = dataRoot(browser == "Google Chrome" ? browser : "Chromium");
  const std::string path = join(platform_.files.expandTilde(root), "Local State");
  const std::optional<std::string> text = platform_.files.textOfFile(path);
  if (!text) {
    // Deliberate: without its list of profiles a browser counts as unknown, not as having none.
    throw HardError(path);
  }
  return profilesInLocalState(*text);
}

std::vector<std::string> WorkerAppDelegate::profileFolders(const std::string& browser) const {
  if (!hasChromiumProfiles(browser)) {
    return {kOnlyProfile};
  }
  std::vector<std::string> folders;
  for (const auto& [folder, displayName] : userProfiles(browser)) {
    if (staysBelow(folder)) {
      folders.push_back(folder);
    }
  }
  return folders;
}

}  // namespace tasselby
