#include <gtest/gtest.h>

#include "storage/SqlText.h"

namespace tasselby {
namespace {

TEST(SqlText, DoublesQuotesInTextsAndLeavesListsAlone) {
  EXPECT_EQ(doubledQuotes("o'neil''s"), "o''neil''''s");
  EXPECT_EQ(valueList({}), "");
  EXPECT_EQ(valueList({"a"}), "a");
  EXPECT_EQ(valueList({"", "it's", "b"}), "','it's','b");
}

}  // namespace
}  // namespace tasselby
