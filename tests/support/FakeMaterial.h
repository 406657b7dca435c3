#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/FakeObject.h"

namespace morvelan::test {

/// A phase of a fake material. Its properties are given, not calculated, so that answers follow on paper.
struct FakePhase {
  std::string label;
  std::string aggregation;
  double fraction;
  std::map<std::string, double> properties;  // molar values by lower-case name
  // What a unit has given the phase itself; a flash makes it that of the whole again.
  std::optional<double> temperature = {};
  std::optional<double> pressure = {};
  std::vector<double> fractions = {};
};

/// At what a phase's properties are evaluated.
struct FakeConditions {
  double temperature = 0;              // [K]
  double pressure = 0;                 // [Pa]
  std::vector<double> fractions = {};  // mole fractions
};

/// What a fake material holds and offers.
struct FakeState {
  bool thermo10 = true;
  bool thermo11 = true;
  /// Under thermo 1.0: whether CalcProp takes the phase "Overall".
  bool calculatesOverall = true;
  double temperature = 300;
  double pressure = 1e5;
  double flow = 2;
  std::vector<double> fractions = {0.25, 0.75};
  std::vector<std::string> compounds = {"methane", "ethane"};
  std::vector<std::string> casNumbers = {"74-82-8", "74-84-0"};
  std::vector<double> molecularWeights = {16, 30};
  std::vector<FakePhase> phases = {{"Vapor", "Vapor", 0.4, {{"enthalpy", 1000}, {"volume", 0.02}}},
                                   {"Liquid", "Liquid", 0.6, {{"enthalpy", -500}, {"volume", 0.0001}}}};
  /// [J/(mol K)]; unless it is zero, the enthalpy of every phase is this times the temperature, and a flash
  /// that is given an enthalpy finds the temperature.
  double heatCapacity = 0;
  /// [J/mol], one per compound: what enthalpyF has more than the enthalpy.
  std::vector<double> formationEnthalpies = {};
  /// Under thermo 1.1: the status of each phase; empty for all at equilibrium.
  std::vector<std::int32_t> statuses = {};
  /// Under thermo 1.1: the labels of the phases that a unit says are present; empty for all. Others have no
  /// properties.
  std::vector<std::string> present = {};
  /// Says that it made a copy, and gives none.
  bool givesNoCopy = false;
  /// Values written by the unit, by property; the last flash.
  std::map<std::string, std::vector<double>> written = {};
  std::string flash = {};
};

/// A material object of both generations that answers at once from its state.
class FakeMaterial final
    : public com::Implements<FakeObject, ICapeThermoMaterialObject, ICapeThermoMaterial, ICapeThermoPropertyRoutine,
                             ICapeThermoEquilibriumRoutine, ICapeThermoCompounds, ICapeThermoPhases> {
 public:
  explicit FakeMaterial(std::shared_ptr<HostScript> hostScript, FakeState initial = {});

  // ICapeThermoMaterialObject
  HRESULT get_ComponentIds(VARIANT* ids) override;
  HRESULT get_PhaseIds(VARIANT* ids) override;
  HRESULT GetUniversalConstant(VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetComponentConstant(VARIANT props, VARIANT ids, VARIANT* values) override;
  HRESULT CalcProp(VARIANT props, VARIANT phases, BSTR calcType) override;
  HRESULT GetProp(BSTR property, BSTR phase, VARIANT ids, BSTR calcType, BSTR basis, VARIANT* values) override;
  HRESULT SetProp(BSTR property, BSTR phase, VARIANT ids, BSTR calcType, BSTR basis, VARIANT values) override;
  HRESULT CalcEquilibrium(BSTR flashType, VARIANT props) override;
  HRESULT SetIndependentVar(VARIANT, VARIANT) override { return E_NOTIMPL; }
  HRESULT GetIndependentVar(VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT PropCheck(VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT AvailableProps(VARIANT*) override { return E_NOTIMPL; }
  HRESULT RemoveResults(VARIANT) override { return E_NOTIMPL; }
  HRESULT CreateMaterialObject(IDispatch**) override { return E_NOTIMPL; }
  HRESULT Duplicate(IDispatch** copy) override;
  HRESULT ValidityCheck(VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetPropList(VARIANT* list) override;
  HRESULT GetNumComponents(LONG*) override { return E_NOTIMPL; }
  // ICapeThermoMaterial
  HRESULT ClearAllProps() override { return E_NOTIMPL; }
  HRESULT CopyFromMaterial(IDispatch** source) override;
  HRESULT CreateMaterial(IDispatch** created) override;
  HRESULT GetOverallProp(BSTR property, BSTR basis, VARIANT* values) override;
  HRESULT GetOverallTPFraction(double*, double*, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetPresentPhases(VARIANT* labels, VARIANT* statuses) override;
  HRESULT GetSinglePhaseProp(BSTR property, BSTR phase, BSTR basis, VARIANT* values) override;
  HRESULT GetTPFraction(BSTR, double*, double*, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetTwoPhaseProp(BSTR, VARIANT, BSTR, VARIANT*) override { return E_NOTIMPL; }
  HRESULT SetOverallProp(BSTR property, BSTR basis, VARIANT values) override;
  HRESULT SetPresentPhases(VARIANT labels, VARIANT statuses) override;
  HRESULT SetSinglePhaseProp(BSTR property, BSTR phase, BSTR basis, VARIANT values) override;
  HRESULT SetTwoPhaseProp(BSTR, VARIANT, BSTR, VARIANT) override { return E_NOTIMPL; }
  // ICapeThermoPropertyRoutine
  HRESULT CalcAndGetLnPhi(BSTR, double, double, VARIANT, LONG, VARIANT*, VARIANT*, VARIANT*, VARIANT*) override {
    return E_NOTIMPL;
  }
  HRESULT CalcSinglePhaseProp(VARIANT props, BSTR phase) override;
  HRESULT CalcTwoPhaseProp(VARIANT, VARIANT) override { return E_NOTIMPL; }
  HRESULT CheckSinglePhasePropSpec(BSTR, BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT CheckTwoPhasePropSpec(BSTR, VARIANT, VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT GetSinglePhasePropList(VARIANT* list) override;
  HRESULT GetTwoPhasePropList(VARIANT*) override { return E_NOTIMPL; }
  // ICapeThermoEquilibriumRoutine
  HRESULT CalcEquilibrium(VARIANT first, VARIANT second, BSTR solutionType) override;
  HRESULT CheckEquilibriumSpec(VARIANT, VARIANT, BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
  // ICapeThermoCompounds
  HRESULT GetCompoundConstant(VARIANT props, VARIANT ids, VARIANT* values) override;
  HRESULT GetCompoundList(VARIANT* ids, VARIANT* formulae, VARIANT* names, VARIANT* boilingTemperatures,
                          VARIANT* molecularWeights, VARIANT* casNumbers) override;
  HRESULT GetConstPropList(VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetNumCompounds(LONG*) override { return E_NOTIMPL; }
  HRESULT GetPDependentProperty(VARIANT, double, VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetPDependentPropList(VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetTDependentProperty(VARIANT, double, VARIANT, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetTDependentPropList(VARIANT*) override { return E_NOTIMPL; }
  // ICapeThermoPhases
  HRESULT GetNumPhases(LONG*) override { return E_NOTIMPL; }
  HRESULT GetPhaseInfo(BSTR, BSTR, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetPhaseList(VARIANT* labels, VARIANT* aggregation, VARIANT* keyCompounds) override;

  /// Those of a phase, or of the whole for another label.
  [[nodiscard]] FakeConditions ConditionsIn(const std::string& phase) const;

  FakeState state;

 protected:
  void* FindInterface(REFIID iid) override;

 private:
  HRESULT Read(com::Name property, com::Name phase, com::Name basis, VARIANT* values);
  HRESULT Write(com::Name property, com::Name phase, const VARIANT& values);
  HRESULT Constant(const char* what, const VARIANT& props, const VARIANT& ids, VARIANT* values);
  [[nodiscard]] std::vector<std::string> AllPhases() const;
  [[nodiscard]] std::vector<std::string> PresentPhases() const;
  [[nodiscard]] double ValueIn(const FakePhase& phase, const std::string& property, bool byMass) const;
  [[nodiscard]] double MeanWeight(const std::vector<double>& fractions) const;
  /// `given` is the enthalpy by which the flash finds the temperature; null for none.
  void Flash(std::string specifications, const char* given);
  [[nodiscard]] double FormationEnthalpy(const std::vector<double>& fractions) const;
};

}  // namespace morvelan::test
