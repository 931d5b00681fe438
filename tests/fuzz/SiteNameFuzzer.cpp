#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "keep/WorkerExtras.h"
#include "platform/Text.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string host(data, data + size);
  const std::string lower = lowerCase(host);
  check(lowerCase(lower) == lower);
  if (const std::optional<std::string> site = WorkerExtras::siteWithDomainName(host)) {
    check(lower.ends_with(*site));
    // An address, and a name with a dot at its end, may have any number of labels.
    const bool whole = trimDecimalDigits(site->substr(site->rfind('.') + 1)).empty();
    check(whole || std::ranges::count(*site, '.') <= 2);
  }
  return 0;
}
