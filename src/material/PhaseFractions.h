#pragma once

#include <string>
#include <vector>

#include "material/Names.h"
#include "material/Reading.h"
#include "material/Thermo.h"

namespace morvelan::material {

/// The fraction (mole basis) of each phase in a host's list of labels, but for "Overall". `readFraction` is
/// the host call for one phase: it takes the label and a VARIANT* and returns the HRESULT; `host` is the
/// object it calls.
template <class ReadFraction>
std::vector<PhaseFraction> ReadPhaseFractions(IUnknown* host, const VARIANT& labels, ReadFraction&& readFraction) {
  const auto invalidList = [](const std::string& why) {
    return Failure("Invalid list of phases from material: " + why);
  };
  constexpr const char* kUnexpected = "Unexpected format for phase fraction from material object: ";
  std::vector<PhaseFraction> fractions;
  for (const std::string& phase : ReadOr([&] { return com::ReadStrings(labels); }, invalidList)) {
    const com::Bstr label = com::ToBstr(phase);
    if (Name(label) == names::kOverall) continue;
    com::Variant fraction;
    CheckHost(readFraction(Name(label), fraction.Put()), host, [&](const std::string& why) {
      return Failure("Failed to get " + phase + " fraction from material: " + why);
    });
    const double value = ReadScalar(
        fraction.Get(), [](const std::string& why) { return Failure(kUnexpected + why); },
        [] { return Failure(std::string(kUnexpected) + "array with one value expected"); });
    fractions.push_back({phase, value});
  }
  if (fractions.empty()) throw Failure("No phases are present in material");
  return fractions;
}

}  // namespace morvelan::material
