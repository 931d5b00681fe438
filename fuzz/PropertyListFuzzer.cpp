#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/offline/PropertyList.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const PropertyList list(bytes);
  list.boolValue();
  for (const char* key : {"removeAll", "displayNotifications", "secureDeleteData", ""}) {
    list.boolForKey(key);
  }
  boolValueOfString(bytes);
  return 0;
}
