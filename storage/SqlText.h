#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

/// Pieces of SQL statements, which are built as text.

/// `text` with every "'" doubled, to stand between single quotes.
std::string doubledQuotes(std::string_view text);

/// `values` joined with "','", to stand between "('" and "')". Quotes are left as they are: a value
/// with one makes the statement another.
std::string valueList(const std::vector<std::string>& values);

}  // namespace tasselby
