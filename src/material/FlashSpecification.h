#pragma once

#include <string>

#include "errors/Failure.h"
#include "material/Thermo.h"

namespace morvelan::material {

inline constexpr double kNormalPressure = 101325;     // [Pa]
inline constexpr double kNormalTemperature = 298.15;  // [K]

// What a flash writes before the equilibrium call. For "THF" and "HFVF" values that are no specifications are
// written as well: hosts have come to see them.
[[nodiscard]] bool WritesPressure(Name flashType);
[[nodiscard]] bool WritesTemperature(Name flashType);

/// A stream's state in the form hosts take: one value each but for the composition.
struct StateArrays {
  com::Variant pressure;
  com::Variant temperature;
  com::Variant totalFlow;
  com::Variant composition;
};

/// Throws "failed to create array: ..." when memory runs out.
[[nodiscard]] StateArrays MakeStateArrays(const StreamState& state);

/// The overall molar enthalpy.
extern const PropertyRequest kOverallEnthalpy;

/// The one valid value of an enthalpy, or "Invalid values for enthalpy".
[[nodiscard]] double ReadEnthalpy(const com::Variant& values);

[[nodiscard]] Failure SettingFailure(const char* title, Name property, const std::string& why);
[[nodiscard]] Failure EquilibriumFailure(const std::string& why);
[[nodiscard]] Failure NormalStateFailure(const char* what, const std::string& why);

}  // namespace morvelan::material
