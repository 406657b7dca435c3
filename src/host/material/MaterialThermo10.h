#pragma once

#include <string>
#include <vector>

#include "host/material/MaterialBase.h"

namespace morvelan::host {

/// A material seen through the interface of thermo 1.0.
class MaterialThermo10 : public com::Implements<MaterialBase, ICapeThermoMaterialObject> {
 public:
  using Implements::Implements;

  // ICapeThermoMaterialObject
  HRESULT get_ComponentIds(VARIANT* ids) override;
  HRESULT get_PhaseIds(VARIANT* labels) override;
  HRESULT GetUniversalConstant(VARIANT names, VARIANT* values) override;
  HRESULT GetComponentConstant(VARIANT names, VARIANT compounds, VARIANT* values) override;
  HRESULT CalcProp(VARIANT names, VARIANT phases, BSTR calcType) override;
  HRESULT GetProp(BSTR name, BSTR phase, VARIANT compounds, BSTR calcType, BSTR basis, VARIANT* values) override;
  HRESULT SetProp(BSTR name, BSTR phase, VARIANT compounds, BSTR calcType, BSTR basis, VARIANT values) override;
  HRESULT CalcEquilibrium(BSTR flashType, VARIANT names) override;
  HRESULT SetIndependentVar(VARIANT names, VARIANT values) override;
  HRESULT GetIndependentVar(VARIANT names, VARIANT* values) override;
  HRESULT PropCheck(VARIANT names, VARIANT* known) override;
  HRESULT AvailableProps(VARIANT* names) override;
  HRESULT RemoveResults(VARIANT names) override;
  HRESULT CreateMaterialObject(IDispatch** created) override;
  HRESULT Duplicate(IDispatch** copy) override;
  HRESULT ValidityCheck(VARIANT names, VARIANT* reliability) override;
  HRESULT GetPropList(VARIANT* names) override;
  HRESULT GetNumComponents(LONG* count) override { return ReturnValue(count, Package().CompoundCount()); }

 private:
  [[nodiscard]] std::vector<double> Values(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis) const;
  void SetValues(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis, const VARIANT& values);
  [[nodiscard]] std::vector<double> InPackageOrder(PropertyId id, const std::vector<std::string>& compounds,
                                                   const std::vector<double>& values) const;
};

}  // namespace morvelan::host
