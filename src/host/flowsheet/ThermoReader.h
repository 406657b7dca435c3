#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/file/JsonNode.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// The property package of a flowsheet, and its compounds by name, alias or CAS number.
class FlowsheetCompounds {
 public:
  /// Reads the "thermo" object of a file. Throws FileError.
  FlowsheetCompounds(const JsonNode& thermo, const std::filesystem::path& file,
                     const std::filesystem::path& dataFolder);

  [[nodiscard]] const std::shared_ptr<const PropertyPackage>& Package() const { return package; }

  /// Mole fractions in the package's order from an object of fractions by compound. Throws FileError unless they sum to
  /// 1 within 1e-6. They are scaled to a sum of exactly 1.
  [[nodiscard]] std::vector<double> ReadComposition(const JsonNode& composition) const;

  /// Position of the compound with this name. Throws FileError with the place for an unknown one.
  [[nodiscard]] std::size_t Find(const JsonNode& place, const std::string& name) const;

 private:
  std::shared_ptr<const PropertyPackage> package;
};

}  // namespace morvelan::host
