// What host materials refuse, with which code and in which words.

#include <gtest/gtest.h>

#include "tests/host/HostMaterials.h"

namespace morvelan::test::material_refusal {

std::vector<double> NumbersFrom(const Strings& words, std::size_t first) {
  std::vector<double> values;
  for (std::size_t i = first; i < words.size() && !words[i].empty(); ++i) values.push_back(std::stod(words[i]));
  return values;
}

HRESULT SetPresent(const Material& material, const std::string& phases) {
  const com::Variant statuses = com::MakeIntegers(std::vector<std::int32_t>{0});
  return material.thermo11->SetPresentPhases(Names(Split(phases, ',')).Get(), statuses.Get());
}

HRESULT CopyFromAnotherPackage(const Material& material) {
  const Material other(MakePackage({"water"}));
  const auto source = other.object.As<IDispatch>();
  IDispatch* passed = source.Get();
  return material.thermo11->CopyFromMaterial(&passed);
}

HRESULT SetTexts(const Material& material) {
  return material.thermo10->SetProp(B("fraction").Get(), B("Overall").Get(), com::kNoValue, nullptr, B("Mole").Get(),
                                    Names({"a", "b", "c", "d"}).Get());
}

// The words of each operation stand in its comment.
const Operations<Material> kOperations = {
    // property, phase, calculation type, basis
    {"read10",
     [](auto& m, auto& w) {
       com::Variant values;
       return m.Read10(w[0], w[1], w[2], w[3], values);
     }},
    // property, phase, basis
    {"read11",
     [](auto& m, auto& w) {
       com::Variant values;
       return m.Read11(w[0], w[1], w[2], values);
     }},
    // property, basis
    {"readOverall11",
     [](auto& m, auto& w) {
       com::Variant values;
       return m.ReadOverall11(w[0], w[1], values);
     }},
    // property, compound
    {"constant10",
     [](auto& m, auto& w) {
       com::Variant values;
       return m.thermo10->GetComponentConstant(Names({w[0]}).Get(), Names({w[1]}).Get(), values.Put());
     }},
    // property, phase, calculation type
    {"calc10", [](auto& m, auto& w) { return m.Calculate10(w[0], w[1], w[2].empty() ? "mixture" : w[2]); }},
    // property, phase
    {"calc11", [](auto& m, auto& w) { return m.routine->CalcSinglePhaseProp(Names({w[0]}).Get(), B(w[1]).Get()); }},
    // property, phases
    {"calcTwoPhase11",
     [](auto& m, auto& w) { return m.routine->CalcTwoPhaseProp(Names({w[0]}).Get(), Names(Split(w[1], ',')).Get()); }},
    // property, phase, basis, values
    {"set10", [](auto& m, auto& w) { return m.Set10(w[0], w[1], w[2], NumbersFrom(w, 3)); }},
    // property, basis, values
    {"set11", [](auto& m, auto& w) { return m.Set(w[0], w[1], NumbersFrom(w, 2)); }},
    // flash type
    {"flash10", [](auto& m, auto& w) { return m.Flash10(w[0]); }},
    // two specifications, solution type
    {"flash11", [](auto& m, auto& w) { return m.Flash11(Split(w[0], ','), Split(w[1], ','), w[2]); }},
    {"present11", [](auto& m, auto& w) { return SetPresent(m, w[0]); }},
    {"clear11", [](auto& m, auto&) { return m.thermo11->ClearAllProps(); }},
    {"copyFromAnotherPackage", [](auto& m, auto&) { return CopyFromAnotherPackage(m); }},
    {"setTexts", [](auto& m, auto&) { return SetTexts(m); }},
    {"setVariable", [](auto& m, auto&) { return m.thermo10->SetIndependentVar(com::kNoValue, com::kNoValue); }},
};

struct Refusal {
  const char* script;
  HRESULT code;
  const char* words;  // in the description
};

const Refusal kRefusals[] = {
    {"read10 enthalpie Vapor - Mole", kInvalidArgument, "\"enthalpie\""},
    {"calc10 enthalpy.Dvolume Vapor", kInvalidArgument, "enthalpy.Dvolume"},
    {"calc10 enthalpy Solid", kInvalidArgument, "\"Vapor\", \"Liquid\""},
    {"read10 totalFlow Overall - Molar", kInvalidArgument, "\"Molar\""},
    {"read10 fraction Overall", kInvalidArgument, "must be \"Mole\" or \"Mass\""},
    {"calc10 enthalpy Vapor pure", kLimitedImpl, "pure"},
    {"calc10 enthalpy Vapor ideal", kInvalidArgument, "\"ideal\""},
    {"read10 enthalpy Vapor mixture Mole", kNotAvailable, "enthalpy of phase \"Vapor\" is not set"},
    {"calc10 fugacity Overall", kLimitedImpl, "fugacity"},
    {"calc10 enthalpy.Dpressure Overall", kLimitedImpl, "enthalpy.Dpressure"},
    {"calc10 heatCapacityCp.Dtemperature Vapor", kLimitedImpl, "heatCapacityCp.Dtemperature"},
    {"calc10 temperature Vapor", kLimitedImpl, "temperature"},
    {"set10 fraction Overall Mole 0.5 0.5", kInvalidArgument, "takes 4 values, 2 given"},
    {"set10 pressure Overall - nan", kInvalidArgument, "pressure"},
    {"set10 totalFlow Overall Mole -1.7976931348623157e308", kInvalidArgument, "not set"},
    {"set10 temperature Overall - 0", kOutOfBounds, "above 0"},
    {"set10 totalFlow Overall Mole -1", kOutOfBounds, "not be negative"},
    {"setTexts", kInvalidArgument, "a number expected, a text found"},
    {"constant10 molecularWeight argon", kInvalidArgument, "\"argon\""},
    {"flash10 XY", kInvalidArgument, "\"XY\""},
    {"flash10 HVF", kLimitedImpl, "enthalpy and phaseFraction"},
    {"flash10 hfvf", kLimitedImpl, "enthalpyF and phaseFraction"},
    {"flash10 PH", kNotAvailable, "enthalpy of phase \"Overall\" is not set"},
    {"set10 enthalpy Overall Mole 1e12; flash10 PH", kSolvingError, "enthalpy"},
    {"set10 fraction Overall Mole 0.5 0.3 0.1 0; flash10 TP", kInvalidArgument, "fraction"},
    {"set10 temperature Overall - 251; calc10 enthalpy Overall", kBadInvOrder, "CalcEquilibrium"},
    {"setVariable", kNoImpl, "SetProp"},
    {"read11 volume Liquid Mole", kNotAvailable, "volume of phase \"Liquid\" is not set"},
    {"readOverall11 enthalpy Mole", kNotAvailable, "enthalpy"},
    {"read11 volume Overall Mole", kInvalidArgument, "\"Overall\""},
    {"read11 enthalpy.Dmoles Vapor Mass", kLimitedImpl, "mass basis"},
    {"set11 phaseFraction Mole 1", kInvalidArgument, "belongs to a phase"},
    {"clear11; calc11 volume Vapor", kNotAvailable, "temperature of phase \"Vapor\""},
    {"calcTwoPhase11 kvalue Vapor,Liquid", kLimitedImpl, "two phases"},
    {"flash11 temperature,,Overall entropy,,Overall", kLimitedImpl, "temperature and entropy"},
    {"flash11 pressure,Mole temperature,,Overall", kInvalidArgument, "2 elements"},
    {"flash11 pressure,,Overall enthalpy,,Vapor", kLimitedImpl, "\"Vapor\""},
    {"flash11 temperature,,Overall pressure,,Overall Retrograde", kLimitedImpl, "retrograde"},
    {"present11 Vapor; flash11 temperature,,Overall pressure,,Overall", kLimitedImpl, "\"Liquid\""},
    {"present11 Vapor,Liquid", kInvalidArgument, "differ in size"},
    {"copyFromAnotherPackage", kInvalidArgument, "same thermodynamics"},
};

TEST(HostMaterial, RefusesWithACodeAndWords) {
  for (const Refusal& refusal : kRefusals) {
    const Material material = AtEquilibrium();
    EXPECT_EQ(Perform(kOperations, material, refusal.script), refusal.code) << refusal.script;
    const Texts texts = ErrorOf(material.object.Get());
    EXPECT_NE(texts.description.find(refusal.words), std::string::npos) << refusal.script << ": " << texts;
    LONG code = 0;
    ASSERT_EQ(material.object.As<ECapeUser>()->get_code(&code), S_OK);
    EXPECT_EQ(code, refusal.code) << refusal.script;
    EXPECT_TRUE(texts.name.starts_with("ECape") && texts.interfaceName.starts_with("ICapeThermo")) << texts;
    EXPECT_FALSE(texts.scope.empty()) << texts;
  }
}

TEST(HostMaterial, ReportsNullPointersWithoutAnError) {
  const Material material = AtEquilibrium();
  EXPECT_EQ(material.thermo10->get_PhaseIds(nullptr), E_POINTER);
  EXPECT_EQ(material.thermo10->Duplicate(nullptr), E_POINTER);
  EXPECT_EQ(material.thermo11->GetOverallProp(nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(material.thermo11->GetPresentPhases(nullptr, nullptr), E_POINTER);
}

}  // namespace morvelan::test::material_refusal
