#include <gtest/gtest.h>
#include <string>

#include "samples/ScratchHome.h"
#include "storage/Sqlite.h"

namespace tasselby {
namespace {

struct SqliteTest : ::testing::Test {
  ScratchHome home;
  Sqlite sqlite;
};

TEST_F(SqliteTest, AnswersValuesByTheirStorageClass) {
  ASSERT_TRUE(sqlite.open(home.path("new.sqlite")));
  const auto rows = sqlite.executeQuery(
      "SELECT 42 AS i, 1.5 AS f, 'a' || char(0) || 'b' AS t, '' AS e, x'00ff' AS b, x'' AS eb, "
      "NULL AS n, 1 AS twice, 2 AS twice; SELECT 7");
  ASSERT_EQ(rows.value_or(RowList()).size(), 1U);
  const Row& row = rows->front();
  const Names names = {"i", "f", "t", "e", "b", "eb", "n", "twice"};
  const std::vector<Value> values = {"42", 1.5, "a", "", Bytes{0, 255}, Bytes(), Null(), "2"};
  EXPECT_EQ(row, Row(std::make_shared<const Names>(names), values));
}

}  // namespace
}  // namespace tasselby
