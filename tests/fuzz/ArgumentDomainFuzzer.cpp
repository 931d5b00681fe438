#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/offline/ArgumentDomain.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

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
  const std::map<std::string, bool> domain = argumentDomain(arguments);
  check(domain.size() <= arguments.size() / 2);
  for (const auto& [name, value] : domain) {
    check(std::ranges::find(arguments, "-" + name) != arguments.end() && !name.empty());
  }
  return 0;
}
