#include "framework/DimensionText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "com/Text.h"
#include "errors/Failure.h"
#include "framework/ReportFormat.h"

namespace morvelan {
namespace {

constexpr std::string_view kBaseUnits[] = {"m", "kg", "s", "A", "K", "mol", "cd", "rad"};
constexpr std::size_t kDifference = std::size(kBaseUnits);  // the place of its mark
constexpr std::string_view kDelta = "Delta";
constexpr std::string_view kSeparators = " \t*";
constexpr int kDigits = 6;

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kSeparators);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSeparators) - first + 1);
}

/// One unit with its exponent, such as "s^-3".
void AddFactor(Dimensionality& dimensionality, std::string_view factor) {
  const std::size_t caret = std::min(factor.find('^'), factor.size());
  const auto* unit = std::ranges::find(kBaseUnits, factor.substr(0, caret));
  if (unit == std::end(kBaseUnits)) throw Failure("parse error");
  float exponent = 1;
  if (caret < factor.size()) {
    const std::string_view digits = factor.substr(caret + 1);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (read.ec != std::errc() || read.ptr != digits.data() + digits.size()) throw Failure("parse error");
  }
  dimensionality[static_cast<std::size_t>(unit - std::begin(kBaseUnits))] += exponent;
}

/// An exponent with the digits that its text has, so that a text that was written reads the same.
float AsWritten(float exponent) {
  if (!std::isfinite(exponent)) throw Failure("parse error");
  const std::string digits = FormatNumber(static_cast<double>(exponent), kDigits);
  std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
  return exponent;
}

}  // namespace

std::string FormatDimension(const Dimensionality& dimensionality) {
  std::string text;
  for (std::size_t i = 0; i < std::size(kBaseUnits); ++i)
    if (dimensionality[i] != 0)
      text += (text.empty() ? "" : " ") + std::string(kBaseUnits[i]) + '^' +
              FormatNumber(static_cast<double>(dimensionality[i]), kDigits);
  return dimensionality[kDifference] == 0 ? text : text + ';' + std::string(kDelta);
}

Dimensionality ParseDimension(std::string_view text) {
  Dimensionality dimensionality{};
  const std::size_t semicolon = std::min(text.find(';'), text.size());
  if (semicolon < text.size()) {
    if (!com::EqualNoCase(Trimmed(text.substr(semicolon + 1)), kDelta)) throw Failure("parse error");
    dimensionality[kDifference] = 1;
  }
  std::string_view rest = Trimmed(text.substr(0, semicolon));
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of(kSeparators), rest.size());
    AddFactor(dimensionality, rest.substr(0, end));
    rest = Trimmed(rest.substr(end));
  }
  for (float& exponent : dimensionality) exponent = AsWritten(exponent);
  return dimensionality;
}

}  // namespace morvelan
