#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "app/WorkerAppDelegate.h"
#include "tests/fuzz/Check.h"

using namespace tasselby;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const KeepList keepList = {"example.com", "example.co.uk", "a b.com"};
  const std::vector<std::string> names = {std::string(data, data + size)};
  const std::vector<std::string> none;
  const auto isPart = [&](const std::vector<std::string>& chosen) {
    return chosen == names || chosen == none;
  };
  check(isPart(WorkerAppDelegate::databaseArray_keep(names, keepList)));
  for (const char* browser : {"Safari", "Google Chrome", "Chromium"}) {
    check(isPart(WorkerAppDelegate::localStorageArray_browser_keep(names, browser, keepList)));
  }
  check(isPart(WorkerAppDelegate::mozillaLocalStorage_keep(names, keepList)));
  return 0;
}
