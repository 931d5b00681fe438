#include "samples/BinaryCookieWriter.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <unordered_map>
#include <utility>

namespace tasselby {
namespace {

using Page = std::vector<std::string>;

// In seconds since 2001-01-01 00:00:00 UTC.
constexpr double kCreation = 500000000;
constexpr double kExpiry = 600000000;

std::string littleEndian(std::uint64_t number) {
  std::string bytes = bigEndian(number);
  std::ranges::reverse(bytes);
  return bytes;
}

std::string dateBytes(double number) {
  const auto bits = std::bit_cast<std::uint64_t>(number);
  return littleEndian(bits) + littleEndian(bits >> 32U);
}

/// 56 bytes of little-endian fields, then the strings, whose offsets stand at 16 (domain), 20
/// (name), 24 (path) and 28 (value).
std::string recordOf(const SampleCookie& cookie) {
  std::string record(40, '\0');
  record.replace(8, 4, littleEndian(cookie.flags));
  record += dateBytes(kExpiry) + dateBytes(kCreation);
  for (const auto& [field, text] : {std::pair(std::size_t{16}, cookie.domain),
                                    {20, cookie.name},
                                    {24, cookie.path},
                                    {28, cookie.value}}) {
    record.replace(field, 4, littleEndian(record.size()));
    record += text + '\0';
  }
  return record.replace(0, 4, littleEndian(record.size()));
}

std::string bytesOf(const Page& page) {
  std::string header = bigEndian(0x100) + littleEndian(page.size());
  std::string records;
  for (const std::string& record : page) {
    header += littleEndian(12 + 4 * page.size() + records.size());
    records += record;
  }
  return header + littleEndian(0) + records;
}

}  // namespace

std::string bigEndian(std::uint64_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes += static_cast<char>(number >> shift & 0xFF);
  }
  return bytes;
}

std::string binaryCookieFile(const std::vector<SampleCookie>& cookies, const std::string& tail) {
  std::vector<Page> pages;
  std::unordered_map<std::string, std::size_t> pageByDomain;
  for (const SampleCookie& cookie : cookies) {
    const std::size_t page = pageByDomain.try_emplace(cookie.domain, pages.size()).first->second;
    pages.resize(std::max(pages.size(), page + 1));
    pages[page].push_back(recordOf(cookie));
  }

  std::string file = "cook" + bigEndian(pages.size());
  std::string body;
  std::uint32_t checksum = 0;
  for (const Page& page : pages) {
    const std::string bytes = bytesOf(page);
    file += bigEndian(bytes.size());
    body += bytes;
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
      checksum += static_cast<std::uint8_t>(bytes[i]);
    }
  }
  return file + body + bigEndian(checksum) + bigEndian(0x07172005) + tail;
}

}  // namespace tasselby
