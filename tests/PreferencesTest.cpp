// Preferences: property lists, the command line, and which of them decides.
#include <sys/stat.h>

#include "platform/offline/ArgumentDomain.h"
#include "platform/offline/OfflinePlatform.h"
#include "platform/offline/PropertyList.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using namespace std::string_literals;

std::string dictionary(const std::string& content) {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + content + "</dict></plist>";
}

std::string bigEndian(std::size_t number, int bytes) {
  return bytes == 0 ? "" : bigEndian(number >> 8, bytes - 1) + static_cast<char>(number);
}

/// A binary list with `value` twice under "k", once in UTF-16, behind a true one; and beside it a
/// dictionary that has itself under "k".
std::string binary(const std::string& value) {
  std::string list = "bplist00";
  std::string offsets;
  for (const std::string& object :
       {"\xD4\1\2\1\3\4\5\6\6"s, "\x51k"s, "\x10k"s, "\x61\0k"s, "\x09"s, "\xD1\1\5"s, value}) {
    offsets += bigEndian(list.size(), 2);
    list += object;
  }
  return list + offsets + "\0\0\0\0\0\0\2\1"s + bigEndian(7, 8) + bigEndian(0, 8) +
         bigEndian(list.size(), 8);
}

void expectValues(std::optional<bool> boolean, const std::vector<std::string>& values) {
  for (const std::string& value : values) {
    const std::string before = "<key>o</key><dict><key>k</key><true/></dict><key>k</key><true/>";
    const std::string list =
        value.starts_with('<') ? dictionary(before + "<key>k</key>" + value) : binary(value);
    EXPECT_EQ(boolInPropertyList(list, "k"), boolean) << ::testing::PrintToString(value);
    EXPECT_EQ(boolInPropertyList(list, "other"), std::nullopt);
  }
}

TEST(PropertyList, LastValueOfAKeyDecidesByItsTypeInBothFormats) {
  expectValues(true,
               {"<true/>", "<integer> -1</integer>", "<integer>0x0a</integer>", "<real>0.5</real>",
                "<real>nan</real>", "<string>Y\u00e9s</string>", "<string>&#89;es</string>", "\x09",
                "\x13\xFF\0\0\0\0\0\0\0"s, "\x14"s + std::string(15, '\0') + "\1", "\x22\0\0\0\1"s,
                "\x23\x7F\xF8\0\0\0\0\0\0"s, "\x53yes", "\x5F\x10\x02\t1", "\x62\0Y\x20\xAC"s});
  expectValues(false, {"<false/>", "<integer>-0</integer><!--1-->", "<real>-0</real>", "<string/>",
                       "<date>2011-01-01T00:00:00Z</date>", "<data>WUVT</data>", "<new>1</new>",
                       "<array><true/></array>", "\x08", "\0"s, "\x12\0\0\0\0"s, "\x22\x80\0\0\0"s,
                       "\x50", "\x61\x59\0"s, "\xD1\1\4", "\xAF\x17", "\x43yes", "\x80\1"});
  expectValues(std::nullopt,
               {"\x13\1", "\x15" + std::string(32, '\1'), "\x5F", "\x5F\x51", "\x5F\x14",
                "\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "<true>", "<key>k</key>"});
}

TEST(PropertyList, StringIsTrueForALetterOfYesAndForANumber) {
  for (const char* text : {"YES", "y+", "true", "T", " \t1 ", "1a", "007", "-3", "+01"}) {
    EXPECT_TRUE(boolValueOfString(text)) << text;
  }
  for (const char* text : {"", " ", "no", "on", "+0", "+y", "0y", "ay", "0.5", "--1", "\n1"}) {
    EXPECT_FALSE(boolValueOfString(text)) << text;
  }
}

TEST(PropertyList, DamagedListHasNoKeys) {
  const std::string member = "<key>k</key><true/>";
  const std::string xml = dictionary(member);
  std::vector<std::string> damaged = {
      dictionary(member + "<key>o</key>"),
      dictionary(member + "<true/>"),
      "<!DOCTYPE plist [<!ENTITY e 'e'>]>" + dictionary(member).substr(21),
      "{ k = YES; }",
      "<array>" + member + "</array>",
      binary("\x09") + '\0',
      xml + xml};
  for (const std::string& list : {xml, binary("\x09")}) {
    for (std::size_t size = 0; size < list.size(); ++size) {
      damaged.push_back(list.substr(0, size));
    }
  }
  for (const std::string& bytes : damaged) {
    EXPECT_EQ(boolInPropertyList(bytes, "k"), std::nullopt) << bytes;
  }
}

TEST(PropertyList, NestingNeitherHidesAKeyNorTakesMemoryWithoutBound) {
  const auto nested = [](int depth) {
    std::string begins, ends;
    for (; depth > 0; --depth) {
      begins += "<dict><key>k</key>", ends += "</dict>";
    }
    return dictionary("<key>o</key>" + begins + ends + "<key>k</key><true/>");
  };
  EXPECT_EQ(boolInPropertyList(nested(100'000), "k"), true);
  EXPECT_EQ(boolInPropertyList(nested(300'000), "k"), std::nullopt);
}

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
