#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utf8proc.h>
#include <vector>

namespace tasselby {
namespace {

// What a byte that is no UTF-8 is decoded to: itself, above all of Unicode.
constexpr std::int32_t kRawByte = 0x110000;

bool isSurrogate(std::int32_t character) {
  return character >= 0xD800 && character <= 0xDFFF;
}

/// The character at the front of `text` and the bytes it takes. A surrogate in three bytes is
/// decoded like any other character; a byte that begins none is `kRawByte` plus itself.
struct Decoded {
  std::int32_t character;
  std::size_t length;
};

Decoded decodeFront(std::string_view text) {
  const auto byte = [&text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  if (byte(0) < 0x80) {
    return {byte(0), 1};
  }
  std::int32_t character = 0;
  const auto size = static_cast<utf8proc_ssize_t>(std::min<std::size_t>(text.size(), 4));
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const utf8proc_ssize_t length = utf8proc_iterate(bytes, size, &character);
  if (length > 0) {
    return {character, static_cast<std::size_t>(length)};
  }
  if (size >= 3 && byte(0) == 0xED && byte(1) >= 0xA0 && byte(1) <= 0xBF &&
      (byte(2) & 0xC0) == 0x80) {
    return {0xD000 | ((byte(1) & 0x3F) << 6) | (byte(2) & 0x3F), 3};
  }
  return {kRawByte + byte(0), 1};
}

void append(std::string& text, std::int32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  if (character >= kRawByte) {
    text += static_cast<char>(character - kRawByte);
    return;
  }
  if (isSurrogate(character)) {
    text += static_cast<char>(0xED);
    text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (character & 0x3F));
    return;
  }
  std::array<utf8proc_uint8_t, 4> bytes{};
  const utf8proc_ssize_t length = utf8proc_encode_char(character, bytes.data());
  text.append(bytes.begin(), bytes.begin() + length);
}

bool isDecimalDigit(std::int32_t character) {
  return character < kRawByte && utf8proc_category(character) == UTF8PROC_CATEGORY_ND;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    const Decoded front = decodeFront(text);
    if (front.character >= kRawByte || isSurrogate(front.character)) {
      return false;
    }
    text.remove_prefix(front.length);
  }
  return true;
}

std::string lowerCase(std::string_view text) {
  std::string lower;
  lower.reserve(text.size());
  while (!text.empty()) {
    const Decoded front = decodeFront(text);
    append(lower, front.character < kRawByte ? utf8proc_tolower(front.character) : front.character);
    text.remove_prefix(front.length);
  }
  return lower;
}

std::size_t utf16Length(std::string_view text) {
  std::size_t units = 0;
  while (!text.empty()) {
    const Decoded front = decodeFront(text);
    units += front.character > 0xFFFF && front.character < kRawByte ? 2 : 1;
    text.remove_prefix(front.length);
  }
  return units;
}

std::string_view trimDecimalDigits(std::string_view text) {
  while (!text.empty()) {
    const Decoded front = decodeFront(text);
    if (!isDecimalDigit(front.character)) {
      break;
    }
    text.remove_prefix(front.length);
  }
  std::size_t end = 0;
  for (std::size_t i = 0; i < text.size();) {
    const Decoded front = decodeFront(text.substr(i));
    i += front.length;
    if (!isDecimalDigit(front.character)) {
      end = i;
    }
  }
  return text.substr(0, end);
}

std::string reversedByUnits(std::string_view text) {
  std::vector<std::int32_t> units;
  units.reserve(text.size());
  while (!text.empty()) {
    const Decoded front = decodeFront(text);
    if (front.character > 0xFFFF && front.character < kRawByte) {
      units.push_back(0xD7C0 + (front.character >> 10));
      units.push_back(0xDC00 | (front.character & 0x3FF));
    } else {
      units.push_back(front.character);
    }
    text.remove_prefix(front.length);
  }
  std::string reversed;
  for (auto unit = units.rbegin(); unit != units.rend(); ++unit) {
    const bool high = *unit >= 0xD800 && *unit <= 0xDBFF;
    if (high && unit + 1 != units.rend() && unit[1] >= 0xDC00 && unit[1] <= 0xDFFF) {
      append(reversed, 0x10000 + ((*unit - 0xD800) << 10) + (unit[1] - 0xDC00));
      ++unit;
    } else {
      append(reversed, *unit);
    }
  }
  return reversed;
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string decoded;
  std::size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '%') {
      decoded += text[i++];
      continue;
    }
    const std::size_t run = decoded.size();
    for (; i < text.size() && text[i] == '%'; i += 3) {
      const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
      const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
      if (low < 0) {
        return std::nullopt;
      }
      decoded += static_cast<char>(high * 16 + low);
    }
    if (!isValidUtf8(std::string_view(decoded).substr(run))) {
      return std::nullopt;
    }
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
