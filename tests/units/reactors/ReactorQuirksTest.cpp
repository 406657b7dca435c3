// What reactors do and say in ways that look like mistakes and are kept: hosts' users know them. (More of
// their wordings stand in the tests of what they are about.)

#include <cmath>

#include "tests/support/TestUnit.h"
#include "tests/units/reactors/SolvingReactors.h"
#include "units/reactors/StirredTankEquations.h"

namespace morvelan::test::reactor_quirks {

/// A stirred tank of 2 m3 whose kinetic reactions have given rates [mol/(m3 s)].
struct TankBench {
  explicit TankBench(const std::vector<double>& rates) {
    FakeState state = ReactorFeed();
    FakePackageState packageState;
    for (std::size_t r = 0; r < rates.size(); ++r) {
      const std::string name = "R" + std::to_string(r);
      packageState.reactions.push_back(
          AtRate(name.c_str(), {"A", "B"}, {-1, 1}, [rate = rates[r]](const FakeConditions&) { return rate; }));
      records.push_back({.name = com::HostText(name),
                         .type = ReactionType::kKinetic,
                         .rateBasis = RateBasis::kHomogeneous,
                         .compoundIds = {"A", "B"},
                         .compoundIndices = {0, 1},
                         .coefficients = {-1, 1},
                         .phase = PhaseLabel("Vapor")});
    }
    material = com::Make<FakeMaterial>(script, state);
    package = com::Make<FakeReactionPackage>(script, packageState);
    EXPECT_EQ(unit->Initialize(), S_OK);
    EXPECT_EQ(unit->Inlet(0).Connect(static_cast<ICapeIdentification*>(material.Get())), S_OK);
  }

  /// The residuals of a trial, or why there are none.
  std::vector<double> Evaluate(const ExtentTrial& trial, std::string& why) {
    unit->Inlet(0).ResizeCompoundBuffer(3);
    ReactingMixture mixture(unit->Inlet(0).CopyMaterial(), ReactionPackage(package.As<IDispatch>().Get()));
    StirredTankEquations equations(records, tank, mixture);
    std::vector<double> residuals(records.size());
    if (!equations.Evaluate(trial, residuals, why)) residuals.clear();
    return residuals;
  }

