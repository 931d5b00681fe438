// The keychain's file and the browsers' list of profiles, sound and damaged.
#include <sys/stat.h>

#include "app/LocalState.h"
#include "keep/WorkerExtras.h"
#include "platform/offline/KeychainFile.h"
#include "samples/KeychainWriter.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

// Written by hand: an attribute table at 0x24 and a table of internet passwords at 0x168, which
// have the attributes PrintName, srvr, atyp and port. Their records are at 0x18c and 0x1d8.
const std::string kExample =
    "6b796368000100000000001000000014000000000000021000000002000000100000015400000144000000020000"
    "00040000002c0000013c00000000000000040000002c0000007c000000bc000000fc000000500000000000000001"
    "0000000000000000000000000000003100000035000000390000003d000000000000004d80000001000000070000"
    "0000000000095072696e744e616d6500000000000006000000400000000100000001000000000000000000000000"
    "00000031000000350000003900000000000000000000003d80000001737276720000000200000006000000400000"
    "00020000000100000000000000000000000000000031000000350000003900000000000000000000003d80000001"
    "61747970000000020000000600000040000000030000000100000000000000000000000000000031000000350000"
    "003900000000000000000000003d80000001706f727400000002000000020000000800000000000000bc80000001"
    "0000000200000024000000b4000000000000000200000024000000700000004c0000000000000001000000000000"
    "00060000000000000000000000310000004100000049aaaaaaaaaaaa00000000000a7777772e612e746573740000"
    "00000004666f726d000001bb00000044000000010000000100000000000000000000000000000029000000310000"
    "003d00000000000000014c00000000000006622e7465737400000000000464666c74000000080000000000000001";

/// Server and authentication type of each item, "-" for what it has not.
Names itemsIn(const std::string& bytes) {
  Names items;
  // A copy of just the size, so that a read behind the end is caught.
  const std::vector<char> exact(bytes.begin(), bytes.end());
  KeychainFile file(std::string_view(exact.data(), exact.size()));
  while (const auto item = file.next()) {
    items.push_back(std::string(item->server.value_or("-")) + " " +
                    std::string(item->authenticationType.value_or("-")));
  }
  return items;
}

TEST(KeychainFile, PassesOverExactlyWhatIsDamaged) {
  const Names all = {"www.a.test form", "b.test dflt"};
  const Names noServer = {"- form", "b.test dflt"};
  struct Case {
    const char* label;
    std::map<std::size_t, int> bytes;
    Names items;
  };
  const std::vector<Case> cases = {
      {"nothing", {}, all},
      {"another version", {{0x07, 1}}, {}},
      {"more tables than fit", {{0x1b, 0x83}}, {}},
      {"a table that outgrows its section", {{0x16b, 0xbd}}, {}},
      {"an attribute too many", {{0x2f, 5}}, {}},
      {"an attribute without a format", {{0x14f, 0}}, {}},
      {"an attribute that is there twice",
       {{0x154, 's'}, {0x155, 'r'}, {0x156, 'v'}, {0x157, 'r'}},
       {}},
      {"a type that is a number", {{0x11f, 2}}, {}},
      {"strings in place of blobs", {{0xdf, 0}, {0x11f, 0}}, all},
      {"a record too many", {{0x173, 3}}, all},
      {"a record that outgrows its table", {{0x1db, 0x4d}}, {"www.a.test form"}},
      {"a record shorter than its words", {{0x18f, 36}, {0x1b3, 36}}, {}},
      {"no value", {{0x1ab, 0}}, noServer},
      {"a value outside of its record", {{0x1ab, 0x4d}}, noServer},
      {"a length that outgrows its record", {{0x1bf, 0x19}}, noServer},
      {"the first of 1024 values", {{0x1ab, 0x2c}, {0x1b8, 0}, {0x1b9, 0}, {0x1ba, 4}}, all},
      {"more values", {{0x1ab, 0x2c}, {0x1b8, 0}, {0x1b9, 0}, {0x1ba, 4}, {0x1bb, 1}}, noServer},
  };
  for (const Case& damage : cases) {
    std::string bytes(kExample.size() / 2, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      bytes[i] = static_cast<char>(std::stoi(kExample.substr(i * 2, 2), nullptr, 16));
    }
    for (const auto& [offset, byte] : damage.bytes) {
      bytes.at(offset) = static_cast<char>(byte);
    }
    EXPECT_EQ(itemsIn(bytes), damage.items) << damage.label;
  }
}

