#include "host/thermo/EnergyFlash.h"

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "host/file/NumberText.h"
#include "host/thermo/FlashLimits.h"
#include "host/thermo/RootSearch.h"
#include "host/thermo/SaturationFlash.h"

namespace morvelan::host {
namespace {

constexpr double kEnergyTolerance = 1e-10;  // of H/(RT) and S/R

struct EnergySearch {
  FlashEngine& engine;
  EnergyKind kind;
  double target;

  [[nodiscard]] double Value() const { return kind == EnergyKind::kEnthalpy ? engine.Enthalpy() : engine.Entropy(); }

  [[nodiscard]] double Residual() const { return Value() - target; }

  [[nodiscard]] std::string Text() const {
    return kind == EnergyKind::kEnthalpy ? "enthalpy of " + NumberText(target) + " J/mol"
                                         : "entropy of " + NumberText(target) + " J/(mol K)";
  }
};

/// A first guess of T: where a vapor, a liquid or both together have the enthalpy or entropy. The boiling range is
/// taken from Wilson's K values.
double GuessTemperature(const EnergySearch& search, double P) {
  FlashEngine& engine = search.engine;
  Mixture& mixture = engine.Fluid();
  const Eigen::VectorXd& z = engine.Composition();
  const bool isEnthalpy = search.kind == EnergyKind::kEnthalpy;
  PhaseState state;
  const auto from = [&](PhaseKind phase, double T, double& excess) {
    mixture.SetTemperature(T);
    mixture.Evaluate(phase, P, z, state);
    const BulkProperties bulk = mixture.Bulk(state);
    excess = search.target - (isEnthalpy ? bulk.enthalpy : bulk.entropy);
    const double change = excess / std::max(bulk.heatCapacity, 2.0 * kGasConstant);
    return isEnthalpy ? std::max(T + change, 0.3 * T) : T * std::exp(std::clamp(change, -1.0, 3.0));
  };
  double aboveDew = 0.0;
  double aboveBubble = 0.0;
  if (mixture.IsIdealGas()) return from(PhaseKind::kVapor, kReferenceTemperature, aboveDew);
  double dew = 0.0;
  double bubble = 0.0;
  const CubicParameters& cubic = mixture.Cubic();
  for (Eigen::Index i = 0; i < z.size(); ++i) {
    const double Tb = cubic.Tc[i] / (1.0 - std::log(P / cubic.Pc[i]) / (5.373 * (1.0 + cubic.omega[i])));
    const double boiling = P < cubic.Pc[i] ? Tb : cubic.Tc[i];
    dew += z[i] * boiling;
    bubble += z[i] / boiling;
  }
  bubble = 1.0 / bubble;
  const double asVapor = from(PhaseKind::kVapor, dew, aboveDew);
  if (aboveDew >= 0.0) return asVapor;
  const double asLiquid = from(PhaseKind::kLiquid, bubble, aboveBubble);
  if (aboveBubble <= 0.0) return asLiquid;
  return bubble + (dew - bubble) * aboveBubble / (aboveBubble - aboveDew);
}

/// Finds the vapor fraction at which two phases at a given P or T have the target.
bool SolveVaporFraction(const EnergySearch& search, SaturationFlash& saturation, bool isPressure, double given,
                        double tolerance) {
  if (!saturation.Solve(isPressure, given, 1.0)) return false;
  const double dew = search.Residual();
  if (!saturation.Solve(isPressure, given, 0.0)) return false;
  const double bubble = search.Residual();
  if (std::abs(bubble) <= tolerance) return true;
  if (std::abs(dew) <= tolerance) return saturation.Solve(isPressure, given, 1.0);
  if (bubble > 0.0 || dew < 0.0) return false;
  if (search.engine.Count() == 1) return saturation.Solve(isPressure, given, bubble / (bubble - dew));
  bool isLost = false;
  const auto residual = [&](double V) {
    isLost = isLost || !saturation.SolveNearby(V);
    return isLost ? 0.0 : search.Residual();
  };
  std::uintmax_t maxSteps = 100;
  const auto bracket = boost::math::tools::toms748_solve(
      residual, 0.0, 1.0, bubble, dew, [](double a, double b) { return b - a < 1e-15; }, maxSteps);
  return !isLost && saturation.SolveNearby(0.5 * (bracket.first + bracket.second)) &&
         std::abs(search.Residual()) < 1e4 * tolerance;
}

bool HasLargeResidual(const EnergySearch& search, double tolerance) {
  return !(std::abs(search.Residual()) < 1e3 * tolerance);
}

/// Finds a state between the two sides of a jump. A jump within rounding errors is a solution too.
bool SolveAtJump(const EnergySearch& search, double P, const RootResult& root, double tolerance) {
  for (const double T : {root.lower, root.upper}) {
    search.engine.Solve(T, P);
    if (!HasLargeResidual(search, tolerance)) return true;
  }
  if (search.engine.Fluid().IsIdealGas()) return false;
  SaturationFlash saturation(search.engine);
  return SolveVaporFraction(search, saturation, true, P, tolerance);
}

}  // namespace

void FlashEnergyAtPressure(FlashEngine& engine, double P, double target, EnergyKind kind) {
  const EnergySearch search{engine, kind, target};
  const bool isEnthalpy = kind == EnergyKind::kEnthalpy;
  const double guess = std::clamp(GuessTemperature(search, P), kLowestTemperature, kHighestTemperature);
  const double tolerance = kEnergyTolerance * kGasConstant * (isEnthalpy ? guess : 1.0);
  // A pure compound boils at one temperature, where a search along T would only find a jump.
  const bool isPure = engine.Count() == 1 && !engine.Fluid().IsIdealGas();
  SaturationFlash saturation(engine);
  if (isPure && SolveVaporFraction(search, saturation, true, P, tolerance)) return;

  const auto residual = [&](double T) {
    engine.Solve(T, P);
    const double slope = engine.EnthalpyDT();
    return ValueAndSlope{search.Residual(), isEnthalpy ? slope : slope / T};
  };
  const RootResult root = FindRootOfRising(residual, guess, kLowestTemperature, kHighestTemperature, tolerance);
  if (root.outcome == RootOutcome::kFound) return;
  const std::string wanted = "no state with an " + search.Text() + " at " + NumberText(P) + " Pa";
  if (root.outcome != RootOutcome::kJump)
    throw std::runtime_error(wanted + " between " + NumberText(kLowestTemperature) + " and " +
                             NumberText(kHighestTemperature) + " K");
  if (!SolveAtJump(search, P, root, tolerance))
    throw std::runtime_error(wanted + ": it jumps past that value at " + NumberText(root.upper) +
                             " K, as when a second liquid would form");
}

namespace {

/// Searches upwards from the pressure of a nearly ideal gas for the first P at which the enthalpy is the target.
class PressureWalk {
 public:
  PressureWalk(FlashEngine& givenEngine, double T, double H)
      : engine(givenEngine),
        search{engine, EnergyKind::kEnthalpy, H},
        T(T),
        tolerance(kEnergyTolerance * kGasConstant * T) {}

