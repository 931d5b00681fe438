#include <map>
#include <string>

#include "app/LocalState.h"
#include "platform/HardError.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

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

class ProfilesTest : public WorkerTest {};

TEST_F(ProfilesTest, ReadsTheBrowsersOwnFileAndKeepsInsideItsFolder) {
  home.file("Library/Application Support/Google/Chrome/Local State",
            withCache(R"({"Default": {"name": "Anna"}, "../..": {"name": "x"}})"));
  home.file("Library/Application Support/Chromium/Local State",
            withCache(R"({"P": {"name": "p"}})"));

  EXPECT_EQ(worker.userProfiles("Google Chrome").size(), 2U);
  EXPECT_EQ(worker.profileFolders("Google Chrome"), Names{"Default"});
  EXPECT_EQ(worker.userProfiles("Chromium"), (ProfileMap{{"P", "p"}}));
  EXPECT_EQ(worker.userProfiles("Opera"), (ProfileMap{{"P", "p"}}));
  EXPECT_EQ(worker.profileFolders("Opera"), Names{""});
}

TEST_F(ProfilesTest, FailsHardWithoutAReadableFile) {
  const std::string path = "Library/Application Support/Chromium/Local State";
  EXPECT_THROW(worker.userProfiles("Chromium"), HardError);
  home.file(path, "{\"\xFF\": 1}");
  EXPECT_THROW(worker.userProfiles("Chromium"), HardError);
  home.file(path, "");
  EXPECT_TRUE(worker.userProfiles("Chromium").empty());
  home.folder("Library/Application Support/Google/Chrome/Local State");
  EXPECT_THROW(worker.userProfiles("Google Chrome"), HardError);
}

}  // namespace
}  // namespace tasselby
