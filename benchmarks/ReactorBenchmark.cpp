// What the solution of a reactor costs: its host calls by name, its time, and the ratio of that to the host
// calls of its evaluations made directly, in the same run, on a fake host that answers at once.

#include <benchmark/benchmark.h>

#include <map>

#include "benchmarks/DirectCalls.h"
#include "benchmarks/InTurns.h"
#include "errors/Failure.h"
#include "material/Names.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FakeReactionPackage.h"
#include "units/reactors/CCSTR.h"
#include "units/reactors/CEquilibriumReactor.h"

namespace morvelan::benchmarks {
namespace {

using test::FakeContext;
using test::FakeMaterial;
using test::FakeReaction;
using test::FakeReactionPackage;
using test::HostScript;

FakeReaction Equilibrium(const char* id, std::vector<std::string> compounds, std::vector<double> coefficients,
                         double constant) {
  return {.id = id,
          .compounds = std::move(compounds),
          .coefficients = std::move(coefficients),
          .phase = "Vapor",
          .concentrationBasis = "MoleFraction",
          .properties = {{"chemicalEquilibriumConstant", {constant, 0}}}};
}

FakeReaction FirstOrder(const char* id, std::vector<std::string> compounds, std::size_t reactant, double constant) {
  return {.id = id,
          .compounds = std::move(compounds),
          .coefficients = {-1, 1},
          .type = CAPE_KINETIC,
          .phase = "Vapor",
          .formulas = {{"reactionRate", [=](const test::FakeConditions& conditions) {
                          return constant * conditions.fractions[reactant];
                        }}}};
}

struct MeasuredReactor {
  const char* name;
  com::Ref<BaseUnit> (*make)();
  std::vector<double> fractions;
  std::vector<std::string> compounds;
  std::vector<FakeReaction> reactions;
  std::map<std::string, com::Variant (*)()> parameters;
  bool flashes;  // each trial, or sets one phase
};

template <class Unit>
com::Ref<BaseUnit> MakeUnit() {
  return com::Make<Unit>();
}

const MeasuredReactor kReactors[] = {
    // At 1100 K and 2.5 MPa.
    {"SteamReforming",
     MakeUnit<CEquilibriumReactor>,
     {0.25, 0.75, 0, 0, 0},
     {"methane", "water", "carbon monoxide", "carbon dioxide", "hydrogen"},
     {Equilibrium("reforming", {"methane", "water", "carbon monoxide", "hydrogen"}, {-1, -1, 1, 3}, 0.498263),
      Equilibrium("shift", {"carbon monoxide", "water", "carbon dioxide", "hydrogen"}, {-1, -1, 1, 1}, 0.986657)},
     {},
     true},
    {"TankOfThreeRates",
     MakeUnit<CCSTR>,
     {1, 0, 0, 0},
     {"A", "B", "C", "D"},
     {FirstOrder("A to B", {"A", "B"}, 0, 2), FirstOrder("B to C", {"B", "C"}, 1, 3),
      FirstOrder("A to D", {"A", "D"}, 0, 0.5)},
     {{"Phase", [] { return com::MakeString("Vapor"); }}, {"Reactor volume", [] { return com::MakeDouble(1.5); }}},
     false},
};

test::FakeState StateOf(const MeasuredReactor& reactor) {
  test::FakeState state;
  state.thermo10 = false;
  state.fractions = reactor.fractions;
  state.compounds = reactor.compounds;
  state.casNumbers.assign(reactor.compounds.size(), "1-1-1");
  state.molecularWeights.assign(reactor.compounds.size(), 10.0);
  state.phases = {{"Vapor", "Vapor", 1, {}}};
  state.heatCapacity = 50;
  return state;
}

/// An isothermal reactor in a fake host.
struct Sheet {
  explicit Sheet(const MeasuredReactor& measured)
      : reactor(measured), unit(measured.make()), package(com::Make<FakeReactionPackage>(script, Package())) {
    context->namedValues["SimplifiedModelRequest"] = com::MakeBoolean(true);
    unit->put_simulationContext(Dispatch(context));
    unit->Initialize();
    for (const auto& port : unit->Declarations().ports.All())
      if (port->Type() == CAPE_MATERIAL) port->Connect(Dispatch(com::Make<FakeMaterial>(script, StateOf(reactor))));
    IDispatch* object = static_cast<ICapeReactionProperties*>(package.Get());
    com::Query<ICapeKineticReactionContext>(static_cast<ICapeIdentification*>(unit.Get()))->SetReactionObject(&object);
    Put("Heat duty type", com::MakeString("Isothermal"));
    for (const auto& [name, value] : reactor.parameters) Put(name, value());
    std::string names;
    for (const FakeReaction& reaction : reactor.reactions) names += (names.empty() ? "\"" : ",\"") + reaction.id + '"';
    com::Query<IUnitConfiguration>(static_cast<ICapeIdentification*>(unit.Get()))
        ->SetConfiguration(com::ToBstr("{\"reactionNames\": [" + names + "]}").Get());
    if (FAILED(unit->Calculate())) throw Failure("the unit does not calculate");
  }

