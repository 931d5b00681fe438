#include "storage/RunStatement.h"

#include <algorithm>

#include "platform/Text.h"
#include "storage/Sqlite.h"

namespace tasselby {

std::string doubledQuotes(std::string_view text) {
  std::string doubled;
  for (const char c : text) {
    doubled.append(c == '\'' ? 2 : 1, c);
  }
  return doubled;
}

void runStatement(Sqlite& database, std::string_view format, std::vector<std::string> values) {
  std::ranges::transform(values, values.begin(), doubledQuotes);
  database.executeQuery(formatted(format, values));
}

void runListStatement(Sqlite& database, std::string_view format,
                      const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    // Deliberate: quotes are not doubled here. With a name that would end its text early nothing is
    // run, whatever the rest of it would have made of the list.
    if (name.find('\'') != std::string::npos) {
      return;
    }
    if (&name != &names.front()) {
      list += "','";
    }
    list += name;
  }
  database.executeQuery(formatted(format, {list}));
}

}  // namespace tasselby
