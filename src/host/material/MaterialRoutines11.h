#pragma once

#include "host/material/MaterialThermo11.h"

namespace morvelan::host {

/// Adds the interfaces of thermo 1.1 that calculate properties and equilibria.
class MaterialRoutines11
    : public com::Implements<MaterialThermo11, ICapeThermoPropertyRoutine, ICapeThermoEquilibriumRoutine> {
 public:
  using Implements::Implements;

  // ICapeThermoPropertyRoutine
  HRESULT CalcAndGetLnPhi(BSTR phase, double T, double P, VARIANT moleNumbers, LONG flags, VARIANT* lnPhi,
                          VARIANT* lnPhiDT, VARIANT* lnPhiDP, VARIANT* lnPhiDn) override;
  HRESULT CalcSinglePhaseProp(VARIANT names, BSTR phase) override;
  HRESULT CalcTwoPhaseProp(VARIANT names, VARIANT phases) override;
  HRESULT CheckSinglePhasePropSpec(BSTR name, BSTR phase, VARIANT_BOOL* possible) override;
  HRESULT CheckTwoPhasePropSpec(BSTR name, VARIANT phases, VARIANT_BOOL* possible) override;
  HRESULT GetSinglePhasePropList(VARIANT* names) override;
  HRESULT GetTwoPhasePropList(VARIANT* names) override;

  // ICapeThermoEquilibriumRoutine
  using MaterialThermo10::CalcEquilibrium;
  HRESULT CalcEquilibrium(VARIANT specification1, VARIANT specification2, BSTR solutionType) override;
  HRESULT CheckEquilibriumSpec(VARIANT specification1, VARIANT specification2, BSTR solutionType,
                               VARIANT_BOOL* possible) override;

 private:
  [[nodiscard]] FlashCondition ReadCondition(const VARIANT& specification) const;
};

}  // namespace morvelan::host
