// What it takes to save and to load a unit with 40 parameters, eight of each kind, against handing over the
// same bytes in one call of the host's stream.

#include <benchmark/benchmark.h>

#include "benchmarks/InTurns.h"
#include "errors/Failure.h"
#include "tests/support/FakeIStream.h"
#include "tests/support/TestUnit.h"

namespace morvelan::benchmarks {
namespace {

using test::FakeIStream;
using test::TestDeclaration;
using test::TestUnit;

constexpr int kBatch = 20;

std::vector<ParameterDeclaration> FortyParameters() {
  const ParameterDeclaration kinds[] = {
      {.name = "Outlet temperature",
       .description = "Temperature of the product stream",
       .defaultValue = 300.0,
       .lowerBound = 0,
       .upperBound = 1e10,
       .dimensionality = kTemperatureDimension},
      {.name = "Number of inlets", .description = "Number of inlet ports", .defaultValue = 2},
      {.name = "Type",
       .description = "Type of heat duty specification",
       .defaultValue = "Heat duty",
       .options = {"Heat duty", "Temperature", "Energy inlet"}},
      {.name = "Fluidized", .description = "Whether the solid is fluidized", .defaultValue = true},
      {.name = "Split factors",
       .description = "Split factors for (n - 1) outlets",
       .defaultValue = std::vector<double>(10, 0.05)},
  };
  std::vector<ParameterDeclaration> parameters;
  for (int i = 0; i < 40; ++i) parameters.push_back(kinds[i % std::size(kinds)]);
  return parameters;
}

com::Ref<TestUnit> MakeUnit() {
  static const std::vector<ParameterDeclaration> parameters = FortyParameters();
  static const TestDeclaration declaration = {
      .name = "Unit", .description = "A unit with many parameters", .about = "", .ports = {}, .parameters = parameters};
  auto unit = com::Make<TestUnit>(declaration);
  unit->Initialize();
  return unit;
}

std::string Saved(TestUnit& unit) {
  const auto stream = com::Make<FakeIStream>();
  if (unit.Save(stream.Get(), FALSE) != S_OK) throw Failure("the unit does not save");
  return stream->bytes;
}

void Save(benchmark::State& state) {
  const auto unit = MakeUnit();
  const std::string bytes = Saved(*unit);
  InTurns(
      state, [&] { unit->Save(com::Make<FakeIStream>().Get(), FALSE); },
      [&] {
        ULONG written = 0;
        com::Make<FakeIStream>()->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
      },
      kBatch);
  state.counters["bytes"] = static_cast<double>(bytes.size());
}

void Load(benchmark::State& state) {
  const auto unit = MakeUnit();
  const std::string bytes = Saved(*unit);
  if (unit->Load(com::Make<FakeIStream>(bytes).Get()) != S_OK) throw Failure("the unit does not load");
  std::string read(bytes.size(), '\0');
  InTurns(
      state, [&] { unit->Load(com::Make<FakeIStream>(bytes).Get()); },
      [&] {
        ULONG count = 0;
        com::Make<FakeIStream>(bytes)->Read(read.data(), static_cast<ULONG>(read.size()), &count);
      },
      kBatch);
}

BENCHMARK(Save)->UseManualTime();
BENCHMARK(Load)->UseManualTime();

}  // namespace
}  // namespace morvelan::benchmarks
