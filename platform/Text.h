#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tasselby {

/// Text as the platform's strings have it, over UTF-8. Bytes that are no UTF-8 are carried along
/// unchanged, each a character of its own; a lone surrogate in three bytes counts as the one 16-bit
/// unit it stands for.

/// Whether `text` is well-formed UTF-8.
bool isValidUtf8(std::string_view text);

/// `text` with every character lower-cased by its simple Unicode mapping, whatever the locale.
std::string lowerCase(std::string_view text);

/// The number of 16-bit units of `text`.
std::size_t utf16Length(std::string_view text);

/// Whether every character of `text` is a Unicode decimal digit.
bool isAllDecimalDigits(std::string_view text);

/// The text of `units`, 16-bit units of which two surrogates make a character.
std::string textOfUnits(std::u32string_view units);

/// `text` with its 16-bit units from the last to the first. Surrogates that come to stand as a pair
/// become its character.
std::string reversedByUnits(std::string_view text);

/// `text` with every percent escape replaced by its byte. No value when an escape lacks its two
/// hexadecimal digits, or neighbouring escapes together are no UTF-8.
std::optional<std::string> percentDecoded(std::string_view text);

/// `format` with each "%@" replaced by the next of `values`; those without a value stay.
std::string formatted(std::string_view format, const std::vector<std::string>& values);

}  // namespace tasselby
