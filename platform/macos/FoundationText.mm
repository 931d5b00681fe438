#import "platform/macos/FoundationText.h"

#include <cstdint>
#include <vector>

namespace tasselby {
namespace {

bool isLeading(std::uint32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool isTrailing(std::uint32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

void append(std::string& text, std::uint32_t character) {
  const auto put = [&text](std::uint32_t byte) { text += static_cast<char>(byte); };
  const auto tail = [&](int shift) { put(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | (character >> 6));
    tail(0);
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    tail(6);
    tail(0);
  } else {
    put(0xF0 | (character >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

// Not by -UTF8String or -dataUsingEncoding:, which end at a NUL or fail at a lone surrogate.
std::string utf8(NSString* string) {
  std::vector<unichar> units([string length]);
  [string getCharacters:units.data() range:NSMakeRange(0, units.size())];
  std::string text;
  text.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    std::uint32_t character = units[i];
    if (isLeading(character) && i + 1 < units.size() && isTrailing(units[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (units[++i] - 0xDC00U);
    }
    append(text, character);
  }
  return text;
}

NSString* nsString(std::string_view text) {
  const auto decoded = [text](NSStringEncoding encoding) {
    return [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                   encoding:encoding] autorelease];
  };
  NSString* string = decoded(NSUTF8StringEncoding);
  return string != nil ? string : decoded(NSISOLatin1StringEncoding);
}

}  // namespace tasselby
