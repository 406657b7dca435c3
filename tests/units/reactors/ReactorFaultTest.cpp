// Every call of a reactor's calculation on host, material and reaction package fails once: the reactor
// explains it or does without, leaves the outlet as it was unless that was being written, keeps nothing, and
// calculates again.

#include <cmath>
#include <memory>

#include "tests/support/Faults.h"
#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test::reactor_fault {

struct Calculation {
  const char* title;
  std::unique_ptr<ReactorBench> (*make)(bool thermo11);
  void (*prepare)(ReactorBench&);
  /// What report or log say when the reactor goes on without what a failed call would have given.
  const char* excuse = nullptr;
};

std::unique_ptr<ReactorBench> Converting(bool thermo11) {
  auto bench = std::make_unique<ReactorBench>(thermo11);
  // Heats of reaction are the same at all temperatures here.
  for (FakeReaction& reaction : bench->package->state.reactions)
    reaction.properties["enthalpyOfReaction"] = {-10000, 0};
  bench->Select(R"("A to B", "A to 2B")", R"("A", "A")", "0.5, 0.25", true);
  return bench;
}

/// Solving, to a tolerance that is close to what is compared.
std::unique_ptr<ReactorBench> Solving(bool thermo11, const char* unit, FakePackageState package, const char* names) {
  FakeState feed = ReactorFeed();
  feed.phases[0].properties["density"] = 1;  // [mol/m3], so that molarities are mole fractions
  auto bench = std::make_unique<ReactorBench>(thermo11, unit, std::move(package), std::move(feed));
  bench->Put("Tolerance", 1e-7);
  bench->Feed({0.28, 1.15, 0.57});  // close to equilibrium, which then takes fewer calls
  bench->Select(names);
  return bench;
}

std::unique_ptr<ReactorBench> Equilibrating(bool thermo11) {
  return Solving(thermo11, "EquilibriumReactor",
                 {.reactions = {AtEquilibrium("A to B", {"A", "B"}, {-1, 1}, 4),
                                AtEquilibrium("A to C", {"A", "C"}, {-1, 1}, 2, -30000)}},
                 R"("A to B", "A to C")");
}

std::unique_ptr<ReactorBench> Stirring(bool thermo11) {
  auto bench = Solving(thermo11, "CSTR",
                       {.reactions = {AtRate("A to B", {"A", "B"}, {-1, 1},
                                             [](const FakeConditions& tank) { return tank.fractions.at(0); }),
                                      AtEquilibrium("A to C", {"A", "C"}, {-1, 1}, 2, -30000)}},
                       R"("A to B", "A to C")");
  bench->Put("Phase", "Vapor");
  bench->Put("Reactor volume", 2);
  return bench;
}

void AsItIs(ReactorBench&) {}
void Isothermal(ReactorBench& bench) { bench.Put("Heat duty type", "Isothermal"); }
void CountingHeats(ReactorBench& bench) { bench.Put("Enthalpy Type", "Use Enthalpy and heat of reaction"); }

constexpr const char* kNoBasis = "Warning: Unable to get reaction concentration basis ";

const Calculation kCalculations[] = {
    {"adiabatic", Converting, AsItIs},
    {"isothermal", Converting,
     [](ReactorBench& bench) {
       Isothermal(bench);
       bench.Put("Enthalpy Type", "Use Enthalpy (no heat of reaction)");
     },
     "Heat duty cannot be determined: "},
    {"with heats of reaction", Converting, CountingHeats},
    {"with heats of reaction, by name", Converting,
     [](ReactorBench& bench) {
       bench.package->state.offersMaterialContext = false;
       bench.package->state.offersThermoContext = true;
       CountingHeats(bench);
     }},
    {"by energy stream", Converting,
     [](ReactorBench& bench) {
       bench.Put("Heat duty type", "Energy inlet");
       bench.ConnectHeat(1000, 200, 800, "HeatDutySpecification");
     },
     "Warning: cannot do range check on temperature: "},
    {"to an energy stream", Converting, [](ReactorBench& bench) { bench.ConnectHeat(0, {}, {}, "Heat duty"); }},
    {"without flow", Converting, [](ReactorBench& bench) { bench.At("Inlet").flow = 0; }},
    {"to equilibrium, adiabatic", Equilibrating, AsItIs, kNoBasis},
    {"to equilibrium, isothermal", Equilibrating, Isothermal, "Heat duty cannot be determined: "},
    {"to equilibrium, with heats of reaction and by molarity", Equilibrating,
     [](ReactorBench& bench) {
       CountingHeats(bench);
       for (FakeReaction& reaction : bench.package->state.reactions) reaction.concentrationBasis = "Molarity";
     },
     kNoBasis},
    {"stirred, adiabatic", Stirring, CountingHeats, kNoBasis},
    {"stirred, isothermal", Stirring, Isothermal, "Warning: Failed to get enthalpyF from outlet: "},
};

