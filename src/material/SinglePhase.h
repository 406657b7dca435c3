#pragma once

#include <array>
#include <string>
#include <vector>

#include "errors/HostCall.h"
#include "material/Reading.h"
#include "material/Thermo.h"

namespace morvelan::material {

// What both generations do alike with single phases of a material.

[[nodiscard]] inline Failure PhaseListFailure(const std::string& why) {
  return Failure("Failed to get list of phases from material: " + why);
}

/// The labels of single phases in a host's list.
[[nodiscard]] inline std::vector<std::string> SinglePhases(const com::Variant& labels) {
  std::vector<std::string> phases = ReadOr([&] { return com::ReadStrings(labels.Get()); }, PhaseListFailure);
  std::erase_if(phases, [](const std::string& phase) { return com::EqualNoCase(phase, "Overall"); });
  return phases;
}

[[nodiscard]] inline Failure NoMaterialFailure(const std::string& why) {
  return Failure("Failed to get material interface: " + why);
}

/// Checks the host's answer to setting `what`, in the words for a material that becomes one phase.
template <class What>
void CheckSinglePhase(HRESULT set, IUnknown* material, What&& what) {
  CheckHost(set, material,
            [&](const std::string& why) { return Failure("Failed to set " + what() + " on outlet material: " + why); });
}

/// A state in the form that hosts take.
struct SinglePhaseArrays {
  explicit SinglePhaseArrays(const StreamState& state)
      : temperature(com::MakeDoubles(std::array{state.temperature})),
        pressure(com::MakeDoubles(std::array{state.pressure})),
        composition(com::MakeDoubles(state.composition)) {}

  com::Variant temperature;
  com::Variant pressure;
  com::Variant composition;
};

}  // namespace morvelan::material
