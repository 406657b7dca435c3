// A FixedConversionReactor through the door that hosts use. Its feed is 2 mol/s of A at 300 K unless a case
// says otherwise; 100 W heat it by 1 K.

#include "tests/units/reactors/ReactorBench.h"

namespace morvelan::test::fixed_conversion_reactor {

// ---- Conversions

struct ConversionCase {
  const char* title;
  const char* names;
  const char* keys;
  const char* conversions;
  bool serial;
  std::vector<double> feed;     // [mol/s]
  std::vector<double> product;  // [mol/s]; empty for a failure
  const char* error = "";
  const char* errorName = "";
};

constexpr const char* kBoth = R"("A to B", "B to C")";

const ConversionCase kConversions[] = {
    {"in series", kBoth, R"("A", "B")", "0.5, 0.5", true, {1, 0, 0}, {0.5, 0.25, 0.25}},
    {"in parallel", kBoth, R"("A", "B")", "0.5, 0.5", false, {1, 0, 0}, {0.5, 0.5, 0}},
    {"in parallel, some B", kBoth, R"("A", "B")", "0.5, 0.5", false, {1, 1, 0}, {0.5, 1, 0.5}},
    {"in the other order", R"("B to C", "A to B")", R"("B", "A")", "0.5, 0.5", true, {1, 0, 0}, {0.5, 0.5, 0}},
    {"one alone is in series", R"("A to B")", R"("a")", "0.25", false, {1, 0, 1}, {0.75, 0.25, 1}},
    {"more moles", R"("A to 2B")", R"("A")", "0.5", false, {1, 0, 0}, {0.5, 1, 0}},
    {"by its product: backwards", R"("A to B")", R"("B")", "0.5", false, {1, 1, 0}, {1.5, 0.5, 0}},
    {"nothing", kBoth, R"("A", "B")", "0, 0", true, {0.5, 1, 1}, {0.5, 1, 1}},
    {"no key compound in the feed", R"("B to C")", R"("B")", "1", false, {1, 0, 0}, {1, 0, 0}},
    {"everything, in series", kBoth, R"("A", "B")", "1, 1", true, {0.3, 0.1, 0}, {0, 0, 0.4}},
    // (0.9 - 0.6 x 0.9 - 0.4 x 0.9 is less than zero in floating point.)
    {"everything, in parallel",
     R"("A to B", "A to 2B")",
     R"("A", "A")",
     "0.6, 0.4",
     false,
     {0.9, 0, 0},
     {0, 0.6 * 0.9 + 2 * 0.4 * 0.9, 0}},
    {"the same reaction twice", R"("A to B", "A to B")", R"("A", "A")", "0.5, 0.5", true, {1, 0, 0}, {0.25, 0.75, 0}},
    // Rounding is forgiven up to 2.2e-15 of what reacts in series, and of the whole feed in parallel.
    {"hardly too little of another", R"("A and B to C")", R"("A")", "1", true, {1, 1 - 1.5e-15, 0}, {0, 0, 1}},
    {"a trace too little of another",
     R"("A and B to C")",
     R"("A")",
     "1",
     true,
     {1, 1 - 4e-15, 0},
     {},
     "Conversion of 1 for compound A for reaction A and B to C caused negative concentrations of compound B",
     ""},
    {"a trace too much together",
     R"("A to B", "A to 2B")",
     R"("A", "A")",
     "0.6, 0.40000000000001",
     false,
     {1, 0, 0},
     {},
     "Specified conversions cause negative concentrations of compound A",
     "Conversion too high"},
    {"a trace too much together, of a large feed",
     R"("A to B", "A to 2B")",
     R"("A", "A")",
     "0.6, 0.40000000000001",
     false,
     {1, 0, 9},
     {0, 1.40000000000002, 9}},
    {"too little of another",
     R"("A and B to C")",
     R"("A")",
     "0.75",
     true,
     {1, 0.5, 0},
     {},
     "Conversion of 0.75 for compound A for reaction A and B to C caused negative concentrations of compound "
     "B",
     ""},
    {"too much together",
     R"("A to B", "A to 2B")",
     R"("A", "A")",
     "0.75, 0.5",
     false,
     {1, 0, 0},
     {},
     "Specified conversions cause negative concentrations of compound A",
     "Conversion too high"},
};

TEST(CFixedConversionReactor, Converts) {
  for (const bool thermo11 : {false, true})
    for (const ConversionCase& c : kConversions) {
      SCOPED_TRACE(testing::Message() << c.title << ", thermo 1.1: " << thermo11);
      ReactorBench bench(thermo11);
      bench.Select(c.names, c.keys, c.conversions, c.serial);
      bench.Feed(c.feed);
      if (c.product.empty()) {
        CheckFailedCalculation(bench.door, c.error, *c.errorName ? c.errorName : c.error);
        EXPECT_EQ(bench.At("Outlet").written.size(), 0u) << "the outlet is untouched";
        EXPECT_NE(bench.door.Report("Last run").find(c.error), std::string::npos);
        continue;
      }
      bench.Calculate();
      const std::vector<double> flows = bench.Flows();
      for (std::size_t i = 0; i < flows.size(); ++i) EXPECT_NEAR(flows[i], c.product[i], 2e-15 * c.product[i]) << i;
      EXPECT_EQ(bench.At("Inlet").written.size(), 0u) << "the feed is untouched";
    }
}

TEST(CFixedConversionReactor, TakesNoMoreThanThereIs) {
  // Whatever rounding makes of it: n - 3 (n / 3) is not zero for every n.
  for (int i = 1; i <= 200; ++i) {
    ReactorBench bench;
    bench.Select(R"("3A to B")", R"("A")", "1");
    bench.Feed({i * 0.0137, 0.1, 0});
    bench.Calculate();
    EXPECT_GE(bench.Flows()[0], 0) << i;
    EXPECT_LE(bench.Flows()[0], 1e-15 * i) << i;
    EXPECT_NEAR(bench.Flows()[1], 0.1 + i * 0.0137 / 3, 1e-14) << i;
  }
}

// ---- The heat balance

struct HeatCase {
  const char* type;
  const char* enthalpy;
  const char* reaction;
  double given;  // [K] or [W]
  double temperature;
  double duty;
  const char* flash;
};

constexpr const char* kF = "Use EnthalpyF";
constexpr const char* kPlain = "Use Enthalpy (no heat of reaction)";
constexpr const char* kAndHeat = "Use Enthalpy and heat of reaction";

// Half of the feed of 2 mol/s reacts: the extent is 1 mol/s. From H_in = 30000 W (of either kind, for A is an
// element here) follows
//   A to B:  H = 2 * 50 T, HF = H - 10000;  A to 2B:  H = 3 * 50 T, HF = H - 2 * 10000.
const HeatCase kHeatCases[] = {
    {"Heat duty", kF, "A to B", 0, 400, 0, "PH"},
    {"Heat duty", kF, "A to B", 1000, 410, 1000, "PH"},
    {"Heat duty", kF, "A to 2B", 0, 50000. / 150, 0, "PH"},
    {"Heat duty", kPlain, "A to B", 0, 300, 0, "PH"},
    {"Heat duty", kPlain, "A to 2B", -1000, 29000. / 150, -1000, "PH"},
    {"Heat duty", kAndHeat, "A to B", 0, 400, 0, "PH"},
    {"Heat duty", kAndHeat, "A to 2B", 1000, 51000. / 150, 1000, "PH"},
    {"Energy inlet", kF, "A to B", -2000, 380, -2000, "PH"},
    {"Energy inlet", kAndHeat, "A to B", -2000, 380, -2000, "PH"},
    {"Isothermal", kF, "A to B", 350, 350, -5000, "TP"},
    {"Isothermal", kF, "A to 2B", 350, 350, 2500, "TP"},
    {"Isothermal", kPlain, "A to B", 350, 350, 5000, "TP"},
    {"Isothermal", kAndHeat, "A to B", 350, 350, -5000, "TP"},
};

TEST(CFixedConversionReactor, ClosesItsHeatBalance) {
  for (const bool thermo11 : {false, true})
    for (const bool quiet : {false, true})
      for (const HeatCase& c : kHeatCases) {
        SCOPED_TRACE(testing::Message() << c.type << ", " << c.enthalpy << ", " << c.reaction << ", " << c.given
                                        << ", thermo 1.1: " << thermo11 << ", quiet: " << quiet);
        ReactorBench bench(thermo11);
        const std::string type = c.type;
        bench.Select('"' + std::string(c.reaction) + '"', R"("A")", "0.5");
        bench.Put("Heat duty type", c.type);
        bench.Put("Enthalpy Type", c.enthalpy);
        if (type == "Energy inlet")
          bench.ConnectHeat(c.given, {}, {}, "HeatDutySpecification");
        else
          bench.Put(type == "Isothermal" ? "Temperature" : "Heat duty", c.given);
        if (type != "Energy inlet") bench.ConnectHeat(-1, {}, {}, "Heat duty");
        if (quiet) bench.AskForSimplifiedModel();
        bench.Calculate();
        EXPECT_NEAR(bench.At("Outlet").temperature, c.temperature, 1e-10 * c.temperature);
        EXPECT_NEAR(bench.Number("Temperature"), c.temperature, 1e-10 * c.temperature);
        EXPECT_NEAR(bench.Number("Heat duty"), c.duty, 1e-8) << "W of 30000";
        EXPECT_NEAR(com::ReadDouble(bench.heat->parameters[0]->value.Get()), c.duty, 1e-8) << "at the port";
        EXPECT_EQ(bench.Flashes(), c.flash);
        EXPECT_EQ(bench.CallsOf("GetReactionPhase"), 1) << "resolved once";
        EXPECT_EQ(bench.CallsOf("SetMaterial"), c.enthalpy == kAndHeat ? 1 : 0);
        EXPECT_FALSE(bench.package->material) << "the package keeps nothing";
        EXPECT_EQ(bench.context->log, std::vector<std::string>{});
      }
}

TEST(CFixedConversionReactor, HandsTheMaterialOverAsThePackageTakesIt) {
  struct {
    const char* title;
    bool context, older, routine;
    std::vector<std::string> calls;
  } const cases[] = {
      {"context and routine",
       true,
       true,
       true,
       {"SetMaterial", "CalcReactionProp enthalpyOfReaction/Overall/[A to B]/Mole",
        "GetReactionProp enthalpyOfReaction/Overall/[A to B]/Mole", "UnsetMaterial"}},
      {"by name",
       false,
       true,
       false,
       {"GetIDsOfNames", "Invoke SetMaterial", "GetReactionProp enthalpyOfReaction/Overall/[A to B]/Mole"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.title);
    FakePackageState state = ReactorPackage();
    state.offersMaterialContext = c.context;
    state.offersThermoContext = c.older;
    state.offersRoutine = c.routine;
    ReactorBench bench(true, "FixedConversionReactor", state);
    bench.Select(R"("A to B")", R"("A")", "0.5");
    bench.Put("Enthalpy Type", kAndHeat);
    bench.Calculate();
    EXPECT_NEAR(bench.Number("Temperature"), 400, 1e-9) << "with the heat of reaction at the feed's 300 K";
    std::vector<std::string> calls;
    for (const std::string& call : bench.script->calls)
      if (std::ranges::any_of(c.calls, [&](const std::string& wanted) { return call == wanted; }))
        calls.push_back(call);
    EXPECT_EQ(calls, c.calls);
  }
  // A package that takes no material gives what it gives without: 0 K in the fake, at which A to B has
  // -13000 J/mol.
  FakePackageState state = ReactorPackage();
  state.offersMaterialContext = false;
  ReactorBench bench(true, "FixedConversionReactor", state);
  bench.Select(R"("A to B")", R"("A")", "0.5");
  bench.Put("Enthalpy Type", kAndHeat);
  bench.Calculate();
  EXPECT_NEAR(bench.Number("Temperature"), 430, 1e-9);
}

TEST(CFixedConversionReactor, RefusesHeatsOfReactionThatAreNone) {
  struct {
    com::Variant (*answer)();
    const char* why;
  } const cases[] = {
      {[] { return com::MakeDoubles(std::array{kNaN}); }, "value is not set"},
      {[] { return com::MakeDoubles(std::array{kMissing}); }, "value is not set"},
      {[] { return com::MakeDoubles(std::array{std::numeric_limits<double>::infinity()}); }, "value is infinite"},
      {[] {
         return com::MakeDoubles(std::array{1.0, 2.0});
       },
       "scalar expected"},
      {[] { return com::MakeStrings(std::vector<std::string>{"hot"}); }, "element 1: a number expected, a text found"},
      {[] { return com::Variant(); }, "an array of numbers expected, nothing found"},
  };
  for (const auto& c : cases) {
    ReactorBench bench;
    bench.Select(R"("A to B")", R"("A")", "0.5");
    bench.Put("Enthalpy Type", kAndHeat);
    bench.script->oddAnswers["GetReactionProp enthalpyOfReaction"] = c.answer;
    const std::string text = std::string("failed to get property enthalpyOfReaction for reaction A to B: ") + c.why;
    EXPECT_EQ(bench.door.unit->Calculate(), kUnitFailed);
    EXPECT_EQ(ErrorOf(bench.door.unit.Get()), (Texts{"GetReactionProperty failed", text, "Calculate", "BaseReactor"}));
    EXPECT_EQ(bench.At("Outlet").written.size(), 0u);
    bench.Put("Enthalpy Type", kF);
    bench.Calculate();
  }
}

TEST(CFixedConversionReactor, GoesOnWithoutADutyThatCannotBeFound) {
  ReactorBench bench;
  bench.Select(R"("A to B")", R"("A")", "0.5");
  bench.Put("Heat duty type", "Isothermal");
  bench.Put("Temperature", 350);
  bench.ConnectHeat(0, {}, {}, "Heat duty");
  bench.At("Outlet").statuses = {CAPE_UNKNOWNPHASESTATUS};
  bench.Calculate();
  EXPECT_EQ(bench.At("Outlet").temperature, 350);
  EXPECT_EQ(com::ReadDouble(bench.heat->parameters[0]->value.Get()), kMissing);
  EXPECT_EQ(bench.Number("Heat duty"), kMissing);
  const std::string report = bench.door.Report("Last run");
  EXPECT_NE(report.find("Heat duty cannot be determined: Failed to calculate overall enthalpyF; phase Vapor is "
                        "reported not to be in equilibrium\r\n"),
            std::string::npos)
      << report;
  EXPECT_NE(report.find("Heat duty:\tN/A\r\n"), std::string::npos);
}

// ---- The feed

TEST(CFixedConversionReactor, PassesNoFeedOn) {
  struct {
    const char* type;
    bool quiet;
  } const cases[] = {{"Isothermal", false}, {"Heat duty", false}, {"Energy inlet", false}, {"Isothermal", true}};
  for (const auto& [type, quiet] : cases) {
    SCOPED_TRACE(testing::Message() << type << ", quiet: " << quiet);
    ReactorBench bench;
    bench.Select(R"("A to B")", R"("A")", "0.5");
    bench.Put("Heat duty type", type);
    if (*type == 'I') bench.Put("Temperature", 350);  // there is nothing to heat
    if (quiet) bench.AskForSimplifiedModel();
    bench.Put("Pressure drop", 2e4);
    if (*type == 'E') bench.ConnectHeat(1000, {}, {}, "HeatDutySpecification");
    bench.At("Inlet").flow = 0;
    bench.Calculate();
    const FakeState& product = bench.At("Outlet");
    EXPECT_EQ(product.temperature, 300);
    EXPECT_EQ(product.pressure, 8e4);
    EXPECT_EQ(product.flow, 0);
    EXPECT_EQ(product.fractions, bench.At("Inlet").fractions);
    EXPECT_EQ(bench.Number("Heat duty"), 0);
    const std::vector<std::string> warning = {"WARNING: FixedConversionReactor R-1: Zero flow; bypassing calculations"};
    EXPECT_EQ(bench.context->log, quiet ? std::vector<std::string>{} : warning);
    bench.At("Inlet").flow = -1e-9;
    CheckFailedCalculation(bench.door, "Negative flow on inlet", "underflow");
  }
}

TEST(CFixedConversionReactor, LowersThePressure) {
  const std::string kLimit = "FixedConversionReactor \"R-1\" warning: limiting outlet pressure to 1 Pa";
  struct {
    double drop, outlet;
    bool warns;
  } const cases[] = {{0, 1e5, false}, {2e4, 8e4, false}, {99999, 1, false}, {99999.5, 1, true}, {2e5, 1, true}};
  for (const bool quiet : {false, true})
    for (const auto& c : cases) {
      ReactorBench bench;
      bench.Select(R"("A to B")", R"("A")", "0.5");
      bench.Put("Pressure drop", c.drop);
      if (quiet) bench.AskForSimplifiedModel();
      bench.Calculate();
      EXPECT_EQ(bench.At("Outlet").pressure, c.outlet);
      EXPECT_EQ(bench.context->log, c.warns && !quiet ? std::vector<std::string>{kLimit} : std::vector<std::string>{});
      EXPECT_EQ(bench.door.Report("Last run") == "Report is not available", quiet);
    }
}

TEST(CFixedConversionReactor, NotesPhasesOtherThanThoseOfItsReactions) {
  const FakePhase kVapor = {"Vapor", "Vapor", 1, {}}, kLiquid = {"Liquid", "Liquid", 1, {}};
  const FakePhase kNoLiquid = {"Liquid", "Liquid", 0, {}};
  const std::string kStart = "FixedConversionReactor \"R-1\"";
  struct {
    std::vector<FakePhase> phases;
    const char* reactionPhase;
    std::string note;
  } const cases[] = {
      {{kVapor}, "vapor", ""},
      {{kVapor}, "Overall", ""},
      {{kVapor, kNoLiquid}, "Vapor", ""},
      {{kVapor, kLiquid},
       "Vapor",
       kStart + " warning: Multiple phases (Vapor, Liquid) are present in reactor. All reactions will be "
                "performed "
                "on OVERALL phase."},
      {{kLiquid},
       "Vapor",
       kStart + "warning: phase defined for reaction A to B is Vapor but phase present is Liquid. Reaction is be "
                "performed anyway."},
  };
  for (const bool thermo11 : {false, true})
    for (const auto& c : cases) {
      ReactorBench bench(thermo11);
      bench.Select(R"("A to B")", R"("A")", "0.5");
      bench.package->state.reactions[0].phase = c.reactionPhase;
      bench.At("Outlet").phases = c.phases;
      bench.Calculate();
      EXPECT_EQ(bench.context->log, c.note.empty() ? std::vector<std::string>{} : std::vector{c.note});
    }
}

// ---- The report

TEST(CFixedConversionReactor, Reports) {
  for (const auto& [enthalpy, line] :
       {std::pair{kF, "Using enthalpyF in enthalpy calculations"},
        {kPlain, "Using enthalpy in enthalpy calculations; assuming this includes heat of formation"},
        {kAndHeat, "Using enthalpy and heat of reaction in enthalpy calculations"}}) {
    ReactorBench bench;
    EXPECT_EQ(bench.door.Report("Last run"), "Report is not available");
    bench.Select(R"("A to B")", R"("A")", "0.5");
    bench.Put("Enthalpy Type", enthalpy);
    bench.Put("Heat duty", 1000);
    bench.ConnectHeat(0, {}, {}, "Heat duty");
    bench.Calculate();
    const std::string temperature = enthalpy == std::string(kPlain) ? "310" : "410";
    EXPECT_EQ(bench.door.Report("Last run"),
              std::string("+++ specifications +++\r\n\r\n") + line +
                  "\r\n\r\n+++ reactions, parallel +++\r\n\r\nConversion A reaction A to B:\t0.5\r\n"
                  "Extent of reaction \"A to B\":\t1 mol/s\r\n"
                  "Heat duty to outlet energy port: 1000 W (positive is consumed by the reactor)\r\n"
                  "\r\n+++ optional parameters +++\r\nPressure drop:\t0 Pa\r\nHeat duty type:\tHeat duty\r\n"
                  "Temperature:\t" +
                  temperature + " K\r\nHeat duty:\t1000 W\r\nEnthalpy Type:\t" + enthalpy +
                  "\r\nThermo Version:\t1.1\r\n");
  }
}

}  // namespace morvelan::test::fixed_conversion_reactor