  /// True with the state in the engine; false when the whole range has no such state.
  bool Run() {
    if (!FindLowest()) return false;
    if (engine.IsTwoPhase()) PreferLiquid();
    return true;
  }

 private:
  static constexpr double kStep = 1.4;           // in ln P
  static constexpr double kHighestLiquid = 1e7;  // [Pa]

  bool FindLowest() {
    ValueAndSlope last = At(lnP = LnStartPressure());
    if (std::abs(last.value) <= tolerance) return true;
    const double lnHighest = std::log(kHighestPressure);
    while (lnP < lnHighest) {
      const double previous = lnP;
      lnP = std::min(lnHighest, lnP + kStep);
      const ValueAndSlope next = At(lnP);
      if (std::abs(next.value) <= tolerance) return true;
      if (next.value * last.value < 0.0) return Refine(previous, last.value, lnP, next.value);
      const bool hasTurned = last.slope * last.value < 0.0 && next.slope * next.value > 0.0;
      if (hasTurned && SearchAroundTurn(previous, last.value, lnP)) return true;
      last = next;
    }
    return false;
  }

  /// Replaces two phases by a liquid of the same enthalpy, if there is one below kHighestLiquid.
  void PreferLiquid() {
    const TwoPhases found = engine.Phases();
    const double foundP = engine.Pressure();
    SaturationFlash saturation(engine);
    if (saturation.Solve(false, T, 0.0)) {
      const double bubble = std::log(engine.Pressure());
      const double atBubble = search.Residual();
      const double highest = std::log(kHighestLiquid);
      if (bubble < highest && atBubble < 0.0) {
        const double atHighest = At(highest).value;
        if (atHighest > 0.0 && Refine(bubble, atBubble, highest, atHighest) && !engine.IsTwoPhase()) return;
      }
    }
    engine.Assume(T, foundP, found);
  }

