#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utf8proc.h>

namespace tasselby {
namespace {

// What a byte that is no UTF-8 is decoded to: itself, above all of Unicode.
constexpr char32_t kRawByte = 0x110000;

bool isSurrogate(char32_t character) {
  return character >= 0xD800 && character <= 0xDFFF;
}

/// Takes the character at the front of `text`. A surrogate in three bytes is decoded like any other
/// character; a byte that begins none is `kRawByte` plus itself.
char32_t takeFront(std::string_view& text) {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  char32_t character = byte(0);
  std::size_t length = 1;
  if (character >= 0x80) {
    std::int32_t decoded = 0;
    const auto size = static_cast<utf8proc_ssize_t>(std::min<std::size_t>(text.size(), 4));
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const utf8proc_ssize_t taken = utf8proc_iterate(bytes, size, &decoded);
    if (taken > 0) {
      character = static_cast<char32_t>(decoded);
      length = static_cast<std::size_t>(taken);
    } else if (size >= 3 && character == 0xED && byte(1) >= 0xA0 && byte(1) <= 0xBF &&
               (byte(2) & 0xC0) == 0x80) {
      character = 0xD000U | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU);
      length = 3;
    } else {
      character += kRawByte;
    }
  }
  text.remove_prefix(length);
  return character;
}

std::u32string charactersOf(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) {
    characters += takeFront(text);
  }
  return characters;
}

void append(std::string& text, char32_t character) {
  if (character >= kRawByte) {
    text += static_cast<char>(character - kRawByte);
    return;
  }
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto length = utf8proc_encode_char(static_cast<std::int32_t>(character), bytes.data());
  text.append(bytes.begin(), bytes.begin() + length);
}

std::u32string unitsOf(std::string_view text) {
  std::u32string units;
  for (const char32_t character : charactersOf(text)) {
    if (character > 0xFFFF && character < kRawByte) {
      units += {0xD7C0 + (character >> 10), 0xDC00 | (character & 0x3FF)};
    } else {
      units += character;
    }
  }
  return units;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    const char32_t character = takeFront(text);
    if (character >= kRawByte || isSurrogate(character)) {
      return false;
    }
  }
  return true;
}

std::string lowerCase(std::string_view text) {
  std::string lower;
  for (const char32_t character : charactersOf(text)) {
    const auto lowered = utf8proc_tolower(static_cast<std::int32_t>(character));
    append(lower, character < kRawByte ? static_cast<char32_t>(lowered) : character);
  }
  return lower;
}

std::size_t utf16Length(std::string_view text) {
  return unitsOf(text).size();
}

bool isAllDecimalDigits(std::string_view text) {
  return std::ranges::all_of(charactersOf(text), [](char32_t character) {
    return utf8proc_category(static_cast<std::int32_t>(character)) == UTF8PROC_CATEGORY_ND;
  });
}

std::string textOfUnits(std::u32string_view units) {
  std::string text;
  while (!units.empty()) {
    const bool isPair = units.size() > 1 && units[0] >> 10 == 0x36 && units[1] >> 10 == 0x37;
    // Ten bits of what is above 0xFFFF stand in each half of a pair.
    append(text, isPair ? 0x10000 + ((units[0] & 0x3FF) << 10 | (units[1] & 0x3FF)) : units[0]);
    units.remove_prefix(isPair ? 2 : 1);
  }
  return text;
}

std::string reversedByUnits(std::string_view text) {
  std::u32string units = unitsOf(text);
  std::ranges::reverse(units);
  return textOfUnits(units);
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string decoded;
  while (!text.empty()) {
    const std::size_t run = decoded.size();
    for (; text.starts_with('%'); text.remove_prefix(3)) {
      unsigned char byte = 0;
      if (text.size() < 3 ||
          std::from_chars(text.data() + 1, text.data() + 3, byte, 16).ptr != text.data() + 3) {
        return std::nullopt;
      }
      decoded += static_cast<char>(byte);
    }
    if (!isValidUtf8(std::string_view(decoded).substr(run))) {
      return std::nullopt;
    }
    const std::string_view plain = text.substr(0, text.find('%'));
    decoded += plain;
    text.remove_prefix(plain.size());
  }
  return decoded;
}

std::string formatted(std::string_view format, const std::vector<std::string>& values) {
  std::string text;
  for (const std::string& value : values) {
    const std::size_t place = format.find("%@");
    if (place == std::string_view::npos) {
      break;
    }
    text.append(format.substr(0, place)).append(value);
    format.remove_prefix(place + 2);
  }
  return text.append(format);
}

}  // namespace tasselby
