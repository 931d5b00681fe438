#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

class Sqlite;

/// `text` with every single quote doubled, to stand between quotes in a statement.
std::string doubledQuotes(std::string_view text);

/// Runs `format` on `database` with each "%@" replaced by the next of `values`, their quotes
/// doubled. A statement that fails changes nothing, and that is not told.
void runStatement(Sqlite& database, std::string_view format, std::vector<std::string> values);

/// Runs `format` with its "%@" replaced by `names`, joined by "','". They go in as they are: with a
/// single quote in any of them the statement would be malformed: it is not run and changes nothing.
/// With no names the list holds the empty text. A statement that is too long for SQLite, by
/// default over 1,000,000,000 bytes, changes nothing either.
void runListStatement(Sqlite& database, std::string_view format,
                      const std::vector<std::string>& names);

}  // namespace tasselby
