#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/offline/KeychainFile.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto isInside = [bytes](const std::optional<std::string_view>& value) {
    return !value || value->empty() ||
           (value->data() >= bytes.data() && value->size() <= bytes.size() &&
            value->data() + value->size() <= bytes.data() + bytes.size());
  };
  KeychainFile file(bytes);
  std::size_t count = 0;
  while (const std::optional<InternetPassword> password = file.next()) {
    check(isInside(password->account) && isInside(password->server) &&
          isInside(password->authenticationType));
    check(++count <= size / 24);
  }
  return 0;
}