std::unique_ptr<ReactorBench> Prepared(const Calculation& calculation, bool thermo11) {
  auto bench = calculation.make(thermo11);
  calculation.prepare(*bench);
  bench->Validate();
  return bench;
}

/// What a calculation does when nothing disturbs it.
struct Undisturbed {
  std::string results;
  std::vector<double> numbers;
  std::vector<std::string> calls;
  // The calls of the solution, from 1: the first after it has its material, and that which gives it back.
  // Both zero where nothing is solved.
  int first = 0, last = 0;

  [[nodiscard]] bool Solves(int k) const { return first < k && k <= last; }
};

/// A call whose failure changes nothing for the user.
bool IsHarmless(const std::string& call) {
  return call.starts_with("NamedValue") || call.starts_with("LogMessage") || call.starts_with("CalcProp Overall") ||
         call == "UnsetMaterial" ||
         // A package without it is asked all the same.
         call == "QueryInterface ICapeThermoMaterialContext";
}

/// A call after which the outlet may be another, for it is what was being written or what it led to. (What a
/// solution writes is its own.)
bool ComesAfterWriting(const Undisturbed& undisturbed, int k) {
  for (int i = undisturbed.last; i + 1 < k; ++i) {
    const std::string& call = undisturbed.calls[static_cast<std::size_t>(i)];
    if (call.starts_with("SetProp") || call.starts_with("SetOverallProp")) return true;
  }
  return false;
}

bool HasExcuse(ReactorBench& bench, const char* excuse) {
  if (!excuse) return false;
  const std::string report = bench.door.Report("Last run");
  return report.find(excuse) != std::string::npos ||
         std::ranges::any_of(bench.context->log, [&](const std::string& line) { return line.starts_with(excuse); });
}

std::vector<ULONG> References(const ReactorBench& bench) {
  std::vector<ULONG> references = {bench.context->References(), bench.package->References()};
  for (const auto& [port, material] : bench.materials) references.push_back(material->References());
  if (bench.heat) references.push_back(bench.heat->References());
  return references;
}

std::vector<double> Numbers(ReactorBench& bench) {
  std::vector<double> numbers = bench.Flows();
  for (const char* parameter : {"Temperature", "Heat duty"}) numbers.push_back(bench.Number(parameter));
  numbers.push_back(bench.At("Outlet").temperature);
  numbers.push_back(bench.At("Outlet").pressure);
  return numbers;
}

std::string Results(ReactorBench& bench) {
  std::string text;
  for (const double number : Numbers(bench)) text += NumberText(number) + ' ';
  return text;
}

/// That the outlet's flows, temperature and pressure are those wanted, to what a solution's tolerance leaves.
void ExpectSolved(ReactorBench& bench, const Undisturbed& wanted) {
  const std::vector<double> numbers = Numbers(bench);
  ASSERT_EQ(numbers.size(), wanted.numbers.size());
  const std::size_t duty = numbers.size() - 3;  // which may not be known
  for (std::size_t i = 0; i < numbers.size(); ++i)
    if (i != duty) EXPECT_NEAR(numbers[i], wanted.numbers[i], 1e-6 * std::abs(wanted.numbers[i])) << i;
}

Undisturbed Calculated(const Calculation& calculation, bool thermo11) {
  const auto bench = Prepared(calculation, thermo11);
  bench->Calculate();
  Undisturbed undisturbed{.results = Results(*bench), .numbers = Numbers(*bench), .calls = bench->script->calls};
  if (calculation.make == Converting) return undisturbed;
  // The last copy of the feed is the solution's.
  for (std::size_t i = 0; i < undisturbed.calls.size(); ++i) {
    const std::string& call = undisturbed.calls[i];
    const int k = static_cast<int>(i) + 1;
    if (call == "CreateMaterial" || call == "Duplicate") undisturbed.first = 0;
    if (call == "SetMaterial" && undisturbed.first == 0) undisturbed.first = k;
    if (call == "UnsetMaterial") undisturbed.last = k;
  }
  EXPECT_LT(0, undisturbed.first) << calculation.title;
  EXPECT_LT(undisturbed.first + 30, undisturbed.last) << calculation.title;
  return undisturbed;
}

