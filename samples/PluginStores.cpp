#include "samples/SampleStores.h"

namespace tasselby {
namespace {

void addSystemFlash(MacHome& home) {
  // The player's objects and grouped settings are chosen and counted, and stay where they are.
  const std::string player = "Library/Preferences/Macromedia/Flash Player/";
  const std::string settings = player + "macromedia.com/support/flashplayer/sys/";
  for (const SampleSite& site : home.sites()) {
    home.addFile("Flash objects", player + "#SharedObjects/Q7XK2MPA/" + site.host + "/game.sol",
                 {});
    home.addFile("Flash settings", settings + "#" + site.host + "/settings.sol", kEveryBrowser,
                 site.kept);
  }
  home.addFile("Flash objects", player + "#SharedObjects/Q7XK2MPA/.DS_Store", {});
  home.addFile("Flash settings", settings + "settings.sol", {});
  home.addFile("Flash settings", settings + "##group/grouped.example.net/settings.sol", {});
}

void addPepperFlash(MacHome& home, const std::string& browser, const std::string& root) {
  for (const std::string& profile : kChromiumProfileNames) {
    const std::string objects =
        "Library/Application Support/" + root + "/" + profile +
        "/Pepper Data/Shockwave Flash/WritableRoot/#SharedObjects/7YUL8MEX/";
    const std::string settings = objects + "macromedia.com/support/flashplayer/sys/";
    const std::string store = browser + " Flash";
    for (const SampleSite& site : home.sites()) {
      home.addFile(store, objects + site.host + "/game.sol", {browser}, site.kept);
      home.addFile(store, settings + "#" + site.host + "/settings.sol", {browser}, site.kept);
    }
    home.addFile(store, settings + "settings.sol", {});
    home.addFile(store, settings + "##group/grouped.example.net/settings.sol", {browser});
  }
}

void addSilverlight(MacHome& home) {
  const std::string folder =
      "Library/Application Support/Microsoft/Silverlight/is/ab12cd34.ef5/gh67ij89.kl0/1/";
  int number = 0;
  for (const SampleSite& site : home.sites()) {
    const std::string name = "store" + std::to_string(number++);
    const auto add = [&](const std::string& path, const std::string& contents) {
      home.addFile("Silverlight", folder + path, kEveryBrowser, site.kept, contents);
    };
    add("s/" + name + "/f/data", "");
    add("s/" + name + "/id.dat", site.host);
    add("s/" + name + "/group.dat", "group-" + name);
    add("g/group-" + name + "/quota.dat", "");
  }
  home.addFile("Silverlight", "Library/Application Support/Microsoft/Silverlight/mssl.lck", {});
}

}  // namespace

void addPlugIns(MacHome& home) {
  addSystemFlash(home);
  addPepperFlash(home, "Google Chrome", "Google/Chrome");
  addPepperFlash(home, "Chromium", "Chromium");
  addSilverlight(home);
}

}  // namespace tasselby
