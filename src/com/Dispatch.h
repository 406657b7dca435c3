#pragma once

#include <string>

#include "com/Platform.h"

namespace morvelan::com {

// Late binding through the module's type library, where the platform has type libraries at run time;
// elsewhere names are unknown, and callers bind through the virtual tables.

[[nodiscard]] HRESULT TypeInfoOf(REFIID iid, ITypeInfo** info);
[[nodiscard]] HRESULT GetIdsOfNames(REFIID iid, LPOLESTR* names, UINT count, DISPID* ids);
/// Calls a member of the interface `iid`, to which `target` points.
[[nodiscard]] HRESULT Invoke(void* target, REFIID iid, DISPID member, WORD flags, DISPPARAMS* params, VARIANT* result,
                             EXCEPINFO* exception, UINT* argumentError);

/// The same for a script, which can't pass a text by reference as the standard's methods want it: such an
/// argument may be a variable of any content, which takes the text afterwards, or missing. A method without
/// another result gives its text as result. An array is given as one of variants.
[[nodiscard]] HRESULT InvokeFromScript(void* target, REFIID iid, DISPID member, WORD flags, DISPPARAMS* params,
                                       VARIANT* result, EXCEPINFO* exception, UINT* argumentError);

/// Leaves a description for callers who ask for it after a failure, as scripts and managed hosts do.
void PublishError(const std::string& description, const std::string& source) noexcept;

/// Whether the platform has type libraries at run time.
[[nodiscard]] bool HasTypeLibrary();

/// Forgets the type library, which is loaded again when it is wanted.
void ReleaseTypeLibrary() noexcept;

/// Answers the dispatch methods of an interface through the type library.
template <class Interface>
class Dispatched : public Interface {
 public:
  HRESULT GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = HasTypeLibrary() ? 1 : 0;
    return S_OK;
  }
  HRESULT GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (!info) return E_POINTER;
    *info = nullptr;
    return index == 0 ? TypeInfoOf(__uuidof(Interface), info) : DISP_E_BADINDEX;
  }
  HRESULT GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return GetIdsOfNames(__uuidof(Interface), names, count, ids);
  }
  HRESULT Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                 UINT* argumentError) override {
    return com::Invoke(static_cast<Interface*>(this), __uuidof(Interface), member, flags, params, result, exception,
                       argumentError);
  }
};

}  // namespace morvelan::com
