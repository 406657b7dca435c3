#include "material/Thermo.h"

#include "material/Names.h"
#include "material/Thermo10.h"
#include "material/Thermo11.h"

namespace morvelan::material {

std::optional<std::size_t> OverallEmulation::IndexOf(Name property) {
  const Name properties[] = {names::kEnthalpy, names::kEnthalpyF, names::kEntropy, names::kEntropyF, names::kVolume};
  for (std::size_t i = 0; i < std::size(properties); ++i)
    if (property == properties[i]) return i;
  return std::nullopt;
}

const Thermo& ThermoInForce(bool thermo11) {
  static const Thermo10 thermo10;
  static const Thermo11 thermo11Interfaces;
  if (thermo11) return thermo11Interfaces;
  return thermo10;
}

}  // namespace morvelan::material
