#pragma once

#include <iosfwd>
#include <string>

#include "report/RunResult.h"

namespace tasselby {

/// How a result is shown.
struct PrintOptions {
  /// What the result is of, for its first line.
  std::string title;
  /// With every cookie, row and file.
  bool items = false;
  /// With the escapes of a terminal.
  bool color = false;
};

/// Whether what goes to the standard output is to have colours: on a terminal, and where
/// CLICOLOR_FORCE is set; never where NO_COLOR is.
bool wantsColor();

/// Writes `result` for a reader. What comes from files is shown without control characters.
void printText(std::ostream& out, const RunResult& result, const PrintOptions& options);

/// Writes `result` for a program, as one JSON object with every item. Bytes that are no UTF-8 come
/// as U+FFFD.
void printJson(std::ostream& out, const RunResult& result);

}  // namespace tasselby
