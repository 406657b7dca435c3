// The host gives the reactions of a flowsheet to units that take reactions, and releases what they leave. The unit of
// these tests is published by a class manifest, so that they are for systems that have manifests.

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/cli/CommandRun.h"
#include "tests/cli/Flowsheets.h"

namespace morvelan::test::reaction_handover {

constexpr const char* kManifest = R"({"classes": [
    {"clsid": "{5C1BD7C0-5B9A-4D43-8F4D-7B1A3C0E9D55}", "progId": "Test.ReactionTaker",
     "capeDescription": {"Name": "ReactionTaker", "Description": "Takes reactions"}}]})";

/// Publishes the unit's library for the duration of a test.
class ReactionHandover : public testing::Test {
 protected:
  void SetUp() override {
    auto manifest = Json::parse(kManifest);
    manifest["library"] = MORVELAN_REACTION_TAKER;
    std::filesystem::create_directories(Scratch("published") / "morvelan");
    (void)WriteScratch("published/morvelan/classes.json", manifest.dump());
    setenv("XDG_DATA_DIRS", Scratch("published").c_str(), 1);
  }
  void TearDown() override { unsetenv("XDG_DATA_DIRS"); }
};

/// Two units in a row, a unit between them that takes no reactions.
Json Flowsheet() {
  return Json::parse(R"({
    "thermo": {"model": "ideal-gas", "compounds": ["methane", "ethane", "hydrogen"]},
    "reactions": [{"id": "coupling", "type": "equilibrium", "phase": "Vapor", "basis": "MoleFraction",
                   "stoichiometry": {"methane": -2, "ethane": 1, "hydrogen": 1}, "lnK": [2, 600, 0, 0]}],
    "streams": {"feed": {"type": "material", "temperature": 400, "pressure": 1e5, "flow": 1,
                         "composition": {"methane": 1}}},
    "units": {"T-1": {"class": "ReactionTaker", "ports": {"Inlet": "feed", "Outlet": "a"}},
              "N-1": {"class": "NoOperation", "ports": {"Inlet": "a", "Outlet": "b"}},
              "T-2": {"class": "ReactionTaker", "ports": {"Inlet": "b", "Outlet": "product"}}}})");
}

TEST_F(ReactionHandover, GivesUnitsTheReactionsOfTheFile) {
  for (const auto thermo : {host::ThermoOffer::k10, host::ThermoOffer::kBoth})
    for (const bool roundtrip : {false, true}) {
      const Json results = SolvedResults(Flowsheet(), {.thermoInterface = thermo, .roundtrip = roundtrip});
      for (const char* unit : {"T-1", "T-2"})
        // What the other unit left in the package is gone; ln K = 2 + 600/400.
        EXPECT_EQ(results["units"][unit]["reports"]["Last run"],
                  "without material: no material is set: reaction properties need SetMaterial first\n"
                  "ln K: 3.500000");
    }
}

TEST_F(ReactionHandover, GivesNothingWhereTheFileHasNoReactions) {
  for (const bool roundtrip : {false, true})
    for (const bool isEmpty : {false, true}) {
      Json flowsheet = Flowsheet();
      flowsheet.erase("reactions");
      if (isEmpty) flowsheet["reactions"] = Json::array();
      const Json results = RunFlowsheet(flowsheet.dump(), {.thermoInterface = {}, .roundtrip = roundtrip}).results;
      EXPECT_EQ(results["units"]["T-1"]["error"]["description"], "no reaction package was given");
    }
}

TEST_F(ReactionHandover, NamesAUnitThatRefusesThem) {
  Json flowsheet = Flowsheet();
  flowsheet["units"]["Refusing"] = {{"class", "ReactionTaker"}};
  const std::string refusal = RunFlowsheet(flowsheet.dump()).refusal;
  EXPECT_NE(refusal.find(": units/Refusing: the unit cannot be created: "), std::string::npos) << refusal;
}

}  // namespace morvelan::test::reaction_handover
