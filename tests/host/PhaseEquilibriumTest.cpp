#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/host/ThermoTestSupport.h"

namespace morvelan::host::test::phase_equilibrium {

/// Molar Gibbs energy over RT less that of the unmixed ideal gases.
double MixingGibbs(const PropertyPackage& package, const Phase& phase, double T, double P) {
  const std::vector<double> lnPhi = package.LnPhi(phase.kind, T, P, phase.x);
  double sum = 0.0;
  for (std::size_t i = 0; i < lnPhi.size(); ++i)
    if (phase.x[i] > 0.0) sum += phase.x[i] * (std::log(phase.x[i]) + lnPhi[i]);
  return sum;
}

struct RandomState {
  std::vector<std::string> compounds;
  std::vector<double> z;
  double T = 0.0, P = 0.0;  // [K], [Pa]
};

/// Numbers from 0 to 1. The distributions of the standard library differ between platforms; these do not.
struct UniformNumbers {
  std::mt19937_64 generator;
  double operator()() { return static_cast<double>(generator() >> 11U) * 0x1p-53; }
};

struct RandomStates {
  RandomStates() {
    for (const Compound& compound : BuiltInData().Compounds())
      if (compound.critical) names.push_back(compound.name);
  }

  RandomState Next() {
    const auto count = static_cast<std::size_t>(2.0 + 19.0 * uniform());
    for (std::size_t i = 0; i < count; ++i) {
      const auto other = i + static_cast<std::size_t>(uniform() * static_cast<double>(names.size() - i));
      std::swap(names[i], names[other]);
    }
    RandomState state{{names.begin(), names.begin() + static_cast<std::ptrdiff_t>(count)}, {}};
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i)
      sum += state.z.emplace_back(-std::log(uniform() + 1e-300) * (uniform() < 0.1 ? 1e-9 : 1.0));
    for (double& fraction : state.z) fraction /= sum;
    state.T = uniform() < 0.5 ? 60.0 + 1440.0 * uniform() : 150.0 + 400.0 * uniform();
    state.P = 1e2 * std::pow(3e5, uniform());
    return state;
  }

  UniformNumbers uniform{std::mt19937_64(20240607)};
  std::vector<std::string> names;
};

TEST(TpFlash, HoldsForRandomMixturesOfAllCompounds) {
  const int count = 4000 / OneIn(40);
  RandomStates random;
  int twoPhase = 0;
  for (int i = 0; i < count; ++i) {
    const RandomState c = random.Next();
    SCOPED_TRACE(Inputs(c.compounds, c.T, c.P, c.z));
    const Package package = MakePackage(c.compounds);
    Equilibrium state;
    ASSERT_NO_THROW(state = package->FlashTP(c.T, c.P, c.z));
    ExpectEquilibrium(*package, state, c.z);
    if (HasFailure()) return;
    double gibbs = 0.0;
    for (const Phase& phase : state.phases) gibbs += phase.fraction * MixingGibbs(*package, phase, c.T, c.P);
    for (const PhaseKind kind : {PhaseKind::kVapor, PhaseKind::kLiquid}) {
      const double single = MixingGibbs(*package, {kind, 1.0, c.z}, c.T, c.P);
      ASSERT_LE(gibbs, single + 1e-11 * (1.0 + std::abs(single)));  // rounding of a sum of 20 terms
    }
    if (state.phases.size() == 2) ++twoPhase;
  }
  EXPECT_GT(twoPhase, count / 10);
}