TEST(KeychainFile, NeverMakesUpAnItem) {
  const std::string sound = keychainFile({{.server = "www.example.com"},
                                          {.server = "www.example.com", .account = "berta"},
                                          {.server = "example.org", .authenticationType = "dflt"},
                                          {.server = "", .port = 8080, .path = "/a"}});
  const Names items = {"www.example.com form", "www.example.com form", "example.org dflt", " form"};
  for (std::size_t size = 0; size <= sound.size(); ++size) {
    // The last four bytes number the last change.
    EXPECT_EQ(itemsIn(sound.substr(0, size)), size + 4 < sound.size() ? Names{} : items) << size;
  }
  const std::size_t firstPassword = sound.find("ssgp") - 24 - std::size_t{20} * 4;
  for (std::size_t i = 0; i < firstPassword; ++i) {
    for (const int flipped : {0x01, 0x04, 0x80, 0xFF}) {
      std::string bytes = sound;
      bytes[i] = static_cast<char>(bytes[i] ^ flipped);
      for (const std::string& item : itemsIn(bytes)) {
        // A damaged schema may lose the types of all items; without one they are not kept.
        const bool typed = !item.ends_with(' ') && !item.ends_with('-');
        EXPECT_TRUE(!typed || std::ranges::count(items, item) != 0) << i << ": " << item;
      }
    }
  }
}

struct KeychainFolder : WorkerTest {
  static constexpr const char* kNewer = "Library/Keychains/login.keychain-db";
  static constexpr const char* kOlder = "Library/Keychains/login.keychain";
};

TEST_F(KeychainFolder, AnswersOnlyAttributesWithAValueTheSystemKnows) {
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

TEST_F(KeychainFolder, ReadsTheOlderKeychainOnlyWithoutANewerOne) {
  const std::string sound = keychainFile({{.server = "a.test"}});
  home.link(kNewer, "nowhere").file(kOlder, sound);
  EXPECT_TRUE(WorkerExtras::allAccounts(*keychain)) << "a dangling link is no keychain";
  fs::remove(home.path(kNewer));
  home.file(kNewer, sound.substr(0, sound.size() - 5));
  EXPECT_FALSE(WorkerExtras::allAccounts(*keychain)) << "damaged";
  fs::remove(home.path(kNewer));
  ASSERT_EQ(::mkfifo(home.path(kNewer).c_str(), 0600), 0);
  EXPECT_FALSE(WorkerExtras::allAccounts(*keychain)) << "a FIFO without a writer";
}

TEST_F(KeychainFolder, HonoursTheQueryAndTellsWhyThereIsNothing) {
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

std::string withCache(const std::string& cache) {
  return R"({"other": [{"profile": 1}], "profile": {"info_cache": )" + cache + "}}";
}

std::string nested(const std::string& text, int depth) {
  std::string all;
  for (int i = 0; i < depth; ++i) {
    all += text;
  }
  return all;
}

TEST(LocalState, ListsProfilesThatHaveAName) {
  const ProfileMap two = {{"Default", "Anna"}, {"Profile 1", ""}};
  const std::map<std::string, ProfileMap> profilesByText = {
      {withCache(R"({"Default": {"name": "Anna"}, "Profile 1": {"a": [{}], "name": ""}})"), two},
      {withCache(R"({"Default": {"name": "Anna"}, "None": {}, "Number": {"name": 1},
                     "Text": "name", "List": [{"name": "x"}], "Null": {"name": null},
                     "Deep": {"name": {"name": "x"}}, "Profile 1": {"name": "", "x": 1e308}})"),
       two},
      {withCache(R"({"Default": {"name": "x"}, "Default": {"name": "Anna"},
                     "Profile 1": {"name": "y", "name": ""}, "Gone": {"name": "x"}, "Gone": 1})"),
       two},
      {withCache(R"({"Default": {"name": "Anna"}})") + "]", {}},
      {withCache(R"([{"name": "Anna"}])"), {}},
      {R"({"profile": {"info_cache": {"Default": {"name": "Anna"}}}, "profile": 1})", {}},
      {R"([{"profile": {"info_cache": {"Default": {"name": "Anna"}}}}])", {}},
      {R"({"profile": [{"info_cache": {"Default": {"name": "Anna"}}}]})", {}},
      {withCache(R"({"Default": {"name": "Anna", "big": 1e999}})"), {}},
      {"", {}},
      {"\"profile\"", {}},
  };
  for (const auto& [text, profiles] : profilesByText) {
    EXPECT_EQ(profilesInLocalState(text), profiles) << text;
  }
}

TEST(LocalState, SurvivesAnyNesting) {
  const std::string deep = R"(", "deep": )" + nested("[", 500) + nested("]", 500) + "}}";
  EXPECT_EQ(profilesInLocalState(withCache(R"({"Default": {"name": "Anna)" + deep)).size(), 1U);
  for (const char* opening : {"[", R"({"profile":)"}) {
    EXPECT_TRUE(profilesInLocalState(nested(opening, 1000000)).empty());
  }
}

}  // namespace
}  // namespace tasselby
