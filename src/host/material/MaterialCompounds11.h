#pragma once

#include "host/material/MaterialRoutines11.h"

namespace morvelan::host {

/// Adds the interfaces of thermo 1.1 that describe a material's compounds and phases, and constants of nature.
class MaterialCompounds11 : public com::Implements<MaterialRoutines11, ICapeThermoCompounds, ICapeThermoPhases,
                                                   ICapeThermoUniversalConstant> {
 public:
  using Implements::Implements;

  // ICapeThermoCompounds
  HRESULT GetCompoundConstant(VARIANT names, VARIANT compounds, VARIANT* values) override;
  HRESULT GetCompoundList(VARIANT* ids, VARIANT* formulae, VARIANT* names, VARIANT* boilingTemperatures,
                          VARIANT* molecularWeights, VARIANT* casNumbers) override;
  HRESULT GetConstPropList(VARIANT* names) override;
  HRESULT GetNumCompounds(LONG* count) override { return ReturnValue(count, Package().CompoundCount()); }
  HRESULT GetPDependentProperty(VARIANT names, double pressure, VARIANT compounds, VARIANT* values) override;
  HRESULT GetPDependentPropList(VARIANT* names) override;
  HRESULT GetTDependentProperty(VARIANT names, double temperature, VARIANT compounds, VARIANT* values) override;
  HRESULT GetTDependentPropList(VARIANT* names) override;

  // ICapeThermoPhases
  HRESULT GetNumPhases(LONG* count) override { return ReturnValue(count, state.SupportedPhases().size()); }
  HRESULT GetPhaseInfo(BSTR phase, BSTR attribute, VARIANT* value) override;
  HRESULT GetPhaseList(VARIANT* labels, VARIANT* states, VARIANT* keyCompounds) override;

  // ICapeThermoUniversalConstant
  using MaterialThermo10::GetUniversalConstant;
  HRESULT GetUniversalConstant(BSTR name, VARIANT* value) override;
  HRESULT GetUniversalConstantList(VARIANT* names) override;
};

}  // namespace morvelan::host
