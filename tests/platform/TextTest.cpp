#include <gtest/gtest.h>
#include <map>
#include <string>

#include "platform/Paths.h"
#include "platform/Text.h"

namespace tasselby {
namespace {

const std::string kLoneSurrogate = "\xED\xA0\x80";

TEST(Text, TellsWellFormedUtf8) {
  for (const char* text : {"", "plain", "\xC3\xBC", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(isValidUtf8(text)) << text;
  }
  for (const char* text :
       {"\xFF", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80"}) {
    EXPECT_FALSE(isValidUtf8(text)) << text;
  }
}

TEST(Text, LowersCaseAndKeepsBytesThatAreNoText) {
  EXPECT_EQ(lowerCase("WWW.Example.COM"), "www.example.com");
  EXPECT_EQ(lowerCase("\xC3\x84\xCE\xA9"), "\xC3\xA4\xCF\x89");
  EXPECT_EQ(lowerCase("A\xFF\xC3" + kLoneSurrogate + "Z"), "a\xFF\xC3" + kLoneSurrogate + "z");
}

TEST(Text, CountsSixteenBitUnits) {
  EXPECT_EQ(utf16Length("a\xC3\xBC"), 2U);
  EXPECT_EQ(utf16Length("\xF0\x9F\x98\x80"), 2U);
  EXPECT_EQ(utf16Length("\xFF\xFE" + kLoneSurrogate), 3U);
}

TEST(Text, TrimsDecimalDigitsOfAllScripts) {
  EXPECT_EQ(trimDecimalDigits("12a3b45"), "a3b");
  EXPECT_EQ(trimDecimalDigits("\xD9\xA3x\xD9\xA4"), "x");
  EXPECT_EQ(trimDecimalDigits("123"), "");
  EXPECT_EQ(trimDecimalDigits("\xC2\xB2"), "\xC2\xB2") << "a superscript two is no decimal digit";
}

TEST(Text, ReversesByUnits) {
  EXPECT_EQ(reversedByUnits("moc.a"), "a.com");
  EXPECT_EQ(reversedByUnits("a\xC3\xBC\xFF"), "\xFF\xC3\xBC\x61");
  const std::string face = "\xF0\x9F\x98\x80";
  const std::string swapped = "\xED\xB8\x80\xED\xA0\xBD";
  EXPECT_EQ(reversedByUnits(face), swapped);
  EXPECT_EQ(reversedByUnits(swapped), face);
}

TEST(Text, DecodesPercentEscapesAsUtf8) {
  EXPECT_EQ(percentDecoded("a%41%c3%BC"), "aA\xC3\xBC");
  for (const char* broken : {"%", "%4", "%4g", "%zz", "%ff", "%C3x", "%C3x%BC"}) {
    EXPECT_EQ(percentDecoded(broken), std::nullopt) << broken;
  }
}

TEST(Text, FillsPlacesInOrderAndTakesValuesAsTheyAre) {
  EXPECT_EQ(formatted("%@ of %@", {"%@", "b"}), "%@ of b");
  EXPECT_EQ(formatted("%@, %@", {"a"}), "a, %@");
}

TEST(Paths, JoinsWithOneSlashAndNeverStartsAnew) {
  EXPECT_EQ(join("/a", "b"), "/a/b");
  EXPECT_EQ(join("/a/", "/b"), "/a/b");
  EXPECT_EQ(join("/", "b"), "/b");
  EXPECT_EQ(join("/a/", ""), "/a/");
  EXPECT_EQ(join("/a", "link/"), "/a/link");
}

TEST(Paths, TellsNamesThatLeadOut) {
  for (const char* name : {"", "a", "/a", "a/b", "...", "..a", "a.."}) {
    EXPECT_TRUE(staysBelow(name)) << name;
  }
  for (const std::string& name :
       {std::string(".."), std::string("../a"), std::string("."), std::string("a/.."),
        std::string("a/../b"), std::string("a\0b", 3)}) {
    EXPECT_FALSE(staysBelow(name)) << name;
  }
}

}  // namespace
}  // namespace tasselby
