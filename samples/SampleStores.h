#pragma once

#include "samples/MacHome.h"

namespace tasselby {

/// The parts of a sample home. Each writes its files and adds its items.

void addPreferences(const MacHome& home);
void addPasswords(const MacHome& home);
void addProfileLists(const MacHome& home);
void addCookies(MacHome& home);
void addWebStorage(MacHome& home);
void addPlugIns(MacHome& home);
void addCaches(MacHome& home);

/// The profile folders of the sample home's browsers that have profiles.
inline const std::vector<std::string> kChromiumProfileNames = {"Default", "Profile 1"};
inline const std::vector<std::string> kFirefoxProfileNames = {"k3x9q2ab.default", "z81m0cde.work"};

/// Every name that a run can have been started with.
inline const Browsers kEveryBrowser = {"Safari", "WebKit",  "Google Chrome", "Chromium",
                                       "Camino", "Firefox", "Opera"};

/// `text` as an SQL literal.
std::string sqlText(const std::string& text);

}  // namespace tasselby
