#include "app/Profiles.h"

#include <optional>

#include "app/WorkerAppDelegate.h"
#include "platform/HardError.h"
#include "platform/Paths.h"

namespace tasselby {
namespace {

/// What `browser` itself lists in its "Local State".
ProfileMap listedProfiles(const FileManager& files, const Browser& browser) {
  const std::string path = join(files.expandTilde(browser.dataRoot), "Local State");
  const std::optional<std::string> text = files.textOfFile(path);
  if (!text) {
    // Deliberate: without its list of profiles a browser counts as unknown, not as having none.
    throw HardError(path);
  }
  return profilesInLocalState(*text);
}

}  // namespace

ProfileMap WorkerAppDelegate::userProfiles(const std::string& browser) const {
  return listedProfiles(platform_.files,
                        browserNamed(browser == "Google Chrome" ? browser : "Chromium"));
}

std::vector<std::string> profileFolders(const FileManager& files, const Browser& browser) {
  if (!browser.hasProfiles) {
    return {""};
  }
  if (browser.family == Family::kMozilla) {
    return foldersIn(files, files.expandTilde(browser.dataRoot));
  }
  std::vector<std::string> folders;
  for (const auto& [folder, displayName] : listedProfiles(files, browser)) {
    if (staysBelow(folder)) {
      folders.push_back(folder);
    }
  }
  return folders;
}

std::vector<std::string> profilePaths(const FileManager& files, const Browser& browser) {
  std::vector<std::string> paths = profileFolders(files, browser);
  for (std::string& path : paths) {
    path = join(files.expandTilde(browser.dataRoot), path);
  }
  return paths;
}

std::vector<std::string> foldersIn(const FileManager& files, const std::string& path) {
  std::vector<std::string> names = files.contentsOfDirectoryAtPath(path);
  std::erase_if(names,
                [&](const std::string& name) { return !files.hasFolderType(join(path, name)); });
  return names;
}

}  // namespace tasselby
