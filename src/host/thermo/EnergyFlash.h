#pragma once

#include "host/thermo/FlashEngine.h"

namespace morvelan::host {

enum class EnergyKind { kEnthalpy, kEntropy };

/// Brings the mixture to P and a molar enthalpy [J/mol] or entropy [J/(mol K)]. Both rise with T, so that there is one
/// T. Where they jump (a pure compound or an azeotrope at its boiling point, or a liquid that starts to boil all at
/// once), a state with both phases is searched for. Throws std::runtime_error.
void FlashEnergyAtPressure(FlashEngine& engine, double P, double target, EnergyKind kind);

/// Brings the mixture to T and a molar enthalpy [J/mol]; see PropertyPackage::FlashTH for the choice between two
/// states. Throws std::runtime_error.
void FlashEnthalpyAtTemperature(FlashEngine& engine, double T, double H);

}  // namespace morvelan::host