  template <class Object>
  static IDispatch* Dispatch(const com::Ref<Object>& object) {
    return static_cast<ICapeIdentification*>(object.Get());
  }
  [[nodiscard]] test::FakePackageState Package() const { return {.reactions = reactor.reactions}; }
  void Put(const std::string& name, const com::Variant& value) {
    for (const auto& parameter : unit->Declarations().parameters.List())
      if (parameter->ComponentName() == name && FAILED(parameter->put_value(value.Get())))
        throw Failure("the unit refuses " + name);
  }

  const MeasuredReactor& reactor;
  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  com::Ref<FakeContext> context = com::Make<FakeContext>(script);
  com::Ref<BaseUnit> unit;
  com::Ref<FakeReactionPackage> package;
};

std::map<std::string, int> CallsOf(const Sheet& sheet) {
  sheet.script->Restart();
  sheet.unit->Calculate();
  std::map<std::string, int> counts;
  for (const std::string& call : sheet.script->calls) ++counts[call.substr(0, call.find_first_of("/ "))];
  return counts;
}

/// The host calls of one evaluation that no solution can do without: the trial's state, what it makes of it,
/// and a property of each reaction.
class Evaluation {
 public:
  explicit Evaluation(const Sheet& calledSheet)
      : sheet(calledSheet), material(com::Make<FakeMaterial>(sheet.script, StateOf(sheet.reactor))) {}

  void operator()() const {
    const auto asked = com::Query<ICapeThermoMaterial>(Sheet::Dispatch(material));
    const auto set = [&](com::Name property, com::Name basis, std::span<const double> values) {
      asked->SetOverallProp(property.text, basis.text, com::MakeDoubles(values).Get());
    };
    set(names::kTemperature, {}, std::array{1100.0});
    set(names::kPressure, {}, std::array{2.5e6});
    set(names::kFraction, names::kMole, sheet.reactor.fractions);
    if (sheet.reactor.flashes)
      direct->Flash(material, true);
    else
      asked->SetSinglePhaseProp(names::kFraction.text, names::kVapor.text, names::kMole.text,
                                com::MakeDoubles(sheet.reactor.fractions).Get());
    sheet.package->SetMaterial(Sheet::Dispatch(material));
    com::Variant values;
    if (sheet.reactor.flashes)
      asked->GetSinglePhaseProp(names::kFraction.text, names::kVapor.text, names::kMole.text, values.Put());
    const com::Name property = sheet.reactor.flashes ? names::kChemicalEquilibriumConstant : names::kReactionRate;
    const com::Variant properties = com::MakeStrings(std::span(&property, 1));
    for (const FakeReaction& reaction : sheet.reactor.reactions) {
      const com::Variant ids = com::MakeStrings(std::span(&reaction.id, 1));
      sheet.package->CalcReactionProp(properties.Get(), names::kVapor.text, ids.Get(), names::kMole.text);
      sheet.package->GetReactionProp(property.text, names::kVapor.text, ids.Get(), names::kMole.text, values.Put());
    }
  }

 private:
  const Sheet& sheet;
  com::Ref<FakeMaterial> material;
  std::unique_ptr<DirectCalls> direct = DirectCalls::Make(true);
};

void Solve(benchmark::State& state, const MeasuredReactor& measured) {
  const Sheet sheet(measured);
  const auto calls = CallsOf(sheet);
  // (The package is handed the material when it is taken, and after each evaluation.)
  const int evaluations = calls.at("SetMaterial") - 1;
  const Evaluation evaluate(sheet);
  sheet.script->recording = false;
  InTurns(
      state, [&] { benchmark::DoNotOptimize(sheet.unit->Calculate()); },
      [&] {
        for (int i = 0; i < evaluations; ++i) evaluate();
      });
  state.counters["evaluations"] = evaluations;
  state.counters["flashes"] = calls.contains("CalcEquilibrium") ? calls.at("CalcEquilibrium") : 0;
}

void SolutionCalls(benchmark::State& state, const MeasuredReactor& measured) {
  const Sheet sheet(measured);
  std::map<std::string, int> counts;
  for (auto _ : state) counts = CallsOf(sheet);
  state.counters["all"] = sheet.script->count;
  for (const auto& [call, count] : counts) state.counters[call] = count;
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const MeasuredReactor& reactor : kReactors) {
    benchmark::RegisterBenchmark(reactor.name, Solve, reactor)->UseManualTime();
    benchmark::RegisterBenchmark((reactor.name + std::string("Calls")).c_str(), SolutionCalls, reactor)->Iterations(1);
  }
  return true;
}();

}  // namespace
}  // namespace morvelan::benchmarks
