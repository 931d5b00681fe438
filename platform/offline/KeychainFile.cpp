// A keychain database describes its own relations. Every number is a big-endian word of 32 bits:
//
//   file     0 "kych", 4 version, 12 offset of the schema section
//   schema   0 size, 4 number of tables, 8 offset of each table from the start of the section
//   table    0 size, 4 relation, 8 number of records, 12 offset of the first record
//   record   0 size, 16 size of the secret, 24 one word for each attribute of the relation, in the
//            order of the schema; then the secret and the attributes' values
//   word     0 no value; odd: offset of the value in the record, plus 1; even: offset of a count
//            with that many values behind it
//   value    a number: one word; text: its length, then its bytes
//
// Slots, free lists and indexes are not needed to list a table: its records lie back to back.

#include "platform/offline/KeychainFile.h"

#include <algorithm>
#include <vector>

namespace tasselby {
namespace {

constexpr std::string_view kMagic = "kych";
constexpr std::uint32_t kVersion = 0x00010000;
constexpr std::size_t kFileHeader = 24;
constexpr std::size_t kSchemaHeader = 8;
constexpr std::size_t kTableHeader = 28;
constexpr std::size_t kRecordHeader = 24;
// The system takes a higher count of values for damage.
constexpr std::uint32_t kMostValues = 1024;

constexpr std::uint32_t kAttributeTable = 2;
constexpr std::uint32_t kInternetPasswords = 0x80000001;

// Positions of the attributes of `kAttributeTable` itself, which are the same in every file.
constexpr std::size_t kRelationId = 0;
constexpr std::size_t kAttributeId = 1;
constexpr std::size_t kAttributeFormat = 5;

// Attributes of internet passwords, by their four letters.
constexpr std::uint32_t kAccount = 0x61636374;
constexpr std::uint32_t kServer = 0x73727672;
constexpr std::uint32_t kAuthenticationType = 0x61747970;

// Attribute formats with a length and bytes: string and blob.
constexpr std::uint32_t kString = 0;
constexpr std::uint32_t kBlob = 6;

/// `bytes` from `offset` on; no value when that is behind their end.
std::optional<std::string_view> from(std::string_view bytes, std::size_t offset) {
  return offset <= bytes.size() ? std::optional(bytes.substr(offset)) : std::nullopt;
}

/// The word at `offset`; no value when it is not wholly inside `bytes`.
std::optional<std::uint32_t> wordAt(std::string_view bytes, std::size_t offset) {
  if (offset > bytes.size() || bytes.size() - offset < 4) {
    return std::nullopt;
  }
  std::uint32_t word = 0;
  for (const char byte : bytes.substr(offset, 4)) {
    word = word << 8 | static_cast<std::uint8_t>(byte);
  }
  return word;
}

/// The section of `bytes` at `offset`, whose first word is its size; empty unless it is inside
/// `bytes` and has at least `header` bytes.
std::string_view sectionAt(std::string_view bytes, std::uint32_t offset, std::size_t header) {
  const std::string_view rest = from(bytes, offset).value_or("");
  const std::uint32_t size = wordAt(rest, 0).value_or(0);
  return size >= header && size <= rest.size() ? rest.substr(0, size) : "";
}

/// The schema section of a keychain; empty when `file` is none.
std::string_view schemaOf(std::string_view file) {
  if (file.size() < kFileHeader || !file.starts_with(kMagic) || wordAt(file, 4) != kVersion) {
    return "";
  }
  return sectionAt(file, *wordAt(file, 12), kSchemaHeader);
}

/// The records of the first sound table of `relation`; no value without such a table.
std::optional<KeychainRecords> recordsOf(std::uint32_t relation, std::string_view schema) {
  const std::size_t tables = wordAt(schema, 4).value_or(0);
  if (schema.size() < kSchemaHeader || tables > (schema.size() - kSchemaHeader) / 4) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < tables; ++i) {
    const std::uint32_t offset = *wordAt(schema, kSchemaHeader + 4 * i);
    const std::string_view table = sectionAt(schema, offset, kTableHeader);
    if (wordAt(table, 4) == relation) {
      return KeychainRecords{from(table, *wordAt(table, 12)).value_or(""), *wordAt(table, 8)};
    }
  }
  return std::nullopt;
}

/// Takes the first of `records`. No value when none is left, `records.count` being 0, or it is
/// damaged, which ends the table.
std::optional<std::string_view> takeRecord(KeychainRecords& records) {
  const std::string_view record =
      records.count == 0 ? "" : sectionAt(records.bytes, 0, kRecordHeader);
  if (record.empty()) {
    return std::nullopt;
  }
  records.bytes.remove_prefix(record.size());
  --records.count;
  return record;
}

/// The bytes of `record` from its attribute's first value on; no value when the attribute has none.
std::optional<std::string_view> firstValue(std::string_view record, std::size_t attribute) {
  const std::uint32_t word = wordAt(record, kRecordHeader + 4 * attribute).value_or(0);
  if (word == 0) {
    return std::nullopt;
  }
  if (word % 2 == 1) {
    return from(record, word - 1);
  }
  const std::uint32_t count = wordAt(record, word).value_or(0);
  return count == 0 || count > kMostValues ? std::nullopt : from(record, std::size_t{word} + 4);
}

std::optional<std::uint32_t> number(std::string_view record, std::size_t attribute) {
  return wordAt(firstValue(record, attribute).value_or(""), 0);
}

/// The text of the attribute at `attribute`; no value for a relation without that attribute.
std::optional<std::string_view> text(std::string_view record,
                                     std::optional<std::size_t> attribute) {
  const std::string_view value =
      attribute ? firstValue(record, *attribute).value_or("") : std::string_view();
  const std::optional<std::uint32_t> length = wordAt(value, 0);
  return length && *length <= value.size() - 4 ? std::optional(value.substr(4, *length))
                                               : std::nullopt;
}

}  // namespace

