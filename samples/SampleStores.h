#pragma once

#include "samples/MacHome.h"
#include "samples/ScratchHome.h"

namespace tasselby {

/// The parts of a sample home. Each writes its files and adds its items.

void addSettings(const MacHome& home);
void addStores(MacHome& home);

/// Lines that put cookies into the store of every browser. In `cookies`, % stands for the browser's
/// letter, and each line is a fate, "STORE", host and name as SQL, and "REST".
std::string cookieLines(const std::string& cookies);

/// `text` with `with` wherever `part` was.
std::string replaced(std::string text, const std::string& part, const std::string& with);

/// What stands between the `at`s of `text`, but for an empty part behind the last.
Names split(const std::string& text, char at);

}  // namespace tasselby
