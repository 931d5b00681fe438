#include "platform/BinaryCookies.h"

#include <cassert>
#include <cstdint>
#include <optional>

namespace tasselby {
namespace {

constexpr std::string_view kMagic = "cook";
constexpr std::size_t kFileHeader = 8;
constexpr std::uint32_t kTrailer = 0x07172005;
// Checksum and trailer word.
constexpr std::size_t kFileEnd = 8;

constexpr std::uint32_t kPageStart = 0x00000100;
// The first word, the record count and the four zero bytes behind the offsets.
constexpr std::size_t kPageHeader = 12;
constexpr std::size_t kFirstOffset = 8;

constexpr std::size_t kRecordFields = 56;
constexpr std::size_t kDomainField = 16;
constexpr std::size_t kNameField = 20;
constexpr std::size_t kPathField = 24;
constexpr std::size_t kValueField = 28;

// How often over the records of a page may cover it. Without a bound, a table of offsets that all
// name one large record would cost its size times their number.
constexpr std::size_t kOverlap = 2;

std::uint32_t bigEndian(std::string_view bytes, std::size_t at) {
  std::uint32_t word = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    word = word << 8 | static_cast<std::uint8_t>(bytes[at + i]);
  }
  return word;
}

std::uint32_t littleEndian(std::string_view bytes, std::size_t at) {
  std::uint32_t word = 0;
  for (std::size_t i = 4; i-- > 0;) {
    word = word << 8 | static_cast<std::uint8_t>(bytes[at + i]);
  }
  return word;
}

void putBigEndian(std::string& bytes, std::size_t at, std::size_t word) {
  for (std::size_t i = 4; i-- > 0; word >>= 8) {
    bytes[at + i] = static_cast<char>(word & 0xFF);
  }
}

void appendLittleEndian(std::string& bytes, std::size_t word) {
  for (std::size_t i = 0; i < 4; ++i, word >>= 8) {
    bytes += static_cast<char>(word & 0xFF);
  }
}

/// What `page` adds to the checksum: its bytes at the offsets 0, 4, 8 and so on. Pages are no
/// multiples of four bytes, and the stride starts anew in each.
std::uint32_t checksumOf(std::string_view page) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < page.size(); i += 4) {
    sum += static_cast<std::uint8_t>(page[i]);
  }
  return sum;
}

/// The record at `offset` of `page`, whose records begin at `first`; empty when it does not fit.
/// A record's first field, 4 LE, is its size.
std::string_view recordAt(std::string_view page, std::size_t first, std::size_t offset) {
  if (page.size() < kRecordFields || offset < first || offset > page.size() - kRecordFields) {
    return {};
  }
  const std::size_t size = littleEndian(page, offset);
  const bool fits = size >= kRecordFields && size <= page.size() - offset;
  return fits ? page.substr(offset, size) : std::string_view();
}

/// The string whose offset in `record`, 4 LE, stands at `field`, up to its NUL.
std::optional<std::string_view> stringAt(std::string_view record, std::size_t field) {
  const std::size_t offset = littleEndian(record, field);
  if (offset < kRecordFields || offset >= record.size()) {
    return std::nullopt;
  }
  const std::size_t end = record.find('\0', offset);
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  return record.substr(offset, end - offset);
}

/// Appends the records of `page`, the file's `number`th, to `cookies`. Answers whether all of the
/// page is sound.
bool readPage(std::string_view page, std::size_t number, std::vector<BinaryCookie>& cookies) {
  // Read big-endian: four fixed bytes and no number.
  if (page.size() < kPageHeader || bigEndian(page, 0) != kPageStart) {
    return false;
  }
  const std::size_t count = littleEndian(page, 4);
  if (count > (page.size() - kPageHeader) / 4) {
    return false;
  }
  bool sound = littleEndian(page, kFirstOffset + 4 * count) == 0;
  std::size_t allowance = kOverlap * page.size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t offset = littleEndian(page, kFirstOffset + 4 * i);
    const std::string_view record = recordAt(page, kPageHeader + 4 * count, offset);
    if (record.empty() || record.size() > allowance) {
      sound = false;
      continue;
    }
    allowance -= record.size();
    const auto domain = stringAt(record, kDomainField);
    const auto name = stringAt(record, kNameField);
    if (domain && name && stringAt(record, kPathField) && stringAt(record, kValueField)) {
      cookies.push_back({number, record, *name, *domain});
    } else {
      sound = false;
    }
  }
  return sound;
}

void appendPage(std::string& bytes, const std::vector<std::string_view>& records) {
  bytes.append("\0\0\1\0", 4);
  appendLittleEndian(bytes, records.size());
  std::size_t offset = kPageHeader + 4 * records.size();
  for (const std::string_view record : records) {
    appendLittleEndian(bytes, offset);
    offset += record.size();
  }
  appendLittleEndian(bytes, 0);
  for (const std::string_view record : records) {
    bytes += record;
  }
}

}  // namespace

BinaryCookies parseBinaryCookies(std::string_view file) {
  BinaryCookies parsed;
  if (file.size() < kFileHeader || !file.starts_with(kMagic)) {
    return parsed;
  }
  const std::size_t pages = bigEndian(file, kMagic.size());
  if (pages > (file.size() - kFileHeader) / 4) {
    return parsed;
  }
  bool sound = true;
  std::uint32_t checksum = 0;
  std::size_t at = kFileHeader + 4 * pages;
  for (std::size_t i = 0; i < pages; ++i) {
    const std::size_t size = bigEndian(file, kFileHeader + 4 * i);
    if (size > file.size() - at) {
      return parsed;
    }
    const std::string_view page = file.substr(at, size);
    sound = readPage(page, i, parsed.cookies) && sound;
    checksum += checksumOf(page);
    at += size;
  }
  parsed.parsedWholly = sound && file.size() - at >= kFileEnd && bigEndian(file, at) == checksum &&
                        bigEndian(file, at + 4) == kTrailer;
  return parsed;
}

std::string withoutCookies(std::string_view file, const BinaryCookies& parsed,
                           const std::vector<bool>& gone) {
  assert(parsed.parsedWholly && gone.size() == parsed.cookies.size());
  const std::size_t pages = bigEndian(file, kMagic.size());
  std::size_t at = kFileHeader + 4 * pages;
  std::string changed;
  changed.reserve(file.size());
  changed += file.substr(0, at);
  std::uint32_t checksum = 0;
  std::size_t cookie = 0;
  std::vector<std::string_view> kept;
  for (std::size_t i = 0; i < pages; ++i) {
    const std::string_view page = file.substr(at, bigEndian(file, kFileHeader + 4 * i));
    at += page.size();
    kept.clear();
    const std::size_t first = cookie;
    for (; cookie < gone.size() && parsed.cookies[cookie].page == i; ++cookie) {
      if (!gone[cookie]) {
        kept.push_back(parsed.cookies[cookie].record);
      }
    }
    const std::size_t start = changed.size();
    if (kept.size() == cookie - first) {
      changed += page;
    } else {
      appendPage(changed, kept);
    }
    checksum += checksumOf(std::string_view(changed).substr(start));
    putBigEndian(changed, kFileHeader + 4 * i, changed.size() - start);
  }
  changed.append(4, '\0');
  putBigEndian(changed, changed.size() - 4, checksum);
  changed += file.substr(at + 4);
  return changed;
}

}  // namespace tasselby
