#include <cstdlib>
#include <gtest/gtest.h>
#include <plist/plist.h>
#include <string>
#include <vector>

#include "platform/offline/PropertyList.h"
#include "platform/offline/PropertyListBounds.h"

namespace tasselby {
namespace {

std::string dictionary(const std::string& content) {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + content + "</dict></plist>";
}

std::string binary(const std::string& xml) {
  plist_t root = nullptr;
  plist_from_xml(xml.data(), static_cast<std::uint32_t>(xml.size()), &root);
  char* bytes = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(root, &bytes, &size);
  std::string list(bytes, size);
  std::free(bytes);
  plist_free(root);
  return list;
}

std::string repeated(int count, const std::string& text) {
  return count == 0 ? "" : text + repeated(count - 1, text);
}

void expectValues(bool boolean, const std::vector<std::string>& values) {
  for (const std::string& value : values) {
    const std::string xml = dictionary("<key>k</key>" + value);
    EXPECT_EQ(PropertyList(xml).boolForKey("k"), boolean) << value;
    EXPECT_EQ(PropertyList(binary(xml)).boolForKey("k"), boolean) << value;
    EXPECT_EQ(PropertyList(xml).boolForKey("other"), std::nullopt) << value;
  }
}

TEST(PropertyList, ValueDecidesByItsTypeInBothFormats) {
  expectValues(true, {"<true/>", "<integer>1</integer>", "<integer>-1</integer>",
                      "<real>0.5</real>", "<real>nan</real>", "<string>Y\u00e9s</string>"});
  expectValues(false, {"<false/>", "<integer>0</integer>", "<real>0</real>", "<string>no</string>",
                       "<string/>", "<date>2011-01-01T00:00:00Z</date>", "<data>WUVT</data>",
                       "<array><true/></array>", "<dict><key>k</key><true/></dict>"});
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
  const std::string xml = dictionary("<key>k</key><true/>");
  std::vector<std::string> damaged = {"<dict><key>k</key><true/>",
                                      dictionary("<key>k</key><yes/>"),
                                      "\xEF\xBB\xBF" + xml,
                                      "{ k = YES; }",
                                      "{\"k\": true}",
                                      "<array><true/></array>",
                                      binary(xml) + '\0',
                                      xml + std::string(kPropertyListLimit, ' ')};
  for (std::size_t size = 0; size < binary(xml).size(); ++size) {
    damaged.push_back(binary(xml).substr(0, size));
  }
  for (const std::string& bytes : damaged) {
    EXPECT_EQ(PropertyList(bytes).boolForKey("k"), std::nullopt) << bytes;
  }
}

TEST(PropertyList, WhatWouldExhaustStackOrMemoryIsNotParsed) {
  const std::string deep = repeated(500, "<array>") + repeated(500, "</array>");
  EXPECT_TRUE(isWithinBounds(dictionary(repeated(600, "<key>a</key><dict/>") + deep + deep)));
  EXPECT_TRUE(isWithinBounds(binary(deep)));
  EXPECT_FALSE(isWithinBounds(binary(repeated(50, "<array>") + deep + repeated(50, "</array>"))));
  for (const char* level : {"<array>", "<dict ><key>a</key>", "<array><!--</array>-->",
                            "<array a=\"</array>\">", "<array><true a=\"</array>\"/>"}) {
    EXPECT_FALSE(isWithinBounds(repeated(600, level))) << level;
  }
  std::string doubling = "bplist00";
  std::string offsets;
  for (char level = 1; level <= 30; ++level) {
    offsets += static_cast<char>(doubling.size());
    doubling += {'\xA2', level, level};
  }
  doubling += '\x09' + offsets + static_cast<char>(98) + std::string(6, '\0') + "\1\1";
  doubling += std::string(7, '\0') + static_cast<char>(31) + std::string(15, '\0') + '\x63';
  EXPECT_FALSE(isWithinBounds(doubling));
}

}  // namespace
}  // namespace tasselby
