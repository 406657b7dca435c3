// The time of formulas relative to muParser in the same run: evaluating a formula that was compiled before, and parsing
// a text.

#include <benchmark/benchmark.h>
#include <muParser.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "numerics/formula/CalculatorFormula.h"

namespace {

using namespace morvelan::numerics;

struct FormulaCase {
  const char* name;
  std::string text;  // ours; without the quotes it is muParser's
};

std::string Deep() {
  std::string text = "\"a\"";
  for (int i = 0; i < 25; ++i) text = "((" + text + "+\"b\")*(\"c\"-" + std::to_string(i) + "))/\"d\"";
  return text;
}

const std::vector<std::string> kNames = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"};
const std::vector<FormulaCase> kCases = {
    {"difference", "\"a\"-\"b\""},
    {"short", "(\"a\"-\"b\")/(\"c\"-\"d\")*100"},
    {"polynomial of degree 10",
     "1+2*\"a\"+3*\"a\"^2+4*\"a\"^3+5*\"a\"^4+6*\"a\"^5+7*\"a\"^6+8*\"a\"^7+9*\"a\"^8+10*\"a\"^9+11*\"a\"^"
     "10"},
    {"ten variables",
     "\"a\"*\"b\"+\"c\"*\"d\"-\"e\"/\"f\"+(\"g\"-\"h\")*(\"i\"+\"j\")+\"a\"*(\"c\"+\"e\"+\"g\"+\"i\")"},
    {"functions",
     "EXP(-\"a\"/\"b\")*SIN(\"c\")+SQRT(\"d\"^2+\"e\"^2)+ATAN(\"f\")-ABS(\"g\")*COS(\"h\")+MAX(\"i\",\"j\")"},
    {"deep", Deep()},
};

/// The same with muParser.
struct MuFormula {
  explicit MuFormula(const FormulaCase& formula, std::vector<double>& values) {
    for (std::size_t i = 0; i < kNames.size(); ++i) parser.DefineVar(kNames[i], &values[i]);
    parser.DefineFun(
        "EXP", +[](double x) { return std::exp(x); });
    parser.DefineFun(
        "SIN", +[](double x) { return std::sin(x); });
    parser.DefineFun(
        "COS", +[](double x) { return std::cos(x); });
    parser.DefineFun(
        "SQRT", +[](double x) { return std::sqrt(x); });
    parser.DefineFun(
        "ATAN", +[](double x) { return std::atan(x); });
    parser.DefineFun(
        "ABS", +[](double x) { return std::fabs(x); });
    parser.DefineFun(
        "MAX", +[](double x, double y) { return x > y ? x : y; });
    for (const char c : formula.text)
      if (c != '"') text += c;
  }

  mu::Parser parser;
  std::string text;
};

std::vector<double> Values() {
  std::vector<double> values;
  for (std::size_t i = 0; i < kNames.size(); ++i) values.push_back(1.5 + 0.25 * static_cast<double>(i));
  return values;
}

using Clock = std::chrono::steady_clock;

/// Runs both in turns and reports ours, the other's time and the ratio.
template <class Ours, class Theirs>
void Compare(benchmark::State& state, int repetitions, Ours ours, Theirs theirs) {
  Clock::duration oursTime{}, theirsTime{};
  std::int64_t calls = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto start = Clock::now();
    for (int i = 0; i < repetitions; ++i) ours();
    const auto middle = Clock::now();
    for (int i = 0; i < repetitions; ++i) theirs();
    oursTime += middle - start;
    theirsTime += Clock::now() - middle;
    calls += repetitions;
  }
  const auto nanoseconds = [&](Clock::duration time) {
    return std::chrono::duration<double, std::nano>(time).count() / static_cast<double>(calls);
  };
  state.counters["ours_ns"] = nanoseconds(oursTime);
  state.counters["muparser_ns"] = nanoseconds(theirsTime);
  state.counters["ratio"] = nanoseconds(oursTime) / nanoseconds(theirsTime);
}

void EvaluateFormula(benchmark::State& state) {
  const FormulaCase& formula = kCases[static_cast<std::size_t>(state.range(0))];
  state.SetLabel(formula.name);
  std::vector<double> values = Values();
  const FormulaCheck check = CheckFormula(formula.text, kNames);
  MuFormula other(formula, values);
  other.parser.SetExpr(other.text);
  if (std::abs(other.parser.Eval() / check.formula.value().Evaluate(values).value - 1) > 1e-13)
    throw std::runtime_error(other.text);
  // Both read the values anew, as they change from one calculation to the next.
  Compare(
      state, 100,
      [&] {
        values[0] += 1e-9;
        benchmark::DoNotOptimize(check.formula->Evaluate(values).value);
      },
      [&] {
        values[0] += 1e-9;
        benchmark::DoNotOptimize(other.parser.Eval());
      });
}
BENCHMARK(EvaluateFormula)->DenseRange(0, static_cast<std::int64_t>(kCases.size()) - 1);

void ParseFormulaText(benchmark::State& state) {
  const FormulaCase& formula = kCases[static_cast<std::size_t>(state.range(0))];
  state.SetLabel(formula.name);
  std::vector<double> values = Values();
  MuFormula other(formula, values);
  // muParser parses when it evaluates first.
  Compare(
      state, 10, [&] { benchmark::DoNotOptimize(CheckFormula(formula.text, kNames).formula.has_value()); },
      [&] {
        other.parser.SetExpr(other.text);
        benchmark::DoNotOptimize(other.parser.Eval());
      });
}
BENCHMARK(ParseFormulaText)->DenseRange(0, static_cast<std::int64_t>(kCases.size()) - 1);

}  // namespace
