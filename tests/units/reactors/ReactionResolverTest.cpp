// How reactions of a package are found and explained: what every reactor asks, whatever it does with them.

#include "reactions/ReactionResolver.h"
#include "tests/support/Faults.h"
#include "tests/support/TestUnit.h"
#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test::reaction_resolver {

/// A resolver with a package and a unit whose inlet has the feed.
struct ResolverBench {
  explicit ResolverBench(bool usesThermo11) : thermo11(usesThermo11) {
    EXPECT_EQ(unit->Initialize(), S_OK);
    EXPECT_EQ(unit->Inlet(0).Connect(feed.As<IDispatch>().Get()), S_OK);
    script->Restart();
  }

  [[nodiscard]] Reaction Resolve(const ReactionRequest& request) const {
    const ReactionPackage known = package ? ReactionPackage(package.As<IDispatch>().Get()) : ReactionPackage();
    script->Restart();
    return ReactionResolver(known, unit->Inlet(0).ConnectedObject(), thermo11).Resolve(request);
  }
  [[nodiscard]] std::string Fault(const ReactionRequest& request) const {
    try {
      (void)Resolve(request);
      return "none";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.error.name, failure.error.description);
      return failure.error.description;
    }
  }
  FakeReaction& First() { return package->state.reactions[0]; }

  bool thermo11;
  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  com::Ref<TestUnit> unit = com::Make<TestUnit>(kTestUnit);
  com::Ref<FakeMaterial> feed = com::Make<FakeMaterial>(script, ReactorFeed());
  com::Ref<FakeReactionPackage> package = com::Make<FakeReactionPackage>(script, ReactorPackage());
};

const std::string kFirst = "A to B";

TEST(ReactionResolver, FillsARecord) {
  for (const bool thermo11 : {false, true}) {
    ResolverBench bench(thermo11);
    bench.package->state.reactions[0] = {.id = kFirst,
                                         .compounds = {"c", "b", "A"},
                                         .coefficients = {2, 0, -1},
                                         .type = CAPE_KINETIC,
                                         .rateBasis = CAPE_HETEROGENEOUS,
                                         .phase = "Liquid",
                                         .concentrationBasis = "MoleFraction"};
    bench.feed->state.compounds = {"A", "B", "C", "b"};
    const Reaction record = bench.Resolve({.name = kFirst, .mustBeKinetic = true, .wantsConcentrationBasis = true});
    EXPECT_EQ(record.name.Text(), kFirst);
    EXPECT_EQ(record.type, ReactionType::kKinetic);
    EXPECT_FALSE(record.rateBasis) << "not asked for";
    EXPECT_EQ(record.compoundIds, (std::vector<std::string>{"c", "b", "A"}));
    EXPECT_EQ(record.compoundIndices, (std::vector<std::int32_t>{2, 1, 0})) << "the first of equal names";
    EXPECT_EQ(record.coefficients, (std::vector<double>{2, 0, -1}));
    EXPECT_EQ(record.phase.Text() + " " + record.concentrationBasis, "Liquid MoleFraction");
    const std::string list = thermo11 ? "GetCompoundList" : "ComponentIds";
    EXPECT_EQ(std::ranges::count(bench.script->calls, list), 1);
    EXPECT_EQ(bench.Resolve({.name = kFirst, .wantsKind = true}).rateBasis, RateBasis::kHeterogeneous);
    bench.First().type = CAPE_EQUILIBRIUM;
    EXPECT_FALSE(bench.Resolve({.name = kFirst, .wantsKind = true}).rateBasis) << "of kinetic ones only";
    EXPECT_FALSE(bench.Resolve({kFirst}).type) << "not asked for";
  }
}

