// The binary contract: identifiers and virtual table slots of the interfaces, as hosts bind to them. A
// method's slot is read from its pointer-to-member, which for a virtual function holds its place in the
// table.

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "cape_open.h"
#include "com/Text.h"

namespace morvelan::test::interfaces {

constexpr int kFirstOwnSlot = 8;  // after the seven of IDispatch, counted from 1

template <class Method>
int SlotOf(Method method) {
  std::ptrdiff_t parts[2] = {};
  static_assert(sizeof method == sizeof parts);
  std::memcpy(parts, &method, sizeof parts);
  return static_cast<int>((parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*))) + 1;
}

/// An interface: its identifier, and its methods in the standard's order.
struct Contract {
  const char* name;
  GUID iid;
  const char* uuid;
  std::vector<int> slots;
};

template <class Interface, class... Methods>
Contract Declare(const char* name, const char* uuid, Methods... methods) {
  return {name, __uuidof(Interface), uuid, {SlotOf(methods)...}};
}

using I1 = ICapeIdentification;
using I2 = ICapeUtilities;
using I3 = ICapeUnit;
using I4 = ICapeUnitReport;
using I5 = ICapeUnitPort;
using I6 = ICapeParameter;
using I7 = ICapeThermoMaterialObject;
using I8 = ICapeThermoMaterial;
using I9 = ICapeThermoPropertyRoutine;
using I10 = ICapeThermoCompounds;
using I11 = ICapeReactionChemistry;
using I12 = ECapeUser;
using I13 = ICapeRealParameterSpec;
using I14 = ICapeIntegerParameterSpec;
using I15 = ICapeOptionParameterSpec;
using I16 = ICapeBooleanParameterSpec;
using I17 = ICapeArrayParameterSpec;

