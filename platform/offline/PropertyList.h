#pragma once

#include <optional>
#include <string_view>

namespace tasselby {

/// Property lists, as far as booleans go. Nothing nested is followed or built.
///
/// A value is true when it is the boolean true, a number other than 0, or a string that
/// `boolValueOfString` calls true. Any other is false, whatever its type.

/// The value of the top dictionary of the list in `bytes`, binary or XML, under `key`, which is
/// ASCII; of a key given twice the later one. No value without the key, for a top that is no
/// dictionary, and for a list that cannot be read.
std::optional<bool> boolInPropertyList(std::string_view bytes, std::string_view key);

/// The same for the binary format alone, without recursion and without memory. Damage that is not
/// on the way to the answer does not matter.
std::optional<bool> boolInBinaryList(std::string_view bytes, std::string_view key);

/// What an XML list holds; both without a value when it cannot be read.
struct XmlList {
  /// The value of its top, false for a dictionary.
  std::optional<bool> top;
  /// The value of its top dictionary under the key that was asked for.
  std::optional<bool> underKey;
};

/// Reads the XML in `bytes`: an element `plist` with the top in it, or the top alone. It cannot be
/// read when it is not well-formed, declares entities, is nested more than 262,144 deep, or keys
/// and values do not take turns in the top dictionary. Nothing outside is opened.
XmlList readXmlList(std::string_view bytes, std::string_view key);

/// Whether `text` stands for true: behind spaces and tabs "Y", "y", "T" or "t", or else a sign, if
/// any, zeros, if any, and a digit other than 0. What follows does not matter.
bool boolValueOfString(std::string_view text);

}  // namespace tasselby
