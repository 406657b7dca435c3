#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/thermo/CompoundData.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// The contents of a package. Compounds are given by name, alias or CAS number in any ASCII case.
struct PackageOptions {
  std::string model = "peng-robinson";               // or "ideal-gas" (vapor only)
  std::vector<std::string> compounds;                // in the order of every composition
  std::vector<BinaryInteraction> interactions = {};  // override the built-in pairs
  bool builtInInteraction = true;
};

/// Makes a package. Throws std::runtime_error naming the model, compound or pair that cannot be used.
[[nodiscard]] std::shared_ptr<const PropertyPackage> MakePropertyPackage(const CompoundData& data,
                                                                         const PackageOptions& options);

}  // namespace morvelan::host
