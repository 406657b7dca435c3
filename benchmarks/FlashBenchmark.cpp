// The reference host's flashes per second, for natural-gas-like mixtures of 2, 5 and 20 compounds in two
// phases.

#include <benchmark/benchmark.h>

#include <filesystem>

#include "host/thermo/PackageFactory.h"

namespace {

using namespace morvelan::host;

/// Light and heavy compounds in turns, so that every choice of the first ones has two phases at the
/// conditions below.
const std::vector<std::string> kCompounds = {
    "methane",   "n-pentane", "ethane",   "n-butane",       "nitrogen", "propane",         "n-hexane",
    "isobutane", "n-heptane", "ethylene", "carbon dioxide", "n-octane", "argon",           "isopentane",
    "propylene", "benzene",   "toluene",  "n-nonane",       "n-decane", "hydrogen sulfide"};

std::shared_ptr<const PropertyPackage> MakePackage(std::size_t compounds) {
  const std::filesystem::path folder = MORVELAN_DATA_DIR;
  CompoundData data;
  data.AddCompounds(folder / "compounds.json");
  data.AddInteractions(folder / "binary-interaction.json");
  PackageOptions options;
  options.compounds.assign(kCompounds.begin(), kCompounds.begin() + static_cast<std::ptrdiff_t>(compounds));
  return MakePropertyPackage(data, options);
}

/// Walks through two-phase states, so that no flash starts from its own answer.
struct States {
  explicit States(std::size_t compounds)
      : package(MakePackage(compounds)), z(compounds, 1.0 / static_cast<double>(compounds)) {}

  [[nodiscard]] double Temperature(int i) const { return 280.0 + i % 16; }

  static constexpr double kPressure = 1.5e6;
  std::shared_ptr<const PropertyPackage> package;
  std::vector<double> z;
};

void FlashTP(benchmark::State& state) {
  const States states(static_cast<std::size_t>(state.range(0)));
  int i = 0;
  std::size_t phases = 0;
  for (auto _ : state)
    phases += states.package->FlashTP(states.Temperature(i++), States::kPressure, states.z).phases.size();
  state.counters["flashes"] = benchmark::Counter(i, benchmark::Counter::kIsRate);
  state.counters["phases"] = static_cast<double>(phases) / i;
}

void FlashPH(benchmark::State& state) {
  const States states(static_cast<std::size_t>(state.range(0)));
  std::vector<double> enthalpies;
  for (int k = 0; k < 16; ++k)
    enthalpies.push_back(
        states.package->Overall(states.package->FlashTP(states.Temperature(k), States::kPressure, states.z)).enthalpy);
  std::size_t i = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(states.package->FlashPH(States::kPressure, enthalpies[i++ % 16], states.z).T);
  state.counters["flashes"] = benchmark::Counter(static_cast<double>(i), benchmark::Counter::kIsRate);
}

BENCHMARK(FlashTP)->ArgName("compounds")->Arg(2)->Arg(5)->Arg(20);
BENCHMARK(FlashPH)->ArgName("compounds")->Arg(2)->Arg(5)->Arg(20);

}  // namespace
