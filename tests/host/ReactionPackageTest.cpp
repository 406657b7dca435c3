// The reaction package through the interfaces that a unit uses, its reactions read from a flowsheet file.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/host/HostReactions.h"

namespace morvelan::test::reaction_package {

using host::PhaseKind;
using host::ThermoOffer;
using Values = std::vector<double>;

constexpr double kR = 8.314462618;  // [J/(mol K)], CODATA 2018
constexpr double kBar = 1e5;        // [Pa]
constexpr double kRounding = 1e-12;
constexpr const char* kK = "chemicalEquilibriumConstant";

constexpr ThermoOffer kOffers[] = {ThermoOffer::k10, ThermoOffer::k11, ThermoOffer::kBoth};
constexpr const char* kBases[] = {"Molarity", "Concentration", "MoleFraction", "MassFraction"};

const Strings kGases = {"methane", "water", "carbon monoxide", "carbon dioxide", "hydrogen", "nitrogen", "ammonia"};
const Values kGasFractions = {0.2, 0.3, 0.1, 0.05, 0.15, 0.1, 0.1};
constexpr double kGasMasses[] = {16.043, 18.015, 28.010, 44.009, 2.016, 28.014, 17.031};  // [g/mol], to 4 digits

/// One reaction in each basis, its id with the basis at its end.
std::string InEachBasis(const std::string& id, const std::string& rest) {
  std::string list;
  for (const char* basis : kBases)
    list += std::string(list.empty() ? "" : ", ") + R"({"id": ")" + id + ' ' + basis + R"(", "basis": ")" + basis +
            "\", " + rest + '}';
  return list;
}

const std::string kReforming =
    R"("type": "equilibrium", "phase": "Vapor", "equilibrium": "gibbs",
       "stoichiometry": {"methane": -1, "water": -1, "carbon monoxide": 1, "hydrogen": 3})";
const std::string kKinetics =
    R"("type": "kinetic", "phase": "Vapor", "rateBasis": "homogeneous",
       "stoichiometry": {"methane": -1, "water": -1, "carbon monoxide": 1, "hydrogen": 3},
       "rate": {"preExponential": 250, "activationEnergy": 15000, "orders": {"methane": 1, "water": 0.5, "7727-37-9": -0.25}},
       "reverse": {"preExponential": 3, "activationEnergy": -4000, "orders": {"hydrogen": 2, "methane": 0}})";
const std::string kGasReactions = InEachBasis("reforming", kReforming) + ", " + InEachBasis("rate", kKinetics) + R"(,
    {"id": "shift", "type": "equilibrium", "phase": "Vapor", "basis": "MoleFraction", "equilibrium": "gibbs",
     "stoichiometry": {"carbon monoxide": -1, "water": -1, "carbon dioxide": 1, "hydrogen": 1}},
    {"id": "synthesis", "type": "equilibrium", "phase": "Vapor", "basis": "MoleFraction", "equilibrium": "gibbs",
     "stoichiometry": {"nitrogen": -0.5, "hydrogen": -1.5, "ammonia": 1}},
    {"id": "fitted", "type": "equilibrium", "phase": "Vapor", "basis": "Molarity",
     "stoichiometry": {"carbon monoxide": -1, "water": -1, "carbon dioxide": 1, "hydrogen": 1},
     "lnK": [1.5, -2000, 0.25, 1e-3], "enthalpyOfReaction": -41000},
    {"id": "catalysed", "type": "kinetic", "phase": "Vapor", "basis": "MoleFraction", "rateBasis": "heterogeneous",
     "stoichiometry": {"nitrogen": -0.5, "hydrogen": -1.5, "ammonia": 1},
     "rate": {"preExponential": 7, "activationEnergy": 0, "orders": {}}})";

/// A compound's formation properties as an ideal gas at 1 bar, from the data file alone.
struct GasData {
  nlohmann::json data;

