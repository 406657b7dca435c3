// The values that host materials give, against the property package that is behind them.

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "tests/host/HostMaterials.h"

namespace morvelan::test::material_property {

using host::MolarProperties;
using host::PhaseKind;
using Values = std::vector<double>;

constexpr double kSame = 1e-12;       // the same calculation, but for a conversion
constexpr double kDifference = 2e-5;  // error of central differences, relative to the largest element

struct State {
  const char* name;
  double T, P;
  Values z;
  Strings phases;
};

const State kStates[] = {
    {"two phases", 250, 4e6, kGas, {"Vapor", "Liquid"}},
    {"vapor", 350, 1e5, kGas, {"Vapor"}},
    {"liquid", 180, 8e6, {0.3, 0.4, 0.2, 0.1}, {"Liquid"}},
    {"vapor without propane", 300, 1e5, {0.9, 0, 0.02, 0.08}, {"Vapor"}},
};

/// How a value depends on the basis: not, per amount, amount per volume.
enum class Kind { kPlain, kPerAmount, kPerVolume };

struct ScalarCase {
  const char* property;
  double (*expected)(const MolarProperties&);
  Kind kind;
};

const ScalarCase kScalars[] = {
    {"enthalpy", [](const MolarProperties& p) { return p.enthalpy; }, Kind::kPerAmount},
    {"enthalpyF", [](const MolarProperties& p) { return *p.enthalpyF; }, Kind::kPerAmount},
    {"entropy", [](const MolarProperties& p) { return p.entropy; }, Kind::kPerAmount},
    {"entropyF", [](const MolarProperties& p) { return *p.entropyF; }, Kind::kPerAmount},
    {"gibbsEnergy", [](const MolarProperties& p) { return p.gibbsEnergy; }, Kind::kPerAmount},
    {"gibbsEnergyF", [](const MolarProperties& p) { return *p.gibbsEnergyF; }, Kind::kPerAmount},
    {"volume", [](const MolarProperties& p) { return p.volume; }, Kind::kPerAmount},
    {"density", [](const MolarProperties& p) { return p.density; }, Kind::kPerVolume},
    {"heatCapacityCp", [](const MolarProperties& p) { return p.heatCapacityCp; }, Kind::kPerAmount},
    {"compressibilityFactor", [](const MolarProperties& p) { return p.compressibility; }, Kind::kPlain},
};

void ExpectNear(const Values& actual, const Values& expected, double tolerance, const std::string& what) {
  ASSERT_EQ(actual.size(), expected.size()) << what;
  double scale = 0;
  for (const double value : expected) scale = std::max(scale, std::abs(value));
  for (std::size_t i = 0; i < actual.size(); ++i)
    EXPECT_NEAR(actual[i], expected[i], tolerance * scale) << what << ", element " << i;
}

double InMass(double molar, Kind kind, double M) {
  return kind == Kind::kPerAmount ? molar / M : kind == Kind::kPerVolume ? molar * M : molar;
}

PhaseKind KindOf(const std::string& phase) { return phase == "Vapor" ? PhaseKind::kVapor : PhaseKind::kLiquid; }

/// Expects the scalar properties of a phase or of all phases in both bases, M [kg/mol] being the molecular weight.
void ExpectScalars(const Material& material, const char* label, const MolarProperties& expected, double M) {
  for (const ScalarCase& c : kScalars) {
    const std::string what = std::string(c.property) + " of " + label;
    const double molar = c.expected(expected);
    ExpectNear(material.Calc10(c.property, label, "Mole"), {molar}, kSame, what);
    ExpectNear(material.Calc10(c.property, label, "Mass"), {InMass(molar, c.kind, M)}, kSame, what);
    if (std::string(label) == "overall") continue;  // thermo 1.1 calculates properties of phases only
    ExpectNear(material.Calc11(c.property, label, "mole"), {molar}, kSame, what);
    ExpectNear(material.Calc11(c.property, label, "MASS"), {InMass(molar, c.kind, M)}, kSame, what);
  }
}

TEST(HostMaterial, GivesThePackagesPropertiesInBothGenerations) {
  const auto& package = *GasPackage();
  for (const State& state : kStates) {
    SCOPED_TRACE(state.name);
    const Material material;
    material.Bring(state.T, state.P, 2, state.z);
    EXPECT_EQ(material.PresentPhases(), state.phases);
    const host::Equilibrium equilibrium = package.FlashTP(state.T, state.P, state.z);
    ExpectScalars(material, "overall", package.Overall(equilibrium), MassOf(package, state.z));
    for (const host::Phase& phase : equilibrium.phases) {
      const char* label = host::PhaseName(phase.kind);
      const double M = MassOf(package, phase.x);
      ExpectScalars(material, label, package.Properties(phase.kind, state.T, state.P, phase.x), M);
      const auto lnPhi = package.LnPhi(phase.kind, state.T, state.P, phase.x);
      Values phi, fugacity;
      for (const double value : lnPhi) phi.push_back(std::exp(value));
      for (std::size_t i = 0; i < phi.size(); ++i) fugacity.push_back(phase.x[i] * state.P * phi[i]);
      for (const auto& [property, values] :
           {std::pair{"logFugacityCoefficient", lnPhi}, {"fugacityCoefficient", phi}, {"fugacity", fugacity}}) {
        ExpectNear(material.Calc10(property, label, ""), values, kSame, property);
        ExpectNear(material.Calc11(property, label, ""), values, kSame, property);
      }
      ExpectNear(material.Calc11("molecularWeight", label, ""), {1000 * M}, kSame, "molecularWeight");
    }
  }
}

// Flows and fractions in both bases, by their definitions.
TEST(HostMaterial, GivesFlowsAndFractions) {
  const auto& package = *GasPackage();
  const State& state = kStates[0];
  const Material material;
  material.Bring(state.T, state.P, 2, state.z);
  const double M = MassOf(package, state.z);
  for (const host::Phase& phase : package.FlashTP(state.T, state.P, state.z).phases) {
    const char* label = host::PhaseName(phase.kind);
    const double phaseM = MassOf(package, phase.x);
    Values massFractions, flows, massFlows;
    for (std::size_t i = 0; i < phase.x.size(); ++i) {
      const double Mi = package.CompoundAt(i).molecularWeight / 1000;
      massFractions.push_back(phase.x[i] * Mi / phaseM);
      flows.push_back(2 * phase.fraction * phase.x[i]);
      massFlows.push_back(flows.back() * Mi);
    }
    struct {
      const char* property;
      const char* basis;
      Values expected;
    } const cases[] = {
        {"fraction", "Mole", phase.x},
        {"fraction", "Mass", massFractions},
        {"phaseFraction", "Mole", {phase.fraction}},
        {"phaseFraction", "Mass", {phase.fraction * phaseM / M}},
        {"flow", "Mole", flows},
        {"flow", "Mass", massFlows},
        {"totalFlow", "Mole", {2 * phase.fraction}},
        {"totalFlow", "Mass", {2 * phase.fraction * phaseM}},
        {"temperature", "", {state.T}},
        {"pressure", "", {state.P}},
    };
    for (const auto& c : cases) {
      const std::string what = std::string(c.property) + " of " + label + " on basis " + c.basis;
      ExpectNear(material.Get10(c.property, label, c.basis), c.expected, kSame, what);
      ExpectNear(material.Get11(c.property, label, c.basis), c.expected, kSame, what);
    }
  }
  ExpectNear(material.Get10("totalFlow", "Overall", "Mass"), {2 * M}, kSame, "overall mass flow");
}

// 44.01 g of carbon dioxide and 16.043 g of methane a second are 1 mol/s of each.
TEST(HostMaterial, TakesStatesOnMassBasis) {
  const auto shared = MakePackage({"methane", "carbon dioxide"});
  const Material material(shared);
  const auto& package = *shared;
  const double m1 = package.CompoundAt(0).molecularWeight / 1000, m2 = package.CompoundAt(1).molecularWeight / 1000;
  ASSERT_EQ(material.Set("flow", "Mass", {m1, m2}), S_OK);
  ExpectNear(material.Get11("totalFlow", "Overall", "Mole"), {2}, kSame, "total flow");
  ExpectNear(material.Get11("fraction", "Overall", "Mole"), {0.5, 0.5}, kSame, "composition");
  ASSERT_EQ(material.Set("totalFlow", "Mass", {10 * (m1 + m2)}), S_OK);
  ExpectNear(material.Get11("flow", "Overall", "Mole"), {10, 10}, kSame, "flows");
  ASSERT_EQ(material.Set("fraction", "Mass", {m1 / (m1 + 3 * m2), 3 * m2 / (m1 + 3 * m2)}), S_OK);
  ExpectNear(material.Get11("fraction", "Overall", "Mole"), {0.25, 0.75}, kSame, "composition from mass");
  ASSERT_EQ(material.Set("flow", "Mole", {0, 0}), S_OK);
  ExpectNear(material.Get11("totalFlow", "Overall", "Mole"), {0}, kSame, "no flow");
  ExpectNear(material.Get11("fraction", "Overall", "Mole"), {0.25, 0.75}, kSame, "composition without flow");
}

/// A property's values at a state that is no equilibrium of its own.
Values ValuesAt(const std::string& property, const std::string& phase, double T, double P, const Values& x) {
  const auto& package = *GasPackage();
  const auto molar = package.Properties(KindOf(phase), T, P, x);
  for (const ScalarCase& c : kScalars)
    if (property == c.property) return {c.expected(molar)};
  Values values = package.LnPhi(KindOf(phase), T, P, x);
  if (property == "fugacityCoefficient")
    for (double& value : values) value = std::exp(value);
  return values;
}

Values Scaled(Values values, double factor) {
  for (double& value : values) value *= factor;
  return values;
}

/// (f(+h) - f(-h)) / 2h.
template <class F>
Values CentralDifference(F f, double h) {
  Values values = f(h);
  const Values before = f(-h);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = (values[i] - before[i]) / (2 * h);
  return values;
}

/// d(n f)/dn_i, or df/dn_i for an intensive property, one mole in all.
Values ByMoles(const std::string& property, const std::string& phase, double T, double P, const Values& x,
               std::size_t i, bool extensive) {
  return CentralDifference(
      [&](double h) {
        Values n = x;
        n[i] += h;
        return Scaled(ValuesAt(property, phase, T, P, Scaled(n, 1 / (1 + h))), extensive ? 1 + h : 1);
      },
      1e-5);
}

TEST(HostMaterial, DerivativesAreThoseOfTheValues) {
  const std::set<std::string> intensive = {"density", "fugacityCoefficient", "logFugacityCoefficient"};
  const Strings names = Split(
      "enthalpy enthalpyF entropy entropyF gibbsEnergy gibbsEnergyF volume density fugacityCoefficient "
      "logFugacityCoefficient",
      ' ');
  const double T = 250, P = 4e6;
  const Material material = AtEquilibrium();
  for (const host::Phase& phase : GasPackage()->FlashTP(T, P, kGas).phases) {
    const char* label = host::PhaseName(phase.kind);
    for (const std::string& name : names) {
      const std::string what = name + " of " + label;
      const auto at = [&](double dT, double dP) { return ValuesAt(name, label, T + dT, P + dP, phase.x); };
      ExpectNear(material.Calc10(name + ".Dtemperature", label, "Mole"),
                 CentralDifference([&](double h) { return at(h, 0); }, 1e-2), kDifference, what + " by T");
      ExpectNear(material.Calc11(name + ".DPRESSURE", label, "Mole"),
                 CentralDifference([&](double h) { return at(0, h); }, 10), kDifference, what + " by P");
      if (intensive.contains(name)) continue;
      Values partial;
      for (std::size_t i = 0; i < phase.x.size(); ++i)
        partial.push_back(ByMoles(name, label, T, P, phase.x, i, true).front());
      ExpectNear(material.Calc11(name + ".Dmoles", label, "Mole"), partial, kDifference, what + " by moles");
      // By independent fractions, with the property in proportion to the amount: the same numbers.
      ExpectNear(material.Calc10(name + ".DmolFraction", label, "Mole"), partial, kDifference, what + " by fractions");
    }
    Values matrix(phase.x.size() * phase.x.size());
    for (std::size_t j = 0; j < phase.x.size(); ++j) {
      const Values column = ByMoles("logFugacityCoefficient", label, T, P, phase.x, j, false);
      for (std::size_t i = 0; i < column.size(); ++i) matrix[i * column.size() + j] = column[i];
    }
    ExpectNear(material.Calc11("logFugacityCoefficient.Dmoles", label, ""), matrix, kDifference, "ln phi by n");
    // kappa = -(1/V) dV/dP
    const Values volumeByP =
        CentralDifference([&](double h) { return ValuesAt("volume", label, T, P + h, phase.x); }, 10);
    ExpectNear(material.Calc11("compressibility", label, ""),
               {-volumeByP.front() / ValuesAt("volume", label, T, P, phase.x).front()}, kDifference, "kappa");
  }
}

// ln phi and its derivatives do not change with the amount, but for those by moles, which go with 1/n.
TEST(HostMaterial, CalculatesFugacitiesWithoutAState) {
  const Material material;
  const auto& package = *GasPackage();
  com::Variant lnPhi, byT, byP, byMoles;
  ASSERT_EQ(material.routine->CalcAndGetLnPhi(com::ToBstr("vapor").Get(), 300, 1e6, Numbers(Scaled(kGas, 4)).Get(),
                                              1 | 2 | 4 | 8, lnPhi.Put(), byT.Put(), byP.Put(), byMoles.Put()),
            S_OK);
  const auto derivatives = package.Derivatives(PhaseKind::kVapor, 300, 1e6, kGas);
  ExpectNear(com::ReadDoubles(lnPhi.Get()), package.LnPhi(PhaseKind::kVapor, 300, 1e6, kGas), kSame, "ln phi");
  ExpectNear(com::ReadDoubles(byT.Get()), derivatives.lnPhiDT, kSame, "by T");
  ExpectNear(com::ReadDoubles(byP.Get()), derivatives.lnPhiDP, kSame, "by P");
  ExpectNear(com::ReadDoubles(byMoles.Get()), Scaled(derivatives.lnPhiDn, 0.25), kSame, "by moles");
  ASSERT_EQ(material.routine->CalcAndGetLnPhi(com::ToBstr("Liquid").Get(), 200, 1e6, Numbers(kGas).Get(), 1,
                                              lnPhi.Put(), byT.Put(), byP.Put(), byMoles.Put()),
            S_OK);
  EXPECT_EQ(byT.Get().vt, VT_EMPTY);
  EXPECT_EQ(byMoles.Get().vt, VT_EMPTY);
}

// A flash at conditions that were read off another equilibrium must come back to it.
TEST(HostMaterial, FlashesComeBackToTheStateThatGaveTheirConditions) {
  const double T = 250, P = 4e6;
  const auto& package = *GasPackage();
  const auto equilibrium = package.FlashTP(T, P, kGas);
  const auto molar = package.Overall(equilibrium);
  const Strings temperature = {"Temperature", "", "Overall"}, pressure = {"pressure", "", "OVERALL"},
                fraction = {"phaseFraction", "Mole", "Vapor"};
  const auto energy = [](const char* name) { return Strings{name, "", "Overall"}; };
  struct {
    const char* type;  // empty where thermo 1.0 has no name for it
    Strings first, second;
    const char* property;  // that is set besides temperature or pressure
    double value;
    bool temperatureIsFree;
  } const cases[] = {
      {"PH", pressure, energy("enthalpy"), "enthalpy", molar.enthalpy, true},
      {"phf", energy("enthalpyF"), pressure, "enthalpyF", *molar.enthalpyF, true},
      {"pS", energy("entropy"), pressure, "entropy", molar.entropy, true},
      {"", pressure, energy("entropyF"), "entropyF", *molar.entropyF, true},
      {"PVF", pressure, fraction, "phaseFraction", equilibrium.VaporFraction(), true},
      {"TVF", fraction, temperature, "phaseFraction", equilibrium.VaporFraction(), false},
      {"TH", temperature, energy("enthalpy"), "enthalpy", molar.enthalpy, false},
      {"THF", energy("enthalpyF"), temperature, "enthalpyF", *molar.enthalpyF, false},
  };
  for (const auto& c : cases)
    for (const bool thermo11 : {false, true}) {
      if (!thermo11 && !*c.type) continue;
      const Material material;
      // The condition is given first, and a wrong value of what is free with it.
      const bool ofPhase = std::string(c.property) == "phaseFraction";
      ASSERT_EQ(material.Set10(c.property, ofPhase ? "Vapor" : "Overall", "Mole", {c.value}), S_OK);
      ASSERT_EQ(material.Set("temperature", "", {c.temperatureIsFree ? 300 : T}), S_OK);
      ASSERT_EQ(material.Set("pressure", "", {c.temperatureIsFree ? P : 1e5}), S_OK);
      ASSERT_EQ(material.Set("fraction", "Mole", kGas), S_OK);
      ASSERT_EQ(thermo11 ? material.Flash11(c.first, c.second) : material.Flash10(c.type), S_OK)
          << c.type << ": " << material.Text();
      const std::string what = std::string(c.type) + (thermo11 ? ", thermo 1.1" : ", thermo 1.0");
      ExpectNear(material.Get11("temperature", "Overall", ""), {T}, 1e-7, what);
      ExpectNear(material.Get11("pressure", "Overall", ""), {P}, 1e-7, what);
      ExpectNear(material.Get11("phaseFraction", "Vapor", "Mole"), {equilibrium.VaporFraction()}, 1e-6, what);
    }
}

}  // namespace morvelan::test::material_property
