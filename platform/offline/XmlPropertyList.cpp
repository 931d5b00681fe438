// The XML format, by expat.

#include <cstddef>
#include <cstdlib>
#include <expat.h>
#include <memory>
#include <string>

#include "platform/offline/PropertyList.h"

namespace tasselby {
namespace {

/// Expat keeps some hundred bytes for each open element, which may take three in the list.
constexpr std::size_t kMostOpen = std::size_t{1} << 18;

/// What expat tells, and what comes of it. Elements count by how many are open with them.
class XmlReader {
 public:
  explicit XmlReader(std::string_view key)
      : key_(key), parser_(XML_ParserCreate(nullptr), XML_ParserFree) {
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(
        parser_.get(),
        [](void* self, const char* name, const char** /*attributes*/) {
          static_cast<XmlReader*>(self)->begin(name);
        },
        [](void* self, const char* name) { static_cast<XmlReader*>(self)->end(name); });
    XML_SetCharacterDataHandler(parser_.get(), [](void* self, const char* text, int size) {
      static_cast<XmlReader*>(self)->text_.append(text, static_cast<std::size_t>(size));
    });
    // A few of them can stand for a text of any length.
    XML_SetEntityDeclHandler(parser_.get(),
                             [](void* self, auto...) { static_cast<XmlReader*>(self)->fail(); });
  }

  XmlList read(std::string_view bytes) {
    const bool isRead = XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()),
                                  XML_TRUE) == XML_STATUS_OK;
    return isRead ? list_ : XmlList();
  }

 private:
  void fail() { XML_StopParser(parser_.get(), XML_FALSE); }

  void begin(std::string_view name) {
    ++open_;
    if (open_ > kMostOpen) {
      fail();
    } else if (open_ == 1 && name == "plist") {
      top_ = 2;
    } else if (open_ == top_) {
      isInDictionary_ = name == "dict" && !list_.top;
    }
    text_.clear();
  }

  void end(std::string_view name) {
    const std::size_t at = open_--;
    if (at == top_ && !list_.top) {
      list_.top = boolOf(name);
      if (hasKey_) {
        fail();
      }
    } else if (at == top_ + 1 && isInDictionary_) {
      endMember(name);
    }
    text_.clear();
  }

  /// Ends a key or a value of the top dictionary.
  void endMember(std::string_view name) {
    const bool isKey = name == "key";
    if (isKey == hasKey_) {
      fail();
    } else if (isKey) {
      isWanted_ = text_ == key_;
    } else if (isWanted_) {
      list_.underKey = boolOf(name);
    }
    hasKey_ = isKey;
  }

  /// The value of an element that ends, of whose text nothing came before an element in it.
  bool boolOf(std::string_view name) const {
    if (name == "integer") {
      const bool isHexadecimal = text_.find_first_of("xX") != std::string::npos;
      return std::strtoull(text_.c_str(), nullptr, isHexadecimal ? 16 : 10) != 0;
    }
    if (name == "real") {
      return std::strtod(text_.c_str(), nullptr) != 0;
    }
    return name == "true" || (name == "string" && boolValueOfString(text_));
  }

  std::string_view key_;
  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
  XmlList list_;
  std::string text_;
  std::size_t open_ = 0;
  /// How many elements are open within the top.
  std::size_t top_ = 1;
  bool isInDictionary_ = false;
  bool hasKey_ = false;
  bool isWanted_ = false;
};

}  // namespace

XmlList readXmlList(std::string_view bytes, std::string_view key) {
  return XmlReader(key).read(bytes);
}

}  // namespace tasselby
