#include <gtest/gtest.h>

#include "tests/host/ThermoTestSupport.h"

namespace morvelan::host::test::energy_flash {

struct Grid {
  const Blend& blend;
  std::vector<double> T;         // [K]
  std::vector<double> boilingP;  // [Pa], of states with the vapor fractions below
};

// Compressed and boiling liquid, vapor, and dense fluid beyond the critical point of each mixture.
const std::vector<Grid> kGrids = {
    {kLightGas, {110, 130, 150, 170, 190, 210, 230, 250, 270, 300, 340, 400, 500}, {1e4, 1e5, 1e6, 4e6}},
    {kAromatics, {290, 320, 350, 365, 380, 400, 430, 470, 510, 550, 580, 610, 700}, {1e4, 1e5, 1e6, 3e6}},
    {kAqueous, {280, 310, 340, 350, 360, 390, 420, 460, 500, 540, 570, 600, 700}, {1e4, 1e5, 1e6, 6e6}},
};
constexpr double kP[] = {1e4, 1e5, 1e6, 3e6, 6e6, 9e6, 3e7};  // [Pa]
constexpr double kVaporFractions[] = {0.01, 0.1, 0.3, 0.7, 0.9, 0.99};

/// Calls check(package, state, z) for one in `part` of the grids' 345 states. Returns the number of calls.
template <class Check>
int WalkStates(int part, Check check) {
  int count = 0;
  int index = 0;
  for (const Grid& grid : kGrids) {
    const std::vector<double>& z = grid.blend.z;
    const Package package = MakePackage(grid.blend.compounds);
    const auto take = [&](auto flash) {
      if (index++ % part != 0) return;
      ++count;
      const Equilibrium state = flash();
      SCOPED_TRACE(Inputs(grid.blend.compounds, state.T, state.P, z));
      check(*package, state, z);
    };
    for (const double T : grid.T)
      for (const double P : kP) take([&] { return package->FlashTP(T, P, z); });
    for (const double P : grid.boilingP)
      for (const double V : kVaporFractions) take([&] { return package->FlashPVF(P, V, z); });
  }
  return count;
}

constexpr double kTemperatureTolerance = 1e-6;  // [K], what recycles need to converge to 1e-6 relative
constexpr double kPressureTolerance = 1e-6;     // relative, for the same reason

TEST(EnergyFlash, ReturnsToTheStateItCameFrom) {
  const int part = OneIn(13);
  int twoPhase = 0;
  const int count = WalkStates(part, [&](const auto& package, const Equilibrium& state, const auto& z) {
    if (state.phases.size() == 2) ++twoPhase;
    const MolarProperties overall = package.Overall(state);
    const Equilibrium byH = package.FlashPH(state.P, overall.enthalpy, z);
    EXPECT_NEAR(byH.T, state.T, kTemperatureTolerance);
    EXPECT_NEAR(byH.VaporFraction(), state.VaporFraction(), 1e-6);
    EXPECT_LT(FugacityMismatch(package, byH), 1e-9);
    const Equilibrium byS = package.FlashPS(state.P, overall.entropy, z);
    EXPECT_NEAR(byS.T, state.T, kTemperatureTolerance);
    EXPECT_NEAR(package.Overall(byS).entropy, overall.entropy, 1e-7);
  });
  EXPECT_GE(count, 345 / part);
  EXPECT_GE(twoPhase, count / 5);
}

TEST(VaporFractionFlash, ReturnsToTheStateItCameFrom) {
  int twoPhase = 0;
  const int count = WalkStates(OneIn(5), [&](const auto& package, const Equilibrium& state, const auto& z) {
    if (state.phases.size() < 2) return;
    ++twoPhase;
    const Equilibrium byP = package.FlashPVF(state.P, state.VaporFraction(), z);
    EXPECT_NEAR(byP.T, state.T, kTemperatureTolerance) << "V = " << state.VaporFraction();
    EXPECT_LT(FugacityMismatch(package, byP), 1e-9) << "V = " << state.VaporFraction();
    const Equilibrium byT = package.FlashTVF(state.T, state.VaporFraction(), z);
    EXPECT_NEAR(byT.P / state.P, 1.0, kPressureTolerance) << "V = " << state.VaporFraction();
  });
  EXPECT_GE(twoPhase, count / 5);
}

// Two states may have the same T and H, because H over P has its minimum at the bubble point of a cold liquid. A liquid
// above 10 MPa is then replaced by one that just begins to boil, and that one by a liquid below 10 MPa.
TEST(TemperatureEnthalpyFlash, ReturnsToTheStateItCameFromOrItsTwin) {
  const int part = OneIn(11);
  int twins = 0;
  const int count = WalkStates(part, [&](const auto& package, const Equilibrium& state, const auto& z) {
    const double H = package.Overall(state).enthalpy;
    const Equilibrium found = package.FlashTH(state.T, H, z);
    EXPECT_EQ(found.T, state.T);
    EXPECT_NEAR(package.Overall(found).enthalpy, H, 1e-6);  // 1e-10 RT, the flash's own tolerance, and rounding
    if (std::abs(found.P / state.P - 1.0) <= kPressureTolerance) return;
    ++twins;
    if (state.phases.size() == 1) {
      EXPECT_LT(found.P, state.P);
      EXPECT_TRUE(state.P > 1e7 || found.phases.size() == 1) << "found P = " << found.P << " Pa";
    } else {
      EXPECT_LT(state.VaporFraction(), 0.1);
      EXPECT_EQ(found.phases.size(), 1U);
      EXPECT_LT(found.P, 1e7);
    }
  });
  EXPECT_GE(count, 345 / part);
  EXPECT_LE(twins, count / 8);
}

TEST(TemperatureEnthalpyFlash, RefusesWhatNoPressureGives) {
  const Package ideal = MakePackage({"methane"}, "ideal-gas");
  EXPECT_THROW((void)ideal->FlashTH(300.0, 100.0, std::vector{1.0}), std::runtime_error);
  const Package real = MakePackage({"methane"});
  EXPECT_THROW((void)real->FlashTH(300.0, 1e9, std::vector{1.0}), std::runtime_error);
}

// At the boiling point of a pure compound the temperature does not determine the state; the enthalpy does.
TEST(EnergyFlash, FindsTheVaporFractionOfPureCompoundsAndAzeotropes) {
  const std::pair<Blend, double> cases[] = {
      // P [Pa]
      {{{"water"}, {1.0}}, 101325.0},
      {{{"hydrogen"}, {1.0}}, 101325.0},
      {{{"propane", "ethane", "water"}, {1.0, 0.0, 0.0}}, 4.2e6},  // one present, 1 percent below its critical P
      {{{"benzene", "toluene"}, {1.0 - 1e-12, 1e-12}}, 101325.0},  // boils over 1e-11 K
      {{{"carbon dioxide", "ethane"}, {0.6, 0.4}}, 1.5e6},         // close to an azeotrope
  };
  for (const auto& [blend, P] : cases) {
    const auto& [compounds, z] = blend;
    const Package package = MakePackage(compounds);
    for (const double V : {0.0, 1e-6, 0.25, 0.5, 0.999}) {
      const Equilibrium boiling = package->FlashPVF(P, V, z);
      SCOPED_TRACE(Inputs(compounds, boiling.T, P, z) + ", V = " + std::to_string(V));
      const MolarProperties overall = package->Overall(boiling);
      const Equilibrium byH = package->FlashPH(P, overall.enthalpy, z);
      const Equilibrium byS = package->FlashPS(P, overall.entropy, z);
      EXPECT_NEAR(byH.T, boiling.T, kTemperatureTolerance);
      EXPECT_NEAR(byH.VaporFraction(), V, 1e-8);  // 1e-10 RT over an enthalpy of vaporization of a few RT
      EXPECT_NEAR(byS.VaporFraction(), V, 1e-8);
      if (V < 0.2 || V > 0.9) continue;  // where TH may prefer the compressed liquid
      const Equilibrium byT = package->FlashTH(boiling.T, overall.enthalpy, z);
      EXPECT_NEAR(byT.P / P, 1.0, kPressureTolerance);
      EXPECT_NEAR(byT.VaporFraction(), V, 1e-6);
    }
  }
}

// Water and heptane form two liquids, and the package keeps one of them. The enthalpy jumps where it changes to the
// other one, but every enthalpy must be found, at equilibrium.
TEST(EnergyFlash, FindsEveryEnthalpyOfAMixtureWithTwoLiquids) {
  const std::vector<std::string> compounds = {"water", "n-heptane", "argon"};
  const std::vector<double> z = {0.6, 0.3, 0.1};
  const Package package = MakePackage(compounds);
  for (double H = -36000.0; H < 12000.0; H += 500.0 * OneIn(16)) {
    SCOPED_TRACE("H = " + std::to_string(H) + " J/mol");
    const Equilibrium state = package->FlashPH(1e5, H, z);
    EXPECT_NEAR(package->Overall(state).enthalpy, H, 1e-5);
    ExpectEquilibrium(*package, state, z);
  }
}

}  // namespace morvelan::host::test::energy_flash
