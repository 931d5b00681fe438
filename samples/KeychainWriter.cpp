// Every number is a big-endian word of 32 bits, and everything starts on a multiple of four. See
// platform/offline/KeychainFile.cpp for the layout.

#include "samples/KeychainWriter.h"

#include <string_view>

namespace tasselby {
namespace {

using Texts = std::vector<std::string>;

constexpr std::uint32_t kFileHeader = 20;
constexpr std::uint32_t kTableHeader = 28;
constexpr std::uint32_t kRecordHeader = 24;

// Relations.
constexpr std::uint32_t kRelations = 0;
constexpr std::uint32_t kIndexes = 1;
constexpr std::uint32_t kAttributes = 2;
constexpr std::uint32_t kParsingModules = 3;
constexpr std::uint32_t kGenericPasswords = 0x80000000;
constexpr std::uint32_t kInternetPasswords = 0x80000001;

// Attribute formats.
constexpr std::uint32_t kString = 0;
constexpr std::uint32_t kSigned = 1;
constexpr std::uint32_t kUnsigned = 2;
constexpr std::uint32_t kDate = 5;
constexpr std::uint32_t kBlob = 6;

// How an attribute is named: by a text, or by its number, which spells four letters.
constexpr std::uint32_t kByText = 0;
constexpr std::uint32_t kByNumber = 2;

struct Attribute {
  std::string_view name;
  std::uint32_t format;
};

struct Relation {
  std::uint32_t id;
  std::string_view name;
  std::vector<Attribute> attributes;
};

/// The attributes that all kinds of passwords have, and behind them those that are their `own`.
std::vector<Attribute> passwordAttributes(const std::vector<Attribute>& own) {
  std::vector<Attribute> all = {{"cdat", kDate},   {"mdat", kDate},      {"desc", kBlob},
                                {"icmt", kBlob},   {"crtr", kUnsigned},  {"type", kUnsigned},
                                {"scrp", kSigned}, {"PrintName", kBlob}, {"Alias", kBlob},
                                {"invi", kSigned}, {"nega", kSigned},    {"cusi", kSigned},
                                {"prot", kBlob},   {"acct", kBlob}};
  all.insert(all.end(), own.begin(), own.end());
  return all;
}

/// The relations a file describes, in the order of real files. Four letters are an attribute's
/// number; a longer name stands beside its number.
std::vector<Relation> schema() {
  return {
      {kRelations,
       "CSSM_DL_DB_SCHEMA_INFO",
       {{"RelationID", kUnsigned}, {"RelationName", kString}}},
      {kAttributes,
       "CSSM_DL_DB_SCHEMA_ATTRIBUTES",
       {{"RelationID", kUnsigned},
        {"AttributeID", kUnsigned},
        {"AttributeNameFormat", kUnsigned},
        {"AttributeName", kString},
        {"AttributeNameID", kBlob},
        {"AttributeFormat", kUnsigned}}},
      {kIndexes,
       "CSSM_DL_DB_SCHEMA_INDEXES",
       {{"RelationID", kUnsigned},
        {"IndexID", kUnsigned},
        {"AttributeID", kUnsigned},
        {"IndexType", kUnsigned},
        {"IndexedDataLocation", kUnsigned}}},
      {kParsingModules,
       "CSSM_DL_DB_SCHEMA_PARSING_MODULE",
       {{"RelationID", kUnsigned},
        {"AttributeID", kUnsigned},
        {"ModuleID", kBlob},
        {"AddinVersion", kString},
        {"SSID", kUnsigned},
        {"SubserviceType", kUnsigned}}},
      {kGenericPasswords, "", passwordAttributes({{"svce", kBlob}, {"gena", kBlob}})},
      {kInternetPasswords, "",
       passwordAttributes({{"sdmn", kBlob},
                           {"srvr", kBlob},
                           {"ptcl", kUnsigned},
                           {"atyp", kBlob},
                           {"port", kUnsigned},
                           {"path", kBlob}})},
  };
}

std::string word(std::size_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes += static_cast<char>(value >> shift & 0xFF);
  }
  return bytes;
}

std::string padded(std::string bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
  return bytes;
}

std::string blob(std::string_view text) {
  return word(text.size()) + padded(std::string(text));
}

std::string joined(const Texts& texts) {
  std::string bytes;
  for (const std::string& text : texts) {
    bytes += text;
  }
  return bytes;
}

/// A record with the encoded `values` of its relation's attributes; one without a value is empty.
std::string record(std::size_t number, const std::string& secret, const Texts& values) {
  const std::string secretBytes = padded(secret);
  std::size_t end = kRecordHeader + 4 * values.size() + secretBytes.size();
  std::string words;
  for (const std::string& value : values) {
    words += value.empty() ? word(0) : word(end + 1);
    end += value.size();
  }
  // Size, number, the commit that made it, changes since, size of the secret, nothing.
  return word(end) + word(number) + word(1) + word(0) + word(secret.size()) + word(0) + words +
         secretBytes + joined(values);
}

/// A table whose first `freeSlots` slots, none or one, are free.
std::string table(std::uint32_t relation, std::size_t freeSlots, const Texts& records) {
  const std::size_t slots = freeSlots + records.size();
  const std::size_t first = kTableHeader + 4 * slots;
  std::size_t end = first;
  // A free slot holds the place of the next one, and this is the last.
  std::string offsets = freeSlots == 0 ? "" : word(0);
  for (const std::string& record : records) {
    offsets += word(end);
    end += record.size();
  }
  const std::string indexes = word(8) + word(0);
  const std::size_t firstFree = freeSlots == 0 ? 0 : kTableHeader + 1;
  return word(end + indexes.size()) + word(relation) + word(records.size()) + word(first) +
         word(end) + word(firstFree) + word(slots) + offsets + joined(records) + indexes;
}

std::string relationTable() {
  Texts records;
  for (const Relation& relation : schema()) {
    records.push_back(record(records.size(), "", {word(relation.id), blob(relation.name)}));
  }
  return table(kRelations, 0, records);
}

/// The numbers of the attributes with a name: their position in the describing relations, and the
/// system's own for the two that passwords have.
std::size_t numberOf(std::string_view name, std::size_t position) {
  return name == "PrintName" ? 7 : name == "Alias" ? 8 : position;
}

std::string attributeTable() {
  Texts records;
  for (const Relation& relation : schema()) {
    for (std::size_t i = 0; i < relation.attributes.size(); ++i) {
      const Attribute& attribute = relation.attributes[i];
      const bool letters = relation.id >= kGenericPasswords && attribute.name.size() == 4;
      records.push_back(
          record(records.size(), "",
                 {word(relation.id),
                  letters ? std::string(attribute.name) : word(numberOf(attribute.name, i)),
                  word(letters ? kByNumber : kByText), letters ? "" : blob(attribute.name), "",
                  word(attribute.format)}));
    }
  }
  return table(kAttributes, 0, records);
}

std::string passwordTable(const std::vector<SavedPassword>& passwords) {
  const std::string date = std::string("20200101120000Z") + '\0';
  // The system's own: a mark, a key's label, and what that key encrypted.
  const std::string secret = "ssgp" + std::string(31, '\x5A');
  Texts records;
  for (const SavedPassword& password : passwords) {
    Texts values(20);
    values[0] = values[1] = date;
    values[7] = blob(password.server);
    values[13] = blob(password.account);
    values[14] = blob("");
    values[15] = blob(password.server);
    values[16] = password.protocol;
    values[17] = blob(password.authenticationType);
    values[18] = word(password.port);
    values[19] = blob(password.path);
    records.push_back(record(records.size() + 1, secret, values));
  }
  return table(kInternetPasswords, 1, records);
}

}  // namespace

std::string keychainFile(const std::vector<SavedPassword>& passwords) {
  const Texts tables = {relationTable(),
                        table(kIndexes, 1, {}),
                        attributeTable(),
                        table(kParsingModules, 1, {}),
                        table(kGenericPasswords, 1, {}),
                        passwordTable(passwords)};
  std::string offsets;
  std::size_t end = 8 + 4 * tables.size();
  for (const std::string& each : tables) {
    offsets += word(end);
    end += each.size();
  }
  // Version, the empty authentication section, the schema section, the number of the last commit.
  return "kych" + word(0x00010000) + word(16) + word(kFileHeader) + word(0) + word(end) +
         word(tables.size()) + offsets + joined(tables) + word(1);
}

}  // namespace tasselby
