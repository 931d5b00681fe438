#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

class FileManager;

/// The browser names the worker accepts, in the order they are tried. Compared exactly; "WebKit" is
/// a name of its own and not an alias of "Safari".
inline constexpr std::array<std::string_view, 7> kBrowserNames = {
    "Safari", "WebKit", "Google Chrome", "Chromium", "Camino", "Firefox", "Opera"};

/// The one profile of a browser without profiles: no folder of its own below the data folder.
inline constexpr const char* kOnlyProfile = "";

/// Whether `browser` keeps its profiles in folders that "Local State" lists.
bool hasChromiumProfiles(std::string_view browser);

/// Whether `browser` keeps its data the way Chromium does: with profiles, or Opera without.
bool isChromiumLike(std::string_view browser);

/// The folder below which a Chromium-like `browser` keeps its data, and its caches; with a leading
/// "~". Empty for any other name.
std::string dataRoot(std::string_view browser);
std::string cacheRoot(std::string_view browser);

/// The folder of Firefox's profiles, and the data folder of Camino; with a leading "~".
inline constexpr const char* kFirefoxProfiles = "~/Library/Application Support/Firefox/Profiles/";
inline constexpr const char* kCaminoData = "~/Library/Application Support/Camino";

/// The paths of the files named `name` in Firefox's profiles, in the order the system lists them.
/// Every folder in the folder of profiles is a profile; a link to one is none.
std::vector<std::string> firefoxDatabases(const FileManager& files, const std::string& name);

}  // namespace tasselby
