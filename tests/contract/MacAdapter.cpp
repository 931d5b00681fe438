#include <fstream>

#include "platform/macos/MacPlatform.h"
#include "tests/contract/Adapter.h"

namespace tasselby {

void runAdapter(int /*argc*/, char** /*argv*/, DelegateFactory makeDelegate) {
  MacRun(makeDelegate).delegate().applicationDidFinishLaunching();
}

std::vector<std::string> shownDuring(const std::function<void()>& step) {
  step();
  std::vector<std::string> shown;
  std::ifstream lines(macHomeFolder() + "/GNUstep Notifications");
  for (std::string line; std::getline(lines, line);) {
    shown.push_back(line.substr(0, line.find('|', line.find('|') + 1)));
  }
  return shown;
}

}  // namespace tasselby
