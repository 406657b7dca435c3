// What a unit may ask wrongly of the reaction package, and what becomes of the references that it hands over.

#include <gtest/gtest.h>

#include <functional>

#include "tests/host/HostReactions.h"

namespace morvelan::test::reaction_refusal {

using host::ThermoOffer;
using Ids = std::vector<std::string>;

const std::vector<std::string> kCompounds = {"carbon monoxide", "water", "carbon dioxide", "hydrogen", "unformed"};
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

Reactions MakeReactions() { return {"peng-robinson", kCompounds, kList, kUnformed}; }

HRESULT Calculate(const Reactions& r, const char* property, const Ids& ids) {
  return r.Calculate({property}, "Vapor", ids, "Mole");
}

HRESULT Read(const Reactions& r, const char* property, const char* id) {
  com::Variant values;
  return r.properties->GetReactionProp(B(property).Get(), B("Vapor").Get(), Names({id}).Get(), B("Mole").Get(),
                                       values.Put());
}

struct Refusal {
  const char* what;
  std::function<HRESULT(const Reactions&)> call;
  HRESULT code;
  const char* words;
  const char* interfaceName = "ICapeReactionsRoutine";
};

/// Expects every call to be refused as told, with a material of vapour set but where the call unsets it.
void ExpectRefused(const std::vector<Refusal>& refusals) {
  for (const Refusal& refusal : refusals) {
    const Reactions reactions = MakeReactions();
    reactions.SetMaterial(reactions.MakeMaterial(ThermoOffer::kBoth, 600, 1e5, kFractions));
    EXPECT_EQ(refusal.call(reactions), refusal.code) << refusal.what;
    const Texts error = ErrorOf(reactions.object.Get());
    EXPECT_NE(error.description.find(refusal.words), std::string::npos) << refusal.what << ": " << error;
    EXPECT_EQ(error.interfaceName, refusal.interfaceName) << refusal.what << ": " << error;
  }
}

TEST(ReactionPackage, RefusesWhatItCannotCalculate) {
  const char* const K = "chemicalEquilibriumConstant";
  const char* const rate = "reactionRate";
  ExpectRefused({
      {"no material",
       [&](auto& r) {
         EXPECT_EQ(r.context->SetMaterial(nullptr), S_OK);
         return Calculate(r, K, {"shift"});
       },
       kBadInvOrder, "no material is set"},
      {"a withdrawn material",
       [&](auto& r) {
         EXPECT_EQ(r.context->UnsetMaterial(), S_OK);
         return Calculate(r, K, {"shift"});
       },
       kBadInvOrder, "no material is set"},
      {"unknown reaction",
       [&](auto& r) {
         return Calculate(r, K, {"shift", "drift"});
       },
       kInvalidArgument, "\"drift\" is unknown; the package has \"shift\", \"kinetic\""},
      {"no reaction", [&](auto& r) { return Calculate(r, K, {}); }, kInvalidArgument, "no reaction is named"},
      {"unknown property", [](auto& r) { return Calculate(r, "speed", {"shift"}); }, kInvalidArgument,
       "\"speed\" is unknown; known are reactionRate, chemicalEquilibriumConstant, enthalpyOfReaction"},
      {"rate of an equilibrium",
       [&](auto& r) {
         return Calculate(r, rate, {"kinetic", "shift"});
       },
       kInvalidArgument, "\"shift\" is an equilibrium reaction and has no reactionRate"},
      {"K of a kinetic reaction", [&](auto& r) { return Calculate(r, K, {"kinetic"}); }, kInvalidArgument,
       "\"kinetic\" is a kinetic reaction and has no chemicalEquilibriumConstant"},
      {"wrong phase", [&](auto& r) { return r.Calculate({rate}, "Liquid", {"kinetic"}, "Mole"); }, kInvalidArgument,
       "\"kinetic\" takes place in phase \"Vapor\", not in \"Liquid\""},
      {"two phases in one call",
       [&](auto& r) {
         return Calculate(r, rate, {"kinetic", "liquid"});
       },
       kInvalidArgument, "\"liquid\" takes place in phase \"Liquid\", not in \"Vapor\""},
      {"mass basis", [&](auto& r) { return r.Calculate({rate}, "Vapor", {"kinetic"}, "Mass"); }, kLimitedImpl,
       "reactionRate is given on basis \"Mole\" only"},
      {"unknown basis", [&](auto& r) { return r.Calculate({K}, "Vapor", {"shift"}, "Molarity"); }, kInvalidArgument,
       "basis \"Molarity\" is unknown"},
      {"absent phase", [&](auto& r) { return r.Calculate({rate}, "Liquid", {"liquid"}, "Mole"); }, kNotAvailable,
       "property fraction of phase \"Liquid\": property fraction of phase \"Liquid\" is not set"},
      {"K beyond the largest number", [&](auto& r) { return Calculate(r, K, {"huge"}); }, kSolvingError,
       "\"huge\" is beyond the range of numbers: its logarithm is 1666.667"},
      {"K beyond the smallest", [&](auto& r) { return Calculate(r, K, {"tiny"}); }, kSolvingError, "-1666.667"},
      {"an infinite rate", [&](auto& r) { return Calculate(r, rate, {"inhibited"}); }, kSolvingError,
       "reactionRate of reaction \"inhibited\" is not finite"},
      {"no formation enthalpy", [](auto& r) { return Calculate(r, "enthalpyOfReaction", {"inhibited"}); },
       kNotAvailable, "no formation properties are known of unformed"},
  });
}

TEST(ReactionPackage, RefusesWhatIsNotThere) {
  const char* const K = "chemicalEquilibriumConstant";
  const char* const properties = "ICapeReactionProperties";
  const char* const chemistry = "ICapeReactionChemistry";
  const char* const context = "ICapeThermoMaterialContext";
  ExpectRefused({
      {"read first", [&](auto& r) { return Read(r, K, "shift"); }, kNotAvailable,
       "of reaction \"shift\" is not calculated: CalcReactionProp comes first", properties},
      {"of another reaction",
       [&](auto& r) {
         EXPECT_EQ(Calculate(r, "reactionRate", {"kinetic"}), S_OK);
         return Read(r, "reactionRate", "inhibited");
       },
       kNotAvailable, "of reaction \"inhibited\" is not calculated", properties},
      {"of another material",
       [&](auto& r) {
         EXPECT_EQ(Calculate(r, K, {"shift"}), S_OK);
         EXPECT_EQ(Read(r, K, "shift"), S_OK);
         r.SetMaterial(r.MakeMaterial(ThermoOffer::k11, 700, 1e5, kFractions));
         return Read(r, K, "shift");
       },
       kNotAvailable, "is not calculated", properties},
      {"after a failure",
       [&](auto& r) {
         EXPECT_EQ(Calculate(r, K, {"shift"}), S_OK);
         EXPECT_NE(Calculate(r, K, {"huge", "shift"}), S_OK);
         return Read(r, K, "shift");
       },
       kNotAvailable, "is not calculated", properties},
      {"set",
       [&](auto& r) {
         return r.properties->SetReactionProp(B(K).Get(), nullptr, Names({"shift"}).Get(), nullptr, Numbers({1}).Get());
       },
       kNoImpl, "chemicalEquilibriumConstant is calculated and can't be set", properties},
      {"parameters",
       [](auto& r) {
         com::Ref<IDispatch> parameters;
         return r.chemistry->GetReactionParameters(B("shift").Get(), parameters.Put());
       },
       kNoImpl, "\"shift\" has no parameters", chemistry},
      {"rate basis of an equilibrium",
       [](auto& r) {
         CapeReactionRateBasis basis{};
         return r.chemistry->GetReactionRateBasis(B("shift").Get(), &basis);
       },
       kInvalidArgument, "\"shift\" is an equilibrium reaction and has no rate basis", chemistry},
      {"unknown type",
       [](auto& r) {
         CapeReactionType type{};
         return r.chemistry->GetReactionType(nullptr, &type);
       },
       kInvalidArgument, "reaction \"\" is unknown", chemistry},
      {"an object that is no material",
       [](auto& r) { return r.context->SetMaterial(r.object.template As<IDispatch>().Get()); }, kInvalidArgument,
       "neither ICapeThermoMaterial nor ICapeThermoMaterialObject", context},
  });
}

TEST(ReactionPackage, RefusesMaterialsThatDoNotTell) {
  const Reactions reactions = MakeReactions();
  for (const ThermoOffer offer : {ThermoOffer::k10, ThermoOffer::k11}) {
    struct {
      com::Ref<host::MaterialObject> material;
      const char* property;
      const char* id;
      const char* words;
    } const cases[] = {
        {com::Make<host::MaterialObject>("empty", host::MaterialState(reactions.package), offer),
         "chemicalEquilibriumConstant", "shift",
         "the material does not give property temperature of phase \"Overall\": "},
        {Reactions("ideal-gas", {"methane", "water"}, "").MakeMaterial(offer, 400, 1e5, {0.5, 0.5}), "reactionRate",
         "kinetic", "the material's compound \"methane\" is unknown"},
    };
    for (const auto& c : cases) {
      reactions.SetMaterial(c.material);
      EXPECT_LT(Calculate(reactions, c.property, {c.id}), 0) << c.words;
      EXPECT_NE(reactions.Text().find(c.words), std::string::npos) << reactions.Text();
    }
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
      EXPECT_EQ(Calculate(*reactions, "reactionRate", {"kinetic"}), S_OK);
      EXPECT_LT(Calculate(*reactions, "chemicalEquilibriumConstant", {"huge"}), 0);
      EXPECT_EQ(Count(material.Get()), 2u) << "held once by the package";
      release();
      EXPECT_EQ(Count(material.Get()), 1u);
    }
  }
}

}  // namespace morvelan::test::reaction_refusal
