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

// The words of an operation are the arguments of its call in their order.
const Operations<Material> kOperations = {
    {"read10", [](auto& m, auto& w) { return m.Read10(w[0], w[1], w[2], w[3]); }},
    {"read11", [](auto& m, auto& w) { return m.Read11(w[0], w[1], w[2]); }},
    {"readOverall11", [](auto& m, auto& w) { return m.ReadOverall11(w[0], w[1]); }},
    {"constant10",
     [](auto& m, auto& w) {
       return m.thermo10->GetComponentConstant(Names({w[0]}).Get(), Names({w[1]}).Get(), com::Variant().Put());
     }},
    {"calc10", [](auto& m, auto& w) { return m.Calculate10(w[0], w[1], w[2].empty() ? "mixture" : w[2]); }},
    {"calc11", [](auto& m, auto& w) { return m.Calculate11(w[0], w[1]); }},
    {"calcTwoPhase11",
     [](auto& m, auto& w) { return m.routine->CalcTwoPhaseProp(Names({w[0]}).Get(), Names(Split(w[1], ',')).Get()); }},
    {"set10", [](auto& m, auto& w) { return m.Set10(w[0], w[1], w[2], NumbersFrom(w, 3)); }},
    {"set11", [](auto& m, auto& w) { return m.Set(w[0], w[1], NumbersFrom(w, 2)); }},
    {"flash10", [](auto& m, auto& w) { return m.Flash10(w[0]); }},
    {"flash11", [](auto& m, auto& w) { return m.Flash11(Split(w[0], ','), Split(w[1], ','), w[2]); }},
    {"present11", [](auto& m, auto& w) { return SetPresent(m, w[0]); }},
    {"clear11", [](auto& m, auto&) { return m.thermo11->ClearAllProps(); }},
    {"copyFromAnotherPackage", [](auto& m, auto&) { return CopyFromAnotherPackage(m); }},
    {"setTexts", [](auto& m, auto&) { return SetTexts(m); }},
    {"setVariable", [](auto& m, auto&) { return m.thermo10->SetIndependentVar(com::kNoValue, com::kNoValue); }},
};

TEST(HostMaterial, RefusesWithACodeAndWords) { ExpectRefusals("host/material-refusals", kOperations, AtEquilibrium); }

TEST(HostMaterial, ReportsNullPointersWithoutAnError) {
  const Material material = AtEquilibrium();
  EXPECT_EQ(material.thermo10->get_PhaseIds(nullptr), E_POINTER);
  EXPECT_EQ(material.thermo10->Duplicate(nullptr), E_POINTER);
  EXPECT_EQ(material.thermo11->GetOverallProp(nullptr, nullptr, nullptr), E_POINTER);
  EXPECT_EQ(material.thermo11->GetPresentPhases(nullptr, nullptr), E_POINTER);
}

}  // namespace morvelan::test::material_refusal
