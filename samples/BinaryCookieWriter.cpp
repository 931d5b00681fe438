#include "samples/BinaryCookieWriter.h"

#include <array>
#include <bit>
#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace tasselby {
namespace {

using Page = std::vector<std::string>;

void putLittleEndian(std::string& bytes, std::size_t at, std::uint64_t number, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i, number >>= 8) {
    bytes[at + i] = static_cast<char>(number & 0xFF);
  }
}

void appendLittleEndian(std::string& bytes, std::uint64_t number, std::size_t size) {
  bytes.append(size, '\0');
  putLittleEndian(bytes, bytes.size() - size, number, size);
}

void appendBigEndian(std::string& bytes, std::uint64_t word) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes += static_cast<char>(word >> shift & 0xFF);
  }
}

/// 56 bytes of little-endian fields, then the strings, whose offsets stand at 16 (domain), 20
/// (name), 24 (path) and 28 (value).
std::string recordOf(const SampleCookie& cookie, StringOrder order) {
  struct Text {
    std::size_t field;
    std::string_view text;
  };
  const Text domain{16, cookie.domain};
  const Text name{20, cookie.name};
  const Text path{24, cookie.path};
  const Text value{28, cookie.value};
  const auto texts = order == StringOrder::kNameFirst ? std::array{name, value, domain, path}
                                                      : std::array{domain, name, path, value};
  std::string record(56, '\0');
  putLittleEndian(record, 8, cookie.flags, 4);
  putLittleEndian(record, 40, std::bit_cast<std::uint64_t>(cookie.expiry), 8);
  putLittleEndian(record, 48, std::bit_cast<std::uint64_t>(cookie.creation), 8);
  for (const Text& text : texts) {
    putLittleEndian(record, text.field, record.size(), 4);
    record.append(text.text).push_back('\0');
  }
  putLittleEndian(record, 0, record.size(), 4);
  return record;
}

std::string bytesOf(const Page& page) {
  std::string bytes("\0\0\1\0", 4);
  appendLittleEndian(bytes, page.size(), 4);
  std::size_t offset = 12 + 4 * page.size();
  for (const std::string& record : page) {
    appendLittleEndian(bytes, offset, 4);
    offset += record.size();
  }
  appendLittleEndian(bytes, 0, 4);
  for (const std::string& record : page) {
    bytes += record;
  }
  return bytes;
}

}  // namespace

std::string binaryCookieFile(const std::vector<SampleCookie>& cookies, StringOrder order,
                             const std::string& tail) {
  std::vector<Page> pages;
  std::unordered_map<std::string, std::size_t> pageByDomain;
  for (const SampleCookie& cookie : cookies) {
    const auto [entry, isNew] = pageByDomain.try_emplace(cookie.domain, pages.size());
    if (isNew) {
      pages.emplace_back();
    }
    pages[entry->second].push_back(recordOf(cookie, order));
  }

  std::string file = "cook";
  appendBigEndian(file, pages.size());
  std::string body;
  std::uint32_t checksum = 0;
  for (const Page& page : pages) {
    const std::string bytes = bytesOf(page);
    appendBigEndian(file, bytes.size());
    body += bytes;
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
      checksum += static_cast<std::uint8_t>(bytes[i]);
    }
  }
  file += body;
  appendBigEndian(file, checksum);
  appendBigEndian(file, 0x07172005);
  return file + tail;
}

}  // namespace tasselby
