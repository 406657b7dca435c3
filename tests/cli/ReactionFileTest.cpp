// The reactions of a flowsheet file: units that take none are left alone, and what is wrong in them is
// refused.

#include <gtest/gtest.h>

#include "tests/cli/BadFiles.h"

namespace morvelan::test::reaction_file {

constexpr const char* kValid = R"({
  "thermo": {
    "compounds": ["methane", "ethane", "hydrogen", "deuterium"],
    "compoundData": {"compounds": [{"name": "deuterium", "formula": "D2", "molecularWeight": 4.028,
      "criticalTemperature": 38.34, "criticalPressure": 1.68e6, "acentricFactor": -0.136,
      "idealGas": {"model": "nasa7", "ranges": [{"Tmin": 200, "Tmax": 6000, "a": [3.5, 0, 0, 0, 0, 0, 0]}]}}]}
  },
  "reactions": [
    {"id": "coupling", "type": "equilibrium", "phase": "Vapor", "basis": "MoleFraction", "equilibrium": "gibbs",
     "stoichiometry": {"methane": -2, "ethane": 1, "hydrogen": 1}},
    {"id": "fitted", "type": "equilibrium", "phase": "Liquid", "basis": "MassFraction", "lnK": [1, 2, 3, 4],
     "enthalpyOfReaction": -5e4, "stoichiometry": {"methane": -2, "ethane": 1, "hydrogen": 1}},
    {"id": "crack", "type": "kinetic", "phase": "Vapor", "basis": "Molarity", "rateBasis": "homogeneous",
     "stoichiometry": {"methane": -2, "ethane": 1, "hydrogen": 1},
     "rate": {"preExponential": 4e13, "activationEnergy": 273020, "orders": {"methane": 2}},
     "reverse": {"preExponential": 1, "activationEnergy": -10, "orders": {"ethane": 1, "hydrogen": -0.5}}}
  ],
  "streams": {
    "feed": {"type": "material", "temperature": 300, "pressure": 1e5, "flow": 1, "composition": {"methane": 1}}
  },
  "units": {"N-1": {"class": "NoOperation", "ports": {"Inlet": "feed", "Outlet": "product"}}}
})";

