#pragma once

#include "host/material/MaterialThermo10.h"

namespace morvelan::host {

/// Adds the interface of thermo 1.1 through which a material's values and phases are read and set.
class MaterialThermo11 : public com::Implements<MaterialThermo10, ICapeThermoMaterial> {
 public:
  using Implements::Implements;

  // ICapeThermoMaterial
  HRESULT ClearAllProps() override;
  HRESULT CopyFromMaterial(IDispatch** source) override;
  HRESULT CreateMaterial(IDispatch** created) override;
  HRESULT GetOverallProp(BSTR name, BSTR basis, VARIANT* values) override;
  HRESULT GetOverallTPFraction(double* temperature, double* pressure, VARIANT* composition) override;
  HRESULT GetPresentPhases(VARIANT* labels, VARIANT* statuses) override;
  HRESULT GetSinglePhaseProp(BSTR name, BSTR phase, BSTR basis, VARIANT* values) override;
  HRESULT GetTPFraction(BSTR phase, double* temperature, double* pressure, VARIANT* composition) override;
  HRESULT GetTwoPhaseProp(BSTR name, VARIANT phases, BSTR basis, VARIANT* values) override;
  HRESULT SetOverallProp(BSTR name, BSTR basis, VARIANT values) override;
  HRESULT SetPresentPhases(VARIANT labels, VARIANT statuses) override;
  HRESULT SetSinglePhaseProp(BSTR name, BSTR phase, BSTR basis, VARIANT values) override;
  HRESULT SetTwoPhaseProp(BSTR name, VARIANT phases, BSTR basis, VARIANT values) override;
};

}  // namespace morvelan::host
