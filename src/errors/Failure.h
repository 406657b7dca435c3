#pragma once

#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "com/Platform.h"

namespace morvelan {

/// The code of every failure that a unit, port, parameter or collection reports; the texts say what failed.
constexpr HRESULT kECapeUnknown = static_cast<HRESULT>(0x80040501u);

/// The last failure of an object, as `ECapeRoot` and `ECapeUser` report it. Scope and interface name are
/// literals.
struct UnitError {
  std::string name;
  std::string description;
  std::string_view scope;          // the operation that failed: "Calculate", "Connect", "Item", ...
  std::string_view interfaceName;  // the interface of that operation: "ICapeUnit", "ICapeCollection", ...
};

/// Ends an operation with the texts that its object then reports. A failure without a scope takes that of the
/// entry point in which it ends.
class Failure : public std::exception {
 public:
  explicit Failure(UnitError failure) : error(std::move(failure)) {}
  /// The same text as name and description.
  explicit Failure(std::string text, std::string_view scope = {}, std::string_view interfaceName = {})
      : error{text, std::move(text), scope, interfaceName} {}

  [[nodiscard]] const char* what() const noexcept override { return error.description.c_str(); }

  UnitError error;
};

/// Runs `body`; a failure takes the given scope and interface, and its description becomes its name too, as
/// when one object passes on the error of another.
template <class Body>
auto ForwardError(std::string_view scope, std::string_view interfaceName, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (Failure& failure) {
    UnitError& error = failure.error;
    throw Failure(std::move(error.description.empty() ? error.name : error.description), scope, interfaceName);
  }
}

}  // namespace morvelan
