#pragma once

#include <string_view>

namespace tasselby {

/// Whether parsing the property list in `bytes`, binary or XML, takes bounded stack and memory.
///
/// libplist frees and parses by recursion, one call a level, and copies an object of a binary list
/// once for every reference to it, so that a few hundred bytes can ask for terabytes. True says
/// only that parsing is safe. False is answered for lists nested more than 512 deep, for binary
/// lists that come to more than 64 MiB, and for some of those that are damaged anyway.
bool isWithinBounds(std::string_view bytes);

}  // namespace tasselby
