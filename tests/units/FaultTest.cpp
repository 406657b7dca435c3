// The fault walk over a table of calculations: every host call of a calculation fails once, gets an odd answer or
// calls the unit back. The unit explains it or does without, leaves the outlets as they were unless they were being
// written, keeps nothing, and calculates the same again. What it says stands in tests/approved/faults.

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>
#include <sstream>

#include "tests/support/Approved.h"
#include "tests/support/Faults.h"
#include "tests/support/LongTests.h"
#include "tests/support/Persistence.h"
#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test::fault {

using MakeBench = std::function<std::unique_ptr<UnitBench>(bool thermo11)>;

struct Calculation {
  const char* className;
  const char* title;
  MakeBench make;
  bool everyMode = false;  // of failure at every call, or one mode per call in turn
};

template <class Prepare>
MakeBench Stream(const char* className, Prepare prepare, FakeState feed = HeatableFeed()) {
  return [=](bool thermo11) {
    auto bench = std::make_unique<UnitBench>(className, thermo11, feed);
    prepare(*bench);
    return bench;
  };
}

void AsItIs(UnitBench&) {}

void CalculateADifference(UnitBench& bench) {
  bench.Configure(R"({"formula": "\"T1\" - \"T2\"", "outputVariable": {"name": "range", "unit": "K;Delta"},
                      "inputVariables": [{"name": "T1", "unit": "K"}, {"name": "T2", "unit": "K"}]})");
  bench.ConnectValue("T1", {0, 0, 0, 0, 1}, 350);
  bench.ConnectValue("T2", {0, 0, 0, 0, 1}, 320);
  bench.ConnectValue("range", {0, 0, 0, 0, 1, 0, 0, 0, 1}, 0);
}

std::unique_ptr<ReactorBench> Converting(bool thermo11) {
  auto bench = std::make_unique<ReactorBench>(thermo11);
  // Heats of reaction are the same at all temperatures here.
  for (FakeReaction& reaction : bench->package->state.reactions)
    reaction.properties["enthalpyOfReaction"] = {-10000, 0};
  bench->Select(R"("A to B", "A to 2B")", R"("A", "A")", "0.5, 0.25", true);
  return bench;
}

/// A reactor that solves for its extents, to a tolerance that is close to what is compared.
std::unique_ptr<ReactorBench> Solving(bool thermo11, const char* unit, std::vector<FakeReaction> reactions) {
  FakeState feed = ReactorFeed();
  feed.phases[0].properties["density"] = 1;  // [mol/m3], so that molarities are mole fractions
  auto bench = std::make_unique<ReactorBench>(thermo11, unit, FakePackageState{std::move(reactions)}, std::move(feed));
  bench->Put("Tolerance", 1e-7);
  bench->Feed({0.28, 1.15, 0.57});  // close to equilibrium, which then takes fewer calls
  bench->Select(R"("A to B", "A to C")");
  return bench;
}

FakeReaction ToC() { return AtEquilibrium("A to C", {"A", "C"}, {-1, 1}, 2, -30000); }

std::unique_ptr<ReactorBench> Equilibrating(bool thermo11) {
  return Solving(thermo11, "EquilibriumReactor", {AtEquilibrium("A to B", {"A", "B"}, {-1, 1}, 4), ToC()});
}

std::unique_ptr<ReactorBench> Stirring(bool thermo11) {
  const auto rate = [](const FakeConditions& tank) { return tank.fractions.at(0); };
  auto bench = Solving(thermo11, "CSTR", {AtRate("A to B", {"A", "B"}, {-1, 1}, rate), ToC()});
  bench->Put("Phase", "Vapor");
  bench->Put("Reactor volume", 2);
  return bench;
}

template <class Prepare>
MakeBench Reactor(std::unique_ptr<ReactorBench> (*make)(bool), Prepare prepare) {
  return [=](bool thermo11) -> std::unique_ptr<UnitBench> {
    auto bench = make(thermo11);
    prepare(*bench);
    return bench;
  };
}

void Isothermal(UnitBench& bench) { bench.Put("Heat duty type", "Isothermal"); }
void WithHeats(UnitBench& bench) { bench.Put("Enthalpy Type", "Use Enthalpy and heat of reaction"); }

