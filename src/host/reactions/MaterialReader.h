#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cape_open.h"
#include "com/Ref.h"

namespace morvelan::host {

/// Reading of a material through the interfaces that it offers, whosever it is; one implementation for each
/// generation. Failures are HostError with what the material says.
class MaterialReader {
 public:
  virtual ~MaterialReader() = default;

  [[nodiscard]] virtual std::vector<std::string> Compounds() const = 0;
  /// Values of a phase, or of "Overall", in molar basis where there is a choice.
  [[nodiscard]] virtual std::vector<double> Values(const char* property, const char* phase) const = 0;
  /// Has a property of a phase calculated at the phase's own state.
  virtual void Calculate(const char* property, const char* phase) const = 0;
};

/// A reader of thermo 1.1 where the material offers it, else of thermo 1.0. Throws HostError for an object
/// that is no material.
[[nodiscard]] std::unique_ptr<MaterialReader> ReadMaterial(IDispatch* material);

}  // namespace morvelan::host
