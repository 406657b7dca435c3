// What a unit may ask wrongly of the reaction package, and what becomes of the references that it hands over.

#include <gtest/gtest.h>

#include "tests/host/HostReactions.h"

namespace morvelan::test::reaction_refusal {

using host::ThermoOffer;

const Strings kCompounds = {"carbon monoxide", "water", "carbon dioxide", "hydrogen", "unformed"};
const std::vector<double> kFractions = {0.3, 0.4, 0.2, 0.1, 0};
// A compound of atoms that has no formation data.
const std::string kUnformed =
    R"({"name": "unformed", "formula": "X", "molecularWeight": 40, "criticalTemperature": 150,
        "criticalPressure": 5e6, "acentricFactor": 0, "idealGas": {"model": "nasa7", "ranges":
        [{"Tmin": 200, "Tmax": 6000, "a": [2.5, 0, 0, 0, 0, -745.375, 4.4]}]}})";
const std::string kList = R"(
    {"id": "shift", "type": "equilibrium", "phase": "Vapor", "basis": "MoleFraction", "equilibrium": "gibbs",
     "stoichiometry": {"carbon monoxide": -1, "water": -1, "carbon dioxide": 1, "hydrogen": 1}},
    {"id": "kinetic", "type": "kinetic", "phase": "Vapor", "basis": "Molarity", "rateBasis": "homogeneous",
     "stoichiometry": {"carbon monoxide": -1, "water": -1, "carbon dioxide": 1, "hydrogen": 1},
     "rate": {"preExponential": 1, "activationEnergy": 0, "orders": {"water": 1}}},
    {"id": "liquid", "type": "kinetic", "phase": "Liquid", "basis": "Molarity", "rateBasis": "homogeneous",
     "stoichiometry": {"carbon monoxide": -1, "water": -1, "carbon dioxide": 1, "hydrogen": 1},
     "rate": {"preExponential": 1, "activationEnergy": 0, "orders": {}}},
    {"id": "huge", "type": "equilibrium", "phase": "Vapor", "basis": "MoleFraction", "lnK": [0, 1e6, 0, 0],
     "stoichiometry": {"carbon monoxide": -1, "carbon dioxide": 1}},
    {"id": "tiny", "type": "equilibrium", "phase": "Vapor", "basis": "MoleFraction", "lnK": [0, -1e6, 0, 0],
     "stoichiometry": {"carbon monoxide": -1, "carbon dioxide": 1}},
    {"id": "inhibited", "type": "kinetic", "phase": "Vapor", "basis": "MoleFraction", "rateBasis": "homogeneous",
     "stoichiometry": {"unformed": -1, "hydrogen": 1},
     "rate": {"preExponential": 1, "activationEnergy": 0, "orders": {"unformed": -1}}})";

Reactions MakeReactions() {
  static const host::Flowsheet flowsheet = ReadReactionFile("peng-robinson", kCompounds, kList, kUnformed);
  return Reactions(flowsheet);
}

constexpr const char* kK = "chemicalEquilibriumConstant";
HRESULT Calculate(const Reactions& r, const std::string& property, const std::string& ids) {
  return r.Calculate({property}, "Vapor", Split(ids, ','), "Mole");
}

// The words of an operation are the arguments of its call: property, ids with commas between them, phase, basis.
const Operations<Reactions> kOperations = {
    {"calc",
     [](auto& r, auto& w) {
       return r.Calculate({w[0]}, w[2].empty() ? "Vapor" : w[2], Split(w[1], ','), w[3].empty() ? "Mole" : w[3]);
     }},
    {"read", [](auto& r, auto& w) { return r.GetProp(w[0], "Vapor", {w[1]}, "Mole"); }},
    {"set",
     [](auto& r, auto& w) {
       return r.properties->SetReactionProp(B(w[0]).Get(), nullptr, Names({w[1]}).Get(), nullptr, Numbers({1}).Get());
     }},
    {"parameters",
     [](auto& r, auto& w) {
       com::Ref<IDispatch> parameters;
       return r.chemistry->GetReactionParameters(B(w[0]).Get(), parameters.Put());
     }},
    {"rateBasis",
     [](auto& r, auto& w) {
       CapeReactionRateBasis basis{};
       return r.chemistry->GetReactionRateBasis(B(w[0]).Get(), &basis);
     }},
    {"type",
     [](auto& r, auto& w) {
       CapeReactionType type{};
       return r.chemistry->GetReactionType(w[0].empty() ? nullptr : B(w[0]).Get(), &type);
     }},
    {"setNoMaterial", [](auto& r, auto&) { return r.context->SetMaterial(nullptr); }},
    {"unsetMaterial", [](auto& r, auto&) { return r.context->UnsetMaterial(); }},
    {"setItself", [](auto& r, auto&) { return r.context->SetMaterial(r.object.template As<IDispatch>().Get()); }},
    {"setAnotherMaterial",
     [](auto& r, auto&) {
       r.SetMaterial(r.MakeMaterial(ThermoOffer::k11, 700, 1e5, kFractions));
       return S_OK;
     }},
};