const Calculation kCalculations[] = {
    {"NoOperation", "two phases", Stream("NoOperation", AsItIs, FakeState{}), true},
    {"HeaterCooler", "by heat duty", Stream("HeaterCooler", [](UnitBench& b) { b.Put("Heat duty", 1000); })},
    {"HeaterCooler", "by temperature",
     Stream("HeaterCooler",
            [](UnitBench& b) {
              b.Put("Type", "Temperature");
              b.Put("Outlet temperature", 350);
            })},
    {"HeaterCooler", "by energy stream",
     Stream("HeaterCooler",
            [](UnitBench& b) {
              b.Put("Type", "Energy inlet");
              b.ConnectHeat(1000, 280, 400);
            })},
    {"HeaterCooler", "to an outlet port",
     Stream("HeaterCooler",
            [](UnitBench& b) {
              b.Configure(R"({"heatPort": "outlet"})");
              b.ConnectHeat(0);
            })},
    {"HeaterCooler", "without flow", Stream("HeaterCooler", [](UnitBench& b) { b.At("Inlet").flow = 0; })},
    {"Valve", "by difference", Stream("Valve", [](UnitBench& b) { b.Put("Pressure difference", 2e5); })},
    {"Mixer", "two streams", Stream("Mixer", AsItIs)},
    {"Splitter", "two compounds", Stream("Splitter", AsItIs)},
    {"Splitter", "one compound",
     Stream("Splitter",
            [](UnitBench& b) {
              b.At("Inlet").fractions = {1, 0};
            })},
    {"InformationCalculator", "difference", Stream("InformationCalculator", CalculateADifference)},
    {"FixedConversionReactor", "adiabatic", Reactor(Converting, AsItIs)},
    {"FixedConversionReactor", "isothermal",
     Reactor(Converting,
             [](ReactorBench& b) {
               Isothermal(b);
               b.Put("Enthalpy Type", "Use Enthalpy (no heat of reaction)");
             })},
    {"FixedConversionReactor", "with heats of reaction", Reactor(Converting, WithHeats)},
    {"FixedConversionReactor", "with heats of reaction, by name",
     Reactor(Converting,
             [](ReactorBench& b) {
               b.package->state.offersMaterialContext = false;
               b.package->state.offersThermoContext = true;
               WithHeats(b);
             })},
    {"FixedConversionReactor", "by energy stream",
     Reactor(Converting,
             [](ReactorBench& b) {
               b.Put("Heat duty type", "Energy inlet");
               b.ConnectHeat(1000, 200, 800, "HeatDutySpecification");
             })},
    {"FixedConversionReactor", "to an energy stream",
     Reactor(Converting, [](ReactorBench& b) { b.ConnectHeat(0, {}, {}, "Heat duty"); })},
    {"FixedConversionReactor", "without flow", Reactor(Converting, [](ReactorBench& b) { b.At("Inlet").flow = 0; })},
    {"EquilibriumReactor", "adiabatic", Reactor(Equilibrating, AsItIs)},
    {"EquilibriumReactor", "isothermal", Reactor(Equilibrating, Isothermal)},
    {"EquilibriumReactor", "with heats of reaction and by molarity",
     Reactor(Equilibrating,
             [](ReactorBench& b) {
               WithHeats(b);
               for (FakeReaction& reaction : b.package->state.reactions) reaction.concentrationBasis = "Molarity";
             })},
    {"CSTR", "adiabatic, with heats of reaction", Reactor(Stirring, WithHeats)},
    {"CSTR", "isothermal", Reactor(Stirring, Isothermal)},
};

/// Temperature, pressure and component flows of the outlets; values of information streams.
std::vector<double> ProductNumbers(UnitBench& bench) {
  std::vector<double> numbers;
  for (auto& [port, material] : bench.materials) {
    const FakeState& state = material->state;
    if (port.starts_with("Inlet")) continue;
    numbers.insert(numbers.end(), {state.temperature, state.pressure, state.flow});
    for (const double fraction : state.fractions) numbers.push_back(fraction * state.flow);
  }
  for (auto& [port, stream] : bench.streams) numbers.push_back(com::ReadDouble(stream->parameters[0]->value.Get()));
  return numbers;
}

std::string Results(UnitBench& bench) {
  std::string text;
  for (const double number : ProductNumbers(bench)) text += NumberText(number) + ' ';
  for (const auto& parameter : ItemsOf<ICapeParameter>(bench.door.Parameters())) {
    CapeParamMode mode = CAPE_INPUT;
    EXPECT_EQ(parameter->get_Mode(&mode), S_OK);
    text += "\n" + (mode == CAPE_OUTPUT ? ParameterText(parameter) : "");
  }
  return text;
}

