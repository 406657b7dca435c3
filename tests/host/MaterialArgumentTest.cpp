// What host materials take and how their state lives.

#include <gtest/gtest.h>

#include "tests/host/HostMaterials.h"

namespace morvelan::test::material_argument {

using host::ThermoOffer;

/// The number of the interfaces of thermo 1.1 that an object has.
int CountThermo11(const com::Ref<IUnknown>& object) {
  return !!object.As<ICapeThermoMaterial>() + !!object.As<ICapeThermoPropertyRoutine>() +
         !!object.As<ICapeThermoEquilibriumRoutine>() + !!object.As<ICapeThermoCompounds>() +
         !!object.As<ICapeThermoPhases>() + !!object.As<ICapeThermoUniversalConstant>();
}

TEST(HostMaterial, OffersTheGenerationsItIsMadeFor) {
  for (const ThermoOffer offer : {ThermoOffer::k10, ThermoOffer::k11, ThermoOffer::kBoth}) {
    const bool thermo10 = offer != ThermoOffer::k11, thermo11 = offer != ThermoOffer::k10;
    const Material material(GasPackage(), offer);
    EXPECT_TRUE(material.object.As<ECapeUser>() && material.object.As<IDispatch>());
    EXPECT_TRUE(material.object.As<ICapeIdentification>());
    com::Ref<IDispatch> made;  // offers the same as its maker
    ASSERT_EQ(
        thermo10 ? material.thermo10->CreateMaterialObject(made.Put()) : material.thermo11->CreateMaterial(made.Put()),
        S_OK);
    for (const auto& object : {material.object, made.As<IUnknown>()}) {
      EXPECT_EQ(!!object.As<ICapeThermoMaterialObject>(), thermo10);
      EXPECT_EQ(CountThermo11(object), thermo11 ? 6 : 0);
    }
  }
}

com::Variant ArrayFromOne(const std::vector<double>& values) {
  VARIANT array{};
  SAFEARRAYBOUND bound{static_cast<ULONG>(values.size()), 1};
  array.vt = VT_ARRAY | VT_R8;
  array.parray = SafeArrayCreate(VT_R8, 1, &bound);
  std::copy(values.begin(), values.end(), static_cast<double*>(array.parray->pvData));
  com::Variant owner;
  *owner.Put() = array;
  return owner;
}

TEST(HostMaterial, ReadsArraysInAnyForm) {
  std::vector<com::Variant> elements;
  for (const double fraction : kGas) elements.push_back(com::MakeDouble(fraction));
  const com::Variant arrays[] = {com::MakeVariants(elements), ArrayFromOne(kGas)};
  for (const com::Variant& array : arrays) {
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = const_cast<VARIANT*>(&array.Get());
    for (const VARIANT& given : {array.Get(), reference}) {
      const Material material;
      ASSERT_EQ(material.thermo11->SetOverallProp(B("FRACTION").Get(), B("mole").Get(), given), S_OK) << given.vt;
      EXPECT_EQ(material.Get11("fraction", "Overall", "Mole"), kGas) << given.vt;
    }
  }
  const Material material;
  ASSERT_EQ(material.thermo11->SetOverallProp(B("Temperature").Get(), nullptr, com::MakeDouble(300).Get()), S_OK);
  EXPECT_EQ(material.Get10("temperature", "overall", ""), std::vector<double>{300});
}

TEST(HostMaterial, TakesCompoundsInAnyOrderUnderThermo10) {
  const Material material;
  ASSERT_EQ(material.thermo10->SetProp(B("fraction").Get(), nullptr, com::kNoValue, nullptr, nullptr, com::kNoValue),
            kInvalidArgument);  // the empty phase is none
  const auto order = Names({"carbon dioxide", "METHANE", "n-pentane", "74-98-6"});
  ASSERT_EQ(material.thermo10->SetProp(B("fraction").Get(), B("Overall").Get(), order.Get(), nullptr, B("Mole").Get(),
                                       Numbers({0.4, 0.1, 0.3, 0.2}).Get()),
            S_OK)
      << material.Text();
  EXPECT_EQ(material.Get11("fraction", "Overall", "Mole"), (std::vector<double>{0.1, 0.2, 0.3, 0.4}));
  com::Variant chosen;
  ASSERT_EQ(material.thermo10->GetProp(B("fraction").Get(), B("Overall").Get(), Names({"n-pentane", "methane"}).Get(),
                                       nullptr, B("Mole").Get(), chosen.Put()),
            S_OK);
  EXPECT_EQ(com::ReadDoubles(chosen.Get()), (std::vector<double>{0.3, 0.1}));
}

// Constants as the data file gives them; methane's molecular weight is 12.011 + 4 x 1.008.
TEST(HostMaterial, GivesConstants) {
  const Material material;
  const auto compounds = material.object.As<ICapeThermoCompounds>();
  com::Variant values;
  ASSERT_EQ(
      compounds->GetCompoundConstant(Names({"MolecularWeight", "casRegistryNumber", "standardEntropySolid"}).Get(),
                                     Names({"methane"}).Get(), values.Put()),
      S_OK);
  const auto elements = com::ReadVariants(values.Get());
  ASSERT_EQ(elements.size(), 3u);
  EXPECT_DOUBLE_EQ(com::ReadDouble(elements[0].Get()), 16.043);
  EXPECT_EQ(com::ReadString(elements[1].Get()), "74-82-8");
  EXPECT_EQ(elements[2].Get().vt, VT_EMPTY) << "methane's data has no solid";

  com::Variant ids, formulae, names, boiling, weights, cas, ids10;
  ASSERT_EQ(compounds->GetCompoundList(ids.Put(), formulae.Put(), names.Put(), boiling.Put(), weights.Put(), cas.Put()),
            S_OK);
  EXPECT_EQ(com::ReadStrings(ids.Get()), kGasCompounds);
  EXPECT_EQ(com::ReadStrings(formulae.Get()), (Strings{"CH4", "C3H8", "C5H12", "CO2"}));
  EXPECT_EQ(com::ReadStrings(cas.Get())[3], "124-38-9");
  ASSERT_EQ(material.thermo10->get_ComponentIds(ids10.Put()), S_OK);
  EXPECT_EQ(com::ReadStrings(ids10.Get()), kGasCompounds);
  com::Variant gasConstant;
  ASSERT_EQ(material.object.As<ICapeThermoUniversalConstant>()->GetUniversalConstant(B("molarGasConstant").Get(),
                                                                                     gasConstant.Put()),
            S_OK);
  EXPECT_NEAR(com::ReadDouble(gasConstant.Get()), 8.31446, 1e-5);
}

TEST(HostMaterial, DropsItsEquilibriumWhenTheStateChanges) {
  const std::tuple<std::string, const char*, std::vector<double>> changes[] = {
      {"temperature", "", {251}}, {"pressure", "", {4.1e6}},
      {"totalFlow", "Mole", {3}}, {"fraction", "Mole", {0.7, 0.2, 0.07, 0.03}},
      {"enthalpy", "Mole", {0}},  {"flow", "Mole", {1, 1, 1, 1}}};
  for (const auto& [property, basis, given] : changes) {
    SCOPED_TRACE(property);
    const Material material = AtEquilibrium();
    ASSERT_EQ(material.Calc10("enthalpy", "Overall", "Mole").size(), 1u);
    ASSERT_EQ(material.Calc11("volume", "Vapor", "Mole").size(), 1u);
    EXPECT_EQ(material.PresentPhases(), (Strings{"Vapor", "Liquid"}));
    ASSERT_EQ(material.Set(property, basis, given), S_OK);
    EXPECT_TRUE(material.PresentPhases().empty());
    com::Variant labels;
    ASSERT_EQ(material.thermo10->get_PhaseIds(labels.Put()), S_OK);
    EXPECT_EQ(com::ReadStrings(labels.Get()), Strings{"Overall"});
    EXPECT_EQ(material.Read11("volume", "Vapor", "Mole"), kNotAvailable);
    EXPECT_EQ(material.Read11("fraction", "Vapor", "Mole"), kNotAvailable);
    EXPECT_EQ(material.Read10("enthalpy", "Overall", "mixture", "Mole"), property == "enthalpy" ? S_OK : kNotAvailable);
  }
}

// Thermo 1.0 gives the vapor fraction of a flash as a property of the phase.
TEST(HostMaterial, DropsItsEquilibriumForAnotherVaporFraction) {
  const Material material = AtEquilibrium();
  ASSERT_EQ(material.Set10("phaseFraction", "vapor", "Mole", {0.25}), S_OK);
  EXPECT_TRUE(material.PresentPhases().empty());
  EXPECT_EQ(material.Get10("phaseFraction", "Vapor", "Mole"), std::vector<double>{0.25});
  ASSERT_EQ(material.Flash10("PVF"), S_OK) << material.Text();
  EXPECT_NEAR(material.Get10("phaseFraction", "Vapor", "Mole").front(), 0.25, 1e-9);
  EXPECT_NEAR(material.Get10("phaseFraction", "Liquid", "Mole").front(), 0.75, 1e-9);
}

TEST(HostMaterial, CopiesDoNotFollowTheirOriginal) {
  const Material material = AtEquilibrium();
  com::Ref<IDispatch> duplicate, created;
  ASSERT_EQ(material.thermo10->Duplicate(duplicate.Put()), S_OK);
  ASSERT_EQ(material.thermo11->CreateMaterial(created.Put()), S_OK);
  const Material copy10(duplicate.As<IUnknown>());
  const Material copy11(created.As<IUnknown>());
  EXPECT_TRUE(copy11.Get10("temperature", "Overall", "").empty()) << "made empty";
  IDispatch* source = duplicate.Get();
  ASSERT_EQ(copy11.thermo11->CopyFromMaterial(&source), S_OK);
  EXPECT_EQ(source, duplicate.Get());
  ASSERT_EQ(material.Set("temperature", "", {300}), S_OK);
  for (const Material* copy : {&copy10, &copy11}) {
    EXPECT_EQ(copy->Get11("temperature", "Overall", ""), std::vector<double>{250});
    EXPECT_EQ(copy->PresentPhases(), (Strings{"Vapor", "Liquid"}));
    EXPECT_EQ(copy->Calc10("enthalpy", "Overall", "Mole"), AtEquilibrium().Calc10("enthalpy", "Overall", "Mole"));
  }
}

TEST(HostMaterial, IdealGasesHaveNoLiquid) {
  const Material material(MakePackage({"nitrogen", "argon"}, "ideal-gas"));
  material.Bring(100, 1e7, 0, {0.5, 0.5});
  EXPECT_EQ(material.PresentPhases(), Strings{"Vapor"});
  EXPECT_EQ(material.Calculate10("volume", "Liquid"), kInvalidArgument);
  // V = R T / P
  EXPECT_NEAR(material.Calc11("volume", "Vapor", "Mole").front(), 8.314462618 * 100 / 1e7, 1e-15);
  EXPECT_EQ(material.Get10("flow", "Vapor", "Mole"), (std::vector<double>{0, 0}));
}

TEST(HostMaterial, ListsWhatItCalculatesAndNothingElse) {
  const Material material = AtEquilibrium();
  com::Variant list10, list11;
  ASSERT_EQ(material.thermo10->GetPropList(list10.Put()), S_OK);
  ASSERT_EQ(material.routine->GetSinglePhasePropList(list11.Put()), S_OK);
  const auto names = com::ReadStrings(list11.Get());
  EXPECT_EQ(com::ReadStrings(list10.Get()), names);
  EXPECT_GT(names.size(), 30u);
  for (const std::string& name : names) {
    VARIANT_BOOL possible = VARIANT_FALSE;
    EXPECT_EQ(material.routine->CheckSinglePhasePropSpec(B(name).Get(), B("Liquid").Get(), &possible), S_OK);
    EXPECT_EQ(possible, VARIANT_TRUE) << name;
    EXPECT_FALSE(material.Calc11(name, "Liquid", "Mole").empty()) << name << ": " << material.Text();
  }
}

}  // namespace morvelan::test::material_argument
