#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cape_open.h"
#include "com/Ref.h"

namespace morvelan::host {

/// Reads a material, the host's or another's, through the interfaces that it offers. There is an implementation for
/// each generation of them. Failures are HostError with the material's own text.
class MaterialReader {
 public:
  virtual ~MaterialReader() = default;

  [[nodiscard]] virtual std::vector<std::string> Compounds() const = 0;
  /// Values of a phase, or of "Overall", in molar basis if they depend on the basis.
  [[nodiscard]] virtual std::vector<double> Values(const char* property, const char* phase) const = 0;
  /// Makes the material calculate a property of a phase at the phase's own state.
  virtual void Calculate(const char* property, const char* phase) const = 0;
};

/// A reader of thermo 1.1 where the material offers it, else of thermo 1.0. Throws HostError for an object that is no
/// material.
[[nodiscard]] std::unique_ptr<MaterialReader> MakeMaterialReader(IDispatch* material);

}  // namespace morvelan::host
