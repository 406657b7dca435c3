#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/thermo/Equilibrium.h"

namespace morvelan::host {

/// The measure of the amounts of compounds in a reaction's phase.
enum class ConcentrationBasis {
  kMolarity,       // [mol/m3]
  kConcentration,  // [kg/m3]
  kMoleFraction,
  kMassFraction,
};

struct NamedBasis {
  ConcentrationBasis basis;
  const char* name;
};

/// The names of these in files and for units.
inline constexpr NamedBasis kConcentrationBases[] = {{ConcentrationBasis::kMolarity, "Molarity"},
                                                     {ConcentrationBasis::kConcentration, "Concentration"},
                                                     {ConcentrationBasis::kMoleFraction, "MoleFraction"},
                                                     {ConcentrationBasis::kMassFraction, "MassFraction"}};

/// A number that belongs to a compound, given by its position in the property package.
struct CompoundNumber {
  std::size_t compound = 0;
  double number = 0;
};

/// ln K = a + b/T + c ln T + d T, in the reaction's basis.
struct LnKCoefficients {
  std::array<double, 4> values{};  // a [1], b [K], c [1], d [1/K]
};

/// K from the compounds' Gibbs energies of formation.
struct GibbsEquilibrium {};

/// preExponential exp(-activationEnergy/(R T)) times the product of c_i^order_i.
struct RateLaw {
  double preExponential = 0;
  double activationEnergy = 0;  // [J/mol]
  std::vector<CompoundNumber> orders;
};

/// The rate forward less the rate of the reverse reaction: [mol/(m3 s)], or [mol/(kg s)] of catalyst.
struct Kinetics {
  bool isHeterogeneous = false;
  RateLaw forward;
  std::optional<RateLaw> reverse;
};

struct Reaction {
  std::string id;
  PhaseKind phase = PhaseKind::kVapor;
  ConcentrationBasis basis = ConcentrationBasis::kMolarity;
  std::vector<CompoundNumber> stoichiometry;  // in the file's order, negative for reactants
  std::variant<LnKCoefficients, GibbsEquilibrium, Kinetics> law;
  std::optional<double> enthalpy;  // [J/mol]; from the formation enthalpies when it is not given

  [[nodiscard]] bool IsKinetic() const { return std::holds_alternative<Kinetics>(law); }
};

}  // namespace morvelan::host
