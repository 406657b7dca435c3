#include "host/flowsheet/ColumnTable.h"

#include <algorithm>
#include <cmath>

#include "host/file/NumberText.h"

namespace morvelan::host {
namespace {

constexpr std::size_t kGap = 2;
constexpr int kSignificantDigits = 6;
constexpr double kSmallestOrdinary = 1e-4;
constexpr double kLargestOrdinary = 1e10;

template <class Rows, class Member>
std::size_t Widest(const Rows& rows, Member member) {
  std::size_t widest = 0;
  for (const auto& row : rows) widest = std::max(widest, CharacterCount(row.*member));
  return widest;
}

void AppendLine(std::string& text, std::string line) {
  line.erase(line.find_last_not_of(' ') + 1);
  text += line + '\n';
}

}  // namespace

std::size_t CharacterCount(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::ranges::count_if(utf8, [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

std::string PadLeft(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, CharacterCount(text)), ' ') + text;
}

std::string PadRight(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, CharacterCount(text)), ' ');
}

std::string TableNumber(double value) {
  if (value == 0) return "0";
  const double size = std::abs(value);
  if (size < kSmallestOrdinary || size >= kLargestOrdinary)
    return ToChars(value, std::chars_format::scientific, kSignificantDigits - 1);
  const int before = std::max(static_cast<int>(std::floor(std::log10(size))) + 1, 1);
  return ToChars(value, std::chars_format::fixed, std::max(kSignificantDigits - before, 0));
}

std::size_t ColumnTable::WidthOf(std::size_t column) const {
  std::size_t widest = CharacterCount(columns[column]);
  for (const Row& row : rows)
    if (!row.cells.empty()) widest = std::max(widest, CharacterCount(row.cells[column]));
  return widest + kGap;
}

std::string ColumnTable::Block(std::size_t first, std::size_t last) const {
  const std::size_t labels = Widest(rows, &Row::label) + kGap;
  const std::size_t symbols = Widest(rows, &Row::unit);
  std::string text;
  std::string heading(labels + symbols, ' ');
  for (std::size_t i = first; i < last; ++i) heading += PadLeft(columns[i], WidthOf(i));
  AppendLine(text, heading);
  for (const Row& row : rows) {
    std::string line = PadRight(row.label, labels) + PadRight(row.unit, symbols);
    for (std::size_t i = first; i < last && !row.cells.empty(); ++i) line += PadLeft(row.cells[i], WidthOf(i));
    AppendLine(text, line);
  }
  return text;
}

std::string ColumnTable::Text(std::size_t width) const {
  const std::size_t left = Widest(rows, &Row::label) + kGap + Widest(rows, &Row::unit);
  std::string text;
  for (std::size_t first = 0; first < columns.size();) {
    std::size_t last = first + 1;
    std::size_t used = left + WidthOf(first);
    while (last < columns.size() && used + WidthOf(last) <= width) used += WidthOf(last++);
    text += (first > 0 ? "\n" : "") + Block(first, last);
    first = last;
  }
  return text;
}

}  // namespace morvelan::host
