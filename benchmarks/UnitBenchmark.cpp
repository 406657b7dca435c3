// What a unit costs beside the host calls that it makes: Calculate of a NoOperation against the same calls
// made directly, in the same run, on a fake host that answers at once.

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>

#include "errors/Failure.h"
#include "material/Names.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FakeMaterial.h"
#include "units/streams/CNoOperation.h"

namespace {

using namespace morvelan;
using test::FakeContext;
using test::FakeMaterial;
using test::FakeState;
using test::HostScript;

test::FakeState StateOf(std::size_t compounds, bool thermo11) {
  FakeState state;
  state.thermo10 = !thermo11;
  state.thermo11 = thermo11;
  state.compounds.assign(compounds, "compound");
  state.casNumbers.assign(compounds, "1-1-1");
  state.molecularWeights.assign(compounds, 10.0);
  state.fractions.assign(compounds, 1.0 / static_cast<double>(compounds));
  return state;
}

/// A NoOperation in a fake host.
struct Sheet {
  Sheet(std::size_t compounds, bool thermo11)
      : feed(com::Make<FakeMaterial>(script, StateOf(compounds, thermo11))),
        product(com::Make<FakeMaterial>(script, StateOf(compounds, thermo11))) {
    context->namedValues["SimplifiedModelRequest"] = com::MakeBoolean(false);
    unit->put_simulationContext(Dispatch(context));
    unit->Initialize();
    const auto ports = unit->AllPorts();
    ports[0]->Connect(Dispatch(feed));
    ports[1]->Connect(Dispatch(product));
    if (FAILED(unit->Calculate())) throw Failure("the unit does not calculate");
  }
  template <class Object>
  static IDispatch* Dispatch(const com::Ref<Object>& object) {
    return static_cast<ICapeIdentification*>(object.Get());
  }

  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  com::Ref<FakeMaterial> feed;
  com::Ref<FakeMaterial> product;
  com::Ref<FakeContext> context = com::Make<FakeContext>(script);
  com::Ref<CNoOperation> unit = com::Make<CNoOperation>();
};

template <class Interface>
com::Ref<Interface> Ask(const com::Ref<FakeMaterial>& material) {
  return com::Query<Interface>(Sheet::Dispatch(material));
}

/// The host's answer to whether a simplified model will do, as any careful unit asks for it.
void AskContext(const Sheet& sheet) {
  com::Variant answer;
  sheet.context->get_NamedValue(names::kSimplifiedModelRequest.text, answer.Put());
  benchmark::DoNotOptimize(answer.Get().boolVal);
}

void CallDirectly10(const Sheet& sheet) {
  com::Variant ids;
  Ask<ICapeThermoMaterialObject>(sheet.feed)->get_ComponentIds(ids.Put());
  const auto get = [&](com::Name property, com::Name basis) {
    com::Variant values;
    Ask<ICapeThermoMaterialObject>(sheet.feed)
        ->GetProp(property.text, names::kOverall.text, com::kNoValue, nullptr, basis.text, values.Put());
    return values;
  };
  const com::Variant temperature = get(names::kTemperature, {});
  const com::Variant pressure = get(names::kPressure, {});
  const com::Variant flow = get(names::kTotalFlow, names::kMole);
  const com::Variant fractions = get(names::kFraction, names::kMole);
  AskContext(sheet);
  const auto product = Ask<ICapeThermoMaterialObject>(sheet.product);
  const auto set = [&](com::Name property, com::Name basis, const com::Variant& values) {
    product->SetProp(property.text, names::kOverall.text, com::kNoValue, nullptr, basis.text, values.Get());
  };
  set(names::kPressure, {}, com::MakeDoubles(com::ReadDoubles(pressure.Get())));
  set(names::kTemperature, {}, com::MakeDoubles(com::ReadDoubles(temperature.Get())));
  set(names::kTotalFlow, names::kMole, com::MakeDoubles(com::ReadDoubles(flow.Get())));
  set(names::kFraction, names::kMole, com::MakeDoubles(com::ReadDoubles(fractions.Get())));
  product->CalcEquilibrium(names::kTP.text, com::kNoValue);
}

com::Variant Specification(com::Name property) {
  return com::MakeStrings(std::array{property, com::Name(), names::kOverall});
}

void CallDirectly11(const Sheet& sheet) {
  com::Variant ids, formulae, compoundNames, boiling, weights, cas;
  Ask<ICapeThermoCompounds>(sheet.feed)
      ->GetCompoundList(ids.Put(), formulae.Put(), compoundNames.Put(), boiling.Put(), weights.Put(),
                        cas.Put());
  const auto get = [&](com::Name property, com::Name basis) {
    com::Variant values;
    Ask<ICapeThermoMaterial>(sheet.feed)->GetOverallProp(property.text, basis.text, values.Put());
    return values;
  };
  const com::Variant temperature = get(names::kTemperature, {});
  const com::Variant pressure = get(names::kPressure, {});
  const com::Variant flow = get(names::kTotalFlow, names::kMole);
  const com::Variant fractions = get(names::kFraction, names::kMole);
  AskContext(sheet);
  const auto product = Ask<ICapeThermoMaterial>(sheet.product);
  const auto set = [&](com::Name property, com::Name basis, const com::Variant& values) {
    product->SetOverallProp(property.text, basis.text, values.Get());
  };
  set(names::kPressure, {}, com::MakeDoubles(com::ReadDoubles(pressure.Get())));
  set(names::kTemperature, {}, com::MakeDoubles(com::ReadDoubles(temperature.Get())));
  set(names::kTotalFlow, names::kMole, com::MakeDoubles(com::ReadDoubles(flow.Get())));
  set(names::kFraction, names::kMole, com::MakeDoubles(com::ReadDoubles(fractions.Get())));
  com::Variant labels, states, keyCompounds;
  product.As<ICapeThermoPhases>()->GetPhaseList(labels.Put(), states.Put(), keyCompounds.Put());
  product->SetPresentPhases(labels.Get(), com::MakeArray(com::CountStrings(labels.Get()), VT_I4).Get());
  product.As<ICapeThermoEquilibriumRoutine>()->CalcEquilibrium(Specification(names::kTemperature).Get(),
                                                               Specification(names::kPressure).Get(),
                                                               names::kUnspecified.text);
}

double Seconds(const auto& action, int repeats) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < repeats; ++i) action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times both in turns, so that whatever else the machine does falls on both.
void CalculateAgainstDirectCalls(benchmark::State& state, bool thermo11) {
  const Sheet sheet(static_cast<std::size_t>(state.range(0)), thermo11);
  sheet.script->recording = false;
  constexpr int kBatch = 200;
  double unitTime = 0;
  double directTime = 0;
  for (auto _ : state) {
    const double unit = Seconds([&] { benchmark::DoNotOptimize(sheet.unit->Calculate()); }, kBatch);
    directTime += Seconds([&] { thermo11 ? CallDirectly11(sheet) : CallDirectly10(sheet); }, kBatch);
    unitTime += unit;
    state.SetIterationTime(unit);
  }
  state.counters["nanoseconds"] = 1e9 * unitTime / (kBatch * static_cast<double>(state.iterations()));
  state.counters["ratio"] = unitTime / directTime;
}

