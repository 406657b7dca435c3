#pragma once

#include "host/thermo/FlashEngine.h"

namespace morvelan::host {

enum class EnergyKind { kEnthalpy, kEntropy };

/// Brings the mixture to P and a molar enthalpy [J/mol] or entropy [J/(mol K)]. Both rise with T, so that the
/// search is for one T. Where they jump (a pure compound or azeotrope at its boiling point, or a liquid that
/// starts to boil all at once), the state is sought among those with both phases. Throws std::runtime_error.
void FlashEnergyAtPressure(FlashEngine& engine, double P, double target, EnergyKind kind);

/// Brings the mixture to T and a molar enthalpy [J/mol]. Enthalpy falls with pressure through vapour and
/// boiling to a minimum at the bubble point of a cold liquid or in a dense fluid, and rises beyond it, so
/// that two states may have the enthalpy asked for. That of the lower pressure is taken, but a liquid below
/// 10 MPa goes before a liquid of lower pressure that has just begun to boil. Throws std::runtime_error.
void FlashEnthalpyAtTemperature(FlashEngine& engine, double T, double H);

}  // namespace morvelan::host
