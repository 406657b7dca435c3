#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace morvelan::host {

/// A table of named rows for people, with as many columns side by side as fit a width.
class ColumnTable {
 public:
  struct Row {
    std::string label;
    std::string unit;
    std::vector<std::string> cells;  // one per column; none for a heading
  };

  explicit ColumnTable(std::vector<std::string> columnNames) : columns(std::move(columnNames)) {}

  void Add(Row row) { rows.push_back(std::move(row)); }
  /// Lines of at most `width` characters, unless one column alone takes more.
  [[nodiscard]] std::string Text(std::size_t width) const;

 private:
  [[nodiscard]] std::size_t WidthOf(std::size_t column) const;
  [[nodiscard]] std::string Block(std::size_t first, std::size_t last) const;

  std::vector<std::string> columns;
  std::vector<Row> rows;
};

/// The number of characters of a UTF-8 text.
[[nodiscard]] std::size_t CharacterCount(std::string_view utf8);

/// Blanks added on the left, or on the right, up to a width.
[[nodiscard]] std::string PadLeft(const std::string& text, std::size_t width);
[[nodiscard]] std::string PadRight(const std::string& text, std::size_t width);

/// A number with six significant digits, in ordinary notation where that is readable.
[[nodiscard]] std::string TableNumber(double value);

}  // namespace morvelan::host