void CheckExplanation(const ReactorBench& bench, const std::string& call, const FaultMode& mode) {
  const Texts error = ErrorOf(bench.door.unit.Get());
  EXPECT_EQ(error.scope, "Calculate");
  EXPECT_EQ(error.interfaceName, error.name == "GetReactionProperty failed" ? "BaseReactor" : "ICapeUnit");
  const bool hasNoMoreToSay = error.description.ends_with("from duplicate material") ||
                              error.description.ends_with("from duplicate material object") ||
                              call == "QueryInterface ICapeReactionChemistry" ||
                              call == "QueryInterface ICapeReactionsRoutine" ||
                              call == "QueryInterface ICapeThermoMaterialContext";
  if (!hasNoMoreToSay)
    EXPECT_NE(error.description.find(Explain("<why>", call, mode)), std::string::npos) << error.description;
  EXPECT_EQ(bench.door.Report("Status"), "Calculation failed:\r\n" + error.description + "\r\n");
}

/// How often a reactor went on.
struct Survivals {
  int excused = 0;
  int solved = 0;
};

/// After a disturbance nothing is left of it.
void CheckAfterwards(ReactorBench& bench, const Undisturbed& wanted, int objects,
                     const std::vector<ULONG>& references) {
  // By the older interface nothing takes the copy of the feed back: it is the package's.
  if (!bench.package->state.offersMaterialContext) bench.package->material = nullptr;
  EXPECT_EQ(bench.script->liveObjects, objects);
  EXPECT_EQ(References(bench), references);
  bench.Restart();
  bench.Calculate();
  EXPECT_EQ(Results(bench), wanted.results);
}

void FailCall(const Calculation& calculation, const FaultMode& mode, bool thermo11, int k, const Undisturbed& wanted,
              Survivals& survivals) {
  const auto bench = Prepared(calculation, thermo11);
  const int objects = bench->script->liveObjects;
  const std::vector<ULONG> references = References(*bench);
  const std::string before = Results(*bench);
  Provoke(*bench->script, mode, k);
  const HRESULT outcome = bench->door.unit->Calculate();
  const std::string call = bench->script->calls.at(static_cast<std::size_t>(k) - 1);
  SCOPED_TRACE(testing::Message() << calculation.title << ", thermo 1.1: " << thermo11 << ", " << mode.title
                                  << ", call " << k << ": " << call);
  if (outcome != S_OK) {
    CheckExplanation(*bench, call, mode);
    if (!ComesAfterWriting(wanted, k)) EXPECT_EQ(Results(*bench), before) << "the outlet is untouched";
  } else if (IsHarmless(call)) {
    EXPECT_EQ(Results(*bench), wanted.results);
  } else {
    const bool isExcused = HasExcuse(*bench, calculation.excuse) || HasExcuse(*bench, kNoBasis);
    survivals.excused += isExcused;
    survivals.solved += wanted.Solves(k);
    EXPECT_TRUE(isExcused || wanted.Solves(k));
    ExpectSolved(*bench, wanted);
  }
  CheckAfterwards(*bench, wanted, objects, references);
}

TEST(ReactorFaults, EveryFailingCallIsExplainedOrDoneWithout) {
  for (const Calculation& calculation : kCalculations)
    for (const bool thermo11 : {false, true}) {
      const Undisturbed wanted = Calculated(calculation, thermo11);
      const int calls = static_cast<int>(wanted.calls.size());
      EXPECT_GT(calls, 20);
      Survivals survivals;
      for (int k = 1; k <= calls; ++k)
        FailCall(calculation, kFaultModes[k % std::size(kFaultModes)], thermo11, k, wanted, survivals);
      EXPECT_EQ(survivals.excused > 0, calculation.excuse != nullptr) << calculation.title;
      EXPECT_EQ(survivals.solved > 0, wanted.last > 0) << calculation.title;
    }
}

// ---- A package that is wrong, or gone

