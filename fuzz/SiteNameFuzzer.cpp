#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "fuzz/Check.h"
#include "keep/WorkerExtras.h"
#include "platform/Text.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string host(data, data + size);
  if (const std::optional<std::string> site = WorkerExtras::siteWithDomainName(host)) {
    check(lowerCase(host).ends_with(*site));
  }
  return 0;
}
