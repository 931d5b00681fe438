#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/Text.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  if (const std::optional<std::string> decoded = percentDecoded(text)) {
    check(decoded->size() <= text.size());
    check(text.find('%') != std::string::npos || *decoded == text);
    check(!isValidUtf8(text) || isValidUtf8(*decoded));
  }
  const std::string reversed = reversedByUnits(text);
  // Bytes that are no UTF-8 may become a character the other way round.
  if (isValidUtf8(text)) {
    check(utf16Length(reversed) == utf16Length(text));
    check(reversedByUnits(reversed) == text);
  }
  check(text.find(trimDecimalDigits(text)) != std::string::npos);
  return 0;
}