  explicit GasData(const std::string& name) {
    static const auto file =
        nlohmann::json::parse(std::ifstream(std::filesystem::path(MORVELAN_DATA_DIR) / "compounds.json"));
    for (const auto& compound : file["compounds"])
      if (compound["name"] == name) data = compound;
  }
  /// NASA-7 enthalpy over R [K] and entropy over R at T.
  [[nodiscard]] std::pair<double, double> Polynomial(double T) const {
    for (const auto& range : data["idealGas"]["ranges"]) {
      if (T > range["Tmax"].get<double>()) continue;
      const Values a = range["a"];
      double h = a[5], s = a[6] + a[0] * std::log(T);
      for (int k = 0; k < 5; ++k) h += a[static_cast<std::size_t>(k)] * std::pow(T, k + 1) / (k + 1);
      for (int k = 1; k < 5; ++k) s += a[static_cast<std::size_t>(k)] * std::pow(T, k) / k;
      return {h, s};
    }
    return {};
  }
  [[nodiscard]] double Enthalpy(double T) const {
    return data["enthalpyOfFormationGas"].get<double>() + kR * (Polynomial(T).first - Polynomial(298.15).first);
  }
  [[nodiscard]] double GibbsEnergy(double T) const {
    const double enthalpy = data["enthalpyOfFormationGas"], gibbs = data["gibbsOfFormationGas"];
    const double entropy = (enthalpy - gibbs) / 298.15 + kR * (Polynomial(T).second - Polynomial(298.15).second);
    return Enthalpy(T) - T * entropy;
  }
};

struct Stoichiometry {
  const char* id;
  std::vector<std::pair<const char*, double>> nu;

  /// The sum of coefficient times value(compound).
  template <class Value>
  [[nodiscard]] double Sum(Value value) const {
    double sum = 0;
    for (const auto& [name, coefficient] : nu) sum += coefficient * value(GasData(name));
    return sum;
  }
  [[nodiscard]] double Enthalpy(double T) const {
    return Sum([&](const GasData& gas) { return gas.Enthalpy(T); });
  }
  /// Of mole fractions at P.
  [[nodiscard]] double LnK(double T, double P) const {
    return Sum([&](const GasData& gas) { return -gas.GibbsEnergy(T) / (kR * T) - std::log(P / kBar); });
  }
};

const Stoichiometry kGibbsReactions[] = {
    {"reforming MoleFraction", {{"methane", -1}, {"water", -1}, {"carbon monoxide", 1}, {"hydrogen", 3}}},
    {"shift", {{"carbon monoxide", -1}, {"water", -1}, {"carbon dioxide", 1}, {"hydrogen", 1}}},
    {"synthesis", {{"nitrogen", -0.5}, {"hydrogen", -1.5}, {"ammonia", 1}}},
};

/// Relative difference of two numbers.
double Apart(double a, double b) { return std::abs(a - b) / std::max(std::abs(a), std::abs(b)); }

// Steps of the tables where their ranges meet, which the package smooths away, are below 1e-6 of h and s.
constexpr double kTableSteps = 1e-5;

TEST(ReactionPackage, TakesEquilibriaFromGibbsEnergies) {
  const Reactions reactions("ideal-gas", kGases, kGasReactions);
  for (const ThermoOffer offer : kOffers)
    for (const double T : {298.15, 700.0, 1200.0})
      for (const double P : {2e4, 3e6}) {
        reactions.SetMaterial(reactions.MakeMaterial(offer, T, P, kGasFractions));
        for (const Stoichiometry& reaction : kGibbsReactions) {
          EXPECT_NEAR(std::log(reactions.Value(kK, reaction.id)), reaction.LnK(T, P), kTableSteps)
              << reaction.id << ", " << T << " K, " << P << " Pa";
          EXPECT_LE(Apart(reactions.Value("enthalpyOfReaction", reaction.id), reaction.Enthalpy(T)), kTableSteps)
              << reaction.id << ", " << T << " K";
        }
      }
  // JANAF tables, 1000 K: log Kf of CO2 20.68, of CO 10.46, of H2O 10.06.
  reactions.SetMaterial(reactions.MakeMaterial(ThermoOffer::k11, 1000, kBar, kGasFractions));
  EXPECT_NEAR(std::log10(reactions.Value(kK, "shift")), 20.68 - 10.46 - 10.06, 0.02);
}

TEST(ReactionPackage, KeepsVantHoffsEquation) {
  const Reactions reactions("ideal-gas", kGases, kGasReactions);
  constexpr double kStep = 0.05;  // [K]; the error of the central difference is below 1e-7 of it
  for (const Stoichiometry& reaction : kGibbsReactions)
    for (const double T : {400.0, 990.0, 1500.0}) {
      const auto at = [&](double temperature) {
        reactions.SetMaterial(reactions.MakeMaterial(ThermoOffer::k11, temperature, 5e5, kGasFractions));
        return std::log(reactions.Value(kK, reaction.id));
      };
      const double slope = (at(T + kStep) - at(T - kStep)) / (2 * kStep);
      (void)at(T);
      EXPECT_LE(Apart(slope, reactions.Value("enthalpyOfReaction", reaction.id) / (kR * T * T)), 1e-6)
          << reaction.id << ", " << T << " K";
    }
}