// No trial phase of random composition, like vapor or like liquid, lowers the Gibbs energy where the flash finds one
// phase. These compounds mix in all proportions, so that there is no second liquid.
TEST(TpFlash, LeavesNoUnstableSinglePhase) {
  const Package package = MakePackage(kLightGas.compounds);
  UniformNumbers uniform{std::mt19937_64(7)};
  for (double T = 150.0; T < 420.0; T += 6.0 * OneIn(5)) {
    for (const double P : {1e5, 2e6, 5e6, 7e6, 9e6, 1.1e7}) {
      const Equilibrium state = package->FlashTP(T, P, kLightGas.z);
      if (state.phases.size() == 2) continue;
      SCOPED_TRACE(Inputs(kLightGas.compounds, T, P, kLightGas.z));
      const std::vector<double> feed = package->LnPhi(state.phases[0].kind, T, P, kLightGas.z);
      for (int i = 0; i < 40; ++i) {
        std::vector<double> w(feed.size());
        double sum = 0.0;
        for (double& fraction : w) sum += fraction = std::pow(uniform(), 4.0);
        for (double& fraction : w) fraction /= sum;
        for (const PhaseKind kind : {PhaseKind::kVapor, PhaseKind::kLiquid}) {
          const std::vector<double> trial = package->LnPhi(kind, T, P, w);
          double distance = 0.0;
          for (std::size_t k = 0; k < w.size(); ++k)
            distance += w[k] * (std::log(w[k] / kLightGas.z[k]) + trial[k] - feed[k]);
          EXPECT_GT(distance, -1e-9);  // zero at the phase boundary, within rounding and the split's tolerance
        }
      }
    }
  }
}

// Below its bubble pressure a liquid boils, also when the vapor is a gas far above its critical temperature.
TEST(TpFlash, FindsAVaporOfTheLightestGasAlone) {
  const std::vector<std::string> compounds = {"1-propanol", "helium", "sulfur dioxide"};
  const std::vector<double> z = {0.55, 0.06, 0.39};
  const Package package = MakePackage(compounds);
  const Equilibrium bubble = package->FlashTVF(397.0, 0.0, z);
  const Equilibrium state = package->FlashTP(397.0, 0.9 * bubble.P, z);
  SCOPED_TRACE(Inputs(compounds, 397.0, 0.9 * bubble.P, z));
  ASSERT_EQ(state.phases.size(), 2U);
  EXPECT_GT(state.phases[0].x[1], 0.5);
}

// Water condenses out of a gas in which its fugacity exceeds that of pure water.
TEST(TpFlash, CondensesWaterOutOfDenseGas) {
  const std::vector<std::string> compounds = {"propane", "water"};
  const std::vector<double> z = {0.95, 0.05};
  const Package package = MakePackage(compounds);
  const Package water = MakePackage({"water"});
  for (const double P : {3.0e6, 3.4e6, 4.0e6, 4.3e6}) {
    const double T = 375.73;
    SCOPED_TRACE(Inputs(compounds, T, P, z));
    const double ofPure = water->LnPhi(PhaseKind::kLiquid, T, P, std::vector{1.0})[0];
    ASSERT_GT(std::log(0.05) + package->LnPhi(PhaseKind::kVapor, T, P, z)[1], ofPure);
    const Equilibrium state = package->FlashTP(T, P, z);
    ASSERT_EQ(state.phases.size(), 2U);
    EXPECT_GT(state.phases[1].x[1], 0.99);
  }
}

// Where two liquids would be stable, the one that is reported does not hold most of a gas far above its critical
// temperature.
TEST(TpFlash, HidesNoGasInASecondLiquid) {
  const std::vector<std::string> compounds = {"water", "hydrogen", "o-xylene"};
  const std::vector<double> z = {0.69, 0.23, 0.08};
  const Package package = MakePackage(compounds);
  for (double T = 220.0; T < 420.0; T += 10.0) {
    const Equilibrium state = package->FlashTP(T, 4.9e6, z);
    SCOPED_TRACE(Inputs(compounds, T, 4.9e6, z));
    EXPECT_GT(state.VaporFraction(), 0.2);  // nearly all of the hydrogen
    EXPECT_LT(FugacityMismatch(*package, state), 1e-9);
  }
}

