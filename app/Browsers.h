#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace tasselby {

/// Browsers that keep their data in the same kinds of files.
enum class Family { kNone, kSafari, kChromium, kMozilla };

/// A browser by the name that the worker accepts.
struct Browser {
  /// Compared exactly; empty for none.
  std::string_view name;
  Family family;
  /// The folders below which it keeps its data and its caches; with a leading "~".
  const char* dataRoot;
  const char* cacheRoot;
  /// Whether each profile has folders of its own below them.
  bool hasProfiles;
};

/// All of them. "WebKit" is a name of its own and not an alias of "Safari".
inline constexpr std::array<Browser, 7> kBrowsers = {{
    {"Safari", Family::kSafari, "~/Library/Safari", "~/Library/Caches/com.apple.Safari", false},
    {"WebKit", Family::kNone, "", "", false},
    {"Google Chrome", Family::kChromium, "~/Library/Application Support/Google/Chrome",
     "~/Library/Caches/Google/Chrome", true},
    {"Chromium", Family::kChromium, "~/Library/Application Support/Chromium",
     "~/Library/Caches/Chromium", true},
    {"Camino", Family::kMozilla, "~/Library/Application Support/Camino", "~/Library/Caches/Camino",
     false},
    {"Firefox", Family::kMozilla, "~/Library/Application Support/Firefox/Profiles",
     "~/Library/Caches/Firefox/Profiles", true},
    {"Opera", Family::kChromium, "~/Library/Application Support/com.operasoftware.Opera",
     "~/Library/Caches/com.operasoftware.Opera", false},
}};

/// The browser `name`; for any other name one without a name, of no family.
constexpr Browser browserNamed(std::string_view name) {
  const auto* const found = std::ranges::find(kBrowsers, name, &Browser::name);
  return found == kBrowsers.end() ? Browser{"", Family::kNone, "", "", false} : *found;
}

}  // namespace tasselby
