#pragma once

#include <cstddef>
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
  bool operator==(const Null&) const = default;
};

/// The bytes of a BLOB.
using Bytes = std::vector<std::uint8_t>;

/// One column of a row. An INTEGER is its decimal text.
using Value = std::variant<Null, std::string, double, Bytes>;

/// The names of a result's columns, each once, shared by all its rows.
using ColumnNames = std::shared_ptr<const std::vector<std::string>>;

/// One result row: values by column name. Two rows are equal when they have the same columns, in
/// whatever order, with equal values.
class Row {
 public:
  /// `values` stand in the order of `names`, one for each.
  Row(ColumnNames names, std::vector<Value> values)
      : names_(std::move(names)), values_(std::move(values)) {}

  /// The value under `column`; null when there is no such column.
  const Value* find(std::string_view column) const;

  /// The text under `column`; null when there is no such column or its value is not text.
  const std::string* text(std::string_view column) const;

  /// All columns, and their values in the same order.
  const std::vector<std::string>& names() const { return *names_; }
  const std::vector<Value>& values() const { return values_; }

  bool operator==(const Row& other) const;

  /// Equal rows have equal hashes.
  std::size_t hash() const;

 private:
  ColumnNames names_;
  std::vector<Value> values_;
};

/// A result: its rows in the order SQLite delivered them.
using RowList = std::vector<Row>;

}  // namespace tasselby
