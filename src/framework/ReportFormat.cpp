#include "framework/ReportFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "material/MissingValue.h"

namespace morvelan {
namespace {

constexpr int kParameterDigits = 15;
constexpr int kElementDigits = 6;

struct UnitSymbol {
  std::array<float, 8> exponents;
  const char* suffix;
};

constexpr UnitSymbol kUnits[] = {
    {{2, 1, -3, 0, 0, 0, 0, 0}, " W"},       {{-1, 1, -2, 0, 0, 0, 0, 0}, " Pa"},
    {{0, 0, 0, 0, 1, 0, 0, 0}, " K"},        {{2, 1, -3, 0, -1, 0, 0, 0}, " W/K"},
    {{2, 1, -2, 0, 0, 0, 0, 0}, " J"},       {{1, 1, -3, 0, 0, 0, 0, 0}, " W/m"},
    {{0, 1, -3, 0, -1, 0, 0, 0}, " W/m²/K"}, {{2, 1, -2, 0, 0, -1, 0, 0}, " J/mol"},
    {{2, 0, -2, 0, 0, 0, 0, 0}, " J/kg"},    {{-1, 1, -1, 0, 0, 0, 0, 0}, " Pa s"},
};

constexpr const char* kSymbols[] = {"m", "kg", "s", "A", "K", "mol", "cd", "rad", "delta"};
constexpr double kExponentTolerance = 1e-10;

std::string Factor(const char* symbol, double exponent) {
  return exponent == 1 ? symbol : std::string(symbol) + "^" + FormatNumber(exponent, kElementDigits);
}

/// Symbols with positive exponents, then "/" and those with negative ones.
std::string ComposeSuffix(const Dimensionality& dimensionality) {
  std::string above;
  std::string below;
  for (std::size_t i = 0; i < dimensionality.size(); ++i) {
    const double exponent = static_cast<double>(dimensionality[i]);
    if (exponent > kExponentTolerance) above += " " + Factor(kSymbols[i], exponent);
    if (exponent < -kExponentTolerance) below += (below.empty() ? "" : " ") + Factor(kSymbols[i], -exponent);
  }
  if (below.empty()) return above;
  return (above.empty() ? " 1" : above) + "/" + below;
}

std::string FormatArray(const std::vector<double>& elements) {
  std::string text = " [";
  for (std::size_t i = 0; i < elements.size(); ++i)
    text += (i == 0 ? " " : ", ") + FormatNumber(elements[i], kElementDigits);
  return text + "]";
}

}  // namespace

std::string FormatNumber(double value, int digits) {
  char buffer[64];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
  return {buffer, end.ptr};
}

std::string FormatColumn(double value) {
  const std::string text = FormatNumber(value, kElementDigits);
  constexpr std::size_t kWidth = 12;
  return std::string(kWidth - std::min(kWidth, text.size()), ' ') + text;
}

std::string UnitSuffix(const Dimensionality& dimensionality) {
  for (const UnitSymbol& unit : kUnits)
    if (std::equal(unit.exponents.begin(), unit.exponents.end(), dimensionality.begin())) return unit.suffix;
  return ComposeSuffix(dimensionality);
}

std::string FormatValue(double value, const Dimensionality& dimensionality) {
  return IsMissing(value) ? "N/A" : FormatNumber(value, kParameterDigits) + UnitSuffix(dimensionality);
}

std::string FormatParameter(const CParameter& parameter) {
  const ParameterValue& value = parameter.Value();
  std::string text;
  switch (parameter.Kind()) {
    case CAPE_REAL:
      text = FormatValue(std::get<double>(value), parameter.Dimensions());
      break;
    case CAPE_INT:
      text = std::to_string(std::get<std::int32_t>(value));
      break;
    case CAPE_OPTION:
      text = std::get<std::string>(value);
      break;
    case CAPE_BOOLEAN:
      text = std::get<bool>(value) ? "true" : "false";
      break;
    case CAPE_ARRAY:
      text = FormatArray(std::get<std::vector<double>>(value));
      break;
  }
  return parameter.ComponentName() + ":\t" + text;
}

}  // namespace morvelan
