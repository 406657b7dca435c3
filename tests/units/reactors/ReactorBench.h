#pragma once

#include <numeric>

#include "tests/support/FakeReactionPackage.h"
#include "tests/units/UnitBench.h"

namespace morvelan::test {

/// 2 mol/s of A at 300 K and 1 bar in one phase. All compounds have 50 J/(mol K), so that 100 W heat the feed
/// by 1 K; B is formed from A with -10000 J/mol, C with -30000 J/mol.
inline FakeState ReactorFeed() {
  return {.fractions = {1, 0, 0},
          .compounds = {"A", "B", "C"},
          .casNumbers = {"1", "2", "3"},
          .molecularWeights = {10, 10, 10},
          .phases = {{"Vapor", "Vapor", 1, {}}},
          .heatCapacity = 50,
          .formationEnthalpies = {0, -10000, -30000}};
}

/// Heats of reaction in the fake package are linear in the temperature of its material: here they have their
/// values at the 300 K of the feed.
inline FakePackageState ReactorPackage() {
  const auto heat = [](double at300) {
    return std::map<std::string, FakeReaction::Line>{{"enthalpyOfReaction", {at300 - 10 * 300, 10}}};
  };
  return {
      .reactions = {
          {.id = "A to B", .compounds = {"a", "B"}, .coefficients = {-1, 1}, .properties = heat(-10000)},
          {.id = "B to C", .compounds = {"B", "C"}, .coefficients = {-1, 1}, .properties = heat(-20000)},
          {.id = "A to 2B", .compounds = {"A", "B"}, .coefficients = {-1, 2}, .properties = heat(-20000)},
          {.id = "3A to B", .compounds = {"A", "B"}, .coefficients = {-3, 1}, .properties = heat(-10000)},
          {.id = "A and B to C", .compounds = {"A", "B", "C"}, .coefficients = {-1, -1, 1}, .properties = heat(-20000)},
      }};
}

/// A reaction at equilibrium in the vapour of the feed, by mole fractions.
inline FakeReaction AtEquilibrium(const char* id, std::vector<std::string> compounds, std::vector<double> coefficients,
                                  double constant, double heatOfReaction = -10000) {
  return {.id = id,
          .compounds = std::move(compounds),
          .coefficients = std::move(coefficients),
          .phase = "Vapor",
          .concentrationBasis = "MoleFraction",
          .properties = {{"chemicalEquilibriumConstant", {constant, 0}}, {"enthalpyOfReaction", {heatOfReaction, 0}}}};
}

/// A kinetic reaction in the vapour of the feed.
inline FakeReaction AtRate(const char* id, std::vector<std::string> compounds, std::vector<double> coefficients,
                           std::function<double(const FakeConditions&)> rate, std::int32_t basis = CAPE_HOMOGENEOUS) {
  return {.id = id,
          .compounds = std::move(compounds),
          .coefficients = std::move(coefficients),
          .type = CAPE_KINETIC,
          .rateBasis = basis,
          .phase = "Vapor",
          .properties = {{"enthalpyOfReaction", {-10000, 0}}},
          .formulas = {{"reactionRate", std::move(rate)}}};
}

/// A reactor with a reaction package in a fake host.
struct ReactorBench : UnitBench {
  explicit ReactorBench(bool thermo11 = true, const char* className = "FixedConversionReactor",
                        FakePackageState packageState = ReactorPackage(), FakeState feedState = ReactorFeed())
      : UnitBench(className, thermo11, std::move(feedState)),
        package(com::Make<FakeReactionPackage>(script, std::move(packageState))) {
    Rename("R-1");
    EXPECT_EQ(Assign(package.Get()), S_OK);
    Restart();
  }

  [[nodiscard]] HRESULT Assign(FakeReactionPackage* assigned) {
    IDispatch* object = assigned ? static_cast<ICapeReactionProperties*>(assigned) : nullptr;
    IDispatch* const passed = object;
    const HRESULT hr = door.unit.As<ICapeKineticReactionContext>()->SetReactionObject(&object);
    EXPECT_EQ(object, passed) << "the object stays the host's";
    return hr;
  }

  void Select(const std::string& names, const std::string& keys, const std::string& conversions, bool serial = false) {
    Configure("{\"reactionNames\": [" + names + "], \"reactionCompounds\": [" + keys + "], \"reactionConversions\": [" +
              conversions + "], \"serialReactions\": " + (serial ? "true}" : "false}"));
  }
  /// Selects the reactions of a unit that wants no more than their names, each in quotes.
  void Select(const std::string& names) { Configure("{\"reactionNames\": [" + names + "]}"); }
  /// Feeds component flows [mol/s].
  void Feed(const std::vector<double>& flows) {
    FakeState& inlet = At("Inlet");
    inlet.flow = std::accumulate(flows.begin(), flows.end(), 0.0);
    inlet.fractions.clear();
    for (const double flow : flows) inlet.fractions.push_back(flow / inlet.flow);
  }
  [[nodiscard]] std::string Configuration() const {
    com::Bstr json;
    EXPECT_EQ(door.unit.As<IUnitConfiguration>()->GetConfiguration(json.Put()), S_OK);
    return com::ToUtf8(json.Get());
  }
  [[nodiscard]] std::string Fault() const {
    std::string message;
    return door.IsValid(message) ? "valid" : message;
  }
  /// Component flows [mol/s] at the outlet.
  [[nodiscard]] std::vector<double> Flows() {
    std::vector<double> flows;
    for (const double fraction : At("Outlet").fractions) flows.push_back(fraction * At("Outlet").flow);
    return flows;
  }

  [[nodiscard]] std::vector<ULONG> References() const override {
    std::vector<ULONG> references = UnitBench::References();
    references.push_back(package->References());
    return references;
  }
  [[nodiscard]] bool SetPackage(bool isAssigned) override {
    EXPECT_EQ(Assign(isAssigned ? package.Get() : nullptr), S_OK);
    return true;
  }
  /// By the older interface nothing takes the copy of the feed back: it is the package's.
  void ForgetHandedOver() override {
    if (!package->state.offersMaterialContext) package->material = nullptr;
  }

  com::Ref<FakeReactionPackage> package;
};

/// Component flows [mol/s] at the outlet, one per compound.
inline void ExpectFlows(ReactorBench& bench, const std::vector<double>& expected, double tolerance) {
  const std::vector<double> flows = bench.Flows();
  ASSERT_EQ(flows.size(), expected.size());
  for (std::size_t i = 0; i < flows.size(); ++i) EXPECT_NEAR(flows[i], expected[i], tolerance) << "compound " << i;
}

}  // namespace morvelan::test
