#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/flowsheet/JsonFile.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// The package of a flowsheet, and its compounds by all the names that they bear.
class FlowsheetCompounds {
 public:
  /// Reads the "thermo" object of a file. Throws FlowsheetError.
  FlowsheetCompounds(const JsonNode& thermo, const std::filesystem::path& file,
                     const std::filesystem::path& dataFolder);

  [[nodiscard]] const std::shared_ptr<const PropertyPackage>& Package() const { return package; }

  /// Mole fractions in the package's order from an object of fractions by compound. Throws FlowsheetError
  /// unless they sum to 1 within 1e-6; what is left of that is scaled away.
  [[nodiscard]] std::vector<double> ReadComposition(const JsonNode& composition) const;

  /// Position of the compound that a name means. Throws FlowsheetError with the place when none does.
  [[nodiscard]] std::size_t Find(const JsonNode& place, const std::string& name) const;

 private:
  std::shared_ptr<const PropertyPackage> package;
};

}  // namespace morvelan::host
