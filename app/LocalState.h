#pragma once

#include <map>
#include <string>

namespace tasselby {

/// Profile folder name to display name.
using ProfileMap = std::map<std::string, std::string>;

/// The profiles that `text`, a Chromium "Local State" document, lists: the JSON strings at
/// profile.info_cache.FOLDER.name. A profile whose name is no string is left out; of equal keys the
/// last counts. Empty for text that is no JSON, is nested over 512 deep or has no such list.
ProfileMap profilesInLocalState(const std::string& text);

}  // namespace tasselby