void NoOperation10(benchmark::State& state) { CalculateAgainstDirectCalls(state, false); }
void NoOperation11(benchmark::State& state) { CalculateAgainstDirectCalls(state, true); }
BENCHMARK(NoOperation10)->ArgName("compounds")->Arg(5)->Arg(20)->Arg(80)->UseManualTime();
BENCHMARK(NoOperation11)->ArgName("compounds")->Arg(5)->Arg(20)->Arg(80)->UseManualTime();

/// The host calls of one Calculate of a validated unit by name, as counters, and of the direct sequence,
/// which makes none that the behaviour could do without.
void HostCalls(benchmark::State& state, bool thermo11) {
  const Sheet sheet(5, thermo11);
  for (auto _ : state) {
    sheet.script->Restart();
    sheet.unit->Calculate();
  }
  state.counters["all"] = sheet.script->count;
  std::map<std::string, int> counts;
  for (const std::string& call : sheet.script->calls) ++counts[call.substr(0, call.find('/'))];
  for (const auto& [call, count] : counts) state.counters[call] = count;
  sheet.script->Restart();
  thermo11 ? CallDirectly11(sheet) : CallDirectly10(sheet);
  state.counters["fewest"] = sheet.script->count;
}

void HostCalls10(benchmark::State& state) { HostCalls(state, false); }
void HostCalls11(benchmark::State& state) { HostCalls(state, true); }
BENCHMARK(HostCalls10)->Iterations(1);
BENCHMARK(HostCalls11)->Iterations(1);

}  // namespace