/// What a calculation does when nothing disturbs it.
struct Undisturbed {
  std::string results, report;
  std::vector<double> numbers;
  std::vector<std::string> calls;
  int validationCalls = 0;  // at the beginning
  // The calls of a solution, from 1: the first after it has its material, and that which gives it back. Both zero where
  // nothing is solved.
  int first = 0, last = 0;

  [[nodiscard]] bool Solves(int k) const { return first < k && k <= last; }
  [[nodiscard]] int Count() const { return static_cast<int>(calls.size()); }
  [[nodiscard]] const std::string& Call(int k) const { return calls.at(static_cast<std::size_t>(k) - 1); }
};

Undisturbed Calculated(const Calculation& calculation, bool thermo11) {
  Undisturbed undisturbed;
  const auto bench = calculation.make(thermo11);
  bench->Restart();
  std::string message;
  EXPECT_TRUE(bench->door.IsValid(message)) << message;
  undisturbed.validationCalls = bench->script->count;
  const auto other = calculation.make(thermo11);
  other->Restart();
  other->Calculate();
  undisturbed.results = Results(*other);
  undisturbed.numbers = ProductNumbers(*other);
  undisturbed.calls = other->script->calls;
  undisturbed.report = other->door.Report("Last run");
  // The last copy of the feed is the solution's.
  for (int k = 1; k <= undisturbed.Count(); ++k) {
    const std::string& call = undisturbed.Call(k);
    if (call == "CreateMaterial" || call == "Duplicate") undisturbed.first = 0;
    if (call == "SetMaterial" && undisturbed.first == 0) undisturbed.first = k;
    if (call == "UnsetMaterial") undisturbed.last = k;
  }
  const std::string_view className = calculation.className;
  if (className != "CSTR" && className != "EquilibriumReactor")
    undisturbed.first = undisturbed.last = 0;
  else
    EXPECT_LT(undisturbed.first + 30, undisturbed.last) << calculation.title;
  return undisturbed;
}

/// Whether an outlet may be another because it was being written before call k. A solution writes to its own material.
bool ComesAfterWriting(const Undisturbed& undisturbed, int k) {
  for (int i = std::max(undisturbed.last, 0) + 1; i < k; ++i) {
    const std::string& call = undisturbed.Call(i);
    if (call.starts_with("SetProp") || call.starts_with("SetOverallProp") || call.starts_with("put_value")) return true;
  }
  return false;
}

/// A solution evaluates the same again and again: of its calls a seed is walked.
bool IsSkipped(const Undisturbed& undisturbed, int k, int stride) {
  return undisturbed.Solves(k) && k % ShortOrLong(stride, 1) != 0;
}

std::string LinesNotIn(const std::string& report, const std::string& known, const char* title) {
  std::istringstream lines(report);
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (known.find(line) == std::string::npos) text += std::string("; ") + title + ": " + line;
  }
  return text;
}

std::string WhatTheUnitSays(const UnitBench& bench, HRESULT outcome, const Undisturbed& wanted) {
  if (outcome == S_OK) {
    std::string text = "goes on";
    for (const std::string& line : bench.context->log) text += "; log: " + line;
    return text + LinesNotIn(bench.door.Report("Last run"), wanted.report, "report");
  }
  const Texts error = ErrorOf(bench.door.unit.Get());
  std::string text = error.name == error.description ? "" : error.name + ": ";
  text += error.description;
  if (error.scope + error.interfaceName != "CalculateICapeUnit")
    text += " (" + error.scope + " of " + error.interfaceName + ")";
  EXPECT_EQ(bench.door.Report("Status"), "Calculation failed:\r\n" + error.description + "\r\n");
  return text;
}

/// The approved text of a class: the host calls of each calculation, and what the unit says at each disturbance, once.
class Sayings {
 public:
  void Begin(const std::string& title, const Undisturbed& wanted) {
    text += title + "\n  calls:";
    for (int k = 1; k <= wanted.Count(); ++k)
      if (!wanted.Solves(k)) text += (k > 1 ? " | " : " ") + wanted.Call(k);
    text += "\n";
  }
  void Add(const std::string& call, const std::string& how, const std::string& saying) {
    const std::string line = "  " + call + (how.empty() ? "" : " [" + how + "]") + " -> " + saying + "\n";
    if (known.insert(line).second) text += line;
  }
  /// Whether this is the first time that the class makes a call.
  bool IsNew(const std::string& call) { return calls.insert(call).second; }
  [[nodiscard]] const std::string& Text() const { return text; }