const BadFile kBadReactions[] = {
    // Keys
    {"/reactions", "{}", ": reactions: ", {"an array is expected"}},
    {"/reactions/0", "\"shift\"", ": reactions[0]: ", {"an object is expected"}},
    {"/reactions/0/id", "", ": reactions[0]: ", {"\"id\" is missing"}},
    {"/reactions/0/type", "", ": reactions[0]: ", {"\"type\" is missing"}},
    {"/reactions/0/phase", "", ": reactions[0]: ", {"\"phase\" is missing"}},
    {"/reactions/0/basis", "", ": reactions[0]: ", {"\"basis\" is missing"}},
    {"/reactions/0/stoichiometry", "", ": reactions[0]: ", {"\"stoichiometry\" is missing"}},
    {"/reactions/0/equilibrium", "", ": reactions[0]: ", {"\"lnK\" is missing", "\"gibbs\""}},
    {"/reactions/2/rateBasis", "", ": reactions[2]: ", {"\"rateBasis\" is missing"}},
    {"/reactions/2/rate", "", ": reactions[2]: ", {"\"rate\" is missing"}},
    {"/reactions/2/rate/orders", "", ": reactions[2]/rate: ", {"\"orders\" is missing"}},
    {"/reactions/2/reverse/preExponential", "", ": reactions[2]/reverse: ", {"\"preExponential\" is missing"}},
    {"/reactions/0/rate", "{}", ": reactions[0]/rate: ", {"unknown", "lnK, equilibrium"}},
    {"/reactions/2/lnK", "[0, 0, 0, 0]", ": reactions[2]/lnK: ", {"unknown", "rate, reverse"}},
    {"/reactions/2/rate/order", "{}", ": reactions[2]/rate/order: ", {"unknown", "orders"}},
    {"/reactions/0/lnK", "[0, 0, 0, 0]", ": reactions[0]/equilibrium: ", {"given twice", "lnK"}},
    // Names
    {"/reactions/0/id", "\"\"", ": reactions[0]/id: ", {"needs a name"}},
    {"/reactions/2/id", "\"COUPLING\"", ": reactions[2]/id: ", {"\"COUPLING\" is listed twice"}},
    {"/reactions/0/type", "\"fast\"", ": reactions[0]/type: ", {"\"fast\"", "\"equilibrium\", \"kinetic\""}},
    {"/reactions/0/phase", "\"vapor\"", ": reactions[0]/phase: ", {"\"Vapor\", \"Liquid\""}},
    {"/reactions/0/basis",
     "\"Moles\"",
     ": reactions[0]/basis: ",
     {"\"Molarity\", \"Concentration\", \"MoleFraction\", \"MassFraction\""}},
    {"/reactions/2/rateBasis", "\"surface\"", ": reactions[2]/rateBasis: ", {"\"homogeneous\", \"heterogeneous\""}},
    {"/reactions/0/equilibrium", "\"helmholtz\"", ": reactions[0]/equilibrium: ", {"\"gibbs\""}},
    {"/reactions/0/stoichiometry/etane", "1", ": reactions[0]/stoichiometry/etane: ", {"\"ethane\"?"}},
    {"/reactions/0/stoichiometry/METHANE", "1", ": reactions[0]/stoichiometry/METHANE: ", {"given twice"}},
    {"/reactions/2/rate/orders/argon", "1", ": reactions[2]/rate/orders/argon: ", {"not one of thermo/compounds"}},
    {"/thermo/model", "\"ideal-gas\"", ": reactions[1]/phase: ", {"has no liquid"}},
    // Numbers
    {"/reactions/0/stoichiometry/ethane", "0", ": reactions[0]/stoichiometry/ethane: ", {"must not be 0"}},
    {"/reactions/0/stoichiometry/ethane", "\"1\"", ": reactions[0]/stoichiometry/ethane: ", {"a number is expected"}},
    {"/reactions/0/stoichiometry", R"({"ethane": 1})", ": reactions[0]/stoichiometry: ", {"a reactant is needed"}},
    {"/reactions/0/stoichiometry", R"({"ethane": -1})", ": reactions[0]/stoichiometry: ", {"a product is needed"}},
    {"/reactions/1/lnK", "[1, 2, 3]", ": reactions[1]/lnK: ", {"four coefficients", "3 found"}},
    {"/reactions/1/lnK/2", "null", ": reactions[1]/lnK[2]: ", {"a number is expected, null found"}},
    {"/reactions/1/enthalpyOfReaction", "\"\"", ": reactions[1]/enthalpyOfReaction: ", {"a number is expected"}},
    {"/reactions/2/rate/preExponential", "-1", ": reactions[2]/rate/preExponential: ", {"not be negative"}},
    {"/reactions/2/rate/activationEnergy", "true", ": reactions[2]/rate/activationEnergy: ", {"a number"}},
    {"/reactions/2/reverse/orders/ethane", "[]", ": reactions[2]/reverse/orders/ethane: ", {"a number"}},
    // Equilibria from Gibbs energies
    {"/reactions/0/phase", "\"Liquid\"", ": reactions[0]/equilibrium: ", {"\"lnK\""}},
    {"/reactions/0/stoichiometry/hydrogen",
     "1.001",
     ": reactions[0]/equilibrium: ",
     {"does not conserve element H", "0.002"}},
    {"/reactions/0/stoichiometry/deuterium",
     "1",
     ": reactions[0]/equilibrium: ",
     {"no Gibbs energy of formation", "\"deuterium\""}},
};

TEST(ReactionFile, IsRunWhenItIsRight) {
  for (const char* options : {"", "--roundtrip"}) {
    const auto outcome = RunFlowsheet(kValid, options);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
  }
}

TEST(ReactionFile, IsRefusedWithThePlaceWhenItIsWrong) {
  for (const BadFile& bad : kBadReactions)
    ExpectRefused(RunFlowsheet(Changed(kValid, bad)), bad.place, bad.words, std::string(bad.pointer) + ": ");
}

}  // namespace morvelan::test::reaction_file