/// Amounts in a basis of a phase of composition x, molar density [mol/m3] given.
Values Amounts(const std::string& basis, const host::PropertyPackage& package, const Values& x, double density) {
  const double mass = MassOf(package, x);
  Values amounts = x;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double M = package.CompoundAt(i).molecularWeight / 1000;
    if (basis == "Molarity") amounts[i] *= density;
    if (basis == "Concentration") amounts[i] *= density * M;
    if (basis == "MassFraction") amounts[i] *= M / mass;
  }
  return amounts;
}

TEST(ReactionPackage, CalculatesInEveryBasis) {
  // An ideal gas, and a dense one: what is at equilibrium in one basis is so in every other.
  for (const char* model : {"ideal-gas", "peng-robinson"}) {
    const Reactions reactions(model, kGases, kGasReactions);
    for (const ThermoOffer offer : kOffers) {
      constexpr double T = 900, P = 2e7;
      reactions.SetMaterial(reactions.MakeMaterial(offer, T, P, kGasFractions));
      const double density =
          *model == 'i' ? P / (kR * T) : reactions.package->Properties(PhaseKind::kVapor, T, P, kGasFractions).density;
      double inMoleFractions = 0;
      for (std::size_t i = 0; i < kGases.size(); ++i)
        EXPECT_LE(Apart(reactions.package->CompoundAt(i).molecularWeight, kGasMasses[i]), 1e-3) << kGases[i];
      for (const char* basis : {"MoleFraction", "MassFraction", "Molarity", "Concentration"}) {
        const std::string what = std::string(model) + ", " + basis;
        const Values c = Amounts(basis, *reactions.package, kGasFractions, density);
        const double rate = 250 * std::exp(-15000 / (kR * T)) * c[0] * std::sqrt(c[1]) / std::pow(c[5], 0.25) -
                            3 * c[4] * c[4] * std::exp(4000 / (kR * T));
        EXPECT_LE(Apart(reactions.Value("reactionRate", std::string("rate ") + basis), rate), kRounding) << what;
        const double quotient = c[2] * c[4] * c[4] * c[4] / (c[0] * c[1]);
        const double K = reactions.Value(kK, std::string("reforming ") + basis);
        if (std::string(basis) == "MoleFraction") inMoleFractions = quotient / K;
        EXPECT_LE(Apart(quotient / K, inMoleFractions), kRounding) << what;
      }
    }
  }
}

TEST(ReactionPackage, CalculatesWhatTheFileGives) {
  const Reactions reactions("ideal-gas", kGases, kGasReactions);
  for (const ThermoOffer offer : kOffers)
    for (const double T : {350.0, 1100.0}) {
      reactions.SetMaterial(reactions.MakeMaterial(offer, T, kBar, kGasFractions));
      EXPECT_LE(Apart(reactions.Value(kK, "fitted"), std::exp(1.5 - 2000 / T + 0.25 * std::log(T) + 1e-3 * T)),
                kRounding);
      EXPECT_EQ(reactions.Value("enthalpyOfReaction", "fitted"), -41000);
      EXPECT_EQ(reactions.Value("reactionRate", "catalysed"), 7) << "of order zero";
      EXPECT_LE(Apart(reactions.Value("enthalpyOfReaction", "catalysed"), kGibbsReactions[2].Enthalpy(T)), kTableSteps)
          << "of a kinetic reaction";
    }
}

TEST(ReactionPackage, AnswersSeveralReactionsInTheOrderAsked) {
  const Reactions reactions("ideal-gas", kGases, kGasReactions);
  reactions.SetMaterial(reactions.MakeMaterial(ThermoOffer::kBoth, 800, kBar, kGasFractions));
  const Strings asked = {"synthesis", "SHIFT", "fitted", "shift"};
  Values one;
  for (const std::string& id : asked) one.push_back(reactions.Value(kK, id));
  EXPECT_EQ(reactions.Calculate({"enthalpyOfReaction", "CHEMICALequilibriumConstant"}, "vapor", asked, "mole"), S_OK)
      << reactions.Text();
  EXPECT_EQ(reactions.Read("chemicalequilibriumconstant", "", asked, ""), one);
  EXPECT_EQ(reactions.Read("enthalpyOfReaction", "Vapor", {"fitted"}, "Mole"), Values{-41000});
}

