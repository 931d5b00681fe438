// Every number is a big-endian word of 32 bits, and everything starts on a multiple of four. See
// platform/offline/KeychainFile.cpp for the layout.

#include "samples/KeychainWriter.h"

#include <cstdint>
#include <sstream>
#include <utility>

#include "samples/BinaryCookieWriter.h"

namespace tasselby {
namespace {

using Texts = std::vector<std::string>;

constexpr std::size_t kFileHeader = 20;
constexpr std::size_t kTableHeader = 28;
constexpr std::size_t kRecordHeader = 24;

// Relations that are tables; those of passwords have the highest bit.
constexpr std::uint32_t kRelations = 0;
constexpr std::uint32_t kIndexes = 1;
constexpr std::uint32_t kAttributes = 2;
constexpr std::uint32_t kParsingModules = 3;
constexpr std::uint32_t kGenericPasswords = 0x80000000;
constexpr std::uint32_t kInternetPasswords = 0x80000001;

// How an attribute is named: by a text, or by its number, which spells four letters.
constexpr std::uint32_t kByText = 0;
constexpr std::uint32_t kByNumber = 2;

/// The relations that a file describes, in the order of real files: "=", number and name, then each
/// attribute and its format: 0 string, 1 signed, 2 unsigned, 5 date, 6 blob. Kinds of passwords
/// have no name, and their attributes of four letters are numbers that spell these.
constexpr const char* kSchema = R"(
= 0 CSSM_DL_DB_SCHEMA_INFO RelationID 2 RelationName 0
= 2 CSSM_DL_DB_SCHEMA_ATTRIBUTES RelationID 2 AttributeID 2 AttributeNameFormat 2 AttributeName 0
  AttributeNameID 6 AttributeFormat 2
= 1 CSSM_DL_DB_SCHEMA_INDEXES RelationID 2 IndexID 2 AttributeID 2 IndexType 2 IndexedDataLocation 2
= 3 CSSM_DL_DB_SCHEMA_PARSING_MODULE RelationID 2 AttributeID 2 ModuleID 6 AddinVersion 0 SSID 2
  SubserviceType 2
= 80000000 - cdat 5 mdat 5 desc 6 icmt 6 crtr 2 type 2 scrp 1 PrintName 6 Alias 6 invi 1 nega 1
  cusi 1 prot 6 acct 6 svce 6 gena 6
= 80000001 - cdat 5 mdat 5 desc 6 icmt 6 crtr 2 type 2 scrp 1 PrintName 6 Alias 6 invi 1 nega 1
  cusi 1 prot 6 acct 6 sdmn 6 srvr 6 ptcl 2 atyp 6 port 2 path 6
)";

std::string words(const std::vector<std::size_t>& numbers) {
  std::string bytes;
  for (const std::size_t number : numbers) {
    bytes += bigEndian(number);
  }
  return bytes;
}

std::string padded(std::string bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
  return bytes;
}

std::string blob(const std::string& text) {
  return words({text.size()}) + padded(text);
}

/// Parts that lie back to back from `begin` on: a word for the place of each, `mark` added, 0 for
/// an empty one; their bytes; where they end.
struct Parts {
  Parts(std::size_t begin, const Texts& parts, std::size_t mark = 0) : end(begin) {
    for (const std::string& part : parts) {
      places += words({part.empty() ? 0 : end + mark});
      bytes += part;
      end += part.size();
    }
  }

  std::string places, bytes;
  std::size_t end;
};

/// A record with the encoded `values` of its relation's attributes; one without a value is empty.
std::string record(std::size_t number, const std::string& secret, const Texts& values) {
  const std::string secretBytes = padded(secret);
  const Parts parts(kRecordHeader + 4 * values.size() + secretBytes.size(), values, 1);
  // Size, number, the commit that made it, changes since, size of the secret, nothing.
  return words({parts.end, number, 1, 0, secret.size(), 0}) + parts.places + secretBytes +
         parts.bytes;
}

/// A table whose first `freeSlots` slots, none or one, are free.
std::string table(std::uint32_t relation, std::size_t freeSlots, const Texts& records) {
  const std::size_t slots = freeSlots + records.size();
  const std::size_t first = kTableHeader + 4 * slots;
  const Parts parts(first, records);
  const std::size_t firstFree = freeSlots == 0 ? 0 : kTableHeader + 1;
  const std::string indexes = words({8, 0});
  // A free slot holds the place of the next one, and this is the last.
  return words({parts.end + indexes.size(), relation, records.size(), first, parts.end, firstFree,
                slots}) +
         std::string(4 * freeSlots, '\0') + parts.places + parts.bytes + indexes;
}

/// The tables of the relations and of their attributes.
std::pair<std::string, std::string> schemaTables() {
  Texts relations;
  Texts attributes;
  std::istringstream in(kSchema);
  in >> std::hex;
  std::size_t relation = 0;
  std::size_t position = 0;
  for (std::string name; in >> name;) {
    if (name == "=") {
      in >> relation >> name;
      relations.push_back(
          record(relations.size(), "", {words({relation}), blob(name == "-" ? "" : name)}));
      position = 0;
      continue;
    }
    std::size_t format = 0;
    in >> format;
    const bool letters = relation >= kGenericPasswords && name.size() == 4;
    attributes.push_back(record(
        attributes.size(), "",
        {words({relation}), letters ? name : words({position}),
         words({letters ? kByNumber : kByText}), letters ? "" : blob(name), "", words({format})}));
    ++position;
  }
  return {table(kRelations, 0, relations), table(kAttributes, 0, attributes)};
}

std::string passwordTable(const std::vector<SavedPassword>& passwords) {
  const std::string date("20200101120000Z", 16);
  // The system's own: a mark, a key's label, and what that key encrypted.
  const std::string secret = "ssgp" + std::string(31, '\x5A');
  Texts records;
  for (const SavedPassword& password : passwords) {
    const std::string server = blob(password.server);
    records.push_back(
        record(records.size() + 1, secret, {date,       date,
                                            "",         "",
                                            "",         "",
                                            "",         server,
                                            "",         "",
                                            "",         "",
                                            "",         blob(password.account),
                                            blob(""),   server,
                                            "htps",     blob(password.authenticationType),
                                            words({0}), blob("")}));
  }
  return table(kInternetPasswords, 1, records);
}

}  // namespace

std::string keychainFile(const std::vector<SavedPassword>& passwords) {
  const auto [relations, attributes] = schemaTables();
  const Texts tables = {relations,
                        table(kIndexes, 1, {}),
                        attributes,
                        table(kParsingModules, 1, {}),
                        table(kGenericPasswords, 1, {}),
                        passwordTable(passwords)};
  const Parts parts(8 + 4 * tables.size(), tables);
  // Version, the empty authentication section, the schema section, the number of the last commit.
  return "kych" + words({0x00010000, 16, kFileHeader, 0, parts.end, tables.size()}) + parts.places +
         parts.bytes + words({1});
}

}  // namespace tasselby
