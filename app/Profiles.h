#pragma once

#include <string>
#include <vector>

#include "app/Browsers.h"
#include "platform/FileManager.h"

namespace tasselby {

/// The names of `browser`'s profile folders below its data root; the empty name alone for a browser
/// without profiles. Firefox's are all folders there, in the order they are listed. Those of
/// Chromium's family are in "Local State", less names that lead out of the root; throws `HardError`
/// when that cannot be read as text.
std::vector<std::string> profileFolders(const FileManager& files, const Browser& browser);

/// Their full paths.
std::vector<std::string> profilePaths(const FileManager& files, const Browser& browser);

/// The names of the folders in the folder at `path`, in the order they are listed. A link to a
/// folder is none.
std::vector<std::string> foldersIn(const FileManager& files, const std::string& path);

}  // namespace tasselby
