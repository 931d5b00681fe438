#include "platform/offline/PropertyList.h"

#include <algorithm>

namespace tasselby {
namespace {

/// `text` less the characters of `set` that it begins with.
std::string_view behind(std::string_view text, const char* set) {
  return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

}  // namespace

std::optional<bool> boolInPropertyList(std::string_view bytes, std::string_view key) {
  return bytes.starts_with("bplist00") ? boolInBinaryList(bytes, key)
                                       : readXmlList(bytes, key).underKey;
}

bool boolValueOfString(std::string_view text) {
  text = behind(text, " \t");
  if (text.find_first_of("YyTt") == 0) {
    return true;
  }
  if (text.starts_with('+') || text.starts_with('-')) {
    text.remove_prefix(1);
  }
  return behind(text, "0").find_first_of("123456789") == 0;
}

}  // namespace tasselby
