#include "tests/support/Approved.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <vector>

namespace morvelan::test {
namespace {

constexpr double kRelativeTolerance = 1e-6;
constexpr std::ptrdiff_t kDigitsOfAResult = 6;  // numbers with as many digits are rounded results

struct Number {
  double value;
  double lastDigit;  // one unit of the last digit that is printed
  std::ptrdiff_t digits;
};

/// A line's texts and the numbers between them: one text more than numbers.
struct Line {
  std::vector<std::string> texts;
  std::vector<Number> numbers;
};

std::vector<std::string> LinesOf(std::string_view text) {
  std::istringstream stream{std::string(text)};
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(std::move(line));
  }
  return lines;
}

Number ReadNumber(const std::smatch& match) {
  const std::string mantissa = match[1], decimals = match[2], exponent = match[3];
  std::string digits = mantissa;
  std::erase_if(digits, [](char c) { return c == '-' || c == '.'; });
  const std::size_t first = digits.find_first_not_of('0');
  const double power = exponent.empty() ? 0 : std::stod(exponent);
  return {std::strtod(match.str().c_str(), nullptr), std::pow(10, power - static_cast<double>(decimals.size())),
          first == std::string::npos ? 0 : std::ssize(digits) - static_cast<std::ptrdiff_t>(first)};
}

Line Parsed(const std::string& line) {
  static const std::regex number(R"((-?\d+(?:\.(\d+)|(?=e[-+]?\d)))(?:e([-+]?\d+))?)");
  static const std::regex spaces(" +");
  const std::string single = std::regex_replace(line, spaces, " ");
  Line parsed;
  std::string::const_iterator rest = single.begin();
  for (std::sregex_iterator match(single.begin(), single.end(), number), end; match != end; ++match) {
    parsed.texts.emplace_back(rest, (*match)[0].first);
    parsed.numbers.push_back(ReadNumber(*match));
    rest = (*match)[0].second;
  }
  parsed.texts.emplace_back(rest, single.end());
  return parsed;
}

bool AreClose(const Number& a, const Number& b) {
  double tolerance = kRelativeTolerance * std::max(std::abs(a.value), std::abs(b.value));
  if (std::min(a.digits, b.digits) >= kDigitsOfAResult)
    tolerance = std::max({tolerance, 1.001 * a.lastDigit, 1.001 * b.lastDigit});
  return std::abs(a.value - b.value) <= tolerance;
}

bool AreEqual(const std::string& a, const std::string& b) {
  if (a == b) return true;
  const Line first = Parsed(a), second = Parsed(b);
  return !first.numbers.empty() && first.texts == second.texts &&
         std::ranges::equal(first.numbers, second.numbers, AreClose);
}

bool IsApproving() {
  const char* value = std::getenv("MORVELAN_APPROVE");
  return value && std::string_view(value) == "1";
}

}  // namespace

std::string FirstDifference(std::string_view approved, std::string_view actual) {
  const std::vector<std::string> before = LinesOf(approved), after = LinesOf(actual);
  for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
    if (i < before.size() && i < after.size() && AreEqual(before[i], after[i])) continue;
    const auto shown = [i](const std::vector<std::string>& lines) { return i < lines.size() ? lines[i] : "(no line)"; };
    return "line " + std::to_string(i + 1) + "\n  approved: " + shown(before) + "\n  actual:   " + shown(after);
  }
  return {};
}

std::filesystem::path ApprovedFile(const std::string& name) {
  return std::filesystem::path(MORVELAN_APPROVED) / (name + ".txt");
}

void ExpectApproved(const std::string& name, const std::string& text) {
  const std::filesystem::path file = ApprovedFile(name);
  std::ifstream stream(file, std::ios::binary);
  const bool exists = stream.is_open();
  const std::string approved(std::istreambuf_iterator<char>(stream), {});
  const std::string difference = FirstDifference(approved, text);
  if (exists && difference.empty()) return;
  if (IsApproving()) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return;
  }
  if (exists)
    ADD_FAILURE() << "the text differs from tests/approved/" << name << ".txt in " << difference
                  << "\nTo accept all of it, run the test with MORVELAN_APPROVE=1. It is now:\n"
                  << text;
  else
    ADD_FAILURE() << "tests/approved/" << name
                  << ".txt does not exist. Run the test with MORVELAN_APPROVE=1 to write:\n"
                  << text;
}

}  // namespace morvelan::test
