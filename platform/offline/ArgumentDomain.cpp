#include "platform/offline/ArgumentDomain.h"

#include <cstddef>
#include <string_view>

#include "platform/offline/PropertyList.h"

namespace tasselby {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr const char* kBlanks = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::string_view::npos
             ? std::string_view()
             : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

/// Whether `text` is a string in quotes, with none inside and nothing escaped.
bool isQuoted(std::string_view text) {
  return text.starts_with('"') && text.ends_with('"') &&
         text.find_first_of("\\\"", 1) == text.size() - 1;
}

/// What `value` stands for, read as a property list if it can be one, else as a string. That
/// decides only about XML and quotes: an array, a dictionary or data in the old text format is
/// false either way.
bool boolOfValue(std::string_view value) {
  value = trimmed(value);
  if (value.starts_with('<')) {
    return readXmlList(value, "").top.value_or(false);
  }
  return boolValueOfString(isQuoted(value) ? value.substr(1, value.size() - 2) : value);
}

}  // namespace

std::map<std::string, bool> argumentDomain(const std::vector<std::string>& arguments) {
  std::map<std::string, bool> domain;
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    const std::string& value = arguments[i + 1];
    if (!name.starts_with('-') || value.starts_with('-')) {
      continue;
    }
    // Deliberate: only the first "-" goes, so "--name" sets "-name"; a lone "-" takes its value
    // along and sets nothing.
    if (name.size() > 1) {
      domain[name.substr(1)] = boolOfValue(value);
    }
    ++i;
  }
  return domain;
}

}  // namespace tasselby
