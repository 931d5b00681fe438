#pragma once

#include <iosfwd>
#include <string>

#include "report/Changes.h"

namespace tasselby {

/// Writes `result` for a reader, below the line `title`; with `items` every cookie, row and file.
/// What comes from files is shown without control characters. Styled as the standard output may be.
void printText(std::ostream& out, const RunResult& result, const std::string& title, bool items);

/// Writes `result` for a program, as one JSON object with every item. Bytes that are no UTF-8 come
/// as U+FFFD.
void printJson(std::ostream& out, const RunResult& result);

}  // namespace tasselby
