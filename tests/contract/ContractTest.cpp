// What the worker relies on, whichever adapter is below it. Each test runs in a process of its own:
// the system's adapter reads some things once.

#include <cstdlib>
#include <gtest/gtest.h>

#ifdef TASSELBY_MACOS
#include "platform/macos/MacPlatform.h"
#else
#include "platform/offline/OfflinePlatform.h"
#endif
#include "samples/KeychainWriter.h"
#include "samples/RunWorker.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

ScratchHome home;
Names processArguments;
const Platform* platform = nullptr;

TEST(AdapterContract, ProcessHasArgumentsAHomeAndTheKeysOfMissingTexts) {
  EXPECT_EQ(platform->application.arguments(), processArguments);
  EXPECT_EQ(platform->files.expandTilde("~"), home.home());
  EXPECT_GE(platform->coreFoundationVersionNumber, 744.0);
  for (const char* key : {"%@ Cookies, and Cache removed from %@", "", "\xC3\xBC"}) {
    EXPECT_EQ(platform->bundle.localizedString(key, ""), key);
  }
}

TEST(AdapterContract, UserDefaultsReadTheFirstDomainThatHasTheKey) {
  EXPECT_FALSE(platform->userDefaults.boolForKey("true")) << "before its suite is added";
  platform->userDefaults.addSuiteNamed("com.example.suite");
  for (const char* key : {"true", "1", "YES", "own", "argument"}) {
    EXPECT_TRUE(platform->userDefaults.boolForKey(key)) << key;
  }
  for (const char* key : {"list", "both", "odd", "off", "absent"}) {
    EXPECT_FALSE(platform->userDefaults.boolForKey(key)) << key;
  }
}

TEST(AdapterContract, KeychainAnswersTheAttributesOfWhatMatches) {
  KeychainQuery query;
  const auto expectFound = [&query](std::int32_t status, const Names& servers) {
    const Keychain::Answer answer = platform->keychain.copyMatching(query);
    Names found;
    for (const KeychainAttributes& item : answer.items) {
      found.push_back(item.at("srvr") + " " + item.at("atyp"));
    }
    EXPECT_EQ(std::pair(answer.status, found), std::pair(status, servers));
  };
  expectFound(Keychain::kSuccess, {});
  query.returnAttributes = true;
  expectFound(Keychain::kSuccess, {"www.example.com form"});
  query.matchLimit = KeychainQuery::MatchLimit::kAll;
  expectFound(Keychain::kSuccess,
              {"www.example.com form", "b\xC3\xBC.example form", "mail.example dflt"});
  query.account = "berta";
  expectFound(Keychain::kSuccess, {"b\xC3\xBC.example form"});
  query.service = "Mail";
  expectFound(Keychain::kItemNotFound, {});
}

std::unique_ptr<ApplicationDelegate> runTests(const Platform& given) {
  platform = &given;
  std::exit(RUN_ALL_TESTS());
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  using namespace tasselby;
  processArguments.assign(argv, argv + argc);
  ::testing::InitGoogleTest(&argc, argv);
  ::setenv("HOME", home.home().c_str(), 1);
  const auto prefer = [](const std::string& domain, const std::string& keys) {
    home.file("Library/Preferences/" + domain + ".plist",
              "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + keys + "</dict></plist>");
  };
  prefer("com.example.suite",
         "<key>true</key><true/><key>1</key><integer>1</integer><key>YES</key><string>YES</string>"
         "<key>list</key><array><true/></array><key>both</key><true/><key>odd</key><true/>");
  prefer("com.marrowgatestudios.Tasselby.Worker",
         "<key>own</key><true/><key>off</key><true/><key>both</key><false/><key>odd</key><array/>");
  home.file("Library/Keychains/login.keychain-db",
            keychainFile({{.server = "www.example.com"},
                          {.server = "b\xC3\xBC.example", .account = "berta"},
                          {.server = "mail.example", .authenticationType = "dflt"}}));
#ifdef TASSELBY_MACOS
  const MacRun run(runTests);
#else
  return offlineApplicationMain(static_cast<int>(processArguments.size()),
                                pointersTo(processArguments).data(), runTests);
#endif
}
