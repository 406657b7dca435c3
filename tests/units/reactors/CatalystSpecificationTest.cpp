// What must be given of a CSTR's volume and catalyst, through the door that hosts use.

#include "tests/units/reactors/CstrBench.h"
#include "units/reactors/CatalystSpecification.h"

namespace morvelan::test::catalyst_specification {

constexpr const char* kVolumeMissing =
    "Error: reactor volume is not specified, and at least 1 homogeneous kinetic reaction is present.";
constexpr const char* kMassNotPositive = "Catalyst mass can be unspecified, but zero or negative values are not valid.";
constexpr const char* kInconsistent =
    "Catalyst mass, density and volume are not consistent. Please specify two out of three or make "
    "specifications consistent so that volume * density=mass.";
constexpr const char* kHeterogeneous =
    "When heterogeneous kinetic reactions are used, specify either catalyst mass or catalyst volume and "
    "density.";
constexpr const char* kBothKinds =
    "When heterogeneous and homogeneous kinetic reactions are used, please make sure two out of three are "
    "specified for catalyst mass, volume and density.";
constexpr const char* kHom = R"("K1")";
constexpr const char* kHet = R"("H1")";
constexpr const char* kBoth = R"("K1", "H2")";
constexpr const char* kNeither = R"("E1")";

using Given = std::optional<double>;
constexpr Given kNo = std::nullopt;

struct Case {
  const char* title;
  const char* reactions;
  Given reactorVolume, mass, volume, density;
  const char* message;
};

const Case kCases[] = {
    {"equilibrium: nothing needed", kNeither, kNo, kNo, kNo, kNo, "valid"},
    {"equilibrium: what is given is checked", kNeither, 0, kNo, kNo, kNo,
     "Error: zero or negative values for reactor volume are not valid."},
    {"homogeneous: no volume", kHom, kNo, kNo, kNo, kNo, kVolumeMissing},
    {"homogeneous: no volume, though a bad catalyst", kHom, kNo, 0, 0, kNo, kVolumeMissing},
    {"homogeneous: volume alone", kHom, 2, kNo, kNo, kNo, "valid"},
    {"homogeneous: no volume but zero", kHom, 0, 0, 0, kNo,
     "Error: zero or negative values for reactor volume are not valid."},
    {"catalyst of no volume", kHom, 2, 0, 0, kNo, "Error: zero or negative values for catalyst volume are not valid."},
    {"catalyst of no mass", kHom, 2, 0, kNo, kNo, kMassNotPositive},
    {"catalyst of no mass, though it follows", kHet, kNo, 0, 2, 500, kMassNotPositive},
    {"heterogeneous: nothing", kHet, kNo, kNo, kNo, kNo, kHeterogeneous},
    {"heterogeneous: volume alone", kHet, kNo, kNo, 2, kNo, kHeterogeneous},
    {"heterogeneous: density alone", kHet, 5, kNo, kNo, 500, kHeterogeneous},
    {"heterogeneous: mass alone", kHet, kNo, 900, kNo, kNo, "valid"},
    {"heterogeneous: volume and density", kHet, kNo, kNo, 2, 500, "valid"},
    {"heterogeneous: mass and density", kHet, kNo, 900, kNo, 500, "valid"},
    {"all three, inconsistent", kHet, kNo, 900, 2, 500, kInconsistent},
    {"all three, inconsistent, but not needed", kNeither, kNo, 900, 2, 500, kInconsistent},
    {"all three", kHet, kNo, 1000, 2, 500, "valid"},
    {"all three, within 1e-6", kHet, kNo, 1000.0009, 2, 500, "valid"},
    {"all three, beyond 1e-6", kHet, kNo, 1000.0011, 2, 500, kInconsistent},
    {"both kinds: volume alone", kBoth, 5, kNo, kNo, kNo, kBothKinds},
    {"both kinds: and mass", kBoth, 5, 900, kNo, kNo, kBothKinds},
    {"both kinds: no reactor volume", kBoth, kNo, 900, 2, kNo, kVolumeMissing},
    {"both kinds: mass and volume", kBoth, 5, 900, 2, kNo, "valid"},
    {"both kinds: mass and density", kBoth, 5, 900, kNo, 500, "valid"},
    {"both kinds: volume and density", kBoth, 5, kNo, 2, 500, "valid"},
    {"no room beside the catalyst", kBoth, 2, kNo, 2, 500,
     "Error: a catalyst of 2 m3 leaves nothing of the reactor volume of 2 m3."},
    {"no room beside the catalyst whose volume follows", kBoth, 1.5, 900, kNo, 500,
     "Error: a catalyst of 1.8 m3 leaves nothing of the reactor volume of 1.5 m3."},
};

TEST(CatalystSpecification, IsValidatedByTheReactor) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.title);
    CstrBench bench;
    bench.Select(c.reactions);
    const auto put = [&](const char* parameter, Given value) {
      if (value) bench.Put(parameter, *value);
    };
    put("Reactor volume", c.reactorVolume);
    put("Catalyst mass", c.mass);
    put("Catalyst volume", c.volume);
    put("Catalyst density", c.density);
    EXPECT_EQ(bench.Fault(), c.message);
  }
}

// A density of zero is outside the parameter's bounds already.
TEST(CatalystSpecification, RefusesADensityOfZero) {
  CstrBench bench;
  EXPECT_EQ(bench.Put("Catalyst density", com::MakeDouble(0)), kUnitFailed);
  const CatalystSpecification none{.reactorVolume = {}, .mass = {}, .volume = {}, .density = 0};
  EXPECT_EQ(none.FindFault(false, false), "Error: zero or negative values for catalyst density are not valid.");
}

// What follows from two is not written back: it would contradict them once one of them changes.
TEST(CatalystSpecification, KeepsWhatFollowsToItself) {
  CstrBench bench;
  bench.Select(kHet);
  bench.Put("Catalyst volume", 2);
  bench.Put("Catalyst density", 500);
  bench.Calculate();
  EXPECT_EQ(bench.Number("Catalyst mass"), kMissing);
  bench.Put("Catalyst density", 600);
  EXPECT_EQ(bench.Fault(), "valid");
}

}  // namespace morvelan::test::catalyst_specification
