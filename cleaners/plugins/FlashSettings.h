#pragma once

#include <functional>
#include <string>

#include "platform/FileManager.h"

namespace tasselby {

/// The folder named after the Flash player's maker, which holds the player's settings by host.
inline constexpr const char* kFlashSettingsDomain = "macromedia.com";

/// Those settings, below it.
inline constexpr const char* kFlashSettings = "support/flashplayer/sys";

/// The host that a folder or settings entry of the player stands for: `name` less one "www.".
inline std::string flashHost(const std::string& name) {
  return name.starts_with("www.") ? name.substr(4) : name;
}

/// Whether an entry of the settings folder stands for one host, or is a folder of entries that do.
enum class FlashEntry { kHost, kInGroup };

/// Calls `visit` for every host in the settings folder at `folder` with the host, and with the
/// path of its entry below `folder`: an entry "#HOST", or an entry "##NAME/HOST" in a group. The
/// player's own "settings.sol" has no host, nor has anything without a "#".
void visitFlashSettings(const FileManager& files, const std::string& folder,
                        const std::function<void(const std::string& host, const std::string& entry,
                                                 FlashEntry kind)>& visit);

}  // namespace tasselby