 private:
  std::string text;
  std::set<std::string> known, calls;
};

struct Walk {
  const Calculation& calculation;
  bool thermo11;
  Undisturbed wanted;
  Sayings& sayings;
  int solved = 0;  // solutions that survived a disturbance

  /// Calculates with a disturbance that is prepared in the bench's script; returns what the unit says.
  template <class Disturb>
  std::string Disturbed(int k, Disturb disturb, bool mayDiffer = false) {
    const auto bench = calculation.make(thermo11);
    bench->Restart();
    const int objects = bench->script->liveObjects;
    const std::vector<ULONG> references = bench->References();
    const std::vector<double> before = ProductNumbers(*bench);
    disturb(*bench);
    const HRESULT outcome = bench->door.unit->Calculate();
    const std::string saying = WhatTheUnitSays(*bench, outcome, wanted);
    if (outcome != S_OK && !ComesAfterWriting(wanted, k))
      EXPECT_EQ(testing::PrintToString(ProductNumbers(*bench)), testing::PrintToString(before)) << "outlets untouched";
    if (outcome == S_OK) ExpectProducts(*bench, k, saying, mayDiffer);
    CheckAfterwards(*bench, objects, references);
    return saying;
  }

  void ExpectProducts(UnitBench& bench, int k, const std::string& saying, bool mayDiffer) {
    if (wanted.Solves(k)) {
      ++solved;
      const std::vector<double> numbers = ProductNumbers(bench);
      ASSERT_EQ(numbers.size(), wanted.numbers.size());
      for (std::size_t i = 0; i < numbers.size(); ++i)
        EXPECT_NEAR(numbers[i], wanted.numbers[i], 1e-6 * std::abs(wanted.numbers[i])) << i;
    } else if (!mayDiffer && saying == "goes on") {
      EXPECT_EQ(Results(bench), wanted.results);
    } else if (!mayDiffer) {
      EXPECT_EQ(testing::PrintToString(ProductNumbers(bench)), testing::PrintToString(wanted.numbers));
    }
  }

  /// After a disturbance nothing is left of it.
  void CheckAfterwards(UnitBench& bench, int objects, const std::vector<ULONG>& references) {
    bench.ForgetHandedOver();
    EXPECT_EQ(bench.script->liveObjects, objects);
    EXPECT_EQ(bench.References(), references);
    bench.Restart();
    bench.script->oddAnswers.clear();
    bench.Calculate();
    EXPECT_EQ(Results(bench), wanted.results);
  }

  testing::Message Where(int k, const char* how) const {
    return testing::Message() << calculation.className << ' ' << calculation.title << ", thermo 1.1: " << thermo11
                              << ", call " << k << ": " << wanted.Call(k) << ", " << how;
  }
};

void FailCall(Walk& walk, int k) {
  std::string first;
  for (std::size_t m = 0; m < std::size(kFaultModes); ++m) {
    const bool inTurn = m == static_cast<std::size_t>(k) % std::size(kFaultModes);
    if (!inTurn && !ShortOrLong(walk.calculation.everyMode, true)) continue;
    const FaultMode& mode = kFaultModes[m];
    const testing::ScopedTrace trace(__FILE__, __LINE__, walk.Where(k, mode.title));
    const std::string& call = walk.wanted.Call(k);
    const std::string saying =
        WithoutReason(walk.Disturbed(k, [&](UnitBench& bench) { Provoke(*bench.script, mode, k); }), call, mode);
    if (first.empty()) first = saying;
    EXPECT_EQ(saying, first) << "as with the other failures";
    // Validation fails with the same words.
    if (k > walk.wanted.validationCalls || saying.starts_with("goes on")) continue;
    const auto bench = walk.calculation.make(walk.thermo11);
    Provoke(*bench->script, mode, k);
    std::string message;
    EXPECT_FALSE(bench->door.IsValid(message));
    EXPECT_EQ(WithoutReason(message, call, mode), saying);
    EXPECT_EQ(bench->door.Status(), CAPE_INVALID);
    EXPECT_EQ(bench->door.Report("Status"), message);
  }
  if (!walk.wanted.Solves(k)) walk.sayings.Add(walk.wanted.Call(k), "", first);
}

