// No type libraries at run time: callers bind through the virtual tables.

#include "com/Dispatch.h"

#include <algorithm>

namespace morvelan::com {

bool HasTypeLibrary() { return false; }

HRESULT TypeInfoOf(REFIID, ITypeInfo**) { return E_NOTIMPL; }

HRESULT GetIdsOfNames(REFIID, LPOLESTR*, UINT count, DISPID* ids) {
  if (!ids) return E_POINTER;
  std::fill_n(ids, count, -1);
  return DISP_E_UNKNOWNNAME;
}

HRESULT Invoke(void*, REFIID, DISPID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) { return DISP_E_MEMBERNOTFOUND; }

HRESULT InvokeFromScript(void*, REFIID, DISPID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) {
  return DISP_E_MEMBERNOTFOUND;
}

void PublishError(const std::string&, const std::string&) noexcept {}

void ReleaseTypeLibrary() noexcept {}

}  // namespace morvelan::com
