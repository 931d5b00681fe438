#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/offline/PropertyList.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (const char* key : {"removeAll", "displayNotifications", "secureDeleteData", ""}) {
    boolInBinaryList(bytes, key);
    // Only a dictionary has keys, and as a value that is false.
    const XmlList list = readXmlList(bytes, key);
    check(!list.underKey || (list.top && !*list.top));
  }
  check(!boolValueOfString(bytes) || boolValueOfString(" \t" + std::string(bytes)));
  return 0;
}
