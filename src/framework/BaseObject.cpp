#include "framework/BaseObject.h"

#include <new>

#include "com/Text.h"
#include "com/Values.h"

namespace morvelan {

BaseObject::BaseObject(std::string objectName, std::string objectDescription, const GUID& type)
    : name(std::move(objectName)), description(std::move(objectDescription)), automationType(type) {}

void* BaseObject::FindInterface(REFIID iid) {
  if (iid == __uuidof(IDispatch)) return static_cast<IDispatch*>(&automation);
  return Implements::FindInterface(iid);
}

std::vector<com::Face> BaseObject::Faces() {
  std::vector<com::Face> faces;
  AppendFaces(faces);
  return faces;
}

HRESULT BaseObject::get_ComponentName(BSTR* value) {
  if (!value) return E_POINTER;
  *value = nullptr;
  return Guard("get_ComponentName", "ICapeIdentification", [&] { *value = com::ToBstr(name).Detach(); });
}

HRESULT BaseObject::get_ComponentDescription(BSTR* value) {
  if (!value) return E_POINTER;
  *value = nullptr;
  return Guard("get_ComponentDescription", "ICapeIdentification", [&] { *value = com::ToBstr(description).Detach(); });
}

HRESULT BaseObject::put_ComponentName(BSTR text) {
  return Guard("put_ComponentName", "ICapeIdentification", [&] { name = com::ToUtf8(text); });
}

HRESULT BaseObject::put_ComponentDescription(BSTR text) {
  return Guard("put_ComponentDescription", "ICapeIdentification", [&] { description = com::ToUtf8(text); });
}

HRESULT BaseObject::get_name(BSTR* value) { return ReturnText(value, error.name); }
HRESULT BaseObject::get_description(BSTR* value) { return ReturnText(value, error.description); }
HRESULT BaseObject::get_scope(BSTR* value) { return ReturnText(value, error.scope); }
HRESULT BaseObject::get_operation(BSTR* value) { return ReturnText(value, error.scope); }
HRESULT BaseObject::get_interfaceName(BSTR* value) { return ReturnText(value, error.interfaceName); }
HRESULT BaseObject::get_moreInfo(BSTR* value) { return ReturnText(value, {}); }

HRESULT BaseObject::get_code(LONG* value) {
  if (!value) return E_POINTER;
  *value = kECapeUnknown;
  return S_OK;
}

void BaseObject::SetError(UnitError failure) noexcept { error = std::move(failure); }

void BaseObject::RecordCurrentException(std::string_view scope, std::string_view interfaceName) noexcept {
  // Short texts need no memory, so that running out of it can still be reported.
  UnitError caught{"", "", scope, interfaceName};
  const auto setText = [&](const char* text) { caught.name = caught.description = text; };
  try {
    try {
      throw;
    } catch (Failure& failure) {
      caught.name = std::move(failure.error.name);
      caught.description = std::move(failure.error.description);
      if (!failure.error.scope.empty()) caught.scope = failure.error.scope;
      if (!failure.error.interfaceName.empty()) caught.interfaceName = failure.error.interfaceName;
    } catch (const com::ArrayAllocationError&) {
      setText("out of memory");
      caught.scope = "MakeArray";
      caught.interfaceName = "CapeOpenBaseObject";
    } catch (const std::bad_alloc&) {
      setText("out of memory");
    } catch (const std::exception& exception) {
      setText(exception.what());
    } catch (...) {
      setText("unknown error");
    }
  } catch (...) {
    caught.name.clear();
    caught.description.clear();
    setText("out of memory");
  }
  SetError(std::move(caught));
  com::PublishError(error.description, name);
}

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

void ReplaceText(BSTR* value, std::string_view text) {
  com::Bstr replacement = com::ToBstr(text);
  SysFreeString(*value);
  *value = replacement.Detach();
}

}  // namespace morvelan
