// Every host call of a calculation fails once, in one way or another: the unit explains it or does without,
// keeps nothing, and calculates again. For the heater / cooler, the valve, the mixer and the splitter.

#include <algorithm>
#include <memory>

#include "tests/support/Faults.h"
#include "tests/support/Persistence.h"
#include "tests/units/UnitBench.h"

namespace morvelan::test::stream_unit_fault {

struct Calculation {
  const char* title;
  const char* className;
  void (*prepare)(UnitBench&);
  /// What the log says when the unit goes on without what a failed call would have given; null when it can't.
  const char* excuse;
  /// How many calls have that excuse, under thermo 1.0 and 1.1.
  std::array<int, 2> excused;
};

constexpr const char* kNoRangeCheck = "Warning: cannot do range check on temperature: ";

const Calculation kCalculations[] = {
    {"by heat duty", "HeaterCooler", [](UnitBench& bench) { bench.Put("Heat duty", 1000); }, nullptr, {}},
    // Excused are the enthalpies of inlet and outlet: with two phases 4 + 9 and 1 + 9 calls under thermo 1.1;
    // 3 + 2 and 1 + 2 under 1.0, but for CalcProp, which is made up for.
    {"by temperature",
     "HeaterCooler",
     [](UnitBench& bench) {
       bench.Put("Type", "Temperature");
       bench.Put("Outlet temperature", 350);
     },
     "HeaterCooler unable to determine heat duty",
     {5 + 3, 13 + 10}},
    // Excused are the two temperatures of 4 calls each, the limit's flash of 6 and 10, its enthalpy as above.
    {"by energy stream",
     "HeaterCooler",
     [](UnitBench& bench) {
       bench.Put("Type", "Energy inlet");
       bench.ConnectHeat(1000, 280, 400);
     },
     kNoRangeCheck,
     {8 + 6 + 3, 8 + 10 + 10}},
    {"to an outlet port",
     "HeaterCooler",
     [](UnitBench& bench) {
       bench.Configure(R"({"heatPort": "outlet"})");
       bench.ConnectHeat(0);
     },
     nullptr,
     {}},
    {"without flow", "HeaterCooler", [](UnitBench& bench) { bench.At("Inlet").flow = 0; }, nullptr, {}},
    {"by difference", "Valve", [](UnitBench& bench) { bench.Put("Pressure difference", 2e5); }, nullptr, {}},
    {"two streams", "Mixer", [](UnitBench&) {}, nullptr, {}},
    {"two compounds", "Splitter", [](UnitBench&) {}, nullptr, {}},
    {"one compound",
     "Splitter",
     [](UnitBench& bench) {
       bench.At("Inlet").fractions = {1, 0};
     },
     nullptr,
     {}},
};

std::unique_ptr<UnitBench> Prepared(const Calculation& calculation, bool thermo11) {
  auto bench = std::make_unique<UnitBench>(calculation.className, thermo11);
  calculation.prepare(*bench);
  bench->Validate();
  return bench;
}

/// Letters only, in lower case: messages write "total flow" where properties are called "totalFlow".
std::string Letters(const std::string& text) {
  std::string letters;
  for (const char c : text)
    if (std::isalpha(static_cast<unsigned char>(c))) letters += static_cast<char>(std::tolower(c));
  return letters;
}

/// What a description must name when a call fails: the property or the operation.
std::string Subject(const std::string& call) {
  if (call.starts_with("CalcEquilibrium")) return "CalcEquilibrium";
  if (call.find("Prop ") == std::string::npos) return {};
  const auto begin = call.find(' ') + 1;
  return call.substr(begin, call.find('/') - begin);
}

/// A call whose failure changes nothing for the user.
bool IsHarmless(const std::string& call) {
  return call.starts_with("NamedValue") || call.starts_with("LogMessage") ||
         call.starts_with("CalcProp Overall");  // summed over the phases instead
}

void CheckExplanation(const UnitBench& bench, const std::string& call, const FaultMode& mode) {
  const Texts error = ErrorOf(bench.door.unit.Get());
  EXPECT_EQ(error.scope, "Calculate");
  EXPECT_EQ(error.interfaceName, "ICapeUnit");
  EXPECT_EQ(error.name, error.description);
  // The copy of a material is a new object, which has no more to say than that it lacks the interface.
  if (!error.description.ends_with("from duplicate material"))
    EXPECT_NE(error.description.find(Explain("<why>", call, mode)), std::string::npos) << error.description;
  // Writing a property of the unit's own choice passes on the host's words alone.
  if (!call.starts_with("SetProp enthalpy") && !call.starts_with("SetOverallProp enthalpy"))
    EXPECT_NE(Letters(error.description).find(Letters(Subject(call))), std::string::npos) << error.description;
  EXPECT_EQ(bench.door.Report("Status"), "Calculation failed:\r\n" + error.description + "\r\n");
}

bool HasExcuse(const UnitBench& bench, const Calculation& calculation) {
  return calculation.excuse && std::ranges::any_of(bench.context->log, [&](const std::string& line) {
           return line.starts_with(calculation.excuse);
         });
}

void ExpectSameProducts(UnitBench& bench, UnitBench& undisturbed) {
  for (auto& [port, material] : bench.materials) {
    const FakeState& state = material->state;
    const FakeState& wanted = undisturbed.At(port);
    EXPECT_DOUBLE_EQ(state.temperature, wanted.temperature) << port;
    EXPECT_EQ(state.pressure, wanted.pressure) << port;
    EXPECT_EQ(state.flow, wanted.flow) << port;
    EXPECT_EQ(state.fractions, wanted.fractions) << port;
  }
}

std::vector<ULONG> References(const UnitBench& bench) {
  std::vector<ULONG> references = {bench.context->References()};
  for (const auto& [port, material] : bench.materials) references.push_back(material->References());
  if (bench.heat) references.push_back(bench.heat->References());
  return references;
}

std::string ParametersText(const UnitBench& bench) {
  std::string text;
  for (const auto& parameter : ItemsOf<ICapeParameter>(bench.door.Parameters()))
    text += ParameterText(parameter) + "\n";
  return text;
}

/// Lets call `k` of a calculation fail; true when the unit went on with the excuse of its calculation.
bool FailCall(const Calculation& calculation, const FaultMode& mode, bool thermo11, int k, UnitBench& undisturbed) {
  const auto bench = Prepared(calculation, thermo11);
  const int objects = bench->script->liveObjects;
  const std::vector<ULONG> references = References(*bench);
  const std::string parameters = ParametersText(*bench);
  Provoke(*bench->script, mode, k);
  const HRESULT outcome = bench->door.unit->Calculate();
  const std::string call = bench->script->calls.at(static_cast<std::size_t>(k) - 1);
  SCOPED_TRACE(testing::Message() << calculation.className << ' ' << calculation.title << ", thermo 1.1: " << thermo11
                                  << ", " << mode.title << ", call " << k << ": " << call);
  const bool excused = outcome == S_OK && HasExcuse(*bench, calculation);
  if (outcome != S_OK) {
    CheckExplanation(*bench, call, mode);
    EXPECT_EQ(ParametersText(*bench), parameters);
  } else {
    EXPECT_TRUE(excused || IsHarmless(call));
  }
  EXPECT_EQ(bench->script->liveObjects, objects);
  EXPECT_EQ(References(*bench), references);
  if (IsHarmless(call)) {
    EXPECT_EQ(outcome, S_OK);
    ExpectSameProducts(*bench, undisturbed);
  }
  bench->Restart();
  bench->Calculate();
  EXPECT_FALSE(HasExcuse(*bench, calculation));
  ExpectSameProducts(*bench, undisturbed);
  return excused;
}

TEST(StreamUnitFaults, EveryFailingHostCallIsExplainedOrDoneWithout) {
  for (const Calculation& calculation : kCalculations)
    for (const bool thermo11 : {false, true}) {
      const auto undisturbed = Prepared(calculation, thermo11);
      undisturbed->Calculate();
      const int calls = undisturbed->script->count;
      EXPECT_GT(calls, 15);
      int excused = 0;
      for (int k = 1; k <= calls; ++k)
        excused += FailCall(calculation, kFaultModes[k % std::size(kFaultModes)], thermo11, k, *undisturbed);
      EXPECT_EQ(excused, calculation.excused[thermo11])
          << calculation.className << ' ' << calculation.title << ", thermo 1.1: " << thermo11;
    }
}

}  // namespace morvelan::test::stream_unit_fault
