#include "com/Automation.h"

namespace morvelan::com {
namespace {

constexpr int kPlaceShift = 16;
constexpr DISPID kMemberMask = 0xffff;

}  // namespace

HRESULT Automation::QueryInterface(REFIID iid, void** object) { return owner.Identity()->QueryInterface(iid, object); }
ULONG Automation::AddRef() { return owner.Identity()->AddRef(); }
ULONG Automation::Release() { return owner.Identity()->Release(); }

HRESULT Automation::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = HasTypeLibrary() ? 1 : 0;
  return S_OK;
}

HRESULT Automation::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  return index == 0 ? TypeInfoOf(owner.AutomationType(), info) : DISP_E_BADINDEX;
}

HRESULT Automation::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) try {
  if (!names || !ids) return E_POINTER;
  if (count == 0) return DISP_E_UNKNOWNNAME;
  const std::vector<Face> faces = owner.Faces();
  for (std::size_t i = 0; i < faces.size(); ++i) {
    if (FAILED(GetIdsOfNames(faces[i].iid, names, count, ids))) continue;
    ids[0] |= static_cast<DISPID>(i + 1) << kPlaceShift;
    return S_OK;
  }
  return DISP_E_UNKNOWNNAME;
} catch (...) {
  return E_OUTOFMEMORY;
}

HRESULT Automation::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                           EXCEPINFO* exception, UINT* argumentError) try {
  const auto alive = Ref<IUnknown>::Share(owner.Identity());
  const std::vector<Face> faces = owner.Faces();
  const auto place = static_cast<std::size_t>(member >> kPlaceShift);
  if (member < 0 || place < 1 || place > faces.size()) return DISP_E_MEMBERNOTFOUND;
  const Face& face = faces[place - 1];
  const DISPID own = member & kMemberMask;
  if (flags & DISPATCH_PROPERTYPUTREF) flags = DISPATCH_PROPERTYPUT;  // objects are put as values are
  DISPPARAMS adapted = params ? *params : DISPPARAMS{};
  std::optional<Variant> value;
  VARIANT argument;
  if ((flags & DISPATCH_PROPERTYPUT) && adapted.cArgs == 1 && adapted.rgvarg)
    value = owner.AdaptPut(face.iid, own, adapted.rgvarg[0]);
  if (value) {
    argument = value->Get();
    adapted.rgvarg = &argument;
  }
  return InvokeFromScript(face.object, face.iid, own, flags, &adapted, result, exception, argumentError);
} catch (...) {
  return E_OUTOFMEMORY;
}

}  // namespace morvelan::com
