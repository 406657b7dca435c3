#include "units/streams/CNoOperation.h"

namespace morvelan {
namespace {

constexpr PortDeclaration kPorts[] = {
    {"Inlet", "No-Operation feed", CAPE_INLET},
    {"Outlet", "No-Operation product", CAPE_OUTLET},
};

const ParameterDeclaration kParameters[] = {ThermoVersionParameter()};

const UnitDeclaration kDeclaration = {
    .name = "NoOperation",
    .description =
        "NoOperation - copy input stream to output stream and test the properties on the inlet stream",
    .about =
        "The No-Operation unit operation is a debug unit: it copies p, T, flow and composition from inlet to "
        "outlet and flashes the outlet",
    .ports = kPorts,
    .parameters = kParameters,
};

}  // namespace

CNoOperation::CNoOperation() : BaseUnit(kDeclaration) {}

void CNoOperation::CalculateUnit(int compoundCount, std::optional<com::Name>&) {
  const material::StreamState& inlet = Inlet(0).State();
  material::StreamState& outlet = Outlet(0).State();
  double fraction = 0;  // a compound beyond the inlet's own repeats the last value
  for (std::size_t i = 0; static_cast<int>(i) < compoundCount; ++i) {
    if (i < inlet.composition.size()) fraction = inlet.composition[i];
    if (i < outlet.composition.size()) outlet.composition[i] = fraction;
  }
  outlet.temperature = inlet.temperature;
  outlet.pressure = inlet.pressure;
  outlet.totalFlow = inlet.totalFlow;
}

}  // namespace morvelan
