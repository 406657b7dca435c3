#include "host/objects/HostObject.h"

#include <string_view>

#include "com/Text.h"

namespace morvelan::host {
namespace {

HRESULT ReturnText(BSTR* value, std::string_view text) noexcept {
  if (!value) return E_POINTER;
  *value = nullptr;
  try {
    *value = com::ToBstr(text).Detach();
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace

HostObject::HostObject(std::string objectName, std::string objectDescription)
    : name(std::move(objectName)), description(std::move(objectDescription)) {}

HRESULT HostObject::get_ComponentName(BSTR* value) { return ReturnText(value, name); }
HRESULT HostObject::get_ComponentDescription(BSTR* value) { return ReturnText(value, description); }

HRESULT HostObject::put_ComponentName(BSTR text) {
  return Guard("ComponentName", "ICapeIdentification", [&] { name = com::ToUtf8(text); });
}

HRESULT HostObject::put_ComponentDescription(BSTR text) {
  return Guard("ComponentDescription", "ICapeIdentification", [&] { description = com::ToUtf8(text); });
}

HRESULT HostObject::get_name(BSTR* value) { return ReturnText(value, CodeName(lastError.code)); }
HRESULT HostObject::get_description(BSTR* value) { return ReturnText(value, lastError.text); }
HRESULT HostObject::get_scope(BSTR* value) { return ReturnText(value, lastError.operation); }
HRESULT HostObject::get_operation(BSTR* value) { return ReturnText(value, lastError.operation); }
HRESULT HostObject::get_interfaceName(BSTR* value) { return ReturnText(value, lastError.interfaceName); }
HRESULT HostObject::get_moreInfo(BSTR* value) { return ReturnText(value, {}); }

HRESULT HostObject::get_code(LONG* value) { return ReturnValue(value, lastError.code); }

HRESULT HostObject::Record(const char* operation, const char* interfaceName) noexcept {
  lastError.operation = operation;
  lastError.interfaceName = interfaceName;
  try {
    const HostError error = CurrentError();
    lastError.code = error.code;
    lastError.text = error.what();
  } catch (...) {
    lastError.code = kECapeNoMemory;
    lastError.text.clear();
  }
  return lastError.code;
}

HRESULT HostObject::Refuse(const char* operation, const char* interfaceName, HRESULT code, const char* text) {
  return Guard(operation, interfaceName, [&] { throw HostError(code, text); });
}

void HostObject::Replace(VARIANT* target, com::Variant value) {
  VariantClear(target);
  *target = value.Detach();
}

}  // namespace morvelan::host
