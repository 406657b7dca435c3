// Every call of a reactor's calculation on host, material and reaction package fails once: the reactor
// explains it or does without, leaves the outlet as it was unless that was being written, keeps nothing, and
// calculates again.

#include <memory>

#include "tests/support/Faults.h"
#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test {
namespace {

struct Calculation {
  const char* title;
  void (*prepare)(ReactorBench&);
  /// What report or log say when the reactor goes on without what a failed call would have given.
  const char* excuse = nullptr;
};

const Calculation kCalculations[] = {
    {"adiabatic", [](ReactorBench&) {}},
    {"isothermal",
     [](ReactorBench& bench) {
       bench.Put("Heat duty type", "Isothermal");
       bench.Put("Enthalpy Type", "Use Enthalpy (no heat of reaction)");
     },
     "Heat duty cannot be determined: "},
    {"with heats of reaction",
     [](ReactorBench& bench) { bench.Put("Enthalpy Type", "Use Enthalpy and heat of reaction"); }},
    {"with heats of reaction, by name",
     [](ReactorBench& bench) {
       bench.package->state.offersMaterialContext = false;
       bench.package->state.offersThermoContext = true;
       bench.Put("Enthalpy Type", "Use Enthalpy and heat of reaction");
     }},
    {"by energy stream",
     [](ReactorBench& bench) {
       bench.Put("Heat duty type", "Energy inlet");
       bench.ConnectHeat(1000, 200, 800, "HeatDutySpecification");
     },
     "Warning: cannot do range check on temperature: "},
    {"to an energy stream", [](ReactorBench& bench) { bench.ConnectHeat(0, {}, {}, "Heat duty"); }},
    {"without flow", [](ReactorBench& bench) { bench.At("Inlet").flow = 0; }},
};

std::unique_ptr<ReactorBench> Prepared(const Calculation& calculation, bool thermo11) {
  auto bench = std::make_unique<ReactorBench>(thermo11);
  // Heats of reaction are the same at all temperatures here.
  for (FakeReaction& reaction : bench->package->state.reactions)
    reaction.properties["enthalpyOfReaction"] = {-10000, 0};
  bench->Select(R"("A to B", "A to 2B")", R"("A", "A")", "0.5, 0.25", true);
  calculation.prepare(*bench);
  bench->Validate();
  return bench;
}

/// A call whose failure changes nothing for the user.
bool IsHarmless(const std::string& call) {
  return call.starts_with("NamedValue") || call.starts_with("LogMessage") ||
         call.starts_with("CalcProp Overall") || call == "UnsetMaterial" ||
         // A package without it is asked all the same.
         call == "QueryInterface ICapeThermoMaterialContext";
}

/// A call after which the outlet may be another, for it is what was being written or what it led to.
bool ComesAfterWriting(const ReactorBench& bench, int k) {
  for (int i = 0; i + 1 < k; ++i) {
    const std::string& call = bench.script->calls[static_cast<std::size_t>(i)];
    if (call.starts_with("SetProp") || call.starts_with("SetOverallProp")) return true;
  }
  return false;
}

bool HasExcuse(ReactorBench& bench, const Calculation& calculation) {
  if (!calculation.excuse) return false;
  const std::string report = bench.door.Report("Last run");
  return report.find(calculation.excuse) != std::string::npos ||
         std::ranges::any_of(bench.context->log,
                             [&](const std::string& line) { return line.starts_with(calculation.excuse); });
}

std::vector<ULONG> References(const ReactorBench& bench) {
  std::vector<ULONG> references = {bench.context->References(), bench.package->References()};
  for (const auto& [port, material] : bench.materials) references.push_back(material->References());
  if (bench.heat) references.push_back(bench.heat->References());
  return references;
}

std::string Results(ReactorBench& bench) {
  std::string text;
  for (const char* parameter : {"Temperature", "Heat duty"})
    text += NumberText(bench.Number(parameter)) + ' ';
  for (const double flow : bench.Flows()) text += NumberText(flow) + ' ';
  return text + NumberText(bench.At("Outlet").temperature) + ' ' + NumberText(bench.At("Outlet").pressure);
}

void CheckExplanation(const ReactorBench& bench, const std::string& call, const FaultMode& mode) {
  const Texts error = ErrorOf(bench.door.unit.Get());
  EXPECT_EQ(error.scope, "Calculate");
  EXPECT_EQ(error.interfaceName, error.name == "GetReactionProperty failed" ? "BaseReactor" : "ICapeUnit");
  const bool hasNoMoreToSay = error.description.ends_with("from duplicate material") ||
                              error.description.ends_with("from duplicate material object") ||
                              call == "QueryInterface ICapeReactionChemistry" ||
                              call == "QueryInterface ICapeReactionsRoutine";
  if (!hasNoMoreToSay)
    EXPECT_NE(error.description.find(Explain("<why>", call, mode)), std::string::npos) << error.description;
  EXPECT_EQ(bench.door.Report("Status"), "Calculation failed:\r\n" + error.description + "\r\n");
}

void FailCall(const Calculation& calculation, const FaultMode& mode, bool thermo11, int k,
              const std::string& wanted, int& excused) {
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
    if (!ComesAfterWriting(*bench, k)) EXPECT_EQ(Results(*bench), before) << "the outlet is untouched";
  } else {
    const bool isExcused = HasExcuse(*bench, calculation);
    excused += isExcused;
    EXPECT_TRUE(isExcused || IsHarmless(call));
  }
  if (IsHarmless(call)) EXPECT_EQ(Results(*bench), wanted);
  // By the older interface nothing takes the copy of the feed back: it is the package's.
  if (!bench->package->state.offersMaterialContext) bench->package->material = nullptr;
  EXPECT_EQ(bench->script->liveObjects, objects);
  EXPECT_EQ(References(*bench), references);
  bench->Restart();
  bench->Calculate();
  EXPECT_EQ(Results(*bench), wanted);
}

TEST(ReactorFaults, EveryFailingCallIsExplainedOrDoneWithout) {
  for (const Calculation& calculation : kCalculations)
    for (const bool thermo11 : {false, true}) {
      const auto undisturbed = Prepared(calculation, thermo11);
      undisturbed->Calculate();
      const std::string wanted = Results(*undisturbed);
      const int calls = undisturbed->script->count;
      EXPECT_GT(calls, 20);
      int excused = 0;
      for (int k = 1; k <= calls; ++k)
        FailCall(calculation, kFaultModes[k % std::size(kFaultModes)], thermo11, k, wanted, excused);
      EXPECT_EQ(excused > 0, calculation.excuse != nullptr) << calculation.title;
    }
}

// A host that calls back, with each of its calls: it takes the package away, and validates.
TEST(ReactorFaults, OutlivesAHostThatInterferes) {
  for (const Calculation& calculation : kCalculations)
    for (const bool withdraws : {false, true}) {
      const auto undisturbed = Prepared(calculation, true);
      undisturbed->Calculate();
      const std::string wanted = Results(*undisturbed);
      const int calls = undisturbed->script->count;
      for (int k = 1; k <= calls; ++k) {
        SCOPED_TRACE(testing::Message()
                     << calculation.title << ", withdraws: " << withdraws << ", call " << k);
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

}  // namespace
}  // namespace morvelan::test
