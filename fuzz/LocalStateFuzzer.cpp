#include <cstddef>
#include <cstdint>
#include <string>

#include "app/LocalState.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tasselby::profilesInLocalState(std::string(data, data + size));
  return 0;
}
