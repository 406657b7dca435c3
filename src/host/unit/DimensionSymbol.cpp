#include "host/unit/DimensionSymbol.h"

#include <algorithm>

#include "host/file/NumberText.h"

namespace morvelan::host {
namespace {

constexpr std::size_t kBaseUnits = 8;  // the ninth exponent, the mark of a difference, has no unit
constexpr const char* kSymbols[kBaseUnits] = {"m", "kg", "s", "A", "K", "mol", "cd", "rad"};

struct Derived {
  std::array<double, kBaseUnits> exponents;
  const char* symbol;
};

constexpr Derived kDerived[] = {
    {{2, 1, -3}, "W"},
    {{2, 1, -2}, "J"},
    {{-1, 1, -2}, "Pa"},
    {{-1, 1, -1}, "Pa s"},
    {{1, 1, -2}, "N"},
    {{2, 1, -3, 0, -1}, "W/K"},
    {{0, 1, -3, 0, -1}, "W/(m^2 K)"},
    {{1, 1, -3, 0, -1}, "W/(m K)"},
    {{2, 1, -2, 0, 0, -1}, "J/mol"},
    {{2, 1, -2, 0, -1, -1}, "J/(mol K)"},
    {{2, 0, -2}, "J/kg"},
    {{2, 0, -2, 0, -1}, "J/(kg K)"},
};

std::string Power(const char* symbol, double exponent) {
  return exponent == 1 ? symbol : symbol + ('^' + PlainNumber(exponent));
}

}  // namespace

std::string UnitSymbol(const Exponents& exponents) {
  for (const Derived& derived : kDerived)
    if (std::equal(derived.exponents.begin(), derived.exponents.end(), exponents.begin())) return derived.symbol;
  std::string above, below;
  int factorsBelow = 0;
  for (std::size_t i = 0; i < kBaseUnits; ++i) {
    if (exponents[i] > 0) above += (above.empty() ? "" : " ") + Power(kSymbols[i], exponents[i]);
    if (exponents[i] < 0) below += (factorsBelow++ ? " " : "") + Power(kSymbols[i], -exponents[i]);
  }
  if (below.empty()) return above;
  return (above.empty() ? "1" : above) + '/' + (factorsBelow > 1 ? '(' + below + ')' : below);
}

}  // namespace morvelan::host
