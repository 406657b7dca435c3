#pragma once

#include <stdexcept>
#include <string>

#include "com/Platform.h"

namespace morvelan::host {

/// What a unit, a port, a parameter or a material reports of its last failure through the standard's error interfaces.
struct ReportedError {
  std::string name;
  std::string description;
  std::string scope;
  std::string interfaceName;

  /// The description, or the name when there is none.
  [[nodiscard]] const std::string& Text() const { return description.empty() ? name : description; }
};

/// A failed call on an object of the unit's.
class UnitFailure : public std::runtime_error {
 public:
  explicit UnitFailure(ReportedError reported) : std::runtime_error(reported.Text()), error(std::move(reported)) {}

  ReportedError error;
};

/// The error that an object reports after a failed call. When it reports none, the description tells the code.
[[nodiscard]] ReportedError ReportedErrorOf(IUnknown* object, HRESULT code);

/// The error in a UnitFailure, or one that tells of another exception which kept the host from using a unit.
[[nodiscard]] ReportedError ReportedErrorOf(const std::exception& failure);

/// Throws UnitFailure when a call on `object` failed.
inline void Check(HRESULT outcome, IUnknown* object) {
  if (FAILED(outcome)) throw UnitFailure(ReportedErrorOf(object, outcome));
}

}  // namespace morvelan::host
