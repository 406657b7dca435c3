#pragma once

#include <map>
#include <optional>
#include <vector>

#include "host/reactions/MaterialReader.h"
#include "host/reactions/Reaction.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// One phase of a material as reactions see it. A value is read from the material when it is first asked for. So the K
/// of a reaction can be calculated for a material without the phase, if it depends on temperature only. Failures are
/// HostError.
class PhaseConditions {
 public:
  PhaseConditions(const MaterialReader& source, const PropertyPackage& thermodynamics, PhaseKind kind)
      : reader(source), package(thermodynamics), phase(kind) {}

  /// The phase's temperature [K], or the material's when the phase has none.
  [[nodiscard]] double Temperature();
  /// The phase's pressure [Pa], or the material's when the phase has none.
  [[nodiscard]] double Pressure();
  /// Mole fractions, one per compound of the package; zero for one that the material does not have.
  [[nodiscard]] const std::vector<double>& MoleFractions();
  [[nodiscard]] double MolarDensity();  // [mol/m3]

  /// The factor that turns a compound's mole fraction into its amount in a basis.
  [[nodiscard]] double AmountPerFraction(ConcentrationBasis basis, std::size_t compound);

 private:
  [[nodiscard]] double Condition(const char* property) const;

  const MaterialReader& reader;
  const PropertyPackage& package;
  PhaseKind phase;
  std::optional<double> temperature;
  std::optional<double> pressure;
  std::vector<double> fractions;
  std::optional<double> density;
};

/// The phases of a material. Each is made when it is first asked for.
class ReactionConditions {
 public:
  ReactionConditions(const MaterialReader& source, const PropertyPackage& thermodynamics)
      : reader(source), package(thermodynamics) {}

  [[nodiscard]] PhaseConditions& Of(PhaseKind kind) {
    return phases.try_emplace(kind, reader, package, kind).first->second;
  }

 private:
  const MaterialReader& reader;
  const PropertyPackage& package;
  std::map<PhaseKind, PhaseConditions> phases;
};

}  // namespace morvelan::host