const std::string kLiquidReactions =
    R"({"id": "liquid", "type": "kinetic", "phase": "Liquid", "basis": "Molarity", "rateBasis": "homogeneous",
        "stoichiometry": {"acetic acid": -1, "ethanol": -1, "ethyl acetate": 1, "water": 1},
        "rate": {"preExponential": 2, "activationEnergy": 0, "orders": {"acetic acid": 1, "ethanol": 1}}},
       {"id": "vapor", "type": "kinetic", "phase": "Vapor", "basis": "MassFraction", "rateBasis": "homogeneous",
        "stoichiometry": {"acetic acid": -1, "ethanol": -1, "ethyl acetate": 1, "water": 1},
        "rate": {"preExponential": 2, "activationEnergy": 0, "orders": {"acetic acid": 1, "ethanol": 1}}},
       {"id": "constant", "type": "equilibrium", "phase": "Liquid", "basis": "MoleFraction", "lnK": [2, 0, 0, 0],
        "stoichiometry": {"acetic acid": -1, "ethanol": -1, "ethyl acetate": 1, "water": 1}})";
const Strings kEsterCompounds = {"acetic acid", "ethanol", "ethyl acetate", "water"};
const Values kEster = {0.3, 0.3, 0.25, 0.15};

double LiquidRate(const host::PropertyPackage& package, double T, double P, const Values& x) {
  const Values c = Amounts("Molarity", package, x, package.Properties(PhaseKind::kLiquid, T, P, x).density);
  return 2 * c[0] * c[1];
}

TEST(ReactionPackage, ReadsEachReactionsOwnPhase) {
  const Reactions reactions("peng-robinson", kEsterCompounds, kLiquidReactions);
  constexpr double T = 362, P = 1.2e5;
  const host::Equilibrium state = reactions.package->FlashTP(T, P, kEster);
  ASSERT_EQ(state.phases.size(), 2u) << "conditions of two phases";
  const Values vapor = Amounts("MassFraction", *reactions.package, state.phases[0].x, 0);
  for (const ThermoOffer offer : kOffers) {
    reactions.SetMaterial(reactions.MakeMaterial(offer, T, P, kEster));
    ASSERT_EQ(reactions.Calculate({"reactionRate"}, "", {"vapor", "liquid"}, "Mole"), S_OK) << reactions.Text();
    const Values rates = reactions.Read("reactionRate", "", {"vapor", "liquid"}, "Mole");
    ASSERT_EQ(rates.size(), 2u);
    EXPECT_LE(Apart(rates[0], 2 * vapor[0] * vapor[1]), kRounding);
    EXPECT_LE(Apart(rates[1], LiquidRate(*reactions.package, T, P, state.phases[1].x)), kRounding);
  }
}

// A unit that solves in one phase gives the material that phase's state without a flash.
TEST(ReactionPackage, TakesAStateThatIsNoEquilibrium) {
  const Reactions reactions("peng-robinson", kEsterCompounds, kLiquidReactions);
  constexpr double T = 362, P = 1.2e5;
  const double expected = LiquidRate(*reactions.package, T, P, kEster);

  const Material newer(reactions.MakeMaterial(ThermoOffer::k11, 300, 2e5, {0, 0, 0, 1}));
  const auto& thermo11 = newer.thermo11;
  const com::Bstr liquid = B("Liquid"), mole = B("Mole");
  ASSERT_EQ(thermo11->SetPresentPhases(Names({"Liquid"}).Get(), com::MakeIntegers(std::vector{1}).Get()), S_OK);
  for (const auto& [name, values] : {std::pair{"temperature", Values{T}}, {"pressure", {P}}, {"fraction", kEster}})
    ASSERT_EQ(thermo11->SetSinglePhaseProp(B(name).Get(), liquid.Get(), mole.Get(), Numbers(values).Get()), S_OK);
  reactions.SetMaterial(newer.object);
  EXPECT_LE(Apart(reactions.Value("reactionRate", "liquid"), expected), kRounding);

  const Material older(reactions.MakeMaterial(ThermoOffer::k10, 300, 2e5, {0, 0, 0, 1}));
  ASSERT_EQ(older.Set10("temperature", "Overall", "", {T}), S_OK);
  ASSERT_EQ(older.Set10("pressure", "Overall", "", {P}), S_OK);
  ASSERT_EQ(older.Set10("fraction", "Liquid", "Mole", kEster), S_OK);
  reactions.SetMaterial(older.object);
  EXPECT_LE(Apart(reactions.Value("reactionRate", "liquid"), expected), kRounding);
  // The same material in another state
  ASSERT_EQ(older.Set10("fraction", "Liquid", "Mole", {0, 0.5, 0.5, 0}), S_OK);
  EXPECT_EQ(reactions.Value("reactionRate", "liquid"), 0);
}

