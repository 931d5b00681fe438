#pragma once

#include <iosfwd>
#include <string>

#include "report/Changes.h"

namespace tasselby {

/// Whether what goes to the standard output is to have colours: on a terminal, and where
/// CLICOLOR_FORCE is set; never where NO_COLOR is.
bool wantsColor();

/// Writes `result` for a reader, below the line `title`; with `items` every cookie, row and file.
/// What comes from files is shown without control characters.
void printText(std::ostream& out, const RunResult& result, const std::string& title, bool items);

/// Writes `result` for a program, as one JSON object with every item. Bytes that are no UTF-8 come
/// as U+FFFD.
void printJson(std::ostream& out, const RunResult& result);

}  // namespace tasselby
