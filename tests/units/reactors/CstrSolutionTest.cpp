// How a CSTR comes to its solution, or doesn't, and what it warns of. Its feed is 2 mol/s of A at 300 K
// unless a case says otherwise, and its tank of 2 m3 is full of vapour.

#include "tests/support/SystemText.h"
#include "tests/units/reactors/CstrBench.h"

namespace morvelan::test::cstr_solution {

// ---- Reactions that are left out

TEST(CstrSolution, LeavesOutReactions) {
  constexpr const char* kNone = "No reactions are possible";
  const auto idle = [](const char* id) {
    return std::string("Reaction \"") + id + "\" is ignored: it can't take place with this feed";
  };
  struct {
    const char* title;
    const char* reactions;
    std::vector<double> product;
    std::vector<std::string> log;
  } const cases[] = {
      {"at equilibrium", R"("E2")", {2, 0, 0}, {idle("E2"), kNone}},
      {"kinetic", R"("K2", "K2")", {2, 0, 0}, {idle("K2"), idle("K2"), kNone}},
      {"none: another makes the compounds", R"("E2", "E1")", {2. / 9, 8. / 9, 8. / 9}, {}},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.title << ", thermo 1.1: " << thermo11);
      CstrBench bench(thermo11);
      bench.Put("Reactor volume", 2);
      bench.Select(c.reactions);
      bench.Calculate();
      ExpectFlows(bench, c.product, 1e-8);
      EXPECT_FALSE(bench.At("Outlet").flash.empty()) << "phase equilibrium all the same";
      EXPECT_EQ(bench.context->log, c.log);
    }
}

TEST(CstrSolution, RefusesReactionsThatTakePlaceOnlyTogether) {
  FakeState feed = ReactorFeed();
  feed.compounds = {"A", "A2", "B", "C"};
  feed.casNumbers = {"1", "2", "3", "4"};
  feed.molecularWeights = {10, 10, 20, 10};
  feed.fractions = {0.5, 0.5, 0, 0};
  feed.formationEnthalpies = {0, 0, 0, 0};
  const FakePackageState package = {
      .reactions = {AtEquilibrium("R1", {"A", "C", "B"}, {-1, -1, 1}, 1),
                    AtEquilibrium("R2", {"A2", "C", "B"}, {-1, -1, 1}, 1),
                    AtRate("K", {"A2", "C", "B"}, {-1, -1, 1}, [](const FakeConditions&) { return 0.0; })}};
  CstrBench bench(true, package, feed);
  bench.Select(R"("R1", "R2")");
  CheckFailedCalculation(
      bench.door,
      "Infeasible system: Infeasible system. Given the current feed, a linear combination of the reactions "
      "may take place with a rank less than the total number of the reactions; an insufficient number of "
      "individual reactions can be eliminated");
  EXPECT_EQ(bench.At("Outlet").written.size(), 0u) << "the outlet is untouched";
  // A rate through compounds of which there is none is none, and then nothing is left of the other.
  bench.Select(R"("R1", "K")");
  bench.Put("Reactor volume", 2);
  bench.Calculate();
  ExpectFlows(bench, {1, 1, 0, 0}, 0);
  EXPECT_EQ(bench.context->log.back(), "No reactions are possible");
}

// ---- Evaluations that fail

struct Fault {
  const char* title;
  bool thermo11;
  const char* call;          // that goes wrong each time
  com::Variant (*answer)();  // null for one that fails
  const char* why;           // after "Solution failed: Function cannot be evaluated at initial guess: "
};

com::Variant One(double number) { return com::MakeDoubles(std::array{number}); }
com::Variant Two() { return com::MakeDoubles(std::array{1.0, 2.0}); }
com::Variant Text() { return com::MakeStrings(std::vector<std::string>{"fast"}); }

constexpr const char* kRate = "GetReactionProp reactionRate";
constexpr const char* kConstant = "GetReactionProp chemicalEquilibriumConstant";
constexpr const char* kFractions = "GetSinglePhaseProp Fraction";
constexpr const char* kEnthalpy = "GetSinglePhaseProp enthalpyF";

