#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tasselby {

/// SQL NULL: a value, and not the absence of a column.
struct Null {
  auto operator<=>(const Null&) const = default;
};

/// The bytes of a BLOB.
using Bytes = std::vector<std::uint8_t>;

/// One column of a row. An INTEGER is its decimal text.
using Value = std::variant<Null, std::string, double, Bytes>;

/// The names of a result's columns, each once, shared by all its rows.
using ColumnNames = std::shared_ptr<const std::vector<std::string>>;

/// One result row: values by column name. Two rows are equal when they have the same columns with
/// equal values.
class Row {
 public:
  /// `names` are sorted, and `values` stand in their order, one for each.
  Row(ColumnNames names, std::vector<Value> values)
      : names_(std::move(names)), values_(std::move(values)) {}

  /// The value under `column`; null when there is no such column.
  const Value* find(std::string_view column) const;

  /// The text under `column`; null when there is no such column or its value is not text.
  const std::string* text(std::string_view column) const;

  /// The values of all columns, in the order of their names.
  const std::vector<Value>& values() const { return values_; }

  /// Compares names and values, by the names first.
  bool operator==(const Row& other) const;
  bool operator<(const Row& other) const;

 private:
  ColumnNames names_;
  std::vector<Value> values_;
};

/// A result: its rows in the order SQLite delivered them.
using RowList = std::vector<Row>;

}  // namespace tasselby