  static constexpr double kFeed = 2;  // [mol/s], by which the solver's residuals are divided
  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  com::Ref<TestUnit> unit = com::Make<TestUnit>(kTestUnit);
  com::Ref<FakeMaterial> material;
  com::Ref<FakeReactionPackage> package;
  std::vector<Reaction> records;
  StirredTank tank{
      .phase = PhaseLabel("Vapor"), .pressure = 1e5, .volume = 2, .feedFlow = kFeed, .temperatureIsGiven = true};
};

Eigen::VectorXd Vector(const std::vector<double>& values) {
  return Eigen::Map<const Eigen::VectorXd>(values.data(), static_cast<Eigen::Index>(values.size()));
}

// The penalty for negative flows is 1000 times their squares, on the first residual, once per reaction.
TEST(ReactorQuirks, ACstrPenalizesOncePerReaction) {
  constexpr double kPenalty = 1000 * 0.125 * 0.125;  // [mol/s], exactly
  struct {
    const char* title;
    double missing;  // [mol/s]
    std::vector<double> rates, extents, residuals;
  } const cases[] = {
      {"nothing missing", 0, {0.25}, {1}, {0.5 / 2}},
      {"above zero", 0.125, {0.25}, {1}, {(0.5 + kPenalty) / 2}},
      {"below zero", 0.125, {0.75}, {1}, {(-0.5 - kPenalty) / 2}},
      {"at zero", 0.125, {0.5}, {1}, {-kPenalty / 2}},
      {"above zero, two", 0.125, {0.25, 0.5}, {1, 2}, {(0.5 + 2 * kPenalty) / 2, 1. / 2}},
      {"at zero, two", 0.125, {0.5, 1}, {1, 2}, {-2 * kPenalty / 2, 0}},
      {"at zero, three", 0.125, {0.5, 1, 0}, {1, 2, -4}, {-3 * kPenalty / 2, 0, -4. / 2}},
  };
  for (const auto& c : cases) {
    TankBench bench(c.rates);
    std::string why;
    const ExtentTrial trial{.extents = Vector(c.extents), .flows = Vector({1, 1, -c.missing}), .temperature = 300};
    EXPECT_EQ(bench.Evaluate(trial, why), c.residuals) << c.title << why;
  }
}

/// The B in each mixture that was flashed, in order.
std::vector<double> Trials(const ReactorBench& bench) {
  std::vector<double> trials;
  for (const std::string& call : bench.script->calls)
    if (call.starts_with("SetOverallProp Fraction/"))
      trials.push_back(std::stod(call.substr(call.find(',', call.find('[')) + 1)));
  return trials;
}

// A feed that lacks 1e-3 sqrt(0.75) mol/s of C costs 7.5e-4, and the solver is content with less than 1e-3 at
// the start: with one reaction at equilibrium it is, with two it looks on.
TEST(ReactorQuirks, AnEquilibriumReactorPenalizesOncePerReaction) {
  for (const bool two : {false, true}) {
    EquilibriumBench bench;
    bench.package->state.reactions.push_back(AtEquilibrium("R5", {"A", "A2"}, {-1, 1}, 1));
    for (const char* port : {"Inlet", "Outlet"}) {
      FakeState& state = bench.At(port);
      state.compounds.push_back("A2");
      state.casNumbers.push_back("4");
      state.molecularWeights.push_back(10);
      state.formationEnthalpies.push_back(0);
    }
    bench.Put("Tolerance", 0.1);
    bench.Feed({0.5, 2, -1e-3 * std::sqrt(0.75), 0.5});
    bench.Select(two ? R"("R1", "R5")" : R"("R1")");
    (void)bench.door.unit->Calculate();
    const std::size_t trials = Trials(bench).size();
    EXPECT_TRUE(two ? trials > 2 : trials == 2) << trials << ": the start, and the outlet";
  }
}

// Where ln Q - ln K is exactly zero the penalty of 0.4 counts upwards: the solver goes back to less of B.
TEST(ReactorQuirks, AnEquilibriumReactorPenalizesUpwardsAtZero) {
  EquilibriumBench bench;
  bench.Feed({0.5, 2, -0.02});
  (void)bench.door.unit->Calculate();
  const std::vector<double> trials = Trials(bench);
  ASSERT_GT(trials.size(), 3u);
  EXPECT_EQ(trials[0], 0.8) << "the feed without what is negative: x_B = 4 x_A";
  EXPECT_GT(trials[1], trials[0]) << "the derivative is taken upwards";
  EXPECT_LT(trials[2], trials[0]) << "the first step";
}

TEST(ReactorQuirks, ACstrSpellsItsTemperatureSo) {
  struct {
    double temperature;
    const char* why;
  } const cases[] = {{0, "Zero temperature"},
                     {kNaN, "Temperature it not finite"},
                     {std::numeric_limits<double>::infinity(), "Temperature it not finite"}};
  for (const auto& c : cases) {
    TankBench bench({0.25});
    std::string why;
    const ExtentTrial trial{.extents = Vector({1}), .flows = Vector({1, 1, 0}), .temperature = c.temperature};
    EXPECT_TRUE(bench.Evaluate(trial, why).empty());
    EXPECT_EQ(why, c.why);
  }
}

TEST(ReactorQuirks, AnyTrialMustBeFinite) {
  TankBench bench({0.25});
  std::string why;
  EXPECT_TRUE(bench.Evaluate({.extents = Vector({kNaN}), .flows = Vector({1, 1, 0}), .temperature = 300}, why).empty());
  EXPECT_EQ(why, "Iteration parameters are not finite");
}

}  // namespace morvelan::test::reactor_quirks