Reactions MakeReactionsAt600K() {
  Reactions reactions = MakeReactions();
  reactions.SetMaterial(reactions.MakeMaterial(ThermoOffer::kBoth, 600, 1e5, kFractions));
  return reactions;
}

TEST(ReactionPackage, RefusesWithACodeAndWords) {
  ExpectRefusals("host/reaction-refusals", kOperations, MakeReactionsAt600K);
}

// A failed calculation leaves nothing of an earlier one.
TEST(ReactionPackage, ForgetsItsValuesWhenACalculationFails) {
  const Reactions reactions = MakeReactionsAt600K();
  ASSERT_EQ(Calculate(reactions, kK, "shift"), S_OK);
  ASSERT_EQ(reactions.Read(kK, "Vapor", {"shift"}, "Mole").size(), 1u);
  ASSERT_NE(Calculate(reactions, kK, "huge,shift"), S_OK);
  EXPECT_TRUE(reactions.Read(kK, "Vapor", {"shift"}, "Mole").empty());
}

TEST(ReactionPackage, RefusesMaterialsThatDoNotTell) {
  const Reactions reactions = MakeReactions();
  const Reactions other("ideal-gas", {"methane", "water"}, "");
  const auto expect = [&](const auto& material, const char* property, const char* id, const char* words) {
    reactions.SetMaterial(material);
    EXPECT_LT(Calculate(reactions, property, id), 0) << words;
    EXPECT_NE(reactions.Text().find(words), std::string::npos) << reactions.Text();
  };
  for (const ThermoOffer offer : {ThermoOffer::k10, ThermoOffer::k11}) {
    expect(com::Make<host::MaterialObject>("empty", host::MaterialState(reactions.package), offer), kK, "shift",
           "the material does not give property temperature of phase \"Overall\": ");
    expect(other.MakeMaterial(offer, 400, 1e5, {0.5, 0.5}), "reactionRate", "kinetic",
           "the material's compound \"methane\" is unknown");
  }
}

TEST(ReactionPackage, RefusesNullPointers) {
  const Reactions r = MakeReactions();
  const com::Bstr id = B("shift");
  com::Variant spare;
  LONG count = 0;
  for (const HRESULT outcome :
       {r.chemistry->GetNumberOfReactions(nullptr), r.chemistry->GetReactionsIds(nullptr),
        r.chemistry->GetReactionType(id.Get(), nullptr), r.chemistry->GetNumberOfReactionCompounds(id.Get(), nullptr),
        r.chemistry->GetReactionCompoundIds(id.Get(), spare.Put(), nullptr, nullptr),
        r.chemistry->GetStoichiometricCoefficients(id.Get(), nullptr), r.chemistry->GetReactionPhase(id.Get(), nullptr),
        r.chemistry->GetReactionRateBasis(id.Get(), nullptr), r.chemistry->GetReactionConcBasis(id.Get(), nullptr),
        r.chemistry->GetBaseReactant(id.Get(), nullptr), r.chemistry->GetPhaseCompounds(id.Get(), &count, nullptr),
        r.chemistry->GetReactionParameters(id.Get(), nullptr),
        r.properties->GetReactionProp(nullptr, nullptr, com::kNoValue, nullptr, nullptr)})
    EXPECT_EQ(outcome, E_POINTER);
}

/// References to an object.
ULONG Count(ICapeIdentification* object) {
  object->AddRef();
  return object->Release();
}

TEST(ReactionPackage, ReturnsItsReferences) {
  std::optional<Reactions> reactions = MakeReactions();
  for (const ThermoOffer offer : {ThermoOffer::k10, ThermoOffer::k11, ThermoOffer::kBoth}) {
    const auto material = reactions->MakeMaterial(offer, 600, 1e5, kFractions);
    const std::function<void()> releases[] = {
        [&] { EXPECT_EQ(reactions->context->SetMaterial(nullptr), S_OK); },
        [&] { EXPECT_EQ(reactions->context->UnsetMaterial(), S_OK); },
        [&] { EXPECT_LT(reactions->context->SetMaterial(reactions->object.As<IDispatch>().Get()), 0); },
        [&] { reactions.emplace(MakeReactions()); }};
    for (const auto& release : releases) {
      reactions->SetMaterial(material);
      EXPECT_EQ(Calculate(*reactions, "reactionRate", "kinetic"), S_OK);
      EXPECT_LT(Calculate(*reactions, kK, "huge"), 0);
      EXPECT_EQ(Count(material.Get()), 2u) << "held once by the package";
      release();
      EXPECT_EQ(Count(material.Get()), 1u);
    }
  }
}

}  // namespace morvelan::test::reaction_refusal
