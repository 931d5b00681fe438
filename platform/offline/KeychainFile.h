#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tasselby {

/// The attributes of one internet password that the worker knows, as the bytes of the file. One
/// without a value has no value here, or an empty one.
struct InternetPassword {
  std::optional<std::string_view> account;
  std::optional<std::string_view> server;
  /// Four letters in reading order, such as "form".
  std::optional<std::string_view> authenticationType;
};

/// What is left of the records of one table: `count` of them, back to back from the start of
/// `bytes`, up to the end of the table.
struct KeychainRecords {
  std::string_view bytes;
  std::uint32_t count;
};

/// The internet passwords of a keychain database ("kych"), read one after another.
///
/// The layout is that of the system's published database library, checked on real keychains. No
/// secret is looked at. Damaged bytes answer the passwords before the damage, or none.
class KeychainFile {
 public:
  /// Reads the schema of the file `bytes`, which have to outlive the object.
  explicit KeychainFile(std::string_view bytes);

  /// The next internet password in the order of their table; no value behind the last one.
  std::optional<InternetPassword> next();

 private:
  bool readRelation(KeychainRecords attributes);

  KeychainRecords passwords_{};
  /// How many attributes an internet password has, and which of them these are.
  std::size_t attributes_ = 0;
  std::optional<std::size_t> account_;
  std::optional<std::size_t> server_;
  std::optional<std::size_t> authenticationType_;
};

}  // namespace tasselby
