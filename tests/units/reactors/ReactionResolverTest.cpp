// How reactions of a package are found and explained: what every reactor asks, whatever it does with them.

#include "reactions/ReactionResolver.h"
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
    const ReactionPackage known(package.As<IDispatch>().Get());
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

// What a host's failing calls and odd answers lead to is in the fault walk over the reactors.
TEST(ReactionResolver, ExplainsWhatItCannotUse) {
  struct {
    ReactionRequest request;
    void (*spoil)(ResolverBench&);
    const char* fault;
  } const cases[] = {
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
       [](ResolverBench& b) { b.First().type = CAPE_KINETIC, b.First().rateBasis = 2; },
       "Unknown reaction rate basis for reaction A to B; expected CAPE_HOMOGENEOUS or CAPE_HETEROGENEOUS"},
      {{kFirst},
       [](ResolverBench& b) { EXPECT_EQ(b.unit->Inlet(0).Disconnect(), S_OK); },
       "failed to obtain material from the (first) inlet port"},
      {{kFirst},
       [](ResolverBench& b) { b.First().compounds[1] = ""; },
       "reaction compound \"<NULL>\" is not present in (inlet-) material; unable to resolve compound"},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      ResolverBench bench(thermo11);
      c.spoil(bench);
      EXPECT_EQ(bench.Fault(c.request), c.fault) << "thermo 1.1: " << thermo11;
    }
}

}  // namespace morvelan::test::reaction_resolver
