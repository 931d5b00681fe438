#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/BinaryCookies.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

namespace {

std::size_t numberAt(std::string_view bytes, std::size_t at) {
  std::size_t number = 0;
  for (const char byte : bytes.substr(at, 4)) {
    number = number << 8 | static_cast<std::uint8_t>(byte);
  }
  return number;
}

/// `file` with the checksum that its pages have, which hardly any changed file would keep; as it is
/// when the pages do not fit.
std::string withChecksum(std::string file) {
  const std::size_t pages = file.size() < 8 ? file.size() : numberAt(file, 4);
  if (pages >= file.size() / 4) {
    return file;
  }
  std::size_t sum = 0;
  std::size_t end = 8 + 4 * pages;
  for (std::size_t i = 0; i < pages; ++i) {
    const std::size_t start = end;
    end += numberAt(file, 8 + 4 * i);
    for (std::size_t at = start; at < std::min(end, file.size()); at += 4) {
      sum += static_cast<std::uint8_t>(file[at]);
    }
  }
  for (std::size_t i = 0; i < 4 && end < file.size(); ++i, ++end) {
    file[end] = static_cast<char>(sum >> (24 - 8 * i) & 0xFF);
  }
  return file;
}

/// Deletes each cookie whose place in `choice`, repeated without end, has a set bit.
void deleteCookies(std::string_view file, const BinaryCookies& before, unsigned choice) {
  std::vector<bool> gone;
  std::vector<BinaryCookie> left;
  for (const BinaryCookie& cookie : before.cookies) {
    gone.push_back((choice >> (gone.size() % 8) & 1) != 0);
    if (!gone.back()) {
      left.push_back(cookie);
    }
  }
  const std::string changed = withoutCookies(file, before, gone);
  const BinaryCookies after = parseBinaryCookies(changed);
  check(left.size() < before.cookies.size() || changed == file);
  check(after.parsedWholly && after.cookies.size() == left.size());
  for (std::size_t i = 0; i < left.size(); ++i) {
    const BinaryCookie& cookie = after.cookies[i];
    check(cookie.page == left[i].page && cookie.record == left[i].record &&
          cookie.name == left[i].name && cookie.domain == left[i].domain);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string file = withChecksum(std::string(data, data + size));
  const BinaryCookies parsed = parseBinaryCookies(file);
  std::size_t total = 0;
  for (const BinaryCookie& cookie : parsed.cookies) {
    total += cookie.record.size();
  }
  check(total <= 2 * size);
  if (parsed.parsedWholly) {
    for (const unsigned choice : {0x00U, 0xFFU, 0x55U, 0xAAU, 0x01U}) {
      deleteCookies(file, parsed, choice);
    }
  }
  return 0;
}
