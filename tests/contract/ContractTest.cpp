// What the worker relies on, whichever adapter is below it.

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>

#ifdef TASSELBY_MACOS
#include "platform/macos/MacPlatform.h"
#else
#include "platform/offline/OfflinePlatform.h"
#endif
#include "samples/KeychainWriter.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

using Body = std::function<void(const Platform&)>;

std::vector<char*> processArguments;
Body body;

class BodyDelegate final : public ApplicationDelegate {
 public:
  explicit BodyDelegate(const Platform& platform) : platform_(platform) {}
  void awakeFromNib() override {}
  void applicationDidFinishLaunching() override { body(platform_); }

 private:
  Platform platform_;
};

void onPlatform(const Body& test) {
  body = test;
  const DelegateFactory make =
      [](const Platform& platform) -> std::unique_ptr<ApplicationDelegate> {
    return std::make_unique<BodyDelegate>(platform);
  };
#ifdef TASSELBY_MACOS
  MacRun(make).delegate().applicationDidFinishLaunching();
#else
  offlineApplicationMain(static_cast<int>(processArguments.size()), processArguments.data(), make);
#endif
}

std::string preferences(const std::string& values) {
  return R"(<?xml version="1.0"?><plist version="1.0"><dict>)" + values + "</dict></plist>";
}

/// Each test in a process of its own: the system's adapter reads some things once.
struct AdapterContract : ::testing::Test {
  void SetUp() override {
    home.file("Library/Preferences/com.example.suite.plist", preferences(R"(
             <key>true</key><true/> <key>false</key><false/> <key>both</key><true/>
             <key>1</key><integer>1</integer> <key>2</key><integer>2</integer>
             <key>0</key><integer>0</integer> <key>YES</key><string>YES</string>
             <key>NO</key><string>NO</string> <key>maybe</key><string>maybe</string>
             <key>list</key><array><true/></array>)"))
        .file("Library/Preferences/com.marrowgatestudios.Tasselby.Worker.plist",
              preferences("<key>both</key><false/><key>own</key><true/>"))
        .file("Library/Keychains/login.keychain-db",
              keychainFile({{.server = "www.example.com"},
                            {.server = "b\xC3\xBC.example", .account = "berta"},
                            {.server = "mail.example", .authenticationType = "dflt"}}));
    ::setenv("HOME", home.home().c_str(), 1);
  }

  ScratchHome home;
};

TEST_F(AdapterContract, ProcessHasArgumentsAHomeAndTheKeysOfMissingTexts) {
  onPlatform([this](const Platform& platform) {
    EXPECT_EQ(platform.application.arguments(),
              Names(processArguments.begin(), processArguments.end()));
    EXPECT_EQ(platform.files.expandTilde("~"), home.home());
    EXPECT_GE(platform.coreFoundationVersionNumber, 744.0);
    for (const char* key : {"%@ Cookies, and Cache removed from %@", "", "\xC3\xBC"}) {
      EXPECT_EQ(platform.bundle.localizedString(key, ""), key);
    }
  });
}

TEST_F(AdapterContract, UserDefaultsReadTheFirstDomainThatHasTheKey) {
  onPlatform([](const Platform& platform) {
    EXPECT_FALSE(platform.userDefaults.boolForKey("true")) << "before its suite is added";
    platform.userDefaults.addSuiteNamed("com.example.suite");
    for (const char* key : {"true", "1", "2", "YES", "own", "argument"}) {
      EXPECT_TRUE(platform.userDefaults.boolForKey(key)) << key;
    }
    for (const char* key : {"false", "0", "NO", "maybe", "list", "both", "absent"}) {
      EXPECT_FALSE(platform.userDefaults.boolForKey(key)) << key;
    }
  });
}

TEST_F(AdapterContract, KeychainAnswersTheAttributesOfWhatMatches) {
  onPlatform([](const Platform& platform) {
    const auto found = [&platform](const KeychainQuery& query) {
      Names servers;
      for (const KeychainAttributes& item : platform.keychain.copyMatching(query).items) {
        servers.push_back(item.at("srvr") + " " + item.at("atyp"));
      }
      return servers;
    };
    KeychainQuery query;
    EXPECT_EQ(platform.keychain.copyMatching(query).status, Keychain::kSuccess);
    EXPECT_EQ(found(query), Names{}) << "attributes only when asked for";
    query.returnAttributes = true;
    EXPECT_EQ(found(query), Names{"www.example.com form"});
    query.matchLimit = KeychainQuery::MatchLimit::kAll;
    EXPECT_EQ(found(query),
              (Names{"www.example.com form", "b\xC3\xBC.example form", "mail.example dflt"}));
    query.account = "berta";
    EXPECT_EQ(found(query), Names{"b\xC3\xBC.example form"});
    query.service = "Mail";
    EXPECT_EQ(platform.keychain.copyMatching(query).status, Keychain::kItemNotFound);
  });
}

}  // namespace
}  // namespace tasselby

int main(int argc, char* argv[]) {
  tasselby::processArguments.assign(argv, argv + argc);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
