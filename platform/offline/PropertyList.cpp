#include "platform/offline/PropertyList.h"

#include <algorithm>
#include <cstdint>
#include <plist/plist.h>

#include "platform/offline/PropertyListBounds.h"

namespace tasselby {
namespace {

/// `text` less the characters of `set` that it begins with.
std::string_view behind(std::string_view text, const char* set) {
  return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

bool boolOfNode(plist_t node) {
  std::uint8_t boolean = 0;
  std::uint64_t integer = 0;
  double real = 0;
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
      plist_get_bool_val(node, &boolean);
      return boolean != 0;
    case PLIST_UINT:
      plist_get_uint_val(node, &integer);
      return integer != 0;
    case PLIST_REAL:
      plist_get_real_val(node, &real);
      return real != 0;
    case PLIST_STRING: {
      const char* text = plist_get_string_ptr(node, &integer);
      return text != nullptr && boolValueOfString({text, integer});
    }
    default:
      return false;
  }
}

}  // namespace

void PropertyList::Free::operator()(void* root) const {
  plist_free(root);
}

PropertyList::PropertyList(std::string_view bytes) {
  if (bytes.size() > kPropertyListLimit || !isWithinBounds(bytes)) {
    return;
  }
  const auto length = static_cast<std::uint32_t>(bytes.size());
  plist_t root = nullptr;
  // Deliberate: not plist_from_memory, which tells the formats apart by itself. It takes more
  // arguments in later releases, and reads formats there that preferences do not come in.
  if (bytes.starts_with("bplist00")) {
    plist_from_bin(bytes.data(), length, &root);
  } else {
    plist_from_xml(bytes.data(), length, &root);
  }
  root_.reset(root);
}

std::optional<bool> PropertyList::boolForKey(const std::string& key) const {
  if (plist_get_node_type(root_.get()) != PLIST_DICT) {
    return std::nullopt;
  }
  auto* value = plist_dict_get_item(root_.get(), key.c_str());
  return value == nullptr ? std::nullopt : std::optional(boolOfNode(value));
}

bool PropertyList::boolValue() const {
  return boolOfNode(root_.get());
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
