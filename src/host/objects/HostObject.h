#pragma once

#include <string>
#include <utility>

#include "cape_open.h"
#include "com/Object.h"
#include "com/Values.h"
#include "host/objects/HostError.h"

namespace morvelan::host {

/// Root of the objects that the host hands to units: a name, a description and the last failure.
class HostObject : public com::Implements<com::ObjectCore, ICapeIdentification, ECapeRoot, ECapeUser, ECapeUnknown> {
 public:
  HostObject(std::string objectName, std::string objectDescription);

  // ICapeIdentification
  HRESULT get_ComponentName(BSTR* value) override;
  HRESULT put_ComponentName(BSTR text) override;
  HRESULT get_ComponentDescription(BSTR* value) override;
  HRESULT put_ComponentDescription(BSTR text) override;
  // ECapeRoot
  HRESULT get_name(BSTR* value) override;
  // ECapeUser
  HRESULT get_code(LONG* value) override;
  HRESULT get_description(BSTR* value) override;
  HRESULT get_scope(BSTR* value) override;
  HRESULT get_interfaceName(BSTR* value) override;
  HRESULT get_operation(BSTR* value) override;
  HRESULT get_moreInfo(BSTR* value) override;

  [[nodiscard]] const std::string& Name() const { return name; }

 protected:
  /// Runs the body of an entry point. An exception becomes this object's last error and the returned code.
  template <class Body>
  HRESULT Guard(const char* operation, const char* interfaceName, Body&& body) {
    try {
      std::forward<Body>(body)();
      return S_OK;
    } catch (...) {
      return Record(operation, interfaceName);
    }
  }

  /// The same for an entry point that hands out the variant which the body makes.
  template <class Body>
  HRESULT Answer(const char* operation, const char* interfaceName, VARIANT* result, Body&& body) {
    if (!result) return E_POINTER;
    VariantInit(result);
    return Guard(operation, interfaceName, [&] { *result = std::forward<Body>(body)().Detach(); });
  }

  /// The same for a variant that holds a value of the caller's, which stays when the body fails.
  template <class Body>
  HRESULT Exchange(const char* operation, const char* interfaceName, VARIANT* result, Body&& body) {
    if (!result) return E_POINTER;
    return Guard(operation, interfaceName, [&] { Replace(result, std::forward<Body>(body)()); });
  }

  /// Releases a value that the caller passed in, and hands out another one.
  static void Replace(VARIANT* target, com::Variant value);

  /// An entry point that only fails.
  HRESULT Refuse(const char* operation, const char* interfaceName, HRESULT code, const char* text);

 private:
  HRESULT Record(const char* operation, const char* interfaceName) noexcept;

  std::string name;
  std::string description;

  struct LastError {
    HRESULT code = S_OK;
    std::string text;
    const char* operation = "";
    const char* interfaceName = "";
  };
  LastError lastError;
};

/// Hands out a number of a fixed type.
template <class Number, class Value>
HRESULT ReturnValue(Number* target, Value value) {
  if (!target) return E_POINTER;
  *target = static_cast<Number>(value);
  return S_OK;
}

}  // namespace morvelan::host
