#include "storage/SqlText.h"

namespace tasselby {

std::string doubledQuotes(std::string_view text) {
  std::string doubled;
  doubled.reserve(text.size());
  for (const char character : text) {
    doubled.append(character == '\'' ? 2 : 1, character);
  }
  return doubled;
}

std::string valueList(const std::vector<std::string>& values) {
  std::string list;
  for (const std::string& value : values) {
    if (&value != &values.front()) {
      list += "','";
    }
    list += value;
  }
  return list;
}

}  // namespace tasselby
