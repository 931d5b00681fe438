#import "platform/macos/FoundationText.h"

#include <vector>

#include "platform/Text.h"

namespace tasselby {

// Not by -UTF8String or -dataUsingEncoding:, which end at a NUL or fail at a lone surrogate.
std::string utf8(NSString* string) {
  std::vector<unichar> units([string length]);
  [string getCharacters:units.data() range:NSMakeRange(0, units.size())];
  return textOfUnits(std::u32string(units.begin(), units.end()));
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
