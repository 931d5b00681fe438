#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/offline/ArgumentDomain.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // One argument a line.
  std::vector<std::string> arguments(1);
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] == '\n') {
      arguments.emplace_back();
    } else {
      arguments.back() += static_cast<char>(data[i]);
    }
  }
  tasselby::argumentDomain(arguments);
  return 0;
}