const Contract kContracts[] = {
    Declare<I1>("ICapeIdentification", "{678C0990-7D66-11D2-A67D-00105A42887F}", &I1::get_ComponentName,
                &I1::put_ComponentName, &I1::get_ComponentDescription, &I1::put_ComponentDescription),
    Declare<I2>("ICapeUtilities", "{678C0A9B-0100-11D2-A67D-00105A42887F}", &I2::get_parameters,
                &I2::put_simulationContext, &I2::Initialize, &I2::Terminate, &I2::Edit),
    Declare<I3>("ICapeUnit", "{678C0998-0100-11D2-A67D-00105A42887F}", &I3::get_ports, &I3::get_ValStatus,
                &I3::Calculate, &I3::Validate),
    Declare<I4>("ICapeUnitReport", "{678C099B-0093-11D2-A67D-00105A42887F}", &I4::get_reports, &I4::get_selectedReport,
                &I4::put_selectedReport, &I4::ProduceReport),
    Declare<I5>("ICapeUnitPort", "{678C0999-0093-11D2-A67D-00105A42887F}", &I5::get_portType, &I5::get_direction,
                &I5::get_connectedObject, &I5::Connect, &I5::Disconnect),
    Declare<ICapeCollection>("ICapeCollection", "{678C099A-0093-11D2-A67D-00105A42887F}", &ICapeCollection::Item,
                             &ICapeCollection::Count),
    Declare<I6>("ICapeParameter", "{678C09A0-0093-11D2-A67D-00105A42887F}", &I6::get_Specification, &I6::get_value,
                &I6::put_value, &I6::get_ValStatus, &I6::get_Mode, &I6::put_Mode, &I6::Validate, &I6::Reset),
    Declare<ICapeParameterSpec>("ICapeParameterSpec", "{678C099C-0093-11D2-A67D-00105A42887F}",
                                &ICapeParameterSpec::get_Type, &ICapeParameterSpec::get_Dimensionality),
    Declare<I13>("ICapeRealParameterSpec", "{678C099D-0093-11D2-A67D-00105A42887F}", &I13::get_DefaultValue,
                 &I13::get_LowerBound, &I13::get_UpperBound, &I13::Validate),
    Declare<I14>("ICapeIntegerParameterSpec", "{678C099E-0093-11D2-A67D-00105A42887F}", &I14::get_DefaultValue,
                 &I14::get_LowerBound, &I14::get_UpperBound, &I14::Validate),
    Declare<I15>("ICapeOptionParameterSpec", "{678C099F-0093-11D2-A67D-00105A42887F}", &I15::get_DefaultValue,
                 &I15::get_OptionList, &I15::get_RestrictedToList, &I15::Validate),
    Declare<I16>("ICapeBooleanParameterSpec", "{678C09A8-0093-11D2-A67D-00105A42887F}", &I16::get_DefaultValue,
                 &I16::Validate),
    Declare<I17>("ICapeArrayParameterSpec", "{678C09A9-0093-11D2-A67D-00105A42887F}", &I17::get_NumDimensions,
                 &I17::get_Size, &I17::get_ItemsSpecifications, &I17::Validate),
    Declare<ICapeKineticReactionContext>("ICapeKineticReactionContext", "{678C0AFE-0100-11D2-A67D-00105A42887F}",
                                         &ICapeKineticReactionContext::SetReactionObject),
    Declare<ECapeRoot>("ECapeRoot", "{678C0B10-7D66-11D2-A67D-00105A42887F}", &ECapeRoot::get_name),
    Declare<I12>("ECapeUser", "{678C0B11-7D66-11D2-A67D-00105A42887F}", &I12::get_code, &I12::get_description,
                 &I12::get_scope, &I12::get_interfaceName, &I12::get_operation, &I12::get_moreInfo),
    Declare<ECapeUnknown>("ECapeUnknown", "{678C0B12-7D66-11D2-A67D-00105A42887F}"),
    Declare<ICapeSimulationContext>("ICapeSimulationContext", "{678C0A9C-0100-11D2-A67D-00105A42887F}"),
    Declare<ICapeDiagnostic>("ICapeDiagnostic", "{678C0A9D-0100-11D2-A67D-00105A42887F}",
                             &ICapeDiagnostic::PopUpMessage, &ICapeDiagnostic::LogMessage),
    Declare<ICapeCOSEUtilities>("ICapeCOSEUtilities", "{678C0A9F-0100-11D2-A67D-00105A42887F}",
                                &ICapeCOSEUtilities::get_NamedValueList, &ICapeCOSEUtilities::get_NamedValue),
    Declare<ICapeMaterialTemplateSystem>("ICapeMaterialTemplateSystem", "{678C0A9E-0100-11D2-A67D-00105A42887F}",
                                         &ICapeMaterialTemplateSystem::get_MaterialTemplates,
                                         &ICapeMaterialTemplateSystem::CreateMaterialTemplate),
    Declare<I7>("ICapeThermoMaterialObject", "{678C0994-7D66-11D2-A67D-00105A42887F}", &I7::get_ComponentIds,
                &I7::get_PhaseIds, &I7::GetUniversalConstant, &I7::GetComponentConstant, &I7::CalcProp, &I7::GetProp,
                &I7::SetProp, &I7::CalcEquilibrium, &I7::SetIndependentVar, &I7::GetIndependentVar, &I7::PropCheck,
                &I7::AvailableProps, &I7::RemoveResults, &I7::CreateMaterialObject, &I7::Duplicate, &I7::ValidityCheck,
                &I7::GetPropList, &I7::GetNumComponents),
    Declare<I8>("ICapeThermoMaterial", "{678C0A9B-7D66-11D2-A67D-00105A42887F}", &I8::ClearAllProps,
                &I8::CopyFromMaterial, &I8::CreateMaterial, &I8::GetOverallProp, &I8::GetOverallTPFraction,
                &I8::GetPresentPhases, &I8::GetSinglePhaseProp, &I8::GetTPFraction, &I8::GetTwoPhaseProp,
                &I8::SetOverallProp, &I8::SetPresentPhases, &I8::SetSinglePhaseProp, &I8::SetTwoPhaseProp),
    Declare<I9>("ICapeThermoPropertyRoutine", "{678C0A9F-7D66-11D2-A67D-00105A42887F}", &I9::CalcAndGetLnPhi,
                &I9::CalcSinglePhaseProp, &I9::CalcTwoPhaseProp, &I9::CheckSinglePhasePropSpec,
                &I9::CheckTwoPhasePropSpec, &I9::GetSinglePhasePropList, &I9::GetTwoPhasePropList),
    Declare<ICapeThermoEquilibriumRoutine>("ICapeThermoEquilibriumRoutine", "{678C0AA0-7D66-11D2-A67D-00105A42887F}",
                                           &ICapeThermoEquilibriumRoutine::CalcEquilibrium,
                                           &ICapeThermoEquilibriumRoutine::CheckEquilibriumSpec),
    Declare<I10>("ICapeThermoCompounds", "{678C0A9D-7D66-11D2-A67D-00105A42887F}", &I10::GetCompoundConstant,
                 &I10::GetCompoundList, &I10::GetConstPropList, &I10::GetNumCompounds, &I10::GetPDependentProperty,
                 &I10::GetPDependentPropList, &I10::GetTDependentProperty, &I10::GetTDependentPropList),
    Declare<ICapeThermoPhases>("ICapeThermoPhases", "{678C0A9E-7D66-11D2-A67D-00105A42887F}",
                               &ICapeThermoPhases::GetNumPhases, &ICapeThermoPhases::GetPhaseInfo,
                               &ICapeThermoPhases::GetPhaseList),
    Declare<ICapeThermoUniversalConstant>("ICapeThermoUniversalConstant", "{678C0AA1-7D66-11D2-A67D-00105A42887F}",
                                          &ICapeThermoUniversalConstant::GetUniversalConstant,
                                          &ICapeThermoUniversalConstant::GetUniversalConstantList),
    Declare<ICapeThermoMaterialContext>("ICapeThermoMaterialContext", "{678C0A9C-7D66-11D2-A67D-00105A42887F}",
                                        &ICapeThermoMaterialContext::SetMaterial,
                                        &ICapeThermoMaterialContext::UnsetMaterial),
    Declare<I11>("ICapeReactionChemistry", "{678C0AFB-0100-11D2-A67D-00105A42887F}", &I11::GetNumberOfReactions,
                 &I11::GetReactionsIds, &I11::GetReactionType, &I11::GetNumberOfReactionCompounds,
                 &I11::GetReactionCompoundIds, &I11::GetStoichiometricCoefficients, &I11::GetReactionPhase,
                 &I11::GetReactionRateBasis, &I11::GetReactionConcBasis, &I11::GetBaseReactant, &I11::GetPhaseCompounds,
                 &I11::GetReactionParameters),
    Declare<ICapeReactionProperties>("ICapeReactionProperties", "{678C0AFA-0100-11D2-A67D-00105A42887F}",
                                     &ICapeReactionProperties::GetReactionProp,
                                     &ICapeReactionProperties::SetReactionProp),
    Declare<ICapeReactionsRoutine>("ICapeReactionsRoutine", "{678C0AF9-0100-11D2-A67D-00105A42887F}",
                                   &ICapeReactionsRoutine::CalcReactionProp),
    Declare<ICapeReactionsPackageManager>("ICapeReactionsPackageManager", "{678C0AFC-0100-11D2-A67D-00105A42887F}",
                                          &ICapeReactionsPackageManager::GetListOfReactionsPackages,
                                          &ICapeReactionsPackageManager::ResolveReactionsPackage),
};

TEST(Interfaces, StandAsTheStandardLaysThemDown) {
  for (const Contract& contract : kContracts) {
    SCOPED_TRACE(contract.name);
    EXPECT_EQ(com::ToText(contract.iid), contract.uuid);
    for (std::size_t i = 0; i < contract.slots.size(); ++i)
      EXPECT_EQ(contract.slots[i], kFirstOwnSlot + static_cast<int>(i)) << "method " << i + 1;
  }
}

TEST(Interfaces, PassValuesInTheWidthsOfTheWire) {
  EXPECT_EQ(sizeof(VARIANT), 24u);
  EXPECT_EQ(sizeof(LONG), 4u);
  EXPECT_EQ(sizeof(HRESULT), 4u);
  EXPECT_EQ(sizeof(VARIANT_BOOL), 2u);
  EXPECT_EQ(sizeof(OLECHAR), 2u);
  EXPECT_EQ(sizeof(CapeReactionType), 4u);
  EXPECT_EQ(CAPE_EQUILIBRIUM, 0);
  EXPECT_EQ(CAPE_KINETIC, 1);
}

}  // namespace morvelan::test::interfaces
