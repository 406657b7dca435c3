#include "material/FlashSpecification.h"

#include <algorithm>
#include <new>

#include "material/Names.h"
#include "material/Reading.h"

namespace morvelan::material {
namespace {

bool IsOneOf(Name flashType, std::initializer_list<Name> types) {
  return std::ranges::any_of(types, [&](Name type) { return type == flashType; });
}

}  // namespace

const PropertyRequest kOverallEnthalpy = {names::kEnthalpy, names::kOverall, names::kMixture, names::kMole};

bool WritesPressure(Name flashType) { return !IsOneOf(flashType, {names::kTH, names::kTVF, names::kHVF}); }

bool WritesTemperature(Name flashType) {
  return !IsOneOf(flashType, {names::kPH, names::kPHF, names::kPVF, names::kHVF});
}

StateArrays MakeStateArrays(const StreamState& state) {
  try {
    return {com::MakeDoubles(std::array{state.pressure}), com::MakeDoubles(std::array{state.temperature}),
            com::MakeDoubles(std::array{state.totalFlow}), com::MakeDoubles(state.composition)};
  } catch (const std::bad_alloc&) {
    throw Failure("failed to create array: out of memory");
  }
}

double ReadEnthalpy(const com::Variant& values) {
  return ReadScalar(values.Get(), [](const std::string&) { return Failure("Invalid values for enthalpy"); });
}

Failure SettingFailure(const char* title, Name property, const std::string& why) {
  return Failure(UnitError{title, "failed to set " + Shown(property) + ": " + why, {}, {}});
}

Failure EquilibriumFailure(const std::string& why) {
  return Failure(UnitError{"CalcEquilibrium failed", "CalcEquilibrium failed: " + why, {}, {}});
}

Failure NormalStateFailure(const char* what, const std::string& why) {
  return Failure(std::string("Failed to set ") + what + " on duplicate material: " + why);
}

}  // namespace morvelan::material
