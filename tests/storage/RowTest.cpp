#include <gtest/gtest.h>

#include "storage/Row.h"

namespace tasselby {
namespace {

Row rowOf(std::vector<std::string> names, std::vector<Value> values) {
  return {std::make_shared<const std::vector<std::string>>(std::move(names)), std::move(values)};
}

TEST(Row, IsEqualByNamesAndValues) {
  const Row row = rowOf({"a", "b"}, {0.0, Bytes{1}});
  EXPECT_EQ(row, rowOf({"a", "b"}, {-0.0, Bytes{1}}));
  EXPECT_EQ(row.hash(), rowOf({"a", "b"}, {-0.0, Bytes{1}}).hash());
  EXPECT_EQ(row, rowOf({"b", "a"}, {Bytes{1}, 0.0}));
  EXPECT_EQ(row.hash(), rowOf({"b", "a"}, {Bytes{1}, 0.0}).hash());
  EXPECT_NE(row, rowOf({"a", "c"}, {0.0, Bytes{1}}));
  EXPECT_NE(row, rowOf({"a", "b"}, {"0.0", Bytes{1}}));
}

}  // namespace
}  // namespace tasselby
