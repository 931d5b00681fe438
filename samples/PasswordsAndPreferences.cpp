// What tells the worker what to do: preferences, saved passwords, lists of profiles.

#include "samples/KeychainWriter.h"
#include "samples/SampleStores.h"

namespace tasselby {
namespace {

constexpr const char* kPreferences =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN"
  "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>displayNotifications</key>
	<true/>
	<key>removeAll</key>
	<false/>
	<key>secureDeleteData</key>
	<false/>
</dict>
</plist>
)";

}  // namespace

void addSettings(const MacHome& home) {
  home.writeFile("Library/Preferences/com.marrowgatestudios.Tasselby.plist", kPreferences);
  std::vector<SavedPassword> passwords = {
      {.server = "mail.example.org", .authenticationType = "dflt"},
      {.server = "printer.local"},
      {.server = "localhost"},
      {.server = ""},
  };
  for (const SampleSite& site : home.sites()) {
    if (site.kept) {
      passwords.push_back({.server = site.host});
    }
  }
  home.writeFile("Library/Keychains/login.keychain-db", keychainFile(passwords));
  for (const char* root : {"Google/Chrome", "Chromium"}) {
    home.writeFile(
        "Library/Application Support/" + std::string(root) + "/Local State",
        R"({"profile":{"info_cache":{"Default":{"name":"a"},"Profile 1":{"name":"b"}}}})");
  }
}

}  // namespace tasselby
