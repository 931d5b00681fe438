// The formats that are read, sound and damaged: passwords, cookies, profiles, preferences.
#include "app/LocalState.h"
#include "platform/BinaryCookies.h"
#include "platform/offline/KeychainFile.h"
#include "platform/offline/PropertyList.h"
#include "samples/BinaryCookieWriter.h"
#include "samples/KeychainWriter.h"
#include "tests/support/Testing.h"

namespace tasselby {
namespace {

using namespace std::string_literals;

/// What is left of a sound file with other `bytes` at some places.
struct Damage {
  const char* label;
  std::map<std::size_t, int> bytes;
  std::string left;
};

void expectLeft(const std::string& sound, std::string (*read)(std::string_view),
                const std::vector<Damage>& damages) {
  for (const Damage& damage : damages) {
    // Of just the size, so that a read behind the end is caught.
    std::vector<char> damaged(sound.begin(), sound.end());
    for (const auto& [place, byte] : damage.bytes) {
      damaged.at(place) = static_cast<char>(byte);
    }
    EXPECT_EQ(read({damaged.data(), damaged.size()}), damage.left) << damage.label;
  }
}

std::string passwordsIn(std::string_view bytes) {
  std::string all;
  KeychainFile file(bytes);
  while (const auto item = file.next()) {
    for (const auto& text : {item->server, item->authenticationType, item->account}) {
      all.append(text.value_or("-")).append(" ");
    }
  }
  return all;
}

TEST(KeychainFile, PassesOverExactlyWhatIsDamaged) {
  // In the file are a table of attributes at 0x1f8 with records of 80 and 64 bytes, those of the
  // account at 0x1068, the type at 0x1168 and the last at 0x11e8; and one of internet passwords at
  // 0x1280 with records at 0x12a8 and 0x138c.
  const std::string sound =
      keychainFile({{.server = "a.test"}, {.server = "b", .authenticationType = "dflt"}});
  const std::string first = "a.test form anna ", both = first + "b dflt anna ";
  const std::string noServer = "- form anna b dflt anna ";
  expectLeft(
      sound, passwordsIn,
      {{"another version", {{0x07, 1}}, ""},
       {"as many tables as fit", {{0x1a, 5}, {0x1b, 0x15}}, both},
       {"more tables than fit", {{0x1a, 5}, {0x1b, 0x16}}, ""},
       {"a table that outgrows its section", {{0x1283, 0xf1}}, ""},
       {"an attribute too many", {{0x203, 56}}, ""},
       {"an attribute without a format", {{0x1217, 0}}, ""},
       {"an attribute that is there twice", {{0x467, 0}}, ""},
       {"a type that is a number", {{0x11a7, 2}}, ""},
       {"accounts that are numbers", {{0x10a7, 2}}, "a.test form - b dflt - "},
       {"strings in place of blobs", {{0x1127, 0}, {0x11a7, 0}}, both},
       {"a record too many", {{0x128b, 3}}, both},
       {"a record that outgrows its table", {{0x138f, 0xe5}}, first},
       {"a record of nothing but words", {{0x138f, 0x68}}, first + "- - - "},
       {"a record shorter than its words", {{0x138f, 0x67}}, first},
       {"no value", {{0x12ff, 0}}, noServer},
       {"a value outside of its record", {{0x12ff, 0xe5}}, noServer},
       {"a length that outgrows its record", {{0x136f, 0x1d}}, noServer},
       {"one that does not", {{0x136f, 0x1c}}, sound.substr(0x1370, 0x1c) + noServer.substr(1)},
       {"the first of 1024 values", {{0x12ff, 0xc0}, {0x136a, 4}}, both},
       {"more values", {{0x12ff, 0xc0}, {0x136a, 4}, {0x136b, 1}}, noServer},
       {"the first of none", {{0x12ff, 0xc0}}, noServer}});
  for (std::size_t size = 0; size <= sound.size(); ++size) {
    // The last four bytes number the last change.
    EXPECT_EQ(passwordsIn(sound.substr(0, size)), size + 4 < sound.size() ? "" : both) << size;
  }
}

/// The names of the cookies, behind a "+" if all of the file is sound.
std::string cookiesIn(std::string_view bytes) {
  const BinaryCookies parsed = parseBinaryCookies(bytes);
  std::string all = parsed.parsedWholly ? "+" : "";
  for (const BinaryCookie& cookie : parsed.cookies) {
    all += cookie.name;
  }
  return all;
}

const std::vector<SampleCookie> kCookies = {
    {".a.test", "1", "1"}, {".a.test", "2", "", "/", 5}, {"b.test", "3", "2", "/p", 4}};

TEST(CookieFile, KeepsTheBytesOfAllThatStays) {
  const auto without = [](const std::string& file, const std::vector<bool>& gone) {
    return withoutCookies(file, parseBinaryCookies(file), gone);
  };
  const std::string tail("\0\0\0\5bplis and more", 18);
  for (const StringOrder order : {StringOrder::kNameFirst, StringOrder::kDomainFirst}) {
    const std::string file = binaryCookieFile(kCookies, order, tail);
    const std::string two = without(file, {true, false, false});
    EXPECT_EQ(two, binaryCookieFile({kCookies[1], kCookies[2]}, order, tail));
    const std::string emptyPage = without(file, {true, true, false});
    EXPECT_EQ(emptyPage.size(), binaryCookieFile({kCookies[2]}, order, tail).size() + 16);
    EXPECT_EQ(cookiesIn(emptyPage), "+3");
    EXPECT_EQ(without(two, {true, false}), emptyPage);
  }
}

TEST(CookieFile, LeavesOutWhatIsUnsoundAndSaysSo) {
  const std::string sound = binaryCookieFile(kCookies);
  expectLeft(sound, cookiesIn,
             {{"another magic", {{0, 'k'}}, ""},
              {"more pages than fit", {{7, 64}}, ""},
              {"a page beyond the end", {{15, 0x5f}}, "12"},
              {"another page start", {{18, 2}}, "3"},
              {"more records than fit", {{20, 37}}, "3"},
              {"a record in the page header", {{24, 0x13}}, "23"},
              {"five offsets of one record, four of which are twice the page",
               {{20, 5}, {24, 0x5a}, {28, 0x5a}, {32, 0x5a}, {36, 0x5a}, {40, 0x5a}},
               "22223"},
              {"no end of the page header", {{33, 1}}, "123"},
              {"a record smaller than its fields", {{36, 0x37}}, "23"},
              {"a record larger than the page", {{36, 0x8c}}, "23"},
              {"a domain among the fields", {{52, 0x37}}, "23"},
              {"a path behind the record", {{60, 0x46}}, "23"},
              {"a value without an end", {{105, '1'}}, "23"},
              {"another checksum", {{264, 0xae}}, "123"},
              {"another trailer word", {{268, 6}}, "123"}});
  for (std::size_t size = 0; size <= sound.size(); ++size) {
    EXPECT_EQ(cookiesIn(sound.substr(0, size)).starts_with('+'), size == sound.size()) << size;
  }
}

std::string withCache(const std::string& cache) {
  return R"({"other": [{"profile": 1}], "profile": {"info_cache": )" + cache + "}}";
}

TEST(LocalState, ListsProfilesThatHaveAName) {
  const std::string one = R"({"Default": {"name": "Anna"}})";
  const auto deep = [](std::size_t depth) {
    return withCache(R"({"Default": {"name": "Anna", "x": )" + std::string(depth, '[') +
                     std::string(depth, ']') + "}}");
  };
  for (const std::string& text :
       {withCache(R"({"None": {}, "Number": {"name": 1}, "Text": "name", "List": [{"name": "x"}],
                      "Default": {"name": "Anna", "x": [{}], "y": 1e308}, "Null": {"name": null},
                      "Deep": {"name": {"name": "x"}}, "Gone": {"name": "x"}, "Gone": 1})"),
        withCache(R"({"Default": {"name": "x"}, "Default": {"name": "y", "name": "Anna"}})"),
        R"({"profile": 1, "profile": {"info_cache": [], "info_cache": )" + one + "}}", deep(508)}) {
    EXPECT_EQ(profilesInLocalState(text), (ProfileMap{{"Default", "Anna"}})) << text;
  }
  for (const std::string& text :
       {withCache(one) + "]", withCache("[" + one + "]"),
        R"([{"profile": {"info_cache": )" + one + "}}]",
        R"({"profile": {"info_cache": )" + one + R"(}, "profile": 1})",
        R"({"profile": {"info_cache": )" + one + R"(, "info_cache": 1}})",
        R"({"profile": [{"info_cache": )" + one + "}]}", withCache(R"({"A": {"name": 1e999}})"),
        deep(509), std::string(1000000, '['), ""s, "\"profile\""s}) {
    EXPECT_TRUE(profilesInLocalState(text).empty()) << text.substr(0, 100);
  }
}

std::string dictionary(const std::string& content) {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + content + "</dict></plist>";
}

/// A binary list with `value` twice under "k", once in UTF-16, behind another text "k"; and beside
/// it a dictionary that has itself under "k".
std::string binary(const std::string& value) {
  std::string list = "bplist00", offsets;
  for (const std::string& object :
       {"\xD4\1\2\1\3\1\5\6\6"s, "\x51k"s, "\x10k"s, "\x61\0k"s, "\x09"s, "\xD1\1\5"s, value}) {
    offsets += {'\0', static_cast<char>(list.size())};
    list += object;
  }
  const std::string trailer = "\0\0\0\0\0\0\2\1\0\0\0\0\0\0\0\7"s + std::string(15, '\0');
  return list + offsets + trailer + static_cast<char>(list.size());
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
                "\x13\xFF\0\0\0\0\0\0\0"s, "\x11\0\1"s, "\x14"s + std::string(15, '\0') + "\1",
                "\x22\0\0\0\1"s, "\x23\x7F\xF8\0\0\0\0\0\0"s, "\x53yes", "\x5F\x10\x02\t1",
                "\x62\0Y\x20\xAC"s});
  expectValues(false, {"<false/>",
                       "<integer>-0</integer><!--1-->",
                       "<real>-0</real>",
                       "<string/>",
                       "<date>2011-01-01T00:00:00Z</date>",
                       "<data>WUVT</data>",
                       "<new>1</new>",
                       "<array><true/></array>",
                       "<string><b>Y</b>es</string>",
                       "\x08",
                       "\0"s,
                       "\x12\0\0\0\0"s,
                       "\x22\x80\0\0\0"s,
                       "\x50",
                       "\x61\x59\0"s,
                       "\xD1\1\4",
                       "\xAF\x17",
                       "\x43yes",
                       "\x80\1",
                       "<string>\n1</string>"});
  expectValues(std::nullopt,
               {"\x13\1", "\x15" + std::string(32, '\1'), "\x5F", "\x5F\x51", "\x5F\x14",
                "\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "<true>", "<key>k</key>"});
}

TEST(PropertyList, DamagedListHasNoKeys) {
  const std::string member = "<key>k</key><true/>", list = dictionary(member);
  // Nesting neither hides a key nor takes memory without bound.
  const auto nested = [&member](int depth) {
    std::string begins, ends;
    for (; depth > 0; --depth) {
      begins += "<dict>", ends += "</dict>";
    }
    return dictionary("<key>o</key>" + begins + ends + member);
  };
  EXPECT_EQ(boolInPropertyList(nested(100'000), "k"), true);
  std::string tooMany = binary("\x09");
  tooMany[tooMany.size() - 17] = 8;
  for (const std::string& sound : {list, binary("\x09")}) {
    for (std::size_t size = 0; size < sound.size(); ++size) {
      EXPECT_EQ(boolInPropertyList(sound.substr(0, size), "k"), std::nullopt) << size;
    }
  }
  for (const std::string& damaged :
       {dictionary(member + "<key>o</key>"), dictionary(member + "<true/>"), list + list,
        "<!DOCTYPE plist [<!ENTITY e 'e'>]>" + list.substr(21), "<array>" + member + "</array>",
        binary("\x09") + '\0', binary("\x09").replace(8, 1, "\xA4"), tooMany, nested(300'000)}) {
    EXPECT_EQ(boolInPropertyList(damaged, "k"), std::nullopt) << damaged.substr(0, 200);
  }
}

}  // namespace
}  // namespace tasselby