TEST(ReactorFaults, EveryWrongAnswerOfThePackageIsRefusedOrDoneWithout) {
  com::Variant (*const answers[])() = {
      [] {
        return com::MakeDoubles(std::array{1.0, 2.0, 3.0});
      },
      [] { return com::MakeDoubles(std::array{kNaN}); },
      [] {
        return com::MakeDoubles(std::array{kNaN, 1.0});
      },
      [] { return com::MakeDoubles(std::array{-std::numeric_limits<double>::infinity()}); },
      [] { return com::MakeStrings(std::vector<std::string>{"odd"}); },
      [] { return com::Variant(); },
  };
  for (const Calculation& calculation : kCalculations) {
    const Undisturbed wanted = Calculated(calculation, true);
    int refused = 0;
    for (int k = 1; k <= static_cast<int>(wanted.calls.size()); ++k) {
      const std::string& call = wanted.calls[static_cast<std::size_t>(k) - 1];
      if (!call.starts_with("GetReactionProp") && !call.starts_with("GetReactionCompoundIds") &&
          !call.starts_with("GetStoichiometricCoefficients"))
        continue;
      for (std::size_t i = 0; i < std::size(answers); ++i) {
        // (A solution asks the same again and again: each time it gets another answer.)
        if (wanted.Solves(k) && i != static_cast<std::size_t>(k) % std::size(answers)) continue;
        SCOPED_TRACE(testing::Message() << calculation.title << ", call " << k << ": " << call << ", answer " << i);
        const auto bench = Prepared(calculation, true);
        const int objects = bench->script->liveObjects;
        const std::vector<ULONG> references = References(*bench);
        const std::string before = Results(*bench);
        bench->script->oddAt = k;
        bench->script->oddAnswer = answers[i];
        const HRESULT outcome = bench->door.unit->Calculate();
        refused += outcome != S_OK;
        EXPECT_TRUE(outcome != S_OK || wanted.Solves(k));
        if (outcome == S_OK)
          ExpectSolved(*bench, wanted);
        else
          EXPECT_EQ(Results(*bench), before) << "the outlet is untouched";
        EXPECT_EQ(ErrorOf(bench->door.unit.Get()).description.empty(), outcome == S_OK);
        CheckAfterwards(*bench, wanted, objects, references);
      }
    }
    EXPECT_GT(refused, 0) << calculation.title;
  }
}

TEST(ReactorFaults, TheReactorNeedsItsPackage) {
  for (const auto make : {Converting, Equilibrating, Stirring}) {
    const auto bench = make(true);
    bench->Validate();
    EXPECT_EQ(bench->Assign(nullptr), S_OK);
    CheckFailedCalculation(bench->door,
                           "A reaction package has not been assigned. Please return to simulation environment "
                           "and assign a reaction package to this unit operation");
    EXPECT_EQ(bench->At("Outlet").written.size(), 0u);
    EXPECT_EQ(bench->Assign(bench->package.Get()), S_OK);
    bench->Calculate();
  }
}

// A host that calls back, with each of its calls: it takes the package away, and validates.
TEST(ReactorFaults, OutlivesAHostThatInterferes) {
  for (const Calculation& calculation : kCalculations)
    for (const bool withdraws : {false, true}) {
      const Undisturbed undisturbed = Calculated(calculation, true);
      const std::string& wanted = undisturbed.results;
      for (int k = 1; k <= static_cast<int>(undisturbed.calls.size()); ++k) {
        // (A solution asks the same again and again: every fifth call comes to each sooner or later.)
        if (undisturbed.Solves(k) && k % 5 != withdraws) continue;
        SCOPED_TRACE(testing::Message() << calculation.title << ", withdraws: " << withdraws << ", call " << k);
        const auto bench = Prepared(calculation, true);
        bench->Restart();
        bench->script->interfereAt = k;
        bench->script->interfere = [&] {
          if (withdraws) EXPECT_EQ(bench->Assign(nullptr), S_OK);
          com::Bstr message;
          VARIANT_BOOL isValid = VARIANT_FALSE;
          EXPECT_EQ(bench->door.unit->Validate(message.Put(), &isValid), kUnitFailed);
        };
        const HRESULT outcome = bench->door.unit->Calculate();
        if (!withdraws) EXPECT_EQ(outcome, S_OK) << ErrorOf(bench->door.unit.Get());
        if (outcome == S_OK) EXPECT_EQ(Results(*bench), wanted);
        if (withdraws) EXPECT_EQ(bench->Assign(bench->package.Get()), S_OK);
        bench->Restart();
        bench->Calculate();
        EXPECT_EQ(Results(*bench), wanted);
      }
    }
}

}  // namespace morvelan::test::reactor_fault
