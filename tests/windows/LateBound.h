#pragma once

#include <string>
#include <utility>
#include <vector>

#include "com/Ref.h"
#include "com/Values.h"

namespace morvelan::test {

/// What a call by name gave.
struct Outcome {
  HRESULT code = S_OK;
  com::Variant result;
  std::string description;  // of a failure, as a script shows it

  /// The object that was given, or null.
  [[nodiscard]] com::Ref<IDispatch> Object() const {
    return result.Get().vt == VT_DISPATCH ? com::Ref<IDispatch>::Share(result.Get().pdispVal) : nullptr;
  }
};

inline HRESULT FindName(IDispatch* object, const std::string& name, DISPID& id) {
  const com::Bstr wide = com::ToBstr(name);
  LPOLESTR names[] = {wide.Get()};
  id = DISPID_UNKNOWN;
  return object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
}

inline Outcome InvokeMember(IDispatch* object, DISPID id, WORD flags, DISPPARAMS& parameters) {
  Outcome outcome;
  EXCEPINFO exception{};
  outcome.code =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, outcome.result.Put(), &exception, nullptr);
  const com::Bstr source(exception.bstrSource);
  const com::Bstr help(exception.bstrHelpFile);
  outcome.description = com::ToUtf8(com::Bstr(exception.bstrDescription).Get());
  return outcome;
}

/// Calls a member as a script does; a put takes the new value as its only argument.
inline Outcome CallByName(IDispatch* object, const std::string& name, WORD flags = DISPATCH_METHOD,
                          std::vector<VARIANT> arguments = {}) {
  DISPID id = DISPID_UNKNOWN;
  if (const HRESULT hr = FindName(object, name, id); FAILED(hr)) return {.code = hr, .result = {}, .description = {}};
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  if (flags & DISPATCH_PROPERTYPUT) {
    parameters.rgdispidNamedArgs = &put;
    parameters.cNamedArgs = 1;
  }
  return InvokeMember(object, id, flags, parameters);
}

/// The object that a property or a method gives, or null.
inline com::Ref<IDispatch> ObjectByName(IDispatch* object, const std::string& name,
                                        std::vector<VARIANT> arguments = {}) {
  return CallByName(object, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, std::move(arguments)).Object();
}

}  // namespace morvelan::test
