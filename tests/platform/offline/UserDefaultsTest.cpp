#include <gtest/gtest.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "platform/offline/ArgumentDomain.h"
#include "platform/offline/OfflinePlatform.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

using Domain = std::map<std::string, bool>;

TEST(ArgumentDomain, PairsSetPreferences) {
  const std::map<std::vector<std::string>, Domain> domainByArguments = {
      {{"worker", "-a", "YES", "Safari", "-b", "0"}, {{"a", true}, {"b", false}}},
      {{"worker", "-a", "-b", "YES"}, {{"b", true}}},
      {{"worker", "-a", "-1", "-b"}, {}},
      {{"--a", "1", "-", "-b", "1"}, {{"-a", true}, {"b", true}}},
      {{"worker", "-", "1", "-a", "", "-b", "1"}, {{"a", false}, {"b", true}}},
      {{"worker", "-a", "YES", "-a", "NO"}, {{"a", false}}}};
  for (const auto& [arguments, domain] : domainByArguments) {
    EXPECT_EQ(argumentDomain(arguments), domain) << ::testing::PrintToString(arguments);
  }
}

TEST(ArgumentDomain, ValueIsAPropertyListIfItCanBeOne) {
  for (const char* value : {"\n 1", "<true/>", " <integer>2</integer>\n", "\"YES\"",
                            "<?xml version=\"1.0\"?><plist><true/></plist>"}) {
    EXPECT_EQ(argumentDomain({"-a", value}), (Domain{{"a", true}})) << value;
  }
  for (const char* value : {"<false/>", "<yes/>", "\"YES\"x", "\"", "\"Y\\", "\"Y\\\"\"", "\"Y\"\"",
                            "(YES)", "{ a = 1; }", "<array><true/></array>"}) {
    EXPECT_EQ(argumentDomain({"-a", value}), (Domain{{"a", false}})) << value;
  }
}

TEST(UserDefaults, FirstReadableDomainThatHasTheKeyDecidesAndFilesAreReadOnce) {
  const std::string own = "Library/Preferences/com.marrowgatestudios.Tasselby.Worker.plist";
  const std::string suite = "Library/Preferences/suite.plist";
  ScratchHome home;
  const FileManager files(home.home());
  home.file(own, "<dict><key>arg</key><true/><key>own</key><true/><key>odd</key><array/></dict>")
      .file(suite, "<dict><key>own</key><false/><key>odd</key><true/><key>s</key><true/></dict>");
  ASSERT_EQ(::mkfifo(home.path("Library/Preferences/fifo.plist").c_str(), 0600), 0);
  const auto defaults = makeOfflineUserDefaults({"worker", "-arg", "Safari"}, files);
  defaults->addSuiteNamed("fifo");
  defaults->addSuiteNamed("suite");

  EXPECT_FALSE(defaults->boolForKey("arg"));
  home.file(own, "").file(suite, "");
  EXPECT_TRUE(defaults->boolForKey("own"));
  EXPECT_FALSE(defaults->boolForKey("odd"));
  EXPECT_TRUE(defaults->boolForKey("s"));
  EXPECT_FALSE(defaults->boolForKey("other"));
}

}  // namespace
}  // namespace tasselby