/// Answers call k oddly: in each way if the class makes this call for the first time, else in one way.
void AnswerOddly(Walk& walk, int k) {
  const bool everyWay = walk.sayings.IsNew(walk.wanted.Call(k)) && !walk.wanted.Solves(k);
  for (std::size_t i = 0; i < std::size(kOddAnswers); ++i) {
    if (!everyWay && i != static_cast<std::size_t>(k) % std::size(kOddAnswers)) continue;
    if (!everyWay && !walk.wanted.Solves(k) && k % ShortOrLong(3, 1) != 0) continue;
    const OddAnswer& odd = kOddAnswers[i];
    const testing::ScopedTrace trace(__FILE__, __LINE__, walk.Where(k, odd.title));
    bool isAsked = false;
    const std::string saying = walk.Disturbed(
        k,
        [&](UnitBench& bench) {
          bench.script->oddAt = k;
          bench.script->oddAnswer = [&] {
            isAsked = true;
            return odd.answer();
          };
        },
        true);
    if (!isAsked) return;
    if (!walk.wanted.Solves(k)) walk.sayings.Add(walk.wanted.Call(k), odd.title, InCommonWords(saying));
  }
}

/// Lets the host call back during call k: it validates, which is refused; some take the reaction package away, and the
/// calculation ends with what it has or fails.
void Interfere(Walk& walk, int k) {
  for (const bool withdraws : {false, true}) {
    const testing::ScopedTrace trace(__FILE__, __LINE__, walk.Where(k, withdraws ? "withdraws" : "interferes"));
    const auto bench = walk.calculation.make(walk.thermo11);
    if (withdraws && !bench->SetPackage(true)) return;
    bench->Validate();
    bench->script->interfereAt = k;
    bench->script->interfere = [&] {
      if (withdraws) (void)bench->SetPackage(false);
      com::Bstr message;
      VARIANT_BOOL isValid = VARIANT_FALSE;
      EXPECT_EQ(bench->door.unit->Validate(message.Put(), &isValid), kUnitFailed);
    };
    const HRESULT outcome = bench->door.unit->Calculate();
    if (!withdraws) EXPECT_EQ(outcome, S_OK) << ErrorOf(bench->door.unit.Get());
    if (outcome == S_OK) EXPECT_EQ(Results(*bench), walk.wanted.results);
    if (withdraws) (void)bench->SetPackage(true);
    bench->Restart();
    bench->Calculate();
    EXPECT_EQ(Results(*bench), walk.wanted.results);
  }
}

void WalkThrough(Walk walk) {
  const Undisturbed& wanted = walk.wanted;
  walk.sayings.Begin(std::string(walk.calculation.title) + ", thermo " + (walk.thermo11 ? "1.1" : "1.0"), wanted);
  for (int k = 1; k <= wanted.Count(); ++k) {
    if (!IsSkipped(wanted, k, 17)) FailCall(walk, k);
    if (!IsSkipped(wanted, k, 29)) AnswerOddly(walk, k);
    if (k <= wanted.Count() - wanted.validationCalls && k % ShortOrLong(3, 1) == 0 &&
        !IsSkipped(wanted, k + wanted.validationCalls, 31))
      Interfere(walk, k);
  }
  EXPECT_EQ(walk.solved > 0, wanted.last > 0) << walk.calculation.title;
}

std::vector<std::string> ClassNames() {
  std::vector<std::string> names;
  for (const Calculation& calculation : kCalculations)
    if (names.empty() || names.back() != calculation.className) names.emplace_back(calculation.className);
  return names;
}

class FaultWalk : public testing::TestWithParam<std::string> {};

TEST_P(FaultWalk, EveryDisturbanceIsExplainedOrDoneWithout) {
  Sayings sayings;
  for (const Calculation& calculation : kCalculations)
    if (calculation.className == GetParam())
      for (const bool thermo11 : {false, true})
        WalkThrough({calculation, thermo11, Calculated(calculation, thermo11), sayings});
  ExpectApproved("faults/" + GetParam(), sayings.Text());
}

INSTANTIATE_TEST_SUITE_P(All, FaultWalk, testing::ValuesIn(ClassNames()), [](const auto& info) { return info.param; });

TEST(FaultWalkTable, HasEveryUnit) {
  const std::vector<std::string> names = ClassNames();
  for (const com::PublishedClass& published : com::PublishedClasses())
    EXPECT_TRUE(std::ranges::find(names, published.name) != names.end()) << published.name;
}

}  // namespace morvelan::test::fault
