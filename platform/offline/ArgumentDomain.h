#pragma once

#include <map>
#include <string>
#include <vector>

namespace tasselby {

/// The preferences that the command line sets, by name, as the booleans that they stand for.
///
/// A pair `-name value` sets one, unless the value begins with "-" too; the last pair of a name
/// counts. `arguments` are all of the process, the program path included: it may be part of a pair.
std::map<std::string, bool> argumentDomain(const std::vector<std::string>& arguments);

}  // namespace tasselby
