#pragma once

#include "com/Name.h"

namespace morvelan::names {

// The texts that go to hosts on every calculation, in exactly these spellings, made once when the module is
// loaded.

using com::Name;

inline const Name kNone;

inline const Name kPressure = com::KeepName("Pressure");
inline const Name kTemperature = com::KeepName("Temperature");
inline const Name kDensity = com::KeepName("Density");
inline const Name kViscosity = com::KeepName("Viscosity");
inline const Name kTotalFlow = com::KeepName("totalFlow");
inline const Name kFraction = com::KeepName("Fraction");
inline const Name kPhaseFraction = com::KeepName("phaseFraction");
inline const Name kOverall = com::KeepName("Overall");
inline const Name kVapor = com::KeepName("Vapor");
inline const Name kMole = com::KeepName("Mole");
inline const Name kMass = com::KeepName("Mass");
inline const Name kMixture = com::KeepName("mixture");
inline const Name kPure = com::KeepName("pure");
inline const Name kStatus = com::KeepName("Status");

inline const Name kEnthalpy = com::KeepName("enthalpy");
inline const Name kEnthalpyF = com::KeepName("enthalpyF");
inline const Name kEntropy = com::KeepName("entropy");
inline const Name kEntropyF = com::KeepName("entropyF");
inline const Name kVolume = com::KeepName("volume");

inline const Name kEnthalpyDTemperature = com::KeepName("enthalpy.Dtemperature");
inline const Name kEnthalpyFDTemperature = com::KeepName("enthalpyF.Dtemperature");
inline const Name kEnthalpyDPressure = com::KeepName("enthalpy.Dpressure");
inline const Name kEnthalpyFDPressure = com::KeepName("enthalpyF.Dpressure");
inline const Name kEnthalpyDMolFraction = com::KeepName("enthalpy.DmolFraction");
inline const Name kEnthalpyFDMolFraction = com::KeepName("enthalpyF.DmolFraction");
inline const Name kEnthalpyDMoles = com::KeepName("enthalpy.Dmoles");
inline const Name kEnthalpyFDMoles = com::KeepName("enthalpyF.Dmoles");
inline const Name kEntropyFDMoles = com::KeepName("entropyF.Dmoles");
inline const Name kEntropyFDTemperature = com::KeepName("entropyF.DTemperature");

inline const Name kEnthalpyOfReaction = com::KeepName("enthalpyOfReaction");
inline const Name kChemicalEquilibriumConstant = com::KeepName("chemicalEquilibriumConstant");
inline const Name kReactionRate = com::KeepName("reactionRate");

inline const Name kMolecularWeight = com::KeepName("molecularWeight");
inline const Name kCasRegistryNumber = com::KeepName("CasRegistryNumber");

inline const Name kSimplifiedModelRequest = com::KeepName("SimplifiedModelRequest");
inline const Name kDefaultThermoVersion = com::KeepName("DefaultThermoVersion");

// Flash types.
inline const Name kTP = com::KeepName("TP");
inline const Name kPH = com::KeepName("PH");
inline const Name kPHF = com::KeepName("PHF");
inline const Name kPVF = com::KeepName("PVF");
inline const Name kTH = com::KeepName("TH");
inline const Name kTHF = com::KeepName("THF");
inline const Name kTVF = com::KeepName("TVF");
inline const Name kHVF = com::KeepName("HVF");
inline const Name kHFVF = com::KeepName("HFVF");
/// The isentropic flash, with the small p that hosts know it by.
inline const Name kPS = com::KeepName("pS");

inline const Name kUnspecified = com::KeepName("unspecified");

}  // namespace morvelan::names