TEST(ReactionResolver, ExplainsWhatItCannotUse) {
  const auto odd = [](const char* call, com::Variant (*answer)()) {
    return [call, answer](ResolverBench& bench) { bench.script->oddAnswers[call] = answer; };
  };
  const std::vector<std::tuple<ReactionRequest, std::function<void(ResolverBench&)>, std::string>> cases = {
      {{kFirst},
       [](ResolverBench& b) { b.package = nullptr; },
       "A reaction package has not been assigned. Please return to simulation environment and assign a "
       "reaction package to this unit operation"},
      {{""}, [](ResolverBench&) {}, "No reaction selected"},
      {{kFirst},
       [](ResolverBench& b) { b.package->state.offersChemistry = false; },
       "failed to obtain ICapeReactionChemistry interface"},
      {{.name = kFirst, .mustBeKinetic = true},
       [](ResolverBench&) {},
       "Reaction \"A to B\" is not an equilibrium reaction"},
      {{.name = kFirst, .mustBeEquilibrium = true},
       [](ResolverBench& b) { b.First().type = CAPE_KINETIC; },
       "Reaction \"A to B\" is not an equilibrium reaction"},
      {{.name = kFirst, .wantsKind = true},
       [](ResolverBench& b) { b.First().type = 2; },
       "Unknown reaction type for reaction A to B; expected CAPE_KINETIC or CAPE_EQUILIBRIUM"},
      {{.name = kFirst, .wantsKind = true},
       [](ResolverBench& b) {
         b.First().type = CAPE_KINETIC;
         b.First().rateBasis = 2;
       },
       "Unknown reaction rate basis for reaction A to B; expected CAPE_HOMOGENEOUS or CAPE_HETEROGENEOUS"},
      {{kFirst},
       odd("GetReactionCompoundIds A to B", [] { return com::MakeDouble(1); }),
       "Invalid format for reaction compounds IDs: an array of texts expected, a number found"},
      {{kFirst}, [](ResolverBench& b) { b.First().compounds = {}; }, "Zero compounds in selected reaction \"A to B\""},
      {{kFirst},
       [](ResolverBench& b) { EXPECT_EQ(b.unit->Inlet(0).Disconnect(), S_OK); },
       "failed to obtain material from the (first) inlet port"},
      {{kFirst},
       [](ResolverBench& b) {
         for (const char* call : {"GetCompoundList", "ComponentIds"})
           b.script->oddAnswers[call] = [] { return com::MakeInteger(1); };
       },
       "Invalid format for compounds IDs from inlet material: an array of texts expected, an integer found"},
      {{kFirst}, [](ResolverBench& b) { b.feed->state.compounds = {}; }, "Zero compounds exposed by inlet material"},
      {{kFirst},
       [](ResolverBench& b) { b.First().compounds[1] = "water"; },
       "reaction compound \"water\" is not present in (inlet-) material; unable to resolve compound"},
      {{kFirst},
       [](ResolverBench& b) { b.First().compounds[1] = ""; },
       "reaction compound \"<NULL>\" is not present in (inlet-) material; unable to resolve compound"},
      {{kFirst},
       [](ResolverBench& b) {
         b.First().coefficients = {-1, 1, 1};
       },
       "Stoichiometry data does not match number of compounds from reaction"},
      {{kFirst},
       [](ResolverBench& b) { b.First().coefficients[1] = kNaN; },
       "Invalid format for reaction stoichiometry: value is not set"},
      {{kFirst},
       [](ResolverBench& b) { b.First().coefficients[1] = std::numeric_limits<double>::infinity(); },
       "Invalid format for reaction stoichiometry: value is infinite"},
      {{kFirst},
       odd("GetStoichiometricCoefficients A to B", [] { return com::MakeStrings(std::vector<std::string>{"x"}); }),
       "Invalid format for reaction stoichiometry: element 1: a number expected, a text found"},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& [request, spoil, fault] : cases) {
      SCOPED_TRACE(testing::Message() << fault << ", thermo 1.1: " << thermo11);
      ResolverBench bench(thermo11);
      spoil(bench);
      EXPECT_EQ(bench.Fault(request), fault);
    }
}

/// The calls in their order, and the text when each fails; null for one that is done without.
TEST(ReactionResolver, ExplainsEveryFailingCall) {
  struct Call {
    const char* label;
    const char* fault;
  };
  const std::vector<Call> before = {
      {"QueryInterface ICapeReactionChemistry", "failed to obtain ICapeReactionChemistry interface"},
      {"GetReactionType A to B", "Failed to obtain reaction type for reaction \"A to B\": <why>"},
      {"GetReactionRateBasis A to B", "Failed to obtain reaction rate basis for reaction \"A to B\": <why>"},
      {"GetReactionConcBasis A to B", nullptr},
      {"GetReactionCompoundIds A to B", "Failed to obtain list of reaction compounds for reaction \"A to B\": <why>"},
  };
  const std::vector<Call> compounds[] = {
      {{"QueryInterface ICapeThermoMaterialObject",
        "failed to obtain ICapeThermoMaterialObject from material connected to inlet: <why>"},
       {"ComponentIds", "Failed to get compound IDs from material connected to inlet port: <why>"}},
      {{"QueryInterface ICapeThermoCompounds",
        "failed to obtain ICapeThermoCompounds from material connected to inlet: <why>"},
       {"GetCompoundList",
        "Failed to get compound IDs from material (GetCompoundList()) connected to inlet port: <why>"}},
  };
  const std::vector<Call> after = {
      {"GetStoichiometricCoefficients A to B",
       "Failed to obtain reaction stoichiometry data for reaction A to B: <why>"},
      {"GetReactionPhase A to B", "Failed to get reaction phase for reaction A to B: <why>"},
  };
  for (const bool thermo11 : {false, true})
    for (const FaultMode& mode : kFaultModes) {
      std::vector<Call> calls = before;
      calls.insert(calls.end(), compounds[thermo11].begin(), compounds[thermo11].end());
      calls.insert(calls.end(), after.begin(), after.end());
      for (std::size_t k = 1; k <= calls.size(); ++k) {
        const Call& call = calls[k - 1];
        SCOPED_TRACE(testing::Message() << call.label << ", " << mode.title << ", thermo 1.1: " << thermo11);
        ResolverBench bench(thermo11);
        bench.First().type = CAPE_KINETIC;
        const ReactionPackage package(bench.package.As<IDispatch>().Get());
        Provoke(*bench.script, mode, static_cast<int>(k));
        std::string fault = "none";
        try {
          ReactionResolver resolver(package, bench.unit->Inlet(0).ConnectedObject(), thermo11);
          EXPECT_EQ(
              resolver.Resolve({.name = kFirst, .wantsKind = true, .wantsConcentrationBasis = true}).concentrationBasis,
              "");
        } catch (const Failure& failure) {
          fault = failure.error.description;
        }
        EXPECT_EQ(bench.script->calls.at(k - 1), call.label);
        EXPECT_EQ(fault, call.fault ? Explain(call.fault, call.label, mode) : "none");
        bench.script->Restart();
        (void)bench.Resolve({kFirst});
      }
    }
}

}  // namespace morvelan::test::reaction_resolver
