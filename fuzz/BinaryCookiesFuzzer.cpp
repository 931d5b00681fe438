#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Check.h"
#include "platform/offline/BinaryCookies.h"

using namespace tasselby;

// The last eight bytes choose which cookies are deleted.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view file(reinterpret_cast<const char*>(data), size);
  std::uint64_t choice = 0;
  for (int i = 0; i < 8 && !file.empty(); ++i) {
    choice = choice << 8 | static_cast<std::uint8_t>(file.back());
    file.remove_suffix(1);
  }
  const BinaryCookies before = parseBinaryCookies(file);
  if (!before.parsedWholly) {
    return 0;
  }
  std::vector<bool> gone;
  std::vector<std::string> left;
  for (std::size_t i = 0; i < before.cookies.size(); ++i) {
    gone.push_back((choice >> (i % 64) & 1) != 0);
    if (!gone.back()) {
      left.emplace_back(before.cookies[i].record);
    }
  }
  const std::string changed = withoutCookies(file, before, gone);
  const BinaryCookies after = parseBinaryCookies(changed);
  check(after.parsedWholly);
  check(after.cookies.size() == left.size());
  for (std::size_t i = 0; i < left.size(); ++i) {
    check(after.cookies[i].record == left[i]);
  }
  return 0;
}
