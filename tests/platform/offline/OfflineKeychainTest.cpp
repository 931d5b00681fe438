#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "keep/WorkerExtras.h"
#include "platform/offline/OfflinePlatform.h"
#include "samples/KeychainWriter.h"
#include "samples/ScratchHome.h"

namespace tasselby {
namespace {

constexpr const char* kNewer = "Library/Keychains/login.keychain-db";
constexpr const char* kOlder = "Library/Keychains/login.keychain";

struct OfflineKeychainTest : ::testing::Test {
  ScratchHome home;
  FileManager files{home.home()};
  std::unique_ptr<Keychain> keychain = makeOfflineKeychain(files);
};

TEST_F(OfflineKeychainTest, AnswersOnlyAttributesWithAValueTheSystemKnows) {
  home.file(kOlder, keychainFile({{.server = "a.test", .authenticationType = "forms"},
                                  {.server = "", .authenticationType = "dflt", .account = ""},
                                  {.server = "\xFF.test", .authenticationType = "FORM"},
                                  {.server = "c.test", .authenticationType = "for"}}));
  const std::vector<KeychainAttributes> items = {
      {{"acct", "anna"}, {"atyp", "form"}, {"srvr", "a.test"}},
      {{"atyp", "dflt"}},
      {{"acct", "anna"}},
      {{"acct", "anna"}, {"srvr", "c.test"}}};
  EXPECT_EQ(WorkerExtras::allAccounts(*keychain), items);
}

TEST_F(OfflineKeychainTest, ReadsTheOlderKeychainOnlyWithoutANewerOne) {
  const std::string sound = keychainFile({{.server = "a.test"}});
  home.link(kNewer, "nowhere").file(kOlder, sound);
  EXPECT_TRUE(WorkerExtras::allAccounts(*keychain)) << "a dangling link is no keychain";
  std::filesystem::remove(home.path(kNewer));
  home.file(kNewer, sound.substr(0, sound.size() - 5));
  EXPECT_FALSE(WorkerExtras::allAccounts(*keychain)) << "damaged";
  std::filesystem::remove(home.path(kNewer));
  ASSERT_EQ(::mkfifo(home.path(kNewer).c_str(), 0600), 0);
  EXPECT_FALSE(WorkerExtras::allAccounts(*keychain)) << "a FIFO without a writer";
}

TEST_F(OfflineKeychainTest, HonoursTheQueryAndTellsWhyThereIsNothing) {
  home.file(kNewer, keychainFile({{.server = "a.test"}, {.server = "b.test", .account = "berta"}}));
  KeychainQuery query = WorkerExtras::_queryForService_account(std::nullopt, "berta");
  EXPECT_EQ(keychain->copyMatching(query).status, Keychain::kSuccess);
  EXPECT_TRUE(keychain->copyMatching(query).items.empty());
  query.returnAttributes = true;
  EXPECT_EQ(keychain->copyMatching(query).items.at(0).at("srvr"), "b.test");
  query.account = std::nullopt;
  EXPECT_EQ(keychain->copyMatching(query).items.size(), 1U) << "one is the limit";

  KeychainError error;
  EXPECT_EQ(WorkerExtras::accountsForService_error(*keychain, "a.test", &error), std::nullopt);
  EXPECT_EQ(error.domain, "com.marrowgatestudios.Tasselby");
  EXPECT_EQ(error.code, Keychain::kItemNotFound);
}

}  // namespace
}  // namespace tasselby