KeychainFile::KeychainFile(std::string_view bytes) {
  const std::string_view schema = schemaOf(bytes);
  const auto attributes = recordsOf(kAttributeTable, schema);
  const auto passwords = recordsOf(kInternetPasswords, schema);
  if (attributes && passwords && readRelation(*attributes)) {
    passwords_ = *passwords;
  }
}

/// Learns from the records of the attribute table where an internet password keeps what. False when
/// any is damaged: one that is lost would shift all behind it.
bool KeychainFile::readRelation(KeychainRecords attributes) {
  std::vector<std::uint64_t> seen;
  while (const auto record = takeRecord(attributes)) {
    const auto relation = number(*record, kRelationId);
    const auto id = number(*record, kAttributeId);
    const auto format = number(*record, kAttributeFormat);
    if (!relation || !id || !format) {
      return false;
    }
    seen.push_back(std::uint64_t{*relation} << 32 | *id);
    if (*relation != kInternetPasswords) {
      continue;
    }
    const std::size_t position = attributes_++;
    if (*format != kString && *format != kBlob) {
      continue;
    }
    if (*id == kAccount) {
      account_ = position;
    } else if (*id == kServer) {
      server_ = position;
    } else if (*id == kAuthenticationType) {
      authenticationType_ = position;
    }
  }
  std::ranges::sort(seen);
  return attributes.count == 0 && std::ranges::adjacent_find(seen) == seen.end() && server_ &&
         authenticationType_;
}

std::optional<InternetPassword> KeychainFile::next() {
  while (const auto record = takeRecord(passwords_)) {
    if (record->size() >= kRecordHeader + 4 * attributes_) {
      return InternetPassword{text(*record, account_), text(*record, server_),
                              text(*record, authenticationType_)};
    }
  }
  return std::nullopt;
}

}  // namespace tasselby