const Fault kFaults[] = {
    {"temperature", false, "SetProp Temperature", nullptr,
     "Failed to set temperature on outlet material: Unspecified error"},
    {"pressure", false, "SetProp Pressure", nullptr, "Failed to set pressure on outlet material: Unspecified error"},
    {"fractions", false, "SetProp Fraction", nullptr,
     "Failed to set Overall mole fraction on outlet material: Unspecified error"},
    {"temperature", true, "SetSinglePhaseProp Temperature", nullptr,
     "Failed to set temperature on outlet material: Unspecified error"},
    {"pressure", true, "SetOverallProp Pressure", nullptr,
     "Failed to set pressure on outlet material: Unspecified error"},
    {"overall fractions", true, "SetOverallProp Fraction", nullptr,
     "Failed to set Overall mole fraction on outlet material: Unspecified error"},
    {"fractions", true, "SetSinglePhaseProp Fraction", nullptr,
     "Failed to set Vapor mole fraction on outlet material: Unspecified error"},
    {"no rate", true, kRate, nullptr, "Failed to obtain reactionRate for reaction K2: Unspecified error"},
    {"two rates", true, kRate, Two, "Invalid format for reactionRate for reaction K2: scalar expected"},
    {"a text for a rate", true, kRate, Text,
     "Invalid format for reactionRate for reaction K2: element 1: a number expected, a text found"},
    {"a rate that is no number", true, kRate, [] { return One(kNaN); },
     "Invalid format for reactionRate for reaction K2: value is not set"},
    {"no constant", true, kConstant, nullptr,
     "Failed to obtain chemicalEquilibriumConstant for reaction E1: Unspecified error"},
    {"two constants", true, kConstant, Two,
     "Invalid format for chemicalEquilibriumConstant for reaction E1: scalar expected"},
    {"too few fractions", true, kFractions, [] { return One(1); },
     "Failed to get mole fractions for phase Vapor: 3 values expected"},
    {"no enthalpy", true, "CalcSinglePhaseProp Vapor", nullptr,
     "Failed to get enthalpyF for phase Vapor: CalcProp (enthalpyF/Vapor) failed: Unspecified error"},
    {"two enthalpies", true, kEnthalpy, Two, "Invalid values for enthalpyF: scalar expected"},
    {"an enthalpy that is no number", true, kEnthalpy, [] { return One(kNaN); },
     "Invalid values for enthalpyF: value is not set"},
};

TEST(CstrSolution, ExplainsEvaluationsThatFail) {
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(testing::Message() << fault.title << ", " << fault.call);
    CstrBench bench(fault.thermo11);
    bench.Put("Reactor volume", 2);
    bench.Put("Heat duty type", "Heat duty");
    bench.Select(R"("E1", "K2")");
    // (The enthalpy of the feed, which is asked for first, is calculated alike.)
    bench.script->interfere = [&] {
      if (fault.answer)
        bench.script->oddAnswers[fault.call] = fault.answer;
      else
        bench.script->failing = {fault.call};
    };
    bench.script->interferesAt = "SetMaterial";
    CheckFailedCalculation(
        bench.door, InThisSystemsWords(std::string("Solution failed: Function cannot be evaluated at initial guess: ") +
                                       fault.why));
    EXPECT_EQ(bench.At("Outlet").written.size(), 0u) << "the outlet is untouched";
    EXPECT_NE(bench.door.Report("Last run").find("\r\n+++ no solution +++\r\n"), std::string::npos);
    bench.script->oddAnswers.clear();
    bench.script->failing.clear();
    bench.Calculate();
    ExpectFlows(bench, {2. / 17, 8. / 17, 24. / 17}, 1e-8);
  }
}

TEST(CstrSolution, NeedsATemperature) {
  CstrBench bench;
  bench.Select(R"("E1")");
  bench.Put("Temperature", 0.0);
  CheckFailedCalculation(bench.door,
                         "Solution failed: Function cannot be evaluated at initial guess: Zero temperature");
  EXPECT_EQ(bench.At("Outlet").written.size(), 0u);
}

