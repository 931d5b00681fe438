#include <fstream>

#include "platform/macos/MacPlatform.h"
#include "platform/offline/OfflinePlatform.h"
#include "samples/ScratchHome.h"
#include "tests/contract/Adapter.h"

namespace tasselby {
namespace {

std::string dictionary(const KeychainAttributes& values) {
  std::string text;
  for (const auto& [key, value] : values) {
    text.append("<key>").append(key).append("</key><string>").append(value).append("</string>");
  }
  return "<dict>" + text + "</dict>";
}

std::string list(const std::string& items) {
  return R"(<?xml version="1.0"?><plist version="1.0"><array>)" + items + "</array></plist>";
}

}  // namespace

void prepareAdapter(ScratchHome& home) {
  const FileManager files(home.home());
  KeychainQuery query;
  query.returnAttributes = true;
  query.matchLimit = KeychainQuery::MatchLimit::kAll;
  std::string items = dictionary({{"class", "genp"}, {"svce", "Mail"}, {"acct", "berta"}}) +
                      dictionary({{"class", "inet"}, {"agrp", "com.apple.cfnetwork"}});
  for (KeychainAttributes item : makeOfflineKeychain(files)->copyMatching(query).items) {
    item.emplace("class", "inet");
    items += dictionary(item);
  }
  home.file("GNUstep/Keychain.plist", list(items));
}

void runAdapter(int /*argc*/, char** /*argv*/, DelegateFactory makeDelegate) {
  MacRun(makeDelegate).delegate().applicationDidFinishLaunching();
}

std::vector<std::string> shownDuring(const std::function<void()>& step) {
  step();
  std::vector<std::string> shown;
  std::ifstream lines(macHomeFolder() + "/GNUstep/Notifications");
  for (std::string line; std::getline(lines, line);) {
    shown.push_back(line.substr(0, line.find('|', line.find('|') + 1)));
  }
  return shown;
}

}  // namespace tasselby