  ValueAndSlope At(double atLnP) {
    const double P = std::exp(atLnP);
    engine.Solve(T, P);
    return {search.Residual(), P * engine.EnthalpyDP()};
  }

  /// ln P at which nothing has condensed and the enthalpy is that of the ideal gas.
  [[nodiscard]] double LnStartPressure() const {
    const double lnLowest = std::min(0.0, engine.WilsonLnK(T, 1.0).minCoeff() - 7.0);
    return std::max(lnLowest, std::log(kLowestPressure));
  }

  bool Refine(double lower, double lowerValue, double upper, double upperValue) {
    // The search needs a rising function and a positive variable: the ratio of P to its lower end.
    const double sign = upperValue > 0.0 ? 1.0 : -1.0;
    const auto rising = [&](double ratio) {
      const ValueAndSlope point = At(lower + std::log(ratio));
      return ValueAndSlope{sign * point.value, sign * point.slope / ratio};
    };
    const Bracket bracket{1.0, sign * lowerValue, std::exp(upper - lower), sign * upperValue};
    const double share = lowerValue / (lowerValue - upperValue);
    const RootResult root = RefineRootOfRising(rising, bracket, 1.0 + share * (bracket.upper - 1.0), tolerance);
    if (root.outcome == RootOutcome::kFound) return true;
    (void)rising(root.upper);
    if (!HasLargeResidual(search, tolerance)) return true;
    SaturationFlash saturation(engine);
    return SolveVaporFraction(search, saturation, false, T, tolerance);
  }

  /// Halves an interval with an extremum of the enthalpy until the target is passed in it.
  bool SearchAroundTurn(double lower, double lowerValue, double upper) {
    for (int i = 0; i < 40; ++i) {
      const double middle = 0.5 * (lower + upper);
      const ValueAndSlope point = At(middle);
      if (std::abs(point.value) <= tolerance) return true;
      if (point.value * lowerValue < 0.0) return Refine(lower, lowerValue, middle, point.value);
      if (point.slope * lowerValue < 0.0) {
        lower = middle;
        lowerValue = point.value;
      } else {
        upper = middle;
      }
    }
    return false;
  }

  FlashEngine& engine;
  EnergySearch search;
  double T;
  double tolerance;
  double lnP = 0.0;
};

}  // namespace

void FlashEnthalpyAtTemperature(FlashEngine& engine, double T, double H) {
  const std::string text = "an enthalpy of " + NumberText(H) + " J/mol at " + NumberText(T) + " K";
  if (engine.Fluid().IsIdealGas())
    throw std::runtime_error("no pressure follows from " + text +
                             ": the enthalpy of an ideal gas depends on temperature only");
  if (!PressureWalk(engine, T, H).Run())
    throw std::runtime_error("no state with " + text + " up to " + NumberText(kHighestPressure) + " Pa");
}

}  // namespace morvelan::host
