#pragma once

#include <memory>
#include <string>
#include <vector>

#include "com/Name.h"
#include "host/material/MaterialState.h"
#include "host/objects/HostObject.h"

namespace morvelan::host {

/// Which generations of the thermodynamic interfaces a material offers.
enum class ThermoOffer { k10, k11, kBoth };

/// A material as units see it: thermo 1.0, thermo 1.1, or both, on one state.
///
/// Names are taken in any ASCII case. A single text or number stands for an array of one. The phases are
/// "Vapor" and "Liquid" in both generations.
class MaterialObject final
    : public com::Implements<HostObject, ICapeThermoMaterialObject, ICapeThermoMaterial, ICapeThermoPropertyRoutine,
                             ICapeThermoEquilibriumRoutine, ICapeThermoCompounds, ICapeThermoPhases,
                             ICapeThermoUniversalConstant> {
 public:
  MaterialObject(std::string objectName, MaterialState initial, ThermoOffer offered);

  /// For the host itself.
  [[nodiscard]] MaterialState& State() { return state; }

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
  HRESULT GetNumComponents(LONG* count) override;

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
  HRESULT CalcEquilibrium(VARIANT specification1, VARIANT specification2, BSTR solutionType) override;
  HRESULT CheckEquilibriumSpec(VARIANT specification1, VARIANT specification2, BSTR solutionType,
                               VARIANT_BOOL* possible) override;

  // ICapeThermoCompounds
  HRESULT GetCompoundConstant(VARIANT names, VARIANT compounds, VARIANT* values) override;
  HRESULT GetCompoundList(VARIANT* ids, VARIANT* formulae, VARIANT* names, VARIANT* boilingTemperatures,
                          VARIANT* molecularWeights, VARIANT* casNumbers) override;
  HRESULT GetConstPropList(VARIANT* names) override;
  HRESULT GetNumCompounds(LONG* count) override;
  HRESULT GetPDependentProperty(VARIANT names, double pressure, VARIANT compounds, VARIANT* values) override;
  HRESULT GetPDependentPropList(VARIANT* names) override;
  HRESULT GetTDependentProperty(VARIANT names, double temperature, VARIANT compounds, VARIANT* values) override;
  HRESULT GetTDependentPropList(VARIANT* names) override;

  // ICapeThermoPhases
  HRESULT GetNumPhases(LONG* count) override;
  HRESULT GetPhaseInfo(BSTR phase, BSTR attribute, VARIANT* value) override;
  HRESULT GetPhaseList(VARIANT* labels, VARIANT* states, VARIANT* keyCompounds) override;

  // ICapeThermoUniversalConstant
  HRESULT GetUniversalConstant(BSTR name, VARIANT* value) override;
  HRESULT GetUniversalConstantList(VARIANT* names) override;

 protected:
  void* FindInterface(REFIID iid) override;

 private:
  [[nodiscard]] com::Ref<MaterialObject> MakeSibling(MaterialState initial) const;
  HRESULT HandOut(const char* operation, const char* interfaceName, IDispatch** object, bool withState);
  [[nodiscard]] com::Variant CompoundIds() const;
  [[nodiscard]] PhaseKind PhaseByName(BSTR name) const;
  [[nodiscard]] com::Variant CalculatedProperties() const;
  void Set10(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis, const VARIANT& values);
  [[nodiscard]] std::vector<double> Get10(BSTR name, BSTR phase, const VARIANT& compounds, BSTR basis) const;
  [[nodiscard]] FlashCondition ReadCondition(const VARIANT& specification) const;

  MaterialState state;
  ThermoOffer offer;
};

/// The host's material behind an object; null when it is none of the host's.
[[nodiscard]] com::Ref<MaterialObject> AsMaterialObject(IUnknown* object);

// Lenient reading: a single text or number stands for an array of one, and VT_EMPTY for no names. Both throw
// com::ValueError.
[[nodiscard]] std::vector<std::string> ReadNames(const VARIANT& names);
[[nodiscard]] std::vector<double> ReadNumbers(const VARIANT& numbers);
/// Properties by their names. Throws HostError for an unknown one.
[[nodiscard]] std::vector<PropertyId> ReadProperties(const VARIANT& names);

}  // namespace morvelan::host
