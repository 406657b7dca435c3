// Formulas neither change the host's floating-point environment nor depend on it.

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <optional>
#include <vector>

#include "numerics/formula/CalculatorFormula.h"
#include "numerics/formula/NumericEntry.h"

namespace morvelan::test::floating_point {

using namespace numerics;

/// Both units for floating-point numbers of x86-64.
struct UnitState {
  unsigned mxcsr = 0;
  unsigned short control = 0;  // of the older unit
  unsigned short status = 0;

  static UnitState Read() {
    UnitState state;
    state.mxcsr = _mm_getcsr();
    asm volatile("fnstcw %0" : "=m"(state.control));
    asm volatile("fnstsw %0" : "=m"(state.status));
    return state;
  }
  bool operator==(const UnitState&) const = default;
};

constexpr unsigned kMaskedSse = 0x1F80, kMaskAll = 0x3F;
constexpr unsigned kInvalid = 1, kDivideByZero = 4, kOverflow = 8, kUnderflow = 0x10, kInexact = 0x20;
constexpr unsigned kNearest = 0, kDown = 1, kUp = 2, kToZero = 3;
constexpr unsigned kTrapped = kInvalid | kDivideByZero | kOverflow;

struct HostCase {
  const char* name;
  unsigned trapped;   // in both units
  unsigned rounding;  // in both units: the value of the field
  unsigned noted;     // flags of faults in the unit for doubles
  bool flushesToZero = false;
};

const HostCase kHosts[] = {
    {"nothing special", 0, kNearest, 0},
    {"rounds upwards", 0, kUp, kInexact},
    {"rounds towards zero, has had every fault", 0, kToZero, kMaskAll},
    {"is trapped by faults", kTrapped, kNearest, 0},
    {"is trapped by faults and has rounded", kTrapped, kDown, kInexact | kUnderflow},
    {"flushes to zero", 0, kNearest, kInexact, true},
};

/// The host's environment while it lives.
class Host {
 public:
  explicit Host(const HostCase& host) {
    asm volatile("fninit");
    SetControl(static_cast<unsigned short>((kUsualControl & ~host.trapped) | host.rounding << 10));
    const unsigned flush = host.flushesToZero ? 0x8040 : 0;
    _mm_setcsr((kMaskedSse & ~(host.trapped << 7)) | host.rounding << 13 | host.noted | flush);
  }
  ~Host() {
    _mm_setcsr(kMaskedSse);
    asm volatile("fninit");
  }

 private:
  static constexpr unsigned kUsualControl = 0x37F;
  static void SetControl(unsigned short control) { asm volatile("fldcw %0" : : "m"(control)); }
};

struct Outcome {
  std::string entry;
  std::vector<Evaluation> evaluations;
  bool unchanged = false;
};

const std::vector<std::string> kNames = {"x", "y"};
const char* const kFormulas[] = {"\"x\"/7",          "\"x\"*1e-310",           "1/\"y\"",         "\"x\"*1e308*10",
                                 "LOG(\"y\"-1)",     "ASIN(\"x\"+2)",          "SQRT(\"y\"-1)",   "EXP(\"x\"*1000)",
                                 "MOD(\"x\",\"y\")", "SINH(\"x\")+\"y\"^-0.5", "SIN(\"x\"*1e22)", "\"x\"^7"};

/// Does everything that can be done with formulas in the environment of that host.
Outcome RunAs(const HostCase& hostCase) {
  Outcome outcome;
  const std::vector<double> values = {1.1, 0};
  outcome.unchanged = true;
  for (const char* text : kFormulas) {
    std::optional<Host> host(hostCase);
    const UnitState before = UnitState::Read();
    const FormulaCheck check = CheckFormula(text, kNames);
    const UnitState between = UnitState::Read();
    Evaluation evaluation = check.formula->Evaluate(values);
    const UnitState after = UnitState::Read();
    const Evaluation entry = EvaluateNumericEntry("1e-310+LOG(-1)+1e308*10+2/3");
    const UnitState last = UnitState::Read();
    host.reset();
    outcome.unchanged &= before == between && before == after && before == last;
    outcome.evaluations.push_back(std::move(evaluation));
    outcome.entry = entry.failure;
  }
  return outcome;
}

TEST(FloatingPoint, TheHostsEnvironmentIsNeitherUsedNorChanged) {
  const Outcome usual = RunAs(kHosts[0]);
  EXPECT_TRUE(usual.unchanged);
  EXPECT_EQ(usual.evaluations[0].value, 1.1 / 7);
  EXPECT_EQ(usual.evaluations[2].failure, "floating point exception in division: Division by zero");
  for (const HostCase& host : kHosts) {
    SCOPED_TRACE(host.name);
    const Outcome outcome = RunAs(host);
    EXPECT_TRUE(outcome.unchanged);
    EXPECT_EQ(outcome.entry, "floating point exception in result: Not a number (NaN)");
    for (std::size_t i = 0; i < outcome.evaluations.size(); ++i) {
      EXPECT_EQ(outcome.evaluations[i].failure, usual.evaluations[i].failure) << kFormulas[i];
      if (usual.evaluations[i].Succeeded())
        EXPECT_EQ(outcome.evaluations[i].value, usual.evaluations[i].value) << kFormulas[i];
    }
  }
}

// Without protection a calculation changes the environment, and UnitState shows it.
TEST(FloatingPoint, UnprotectedCalculationsWouldShow) {
  const Host host(kHosts[0]);
  const UnitState before = UnitState::Read();
  volatile double x = 1.1;
  x = x / 7;
  EXPECT_FALSE(UnitState::Read() == before);
  EXPECT_EQ(UnitState::Read().mxcsr, kMaskedSse | kInexact);
}

}  // namespace morvelan::test::floating_point
