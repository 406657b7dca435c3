// What host materials refuse, with which code and in which words.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "tests/host/HostMaterials.h"

namespace morvelan::test::material_refusal {

struct Refusal {
  const char* what;
  std::function<HRESULT(const Material&)> call;
  HRESULT code;
  const char* words;  // in the description
};

void ExpectRefusals(const std::vector<Refusal>& refusals, Material (*make)()) {
  for (const Refusal& refusal : refusals) {
    const Material material = make();
    EXPECT_EQ(refusal.call(material), refusal.code) << refusal.what << ": " << material.Text();
    const Texts texts = ErrorOf(material.object.Get());
    EXPECT_NE(texts.description.find(refusal.words), std::string::npos) << refusal.what << ": " << texts.description;
    LONG code = 0;
    ASSERT_EQ(material.object.As<ECapeUser>()->get_code(&code), S_OK);
    EXPECT_EQ(code, refusal.code) << refusal.what;
    EXPECT_TRUE(texts.name.starts_with("ECape") && texts.interfaceName.starts_with("ICapeThermo") &&
                !texts.scope.empty())
        << refusal.what << ": " << texts;
  }
}

TEST(HostMaterial, RefusesUnderThermo10) {
  constexpr double kMissing = std::numeric_limits<double>::lowest();
  ExpectRefusals(
      {
          {"unknown property", [](auto& m) { return Read10(m, "enthalpie", "Vapor", "", "Mole"); }, kInvalidArgument,
           "\"enthalpie\""},
          {"unknown derivative", [](auto& m) { return Calculate10(m, "enthalpy.Dvolume", "Vapor"); }, kInvalidArgument,
           "enthalpy.Dvolume"},
          {"unknown phase", [](auto& m) { return Calculate10(m, "enthalpy", "Solid"); }, kInvalidArgument,
           "\"Vapor\", \"Liquid\""},
          {"unknown basis", [](auto& m) { return Read10(m, "totalFlow", "Overall", "", "Molar"); }, kInvalidArgument,
           "\"Molar\""},
          {"no basis where one is needed", [](auto& m) { return Read10(m, "fraction", "Overall", "", ""); },
           kInvalidArgument, "must be \"Mole\" or \"Mass\""},
          {"pure compounds", [](auto& m) { return Calculate10(m, "enthalpy", "Vapor", "pure"); }, kLimitedImpl, "pure"},
          {"unknown calculation type", [](auto& m) { return Calculate10(m, "enthalpy", "Vapor", "ideal"); },
           kInvalidArgument, "\"ideal\""},
          {"a value that was not calculated", [](auto& m) { return Read10(m, "enthalpy", "Vapor", "mixture", "Mole"); },
           kNotAvailable, "enthalpy of phase \"Vapor\" is not set"},
          {"overall fugacities", [](auto& m) { return Calculate10(m, "fugacity", "Overall"); }, kLimitedImpl,
           "fugacity"},
          {"a derivative over all phases", [](auto& m) { return Calculate10(m, "enthalpy.Dpressure", "Overall"); },
           kLimitedImpl, "enthalpy.Dpressure"},
          {"a derivative that is not calculated",
           [](auto& m) { return Calculate10(m, "heatCapacityCp.Dtemperature", "Vapor"); }, kLimitedImpl,
           "heatCapacityCp.Dtemperature"},
          {"a state as a result", [](auto& m) { return Calculate10(m, "temperature", "Vapor"); }, kLimitedImpl,
           "temperature"},
          {"too few fractions",
           [](auto& m) {
             return m.Set10("fraction", "Overall", "Mole", {0.5, 0.5});
           },
           kInvalidArgument, "takes 4 values, 2 given"},
          {"not a number", [](auto& m) { return m.Set10("pressure", "Overall", "", {std::nan("")}); }, kInvalidArgument,
           "pressure"},
          {"the mark of a missing value", [](auto& m) { return m.Set10("totalFlow", "Overall", "Mole", {kMissing}); },
           kInvalidArgument, "not set"},
          {"temperature of zero", [](auto& m) { return m.Set10("temperature", "Overall", "", {0}); }, kOutOfBounds,
           "above 0"},
          {"negative flow", [](auto& m) { return m.Set10("totalFlow", "Overall", "Mole", {-1}); }, kOutOfBounds,
           "not be negative"},
          {"texts for numbers",
           [](auto& m) {
             return m.thermo10->SetProp(B("fraction").Get(), B("Overall").Get(), com::kNoValue, nullptr,
                                        B("Mole").Get(), Names({"a", "b", "c", "d"}).Get());
           },
           kInvalidArgument, "a number expected, a text found"},
          {"unknown compound",
           [](auto& m) {
             com::Variant values;
             return m.thermo10->GetComponentConstant(Names({"molecularWeight"}).Get(), Names({"argon"}).Get(),
                                                     values.Put());
           },
           kInvalidArgument, "\"argon\""},
          {"unknown flash", [](auto& m) { return m.Flash10("XY"); }, kInvalidArgument, "\"XY\""},
          {"HVF", [](auto& m) { return m.Flash10("HVF"); }, kLimitedImpl, "enthalpy and phaseFraction"},
          {"HFVF", [](auto& m) { return m.Flash10("hfvf"); }, kLimitedImpl, "enthalpyF and phaseFraction"},
          {"a flash without its condition", [](auto& m) { return m.Flash10("PH"); }, kNotAvailable,
           "enthalpy of phase \"Overall\" is not set"},
          {"an enthalpy out of reach",
           [](auto& m) {
             EXPECT_EQ(m.Set10("enthalpy", "Overall", "Mole", {1e12}), S_OK);
             return m.Flash10("PH");
           },
           kSolvingError, ""},
          {"fractions that do not sum to one",
           [](auto& m) {
             EXPECT_EQ(m.Set10("fraction", "Overall", "Mole", {0.5, 0.3, 0.1, 0}), S_OK);
             return m.Flash10("TP");
           },
           kInvalidArgument, "fraction"},
          {"overall properties of an unknown equilibrium",
           [](auto& m) {
             EXPECT_EQ(m.Set10("temperature", "Overall", "", {251}), S_OK);
             return Calculate10(m, "enthalpy", "Overall");
           },
           kBadInvOrder, "CalcEquilibrium"},
          {"independent variables", [](auto& m) { return m.thermo10->SetIndependentVar(com::kNoValue, com::kNoValue); },
           kNoImpl, "SetProp"},
      },
      AtEquilibrium);
}

TEST(HostMaterial, RefusesUnderThermo11) {
  const std::vector<std::string> temperature = {"temperature", "", "Overall"}, pressure = {"pressure", "", "Overall"};
  ExpectRefusals(
      {
          {"a value that was not calculated", [](auto& m) { return Read11(m, "volume", "Liquid", "Mole"); },
           kNotAvailable, "volume of phase \"Liquid\" is not set"},
          {"an overall value that was not calculated",
           [](auto& m) {
             com::Variant values;
             return m.thermo11->GetOverallProp(B("enthalpy").Get(), B("Mole").Get(), values.Put());
           },
           kNotAvailable, "enthalpy"},
          {"a phase called Overall", [](auto& m) { return Read11(m, "volume", "Overall", "Mole"); }, kInvalidArgument,
           "\"Overall\""},
          {"derivatives by moles on mass basis", [](auto& m) { return Read11(m, "enthalpy.Dmoles", "Vapor", "Mass"); },
           kLimitedImpl, "mass basis"},
          {"a phase fraction of everything", [](auto& m) { return m.Set("phaseFraction", "Mole", {1}); },
           kInvalidArgument, "belongs to a phase"},
          {"a property of a phase without a state",
           [](auto& m) {
             EXPECT_EQ(m.thermo11->ClearAllProps(), S_OK);
             return m.routine->CalcSinglePhaseProp(Names({"volume"}).Get(), B("Vapor").Get());
           },
           kNotAvailable, "temperature of phase \"Vapor\""},
          {"two-phase properties",
           [](auto& m) {
             return m.routine->CalcTwoPhaseProp(Names({"kvalue"}).Get(), Names({"Vapor", "Liquid"}).Get());
           },
           kLimitedImpl, "two phases"},
          {"temperature and entropy",
           [=](auto& m) {
             return m.Flash11(temperature, {"entropy", "", "Overall"});
           },
           kLimitedImpl, "temperature and entropy"},
          {"a specification of two elements",
           [=](auto& m) {
             return m.Flash11({"pressure", ""}, temperature);
           },
           kInvalidArgument, "2 elements"},
          {"a specification of a phase's enthalpy",
           [=](auto& m) {
             return m.Flash11(pressure, {"enthalpy", "", "Vapor"});
           },
           kLimitedImpl, "\"Vapor\""},
          {"a retrograde solution",
           [=](auto& m) {
             return m.equilibrium->CalcEquilibrium(Names(temperature).Get(), Names(pressure).Get(),
                                                   B("Retrograde").Get());
           },
           kLimitedImpl, "retrograde"},
          {"an equilibrium of one phase only",
           [=](auto& m) {
             EXPECT_EQ(m.thermo11->SetPresentPhases(Names({"Vapor"}).Get(),
                                                    com::MakeIntegers(std::vector<std::int32_t>{0}).Get()),
                       S_OK);
             return m.Flash11(temperature, pressure);
           },
           kLimitedImpl, "\"Liquid\""},
          {"statuses for other phases",
           [](auto& m) {
             return m.thermo11->SetPresentPhases(Names({"Vapor", "Liquid"}).Get(),
                                                 com::MakeIntegers(std::vector<std::int32_t>{0}).Get());
           },
           kInvalidArgument, "differ in size"},
          {"a copy of another thermodynamics",
           [](auto& m) {
             const Material other(MakePackage({"water"}));
             com::Ref<IDispatch> source = other.object.As<IDispatch>();
             IDispatch* passed = source.Get();
             return m.thermo11->CopyFromMaterial(&passed);
           },
           kInvalidArgument, "same thermodynamics"},
      },
      AtEquilibrium);
}

TEST(HostMaterial, ReportsNullPointersWithoutAnError) {
  const Material material = AtEquilibrium();
  EXPECT_EQ(material.thermo10->get_PhaseIds(nullptr), E_POINTER);
  EXPECT_EQ(material.thermo10->Duplicate(nullptr), E_POINTER);
  EXPECT_EQ(material.thermo11->GetOverallProp(nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(material.thermo11->GetPresentPhases(nullptr, nullptr), E_POINTER);
}

}  // namespace morvelan::test::material_refusal
