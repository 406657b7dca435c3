#pragma once

#include <stdexcept>
#include <string>

#include "com/Platform.h"

namespace morvelan::host {

/// A failure that a unit, a port or a parameter reported, as its error interfaces tell it.
struct UnitFault {
  std::string name;
  std::string description;
  std::string scope;
  std::string interfaceName;

  /// The description, or the name when there is none.
  [[nodiscard]] const std::string& Text() const { return description.empty() ? name : description; }
};

class UnitFailure : public std::runtime_error {
 public:
  explicit UnitFailure(UnitFault reported) : std::runtime_error(reported.Text()), fault(std::move(reported)) {}

  UnitFault fault;
};

/// What an object says of its last failure; the code alone when it says nothing.
[[nodiscard]] UnitFault FaultOf(IUnknown* object, HRESULT code);

/// What a unit reported, or what else kept the host from using it.
[[nodiscard]] UnitFault FaultOf(const std::exception& failure);

/// Throws UnitFailure when a call on `object` failed.
inline void Check(HRESULT outcome, IUnknown* object) {
  if (FAILED(outcome)) throw UnitFailure(FaultOf(object, outcome));
}

}  // namespace morvelan::host