TEST(TpFlash, IsContinuousUpToTheCriticalPoint) {
  // Methane and ethane, 60/40, in small steps over the two-phase region up to states with nearly equal phases.
  const std::vector<double> z = {0.6, 0.4};
  const Package package = MakePackage({"methane", "ethane"});
  int nearCritical = 0;
  const int part = OneIn(12);  // not all: only the neighborhood of the critical point
  for (double P = part == 1 ? 5.5e6 : 6.6e6; P < 7.2e6; P += 1e4 * part) {
    for (double T = part == 1 ? 225.0 : 240.0; T < 262.0; T += 0.5) {
      const Equilibrium state = package->FlashTP(T, P, z);
      if (state.phases.size() == 1) continue;
      SCOPED_TRACE(Inputs({"methane", "ethane"}, T, P, z));
      ExpectEquilibrium(*package, state, z);
      if (std::abs(state.phases[0].x[0] - state.phases[1].x[0]) < 0.05) ++nearCritical;
    }
  }
  EXPECT_GE(nearCritical, 6);
}

TEST(TpFlash, IsIndifferentToTracesAndAbsentCompounds) {
  const std::vector<std::string> compounds = {"methane", "n-pentane", "water", "hydrogen", "n-decane"};
  const Package package = MakePackage(compounds);
  const Package alone = MakePackage({"methane", "n-pentane"});
  const std::vector<double> two = {0.5, 0.5};
  for (const auto& [T, P] : {std::pair{200.0, 1e5}, {300.0, 1e6}, {320.0, 8e6}, {500.0, 1e5}}) {
    const Equilibrium expected = alone->FlashTP(T, P, two);
    for (const double trace : {0.0, 1e-300, 1e-12}) {
      const std::vector<double> z = {0.5, 0.5 - 2.0 * trace, 0.0, trace, trace};
      SCOPED_TRACE(Inputs(compounds, T, P, z));
      const Equilibrium state = package->FlashTP(T, P, z);
      ASSERT_EQ(state.phases.size(), expected.phases.size());
      EXPECT_NEAR(state.VaporFraction(), expected.VaporFraction(), 1e-10);  // traces of 1e-12, amplified
      EXPECT_LT(FugacityMismatch(*package, state), 1e-9);
      for (const Phase& phase : state.phases) EXPECT_EQ(phase.x[2], 0.0);
    }
  }
}

TEST(TpFlash, DecidesPureCompoundsAtSaturation) {
  for (const char* name : {"water", "methane", "n-decane", "hydrogen", "benzene"}) {
    const Package package = MakePackage({name, "argon"});
    const std::vector<double> z = {1.0, 0.0};
    for (const double P : {1e3, 1e5, 1e6}) {
      const double T = package->FlashPVF(P, 0.5, z).T;
      SCOPED_TRACE(Inputs({name, "argon"}, T, P, z));
      EXPECT_NEAR(package->FlashTVF(T, 0.5, z).P / P, 1.0, 1e-10);  // the same curve, read both ways
      EXPECT_EQ(package->FlashTP(T * (1.0 + 1e-9), P, z).phases.front().kind, PhaseKind::kVapor);
      EXPECT_EQ(package->FlashTP(T * (1.0 - 1e-9), P, z).phases.front().kind, PhaseKind::kLiquid);
      const double vapor = package->Properties(PhaseKind::kVapor, T, P, z).gibbsEnergy;
      const double liquid = package->Properties(PhaseKind::kLiquid, T, P, z).gibbsEnergy;
      EXPECT_NEAR(vapor, liquid, 1e-8 * std::abs(vapor) + 1e-8);  // equal at saturation, by definition
    }
  }
}

