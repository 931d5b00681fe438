// Shows what a run of the worker would remove from the home folder, and changes nothing there.

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

#include "app/Browsers.h"
#include "platform/HardError.h"
#include "platform/offline/OfflinePlatform.h"
#include "report/Forecast.h"
#include "report/Print.h"

namespace tasselby {
namespace {

constexpr int kNoPreview = 2;

int refuse(const std::string& why) {
  std::cerr << "tasselby-preview: " << why << '\n';
  return kNoPreview;
}

int preview(std::vector<std::string> arguments) try {
  const bool withItems = std::erase(arguments, "--items") != 0;
  const bool asJson = std::erase(arguments, "--json") != 0;
  if (std::ranges::none_of(arguments, [](const std::string& argument) {
        return !browserNamed(argument).name.empty();
      })) {
    std::string names;
    for (const Browser& browser : kBrowsers) {
      names.append(names.empty() ? "" : ", ").append(browser.name);
    }
    return refuse("name one of " + names);
  }
  const std::string home = homeFolder();
  if (home.empty() || ::access((home + "/").c_str(), R_OK | X_OK) != 0) {
    return refuse("HOME is missing or cannot be read" + (home.empty() ? home : ": " + home));
  }
  const RunResult result = forecast(arguments, FileManager(home), ScratchFolder());
  if (asJson) {
    printJson(std::cout, result);
  } else {
    printText(std::cout, result,
              "A run for " + result.browser + " over " + home + " would remove:", withItems);
  }
  if (!std::cout.flush()) {
    return refuse("the output cannot be written");
  }
  return result.endedAt.empty() ? EXIT_SUCCESS : kHardErrorStatus;
} catch (const std::exception& error) {
  return refuse(error.what());
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  return tasselby::preview({argv, argv + argc});
}
