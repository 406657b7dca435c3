// What units cost beside the host calls that they make: Calculate against the same calls made directly, in
// the same run, on a fake host that answers at once.

#include <benchmark/benchmark.h>

#include <map>

#include "benchmarks/DirectCalls.h"
#include "benchmarks/InTurns.h"
#include "errors/Failure.h"
#include "material/Names.h"
#include "tests/support/FakeHost.h"
#include "units/heat/CHeaterCooler.h"
#include "units/pressure/CValve.h"
#include "units/streams/CMixer.h"
#include "units/streams/CNoOperation.h"
#include "units/streams/CSplitter.h"

namespace morvelan::benchmarks {
namespace {

using test::FakeContext;
using test::FakeMaterial;
using test::HostScript;

test::FakeState StateOf(std::size_t compounds, bool thermo11) {
  test::FakeState state;
  state.thermo10 = !thermo11;
  state.thermo11 = thermo11;
  state.compounds.assign(compounds, "compound");
  state.casNumbers.assign(compounds, "1-1-1");
  state.molecularWeights.assign(compounds, 10.0);
  state.fractions.assign(compounds, 1.0 / static_cast<double>(compounds));
  return state;
}

/// A unit in a fake host, with a material at each material port.
struct Sheet {
  Sheet(com::Ref<BaseUnit> made, std::size_t compounds, bool thermo11)
      : unit(std::move(made)), direct(DirectCalls::Make(thermo11)) {
    context->namedValues["SimplifiedModelRequest"] = com::MakeBoolean(false);
    unit->put_simulationContext(Dispatch(context));
    unit->Initialize();
    for (const auto& port : unit->Declarations().ports.All()) {
      if (port->Type() != CAPE_MATERIAL) continue;
      const auto material = com::Make<FakeMaterial>(script, StateOf(compounds, thermo11));
      (port->Direction() == CAPE_INLET ? feeds : products).push_back(material);
      port->Connect(Dispatch(material));
    }
    if (FAILED(unit->Calculate())) throw Failure("the unit does not calculate");
  }
  template <class Object>
  static IDispatch* Dispatch(const com::Ref<Object>& object) {
    return static_cast<ICapeIdentification*>(object.Get());
  }

  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  std::vector<MaterialRef> feeds;
  std::vector<MaterialRef> products;
  com::Ref<FakeContext> context = com::Make<FakeContext>(script);
  com::Ref<BaseUnit> unit;
  std::unique_ptr<DirectCalls> direct;
};

/// What happens before a unit's own calculation: the feeds are read, and the host is asked whether a
/// simplified model will do.
Overall ReadFeeds(const Sheet& sheet) {
  sheet.direct->CountCompounds(sheet.feeds[0]);
  Overall state;
  for (const MaterialRef& feed : sheet.feeds) state = sheet.direct->Read(feed);
  com::Variant answer;
  sheet.context->get_NamedValue(names::kSimplifiedModelRequest.text, answer.Put());
  benchmark::DoNotOptimize(answer.Get().boolVal);
  return state;
}

void WriteProducts(const Sheet& sheet, const Overall& state, bool givenTemperature) {
  for (const MaterialRef& product : sheet.products) {
    sheet.direct->Write(product, state);
    sheet.direct->Flash(product, givenTemperature);
  }
}

void PassOn(const Sheet& sheet) { WriteProducts(sheet, ReadFeeds(sheet), true); }

void PassOnWithEnthalpy(const Sheet& sheet) {
  const Overall state = ReadFeeds(sheet);
  for (const MaterialRef& feed : sheet.feeds) sheet.direct->Enthalpy(feed, true);
  sheet.direct->SetEnthalpy(sheet.products[0]);
  WriteProducts(sheet, state, false);
}

void Heat(const Sheet& sheet) {
  PassOnWithEnthalpy(sheet);
  sheet.direct->Temperature(sheet.products[0]);
}

struct MeasuredUnit {
  const char* name;
  com::Ref<BaseUnit> (*make)();
  void (*callDirectly)(const Sheet&);
};

template <class Unit>
com::Ref<BaseUnit> MakeUnit() {
  return com::Make<Unit>();
}

/// Each as it is when it was made: the heater by its duty, two inlets and two outlets.
constexpr MeasuredUnit kUnits[] = {
    {"NoOperation", MakeUnit<CNoOperation>, PassOn}, {"HeaterCooler", MakeUnit<CHeaterCooler>, Heat},
    {"Valve", MakeUnit<CValve>, PassOnWithEnthalpy}, {"Mixer", MakeUnit<CMixer>, PassOnWithEnthalpy},
    {"Splitter", MakeUnit<CSplitter>, PassOn},
};

void Calculate(benchmark::State& state, const MeasuredUnit& measured, bool thermo11) {
  const Sheet sheet(measured.make(), static_cast<std::size_t>(state.range(0)), thermo11);
  sheet.script->recording = false;
  InTurns(
      state, [&] { benchmark::DoNotOptimize(sheet.unit->Calculate()); }, [&] { measured.callDirectly(sheet); });
}

/// The host calls of one Calculate of a validated unit by name, as counters, and of the direct sequence,
/// which makes none that the behaviour could do without.
void HostCalls(benchmark::State& state, const MeasuredUnit& measured, bool thermo11) {
  const Sheet sheet(measured.make(), 5, thermo11);
  for (auto _ : state) {
    sheet.script->Restart();
    sheet.unit->Calculate();
  }
  state.counters["all"] = sheet.script->count;
  std::map<std::string, int> counts;
  for (const std::string& call : sheet.script->calls) ++counts[call.substr(0, call.find('/'))];
  for (const auto& [call, count] : counts) state.counters[call] = count;
  sheet.script->Restart();
  measured.callDirectly(sheet);
  state.counters["fewest"] = sheet.script->count;
}

[[maybe_unused]] const bool kRegistered = [] {
  for (const MeasuredUnit& unit : kUnits)
    for (const bool thermo11 : {false, true}) {
      const std::string name = unit.name + std::string(thermo11 ? "11" : "10");
      benchmark::RegisterBenchmark(name.c_str(), Calculate, unit, thermo11)
          ->ArgName("compounds")
          ->Arg(5)
          ->Arg(20)
          ->Arg(80)
          ->UseManualTime();
      benchmark::RegisterBenchmark(("HostCalls/" + name).c_str(), HostCalls, unit, thermo11)->Iterations(1);
    }
  return true;
}();

}  // namespace
}  // namespace morvelan::benchmarks