TEST(SinglePhase, IsLabelledByItsDensityAndAttraction) {
  struct {
    const char* compound;
    double T, P;  // [K], [Pa]
    PhaseKind expected;
  } const cases[] = {
      {"nitrogen", 300.0, 3e7, PhaseKind::kVapor},         // far above Tc = 126 K, however dense
      {"methane", 300.0, 2e7, PhaseKind::kVapor},          // pipeline gas, T/Tc = 1.6
      {"carbon dioxide", 310.0, 3e7, PhaseKind::kLiquid},  // dense phase just above Tc = 304 K
      {"carbon dioxide", 310.0, 5e6, PhaseKind::kVapor},  {"water", 300.0, 1e5, PhaseKind::kLiquid},
      {"water", 700.0, 1e6, PhaseKind::kVapor},           {"hydrogen", 300.0, 3e7, PhaseKind::kVapor},
  };
  for (const auto& c : cases) {
    const Package package = MakePackage({c.compound});
    const std::vector<double> z = {1.0};
    SCOPED_TRACE(Inputs({c.compound}, c.T, c.P, z));
    const Equilibrium state = package->FlashTP(c.T, c.P, z);
    ASSERT_EQ(state.phases.size(), 1U);
    EXPECT_EQ(state.phases[0].kind, c.expected);
    const MolarProperties overall = package->Overall(state);
    EXPECT_EQ(package->FlashPH(c.P, overall.enthalpy, z).phases[0].kind, c.expected);
    EXPECT_EQ(package->FlashPS(c.P, overall.entropy, z).phases[0].kind, c.expected);
  }
}

TEST(SaturationFlash, ReportsBothPhasesAtBubbleAndDewPoints) {
  for (const Blend& blend : {kLightGas, kAromatics, kAqueous}) {
    const Package package = MakePackage(blend.compounds);
    for (const double P : {1e4, 1e5, 1e6, 3e6}) {
      const Equilibrium bubble = package->FlashPVF(P, 0.0, blend.z);
      const Equilibrium dew = package->FlashPVF(P, 1.0, blend.z);
      SCOPED_TRACE(Inputs(blend.compounds, bubble.T, P, blend.z));
      EXPECT_LT(bubble.T, dew.T);
      for (const Equilibrium& state : {bubble, dew}) {
        ASSERT_EQ(state.phases.size(), 2U);
        ExpectEquilibrium(*package, state, blend.z);
        const double V = state.VaporFraction();
        EXPECT_NEAR(package->FlashTVF(state.T, V, blend.z).P / P, 1.0, 1e-9);
        // 1 mK to either side of the boundary there are one and two phases.
        const double inward = V == 0.0 ? 1e-3 : -1e-3;
        EXPECT_EQ(package->FlashTP(state.T + inward, P, blend.z).phases.size(), 2U);
        EXPECT_EQ(package->FlashTP(state.T - inward, P, blend.z).phases.size(), 1U);
      }
    }
  }
}

// Beyond the critical pressure there may be two dew points; the one that is connected to low pressure is the warmer.
TEST(SaturationFlash, ReturnsTheNormalOneOfTwoDewPoints) {
  const Package package = MakePackage(kLightGas.compounds);
  const Equilibrium normal = package->FlashPVF(7e6, 1.0, kLightGas.z);
  const Equilibrium atLowerP = package->FlashPVF(6.9e6, 1.0, kLightGas.z);
  EXPECT_GT(normal.T, atLowerP.T - 5.0);
  EXPECT_EQ(package->FlashTP(normal.T + 0.1, 7e6, kLightGas.z).phases.size(), 1U);
  EXPECT_EQ(package->FlashTP(normal.T - 0.1, 7e6, kLightGas.z).phases.size(), 2U);
}

TEST(SaturationFlash, RefusesStatesBeyondTheCriticalPoint) {
  const Package mixture = MakePackage({"methane", "ethane"});
  EXPECT_THROW((void)mixture->FlashPVF(3e7, 0.5, std::vector{0.6, 0.4}), std::runtime_error);
  const Package package = MakePackage({"propane"});
  const std::vector<double> z = {1.0};
  EXPECT_THROW((void)package->FlashPVF(4.3e6, 0.5, z), std::runtime_error);
  EXPECT_THROW((void)package->FlashTVF(370.0, 0.5, z), std::runtime_error);
  EXPECT_NEAR(package->FlashTVF(369.889, 0.5, z).P, 4251200.0, 100.0);  // 1 mK below Tc; dP/dT is 8e4 Pa/K
  EXPECT_THROW((void)MakePackage({"propane"}, "ideal-gas")->FlashPVF(1e5, 0.5, z), std::runtime_error);
}

}  // namespace morvelan::host::test::phase_equilibrium
