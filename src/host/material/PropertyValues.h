#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/material/Property.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// Values of properties, of a material as a whole or of one of its phases, that a client gave or that were calculated.
class PropertyValues {
 public:
  /// `owner` is the phase in messages, or "Overall". `thermodynamics` must outlive this object.
  PropertyValues(const PropertyPackage& thermodynamics, const char* owner) : package(&thermodynamics), place(owner) {}

  /// Stores values that a client gives. Fractions are kept as mole fractions.
  void Give(PropertyId id, Basis basis, std::vector<double> values);
  /// Stores calculated values, in molar basis if they depend on the basis.
  void StoreResult(PropertyId id, std::vector<double> values);

  [[nodiscard]] bool Has(PropertyId id) const { return stored.contains(id); }
  /// Values in a basis. Throws HostError (ECapeThrmPropertyNotAvailable) when there are none.
  [[nodiscard]] std::vector<double> Read(PropertyId id, Basis basis = Basis::kNone) const;
  /// Mole fractions, one per compound. Throws as `Read` does.
  [[nodiscard]] std::vector<double> Composition() const { return Read({Property::kFraction}, Basis::kMole); }

  /// Forgets the properties for which `unwanted(id, isGiven)` holds.
  template <class Unwanted>
  void Forget(Unwanted unwanted) {
    std::erase_if(stored, [&](const auto& entry) { return unwanted(entry.first, entry.second.isGiven); });
  }
  /// Forgets all calculated values.
  void ForgetResults();

  /// Calls `visit(id)` for each property that has values.
  template <class Visit>
  void ForEach(Visit visit) const {
    for (const auto& [id, value] : stored) visit(id);
  }

 private:
  struct StoredValue {
    std::vector<double> values;
    Basis basis = Basis::kNone;
    bool isGiven = false;
  };

  const PropertyPackage* package;
  const char* place;
  std::map<PropertyId, StoredValue> stored;
};

}  // namespace morvelan::host
