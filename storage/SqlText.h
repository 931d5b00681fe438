#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

class Sqlite;

/// `text` with every single quote doubled, to stand between quotes in a statement.
std::string doubledQuotes(std::string_view text);

/// Runs `format` with its "%@" replaced by `names`, joined by "','". They go in as they are: with a
/// single quote in any of them the statement is malformed as a whole and changes nothing. With no
/// names the list holds the empty text.
void executeListStatement(Sqlite& database, const std::string& format,
                          const std::vector<std::string>& names);

}  // namespace tasselby