// ---- What leaves

TEST(CstrSolution, ExplainsAnOutletThatCannotBeFlashed) {
  struct {
    const char* call;
    const char* opening;
    const char* why;
  } const cases[] = {
      {"CalcEquilibrium", "TP flash failed: ", "CalcEquilibrium failed: Unspecified error"},
      {"GetOverallProp Temperature", "Failed to get temperature at solution from outlet port: ",
       "failed to get property Temperature from material connected to port Outlet: Unspecified error"},
  };
  for (const auto& c : cases) {
    CstrBench bench;
    bench.Select(R"("E1")");
    bench.script->interfere = [&] { bench.script->failing = {c.call}; };
    bench.script->interferesAt = "SetMaterial";
    CheckFailedCalculation(bench.door, InThisSystemsWords(std::string(c.opening) + c.why), InThisSystemsWords(c.why));
  }
}

TEST(CstrSolution, WarnsOfOtherPhases) {
  const FakePhase kVapor = {"VAPOR", "Vapor", 0.5, {}}, kNoVapor = {"Vapor", "Vapor", 0, {}},
                  kLiquid = {"Liquid", "Liquid", 0.5, {}}, kNoLiquid = {"Liquid", "Liquid", 0, {}};
  const std::string absent = "WARNING: Reaction phase \"Vapor\" is not present after equilibrium calculation at outlet";
  const std::string others =
      "WARNING: Phases other than reaction phase \"Vapor\" are present at the reactor outlet after the "
      "equilibrium calculation";
  const std::string balance = "WARNING: Enthalpy balance may be incorrect due to phase equilibrium";
  struct {
    std::vector<FakePhase> phases;
    std::vector<std::string> log;
  } const cases[] = {
      {{kVapor}, {}},
      {{kVapor, kNoLiquid}, {}},
      {{kVapor, kLiquid}, {others, balance}},
      {{kLiquid}, {absent, others, balance}},
      {{kNoVapor, kLiquid}, {absent, others, balance}},
      {{kNoVapor}, {absent, balance}},
  };
  for (const bool thermo11 : {false, true})
    for (const bool isothermal : {false, true})
      for (const auto& c : cases) {
        CstrBench bench(thermo11);
        bench.Select(R"("E1")");
        bench.Put("Heat duty type", isothermal ? "Isothermal" : "Heat duty");
        bench.At("Outlet").phases = c.phases;
        bench.Calculate();
        std::vector<std::string> log = c.log;
        if (isothermal) std::erase(log, balance);
        // The enthalpy of what is not there adds to no duty.
        if (isothermal && !thermo11 && c.phases.size() == 1 && c.phases[0].fraction == 0) continue;
        EXPECT_EQ(bench.context->log, log) << "isothermal: " << isothermal << ", thermo 1.1: " << thermo11;
        for (const std::string& line : log)
          EXPECT_NE(bench.door.Report("Last run").find(line + "\r\n"), std::string::npos) << line;
      }
}

TEST(CstrSolution, GoesOnWithoutADutyThatCannotBeFound) {
  CstrBench bench;
  bench.Select(R"("E1")");
  bench.Put("Temperature", 350);
  bench.ConnectHeat(0, {}, {}, "Heat duty");
  bench.At("Outlet").statuses = {CAPE_UNKNOWNPHASESTATUS};
  bench.Calculate();
  EXPECT_EQ(bench.At("Outlet").temperature, 350);
  EXPECT_EQ(bench.Number("Heat duty"), kMissing);
  EXPECT_EQ(com::ReadDouble(bench.heat->parameters[0]->value.Get()), kMissing);
  EXPECT_EQ(bench.context->log,
            std::vector<std::string>{"Warning: Failed to get enthalpyF from outlet: Failed to calculate overall "
                                     "enthalpyF; phase Vapor is reported not to be in equilibrium"});
}

}  // namespace morvelan::test::cstr_solution
