#include "framework/CInfoParamDesc.h"

#include "framework/ParameterValue.h"
#include "morvelan.h"

namespace morvelan {

CInfoParamDesc::CInfoParamDesc(const InformationItem& item)
    : Implements(item.name, item.description, __uuidof(DInfoParamDesc)),
      dimensionality(item.dimensionality),
      optional(item.optional) {}

HRESULT CInfoParamDesc::get_Type(CapeParamType* type) {
  if (!type) return E_POINTER;
  *type = CAPE_REAL;
  return S_OK;
}

HRESULT CInfoParamDesc::get_Dimensionality(VARIANT* exponents) {
  if (!exponents) return E_POINTER;
  VariantInit(exponents);
  return Guard("get_Dimensionality", "ICapeParameterSpec",
               [&] { *exponents = MakeForHost([&] { return ToVariant(dimensionality); }).Detach(); });
}

}  // namespace morvelan