/// One line of all that the package tells about a reaction's chemistry.
std::string Chemistry(const Reactions& reactions, const std::string& name) {
  const auto& chemistry = reactions.chemistry;
  const com::Bstr id = B(name);
  CapeReactionType type{};
  CapeReactionRateBasis rateBasis{};
  LONG count = 0, phaseCount = 0;
  com::Bstr phase, basis, reactant;
  com::Variant nu, compounds, charges, cas, inPhase;
  EXPECT_EQ(chemistry->GetReactionType(id.Get(), &type), S_OK) << reactions.Text();
  EXPECT_EQ(chemistry->GetNumberOfReactionCompounds(id.Get(), &count), S_OK);
  EXPECT_EQ(chemistry->GetReactionPhase(id.Get(), phase.Put()), S_OK);
  EXPECT_EQ(chemistry->GetReactionConcBasis(id.Get(), basis.Put()), S_OK);
  EXPECT_EQ(chemistry->GetBaseReactant(id.Get(), reactant.Put()), S_OK);
  EXPECT_EQ(chemistry->GetStoichiometricCoefficients(id.Get(), nu.Put()), S_OK);
  EXPECT_EQ(chemistry->GetReactionCompoundIds(id.Get(), compounds.Put(), charges.Put(), cas.Put()), S_OK);
  EXPECT_EQ(chemistry->GetPhaseCompounds(id.Get(), &phaseCount, inPhase.Put()), S_OK);
  const bool hasRate = SUCCEEDED(chemistry->GetReactionRateBasis(id.Get(), &rateBasis));
  EXPECT_EQ(hasRate, type == CAPE_KINETIC) << name;
  const Strings names = com::ReadStrings(compounds.Get());
  EXPECT_EQ(com::ReadStrings(inPhase.Get()), names) << name;
  EXPECT_EQ(com::ReadDoubles(charges.Get()), Values(names.size(), 0.0)) << name;
  EXPECT_EQ(count, std::ssize(names)) << name;
  EXPECT_EQ(phaseCount, std::ssize(names)) << name;
  std::string kind = type == CAPE_KINETIC ? "kinetic" : "equilibrium";
  if (hasRate) kind += rateBasis == CAPE_HETEROGENEOUS ? ", heterogeneous" : ", homogeneous";
  std::ostringstream text;
  text << name << ": " << kind << ", " << com::ToUtf8(phase.Get()) << ", " << com::ToUtf8(basis.Get()) << ", of "
       << com::ToUtf8(reactant.Get()) << ':';
  for (std::size_t i = 0; i < names.size(); ++i)
    text << ' ' << com::ReadDoubles(nu.Get()).at(i) << ' ' << names[i] << " (" << com::ReadStrings(cas.Get()).at(i)
         << ')';
  return text.str() + '\n';
}

TEST(ReactionPackage, TellsItsChemistry) {
  const Reactions reactions("ideal-gas", kGases, kGasReactions);
  LONG count = 0;
  com::Variant ids;
  ASSERT_EQ(reactions.chemistry->GetNumberOfReactions(&count), S_OK);
  ASSERT_EQ(reactions.chemistry->GetReactionsIds(ids.Put()), S_OK);
  EXPECT_EQ(count, std::ssize(com::ReadStrings(ids.Get())));
  std::string text;
  for (const std::string& id : com::ReadStrings(ids.Get())) text += Chemistry(reactions, id);
  ExpectApproved("host/chemistry", text + Chemistry(reactions, "FITTED"));
}

}  // namespace morvelan::test::reaction_package
