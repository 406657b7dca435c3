// A unit's life through its COM interfaces: initialization, context, validation, calculation and reports.

#include <gtest/gtest.h>

#include <stdexcept>

#include "material/Names.h"
#include "tests/support/Approved.h"
#include "tests/support/Door.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/MessageBoxes.h"
#include "tests/support/TestUnit.h"

namespace morvelan::test::base_unit {

constexpr PortDeclaration kHeatPorts[] = {
    {"Inlet", "feed", CAPE_INLET},
    {"Outlet", "product", CAPE_OUTLET},
    {"Heat", "heat", CAPE_INLET, CAPE_ENERGY, kEnergyItems},
    {"Loss", "loss", CAPE_OUTLET, CAPE_ENERGY, kEnergyItems},
};
constexpr InformationItem kNumber[] = {{"number", ""}};
constexpr PortDeclaration kSignalPorts[] = {
    {"Inlet", "feed", CAPE_INLET},
    {"Signal", "signal", CAPE_INLET, CAPE_INFORMATION, kNumber},
    {"Outlet", "product", CAPE_OUTLET},
};

/// The error of a unit's own interface that has one text.
Texts Saying(const std::string& text, const std::string& scope) { return {text, text, scope, "ICapeUnit"}; }

/// A unit and a host for it.
struct Bench {
  explicit Bench(const TestDeclaration& declaration = kTestUnit) : unit(com::Make<TestUnit>(declaration)) {
    EXPECT_EQ(unit->Initialize(), S_OK);
  }

  static com::Ref<IUnknown> Unknown(const com::Ref<TestUnit>& object) {
    return com::Query<IUnknown>(static_cast<ICapeUnit*>(object.Get()));
  }
  IDispatch* Context() { return static_cast<ICapeIdentification*>(context.Get()); }
  com::Ref<FakeMaterial> Connect(CUnitPort& port) {
    auto material = com::Make<FakeMaterial>(script);
    EXPECT_EQ(port.Connect(static_cast<ICapeIdentification*>(material.Get())), S_OK);
    return material;
  }
  void ConnectBoth() {
    feed = Connect(unit->Inlet(0));
    product = Connect(unit->Outlet(0));
  }
  Texts Error() { return ErrorOf(static_cast<ICapeUnit*>(unit.Get())); }

  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  com::Ref<FakeContext> context = com::Make<FakeContext>(script);
  com::Ref<TestUnit> unit;
  com::Ref<FakeMaterial> feed;
  com::Ref<FakeMaterial> product;
  UnitDoor door{Unknown(unit)};
};

struct StatusResult {
  CapeValidationStatus* Put() { return &status; }
  CapeValidationStatus status;
};

struct EntryPoint {
  const char* scope;
  HRESULT (*call)(BaseUnit&);
  HRESULT (*callWithNull)(BaseUnit&);  // null when it takes no pointer that it writes to
};

template <auto kGetter, class Result>
constexpr EntryPoint Getter(const char* scope) {
  return {scope,
          [](BaseUnit& u) {
            Result result;
            return (u.*kGetter)(result.Put());
          },
          [](BaseUnit& u) { return (u.*kGetter)(nullptr); }};
}

const EntryPoint kEntryPoints[] = {
    {"Calculate", [](BaseUnit& u) { return u.Calculate(); }, nullptr},
    {"Edit", [](BaseUnit& u) { return u.Edit(); }, nullptr},
    {"Validate",
     [](BaseUnit& u) {
       com::Bstr message;
       VARIANT_BOOL valid;
       return u.Validate(message.Put(), &valid);
     },
     [](BaseUnit& u) { return u.Validate(nullptr, nullptr); }},
    Getter<&BaseUnit::get_ValStatus, StatusResult>("get_ValStatus"),
    Getter<&BaseUnit::get_ports, com::Ref<IDispatch>>("get_ports"),
    Getter<&BaseUnit::get_parameters, com::Ref<IDispatch>>("get_parameters"),
    Getter<&BaseUnit::get_reports, com::Variant>("get_reports"),
    Getter<&BaseUnit::get_selectedReport, com::Bstr>("get_selectedReport"),
    Getter<&BaseUnit::ProduceReport, com::Bstr>("ProduceReport"),
    {"put_selectedReport", [](BaseUnit& u) { return u.put_selectedReport(com::ToBstr("Status").Get()); }, nullptr},
};

void ExpectAllGuarded(TestUnit& unit) {
  for (const EntryPoint& entry : kEntryPoints) {
    SCOPED_TRACE(entry.scope);
    EXPECT_EQ(entry.call(unit), kFailed);
    EXPECT_EQ(ErrorOf(static_cast<ICapeUnit*>(&unit)), Saying("Initialize not called", entry.scope));
  }
}

/// A unit whose ports can't be created.
class Portless final : public BaseUnit {
 public:
  Portless() : BaseUnit({.name = "Portless", .description = ""}) { declare.Port(feed, "Inlet", "feed"); }
  void CalculateUnit(int, std::optional<com::Name>&) override {}

 protected:
  void CreateObjects() override {
    BaseUnit::CreateObjects();
    if (fails) throw Failure(UnitError{"title", "no room for port Inlet", "AddPort", "CUnitPort"});
  }

 public:
  bool fails = true;
  InletStream feed;
};

TEST(BaseUnit, InitializesWholeOrNotAtAll) {
  const auto unit = com::Make<Portless>();
  EXPECT_EQ(unit->Initialize(), kFailed);
  EXPECT_EQ(ErrorOf(static_cast<ICapeUnit*>(unit.Get())), Saying("no room for port Inlet", "Initialize"));
  EXPECT_EQ(unit->Calculate(), kFailed);
  unit->fails = false;
  EXPECT_EQ(unit->Initialize(), S_OK);
  EXPECT_EQ(unit->Declarations().ports.All().size(), 1u);
}

TEST(BaseUnit, AnswersOnlyAfterInitializeAndUntilTerminate) {
  const auto unit = com::Make<TestUnit>(kTestUnit);
  ExpectAllGuarded(*unit);
  EXPECT_EQ(unit->Terminate(), S_OK);
  EXPECT_EQ(unit->Initialize(), S_OK);
  EXPECT_EQ(unit->Initialize(), S_OK);
  EXPECT_EQ(unit->Declarations().ports.All().size(), 2u) << "a second Initialize adds nothing";
  for (const EntryPoint& entry : kEntryPoints) {
    if (std::string_view(entry.scope) == "Calculate" || std::string_view(entry.scope) == "Edit") continue;
    EXPECT_EQ(entry.call(*unit), S_OK) << entry.scope;
  }
  const UnitDoor door(Bench::Unknown(unit));
  const com::Ref<ICapeCollection> collections[] = {door.Ports(), door.Parameters()};
  EXPECT_EQ(TextFrom(collections[1].Get(), &ICapeIdentification::get_ComponentName), "Parameter Collection");
  EXPECT_EQ(unit->Terminate(), S_OK);
  ExpectAllGuarded(*unit);
  for (const auto& collection : collections) {
    LONG count = 0;
    EXPECT_EQ(collection->Count(&count), kFailed);
    EXPECT_EQ(ErrorOf(collection.Get()),
              (Texts{"Initialize not called", "Initialize not called", "Count", "ICapeCollection"}));
    com::Ref<IDispatch> item;
    EXPECT_EQ(collection->Item(com::MakeInteger(1).Get(), item.Put()), kFailed);
    EXPECT_EQ(ErrorOf(collection.Get()).scope, "Item");
  }
}

TEST(BaseUnit, RefusesNullPointersAndKeepsItsError) {
  const auto unit = com::Make<TestUnit>(kTestUnit);
  EXPECT_EQ(unit->Calculate(), kFailed);
  const Texts before = ErrorOf(static_cast<ICapeUnit*>(unit.Get()));
  for (const EntryPoint& entry : kEntryPoints)
    if (entry.callWithNull) EXPECT_EQ(entry.callWithNull(*unit), E_POINTER) << entry.scope;
  ICapeUnit* door = unit.Get();
  EXPECT_EQ(ErrorOf(door), before);
  EXPECT_EQ(unit->get_ComponentName(nullptr), E_POINTER);
  LONG code = 0;
  EXPECT_EQ(unit->get_code(&code), S_OK);
  EXPECT_EQ(code, kFailed);
  EXPECT_EQ(TextFrom(door, &ECapeUser::get_operation), "Calculate");
  EXPECT_EQ(TextFrom(door, &ECapeUser::get_moreInfo), "");
  EXPECT_TRUE(com::Query<ECapeUnknown>(door));
}

TEST(BaseUnit, LeavesItsObjectsWithTheHostInOneStatus) {
  com::Ref<ICapeParameter> parameter;
  com::Ref<ICapeCollection> parameters;
  com::Ref<ICapeUnitPort> port;
  {
    Bench bench;
    parameter = bench.door.Parameter("Thermo Version");
    parameters = bench.door.Parameters();
    port = bench.door.Port("Inlet");
  }
  EXPECT_EQ(parameter->put_value(com::MakeString("1.1").Get()), S_OK);
  LONG count = 0;
  EXPECT_EQ(parameters->Count(&count), kFailed);
  EXPECT_EQ(ErrorOf(parameters.Get()),
            (Texts{"internal error", "internal error: unit not set for param collection", "Count", "ICapeCollection"}));
  const auto material = com::Make<FakeMaterial>(std::make_shared<HostScript>());
  EXPECT_EQ(port->Connect(static_cast<ICapeIdentification*>(material.Get())), kFailed);
}

TEST(BaseUnit, TakesTheHostsThermoVersion) {
  const struct {
    const char* title;
    com::Variant (*value)();
    const char* version;  // of the unit afterwards
  } cases[] = {{"known version", [] { return com::MakeString("1.1"); }, "1.1"},
               {"unknown version", [] { return com::MakeString("1.2"); }, "1.0"},
               {"number", [] { return com::MakeDouble(1.1); }, "1.0"}};
  std::string text;
  for (const auto& c : cases)
    for (const bool beforeInitialize : {false, true}) {
      text += std::string(c.title) + (beforeInitialize ? " before Initialize:" : ":");
      SCOPED_TRACE(text);
      Bench bench;
      const auto unit = beforeInitialize ? com::Make<TestUnit>(kTestUnit) : bench.unit;
      bench.context->namedValues["DefaultThermoVersion"] = c.value();
      EXPECT_EQ(unit->put_simulationContext(bench.Context()), S_OK);
      EXPECT_EQ(unit->Initialize(), S_OK);
      const UnitDoor door(Bench::Unknown(unit));
      EXPECT_EQ(door.ParameterText("thermo version"), c.version);
      for (const std::string& line : bench.context->log) text += ' ' + line;
      text += '\n';
      EXPECT_EQ(door.Parameter("Thermo Version")->Reset(), S_OK);
      EXPECT_EQ(door.ParameterText("Thermo Version"), "1.0") << "the default is not the host's choice";
      EXPECT_EQ(unit->put_simulationContext(nullptr), S_OK);
      EXPECT_EQ(bench.context->References(), 1u);
    }
  ExpectApproved("framework/host-thermo-version", text);
}

TEST(BaseUnit, PrefersTheUsersThermoVersionToTheHosts) {
  Bench bench;
  EXPECT_EQ(bench.door.Parameter("Thermo Version")->put_value(com::MakeString("1.0").Get()), S_OK);
  bench.context->namedValues["DefaultThermoVersion"] = com::MakeString("1.1");
  EXPECT_EQ(bench.unit->put_simulationContext(bench.Context()), S_OK);
  EXPECT_EQ(bench.door.ParameterText("Thermo Version"), "1.0");
  // A material that offers both generations decides anew.
  bench.ConnectBoth();
  EXPECT_EQ(bench.door.ParameterText("Thermo Version"), "1.1");
}

// Two readings of the list, one of the value, one line for the log: whichever fails, the rest goes on.
TEST(BaseUnit, SurvivesAContextThatFails) {
  const std::vector<std::string> all = {"NamedValueList", "NamedValue DefaultThermoVersion", "LogMessage",
                                        "NamedValueList"};
  for (std::size_t k = 0; k <= all.size(); ++k) {
    SCOPED_TRACE(k);
    Bench bench;
    bench.context->namedValues["defaultThermoVersion"] = com::MakeString("1.3");
    bench.context->namedValues["SIMPLIFIEDMODELREQUEST"] = com::MakeBoolean(true);
    bench.context->ignoresCase = true;
    bench.script->Restart();
    bench.script->failAt = static_cast<int>(k);
    EXPECT_EQ(bench.unit->put_simulationContext(bench.Context()), S_OK);
    if (k == 0) EXPECT_EQ(bench.script->calls, all);
    EXPECT_EQ(bench.script->calls.back(), "NamedValueList");
    bench.script->Restart();
    bench.ConnectBoth();
    bool quiet = false;
    bench.unit->onCalculate = [&](std::optional<com::Name>&) { quiet = bench.unit->simplifiedModelRequested; };
    EXPECT_EQ(bench.unit->Calculate(), S_OK);
    EXPECT_EQ(quiet, k != all.size());
    EXPECT_EQ(bench.unit->put_simulationContext(nullptr), S_OK);
    EXPECT_EQ(bench.unit->Calculate(), S_OK);
    EXPECT_FALSE(quiet) << "what the context supported went with it";
  }
}

TEST(BaseUnit, RefusesAContextWithoutDispatchInterface) {
  Bench bench;
  bench.context->hidesDispatch = true;
  EXPECT_EQ(bench.unit->put_simulationContext(bench.Context()), kFailed);
  EXPECT_EQ(bench.Error(), (Texts{"could not obtain IDispatch from simulation context",
                                  "could not obtain IDispatch from simulation context in put_simulationContext",
                                  "put_simulationContext", "ICapeUtilities"}));
}

TEST(BaseUnit, LetsGoOfWhatItWasGivenWhileTerminated) {
  Bench bench;
  const auto port = bench.door.Port("Inlet");
  EXPECT_EQ(bench.unit->Terminate(), S_OK);
  const auto material = com::Make<FakeMaterial>(bench.script);
  EXPECT_EQ(port->Connect(static_cast<ICapeIdentification*>(material.Get())), S_OK);
  EXPECT_EQ(bench.unit->put_simulationContext(bench.Context()), S_OK);
  EXPECT_EQ(bench.unit->Terminate(), S_OK);
  EXPECT_EQ(material->References(), 1u);
  EXPECT_EQ(bench.context->References(), 1u);
}

TEST(BaseUnit, KnowsWhereItsThermoVersionStands) {
  for (const auto& [index, usesThermo11] : {std::pair(-1, false), std::pair(0, true), std::pair(1, true)}) {
    SCOPED_TRACE(index);
    Bench bench;
    EXPECT_EQ(bench.unit->Parameter(0).put_value(com::MakeString("1.1").Get()), S_OK);
    bench.unit->thermoVersionIndex = index;
    std::string message;
    (void)bench.door.IsValid(message);
    EXPECT_EQ(bench.unit->UsesThermo11(), usesThermo11);
  }
}

TEST(BaseUnit, ShowsErrorsInThePopUpOrAMessageBox) {
  Bench bench;
  EXPECT_EQ(MessageBoxesOf([&] { bench.unit->ShowError("nowhere"); }), "Unit Operation error: nowhere\n");
  bench.unit->LogToHost("to nobody");
  EXPECT_EQ(bench.unit->put_simulationContext(bench.Context()), S_OK);
  bench.unit->ShowError("in the pop-up");
  EXPECT_EQ(bench.context->popUps, std::vector<std::string>{"in the pop-up"});
  bench.script->Restart();
  bench.script->failAt = 1;
  EXPECT_EQ(MessageBoxesOf([&] { bench.unit->ShowError("refused"); }), "Unit Operation error: refused\n");
}

/// Lets the unit check its specification in another way.
template <auto kCheck>
void CheckWith(Bench& bench) {
  bench.unit->onValidate = [&bench](std::string& message) -> bool { return kCheck(bench, message); };
}

struct ValidationCase {
  const char* title;
  std::span<const PortDeclaration> ports;
  void (*prepare)(Bench&);
};

const ValidationCase kValidations[] = {
    {"complete", kOneInOneOut, [](Bench&) {}},
    {"inlet energy port unconnected", kHeatPorts, [](Bench&) {}},
    {"outlet energy port unconnected", kHeatPorts,
     [](Bench& b) {
       const auto heat = com::Make<FakeStream>(b.script);
       heat->Add("work", {2, 1, -3, 0, 0, 0, 0, 0}, 5);
       EXPECT_EQ(b.unit->Inlet(1).Connect(static_cast<ICapeIdentification*>(heat.Get())), S_OK);
     }},
    {"inlet information port unconnected", kSignalPorts, [](Bench&) {}},
    {"parameter out of bounds", kOneInOneOut,
     [](Bench& b) {
       b.unit->AddParameter({.name = "Drop", .description = "", .defaultValue = -1.0, .lowerBound = 0.0});
       CheckWith<[](Bench&, std::string&) -> bool { throw std::logic_error("asked too early"); }>(b);
     }},
    {"parameter that can't be validated", kOneInOneOut,
     [](Bench& b) {
       b.unit->onParameterValue = [](const CParameter&, std::string&, const ParameterValue&) -> bool {
         throw Failure(UnitError{"title", "the host is gone", "elsewhere", "IOther"});
       };
     }},
    {"refused by the unit", kOneInOneOut, CheckWith<[](Bench&, std::string& message) {
       message = "too hot";
       return false;
     }>},
    {"refused without a message", kOneInOneOut, CheckWith<[](Bench&, std::string&) { return false; }>},
    {"validation without a reason", kOneInOneOut, CheckWith<[](Bench&, std::string&) -> bool { throw Failure(""); }>},
    {"foreign exception", kOneInOneOut,
     CheckWith<[](Bench&, std::string&) -> bool { throw std::runtime_error("odd"); }>},
    {"changed meanwhile", kOneInOneOut,
     CheckWith<[](Bench& b, std::string&) { return SUCCEEDED(b.unit->Parameter(0).Reset()); }>},
    {"list of properties not given", kOneInOneOut,
     [](Bench& b) {
       b.unit->requiredProperties = {"enthalpy"};
       b.script->oddAnswers["GetSinglePhasePropList"] = [] { return com::Variant(); };
     }},
    {"property that the feed lacks", kOneInOneOut,
     [](Bench& b) {
       b.unit->requiredProperties = std::vector<std::string>{"Enthalpy", "viscosity"};
     }},
};

TEST(BaseUnit, ValidatesInOrder) {
  std::string text;
  for (const ValidationCase& c : kValidations) {
    SCOPED_TRACE(c.title);
    TestDeclaration declaration = kTestUnit;
    declaration.ports = c.ports;
    Bench bench(declaration);
    bench.ConnectBoth();
    c.prepare(bench);
    std::string message;
    HRESULT outcome = S_OK;
    const bool valid = bench.door.IsValid(message, &outcome);
    text += c.title + (valid ? ": valid\n" : ": " + message + (outcome == S_OK ? "\n" : ", as an error\n"));
    EXPECT_EQ(valid, message.empty());
    EXPECT_EQ(bench.door.Status(), valid ? CAPE_VALID : CAPE_INVALID);
    EXPECT_EQ(bench.door.Report("Status"), valid ? "unit specification complete" : message);
    if (outcome != S_OK) {
      EXPECT_EQ(outcome, kFailed);
      const std::string reason = message == "the validation failed" ? "" : message;
      EXPECT_EQ(bench.Error(), Saying(reason, "Validate"));
    }
    if (valid) continue;
    EXPECT_EQ(bench.unit->Calculate(), kFailed);
    EXPECT_EQ(bench.Error(), Saying(message, "Calculate"));
    EXPECT_EQ(bench.unit->done, std::pair(0, false));
  }
  ExpectApproved("framework/validation", text);
}

TEST(BaseUnit, IsInvalidatedByEveryChange) {
  const std::pair<const char*, HRESULT (*)(Bench&)> changes[] = {
      {"put", [](Bench& b) { return b.unit->Parameter(0).put_value(com::MakeString("1.1").Get()); }},
      {"reset", [](Bench& b) { return b.unit->Parameter(0).Reset(); }},
      {"disconnect", [](Bench& b) { return b.unit->Inlet(0).Disconnect(); }},
      {"connect", [](Bench& b) { return b.unit->Outlet(0).Connect(static_cast<ICapeIdentification*>(b.feed.Get())); }},
      {"failing connect", [](Bench& b) { return b.unit->Inlet(0).Connect(nullptr) == kFailed ? S_OK : E_FAIL; }},
  };
  for (const auto& [title, change] : changes) {
    SCOPED_TRACE(title);
    Bench bench;
    bench.ConnectBoth();
    std::string message;
    EXPECT_TRUE(bench.door.IsValid(message)) << message;
    bench.unit->inputChanges = 0;
    EXPECT_EQ(change(bench), S_OK);
    EXPECT_EQ(bench.door.Status(), CAPE_NOT_VALIDATED);
    EXPECT_EQ(bench.door.Report("Status"), "unit not validated");
    EXPECT_GE(bench.unit->inputChanges, 1);
  }
  Bench bench;
  EXPECT_EQ(bench.unit->Parameter(0).put_value(com::MakeString("2.0").Get()), kFailed);
  EXPECT_EQ(bench.unit->inputChanges, 0) << "a refused value changes nothing";
}

TEST(BaseUnit, NeedsAnInletForItsOutlets) {
  Bench bench;
  bench.unit->checkConnections = false;
  bench.Connect(bench.unit->Outlet(0));
  EXPECT_EQ(bench.unit->Calculate(), kFailed);
  EXPECT_EQ(bench.Error(),
            (Texts{"internal error", "unit has material outlets but no material inlets", "Calculate", "ICapeUnit"}));
  EXPECT_EQ(bench.unit->Outlet(0).Disconnect(), S_OK);
  EXPECT_EQ(bench.unit->Calculate(), S_OK);
  EXPECT_EQ(bench.unit->calculatedCount, 0);
}

TEST(BaseUnit, SizesEachPortByItsOwnCompoundsWhenTheyMayDiffer) {
  Bench bench;
  bench.unit->checkCompounds = false;
  bench.ConnectBoth();
  bench.product->state.compounds = {"a", "b", "c"};
  bench.product->state.casNumbers = {"1", "2", "3"};
  bench.product->state.molecularWeights = {1, 2, 3};
  EXPECT_EQ(bench.unit->Calculate(), S_OK);
  EXPECT_EQ(bench.unit->calculatedCount, -1);
  EXPECT_EQ(bench.unit->Inlet(0).State().composition.size(), 2u);
  EXPECT_EQ(bench.unit->Outlet(0).State().composition.size(), 3u);
}

TEST(BaseUnit, FlashesOutletsAsTheUnitSays) {
  const std::pair<std::function<void(std::optional<com::Name>&)>, const char*> cases[] = {
      {nullptr, "Temperature//Overall, Pressure//Overall, unspecified"},
      {[](auto& spec) { spec = names::kPH; }, "Pressure//Overall, enthalpy//Overall, unspecified"},
      {[](auto& spec) { spec.reset(); }, ""}};
  Bench bench;
  bench.ConnectBoth();
  for (const auto& [specify, flash] : cases) {
    bench.product->state.flash.clear();
    bench.unit->onCalculate = specify;
    EXPECT_EQ(bench.unit->Calculate(), S_OK);
    EXPECT_EQ(bench.product->state.flash, flash);
  }
  EXPECT_EQ(bench.unit->done, std::pair(2, true));
}

TEST(BaseUnit, TurnsEveryExceptionIntoItsError) {
  const UnitError ownTexts{"CalculationError", "no root", "Solve", "INumerics"};
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"failure with all texts", [&] { throw Failure(ownTexts); }},
      {"failure with one text", [] { throw Failure("no root"); }},
      {"empty failure", [] { throw Failure(""); }},
      {"array that can't be allocated", [] { (void)com::MakeArray(std::size_t{1} << 40, VT_R8); }},
      {"no memory", [] { throw std::bad_alloc(); }},
      {"standard exception", [] { throw std::runtime_error("odd"); }},
      {"anything else", [] { throw 42; }},
  };
  std::string text;
  for (const auto& [title, raise] : cases) {
    SCOPED_TRACE(title);
    Bench bench;
    bench.ConnectBoth();
    bench.unit->onCalculate = [&raise](std::optional<com::Name>&) { raise(); };
    EXPECT_EQ(bench.unit->Calculate(), kFailed);
    const Texts error = bench.Error();
    text += std::string(title) + ": " + error.name + "; " + error.description + "; " + error.scope + " of " +
            error.interfaceName + '\n';
    const std::string reason = error.description.empty() ? "Unknown" : error.description;
    EXPECT_EQ(bench.door.Report("Status"), "Calculation failed:\r\n" + reason + "\r\n");
    EXPECT_EQ(bench.door.Status(), CAPE_VALID) << "the specification is as valid as before";
    EXPECT_EQ(bench.unit->done, std::pair(2, false));
  }
  ExpectApproved("framework/exceptions", text);
}

TEST(BaseUnit, KeepsQuietWhenTheHostWantsASimplifiedModel) {
  const std::pair<com::Variant (*)(), bool> answers[] = {{[] { return com::MakeBoolean(true); }, true},
                                                         {[] { return com::MakeBoolean(false); }, false},
                                                         {[] { return com::MakeInteger(1); }, false}};
  for (const auto& [answer, quiet] : answers) {
    SCOPED_TRACE(com::Describe(answer().Get()));
    Bench bench;
    bench.ConnectBoth();
    bench.context->namedValues["SimplifiedModelRequest"] = answer();
    EXPECT_EQ(bench.unit->put_simulationContext(bench.Context()), S_OK);
    bool requested = !quiet;
    bench.unit->onCalculate = [&](std::optional<com::Name>&) {
      requested = bench.unit->simplifiedModelRequested;
      bench.unit->journal.Warn("limiting");
      bench.unit->journal.Start();
      bench.unit->journal.Line("limited");
    };
    EXPECT_EQ(bench.door.Report("Last run"), "Report is not available");
    EXPECT_EQ(bench.unit->Calculate(), S_OK);
    EXPECT_EQ(requested, quiet);
    EXPECT_FALSE(bench.unit->simplifiedModelRequested);
    EXPECT_EQ(bench.context->log.size(), quiet ? 0u : 1u);
    EXPECT_EQ(bench.door.Report("LAST RUN"),
              quiet ? "Report is not available" : "+++ specifications +++\r\n\r\nlimited\r\n");
  }
}

TEST(BaseUnit, KeepsItsOutcomeWhateverItDoesAtTheEnd) {
  Bench bench;
  bench.ConnectBoth();
  bench.unit->onDone = [] { throw std::runtime_error("afterwards"); };
  EXPECT_EQ(bench.unit->Calculate(), S_OK);
  EXPECT_EQ(bench.Error().description, "") << "success leaves the last error, here none";
  EXPECT_EQ(bench.door.Report("Status"), "unit is solved");
  bench.unit->onCalculate = [](std::optional<com::Name>&) { throw Failure("no root"); };
  EXPECT_EQ(bench.unit->Calculate(), kFailed);
  EXPECT_EQ(bench.Error().description, "no root");
  bench.unit->onCalculate = nullptr;
  EXPECT_EQ(bench.unit->Calculate(), S_OK);
  EXPECT_EQ(bench.Error().description, "no root") << "success leaves the last error";
}

TEST(BaseUnit, StaysInOrderWhenTheHostCallsItMidway) {
  struct Call {
    const char* title;
    HRESULT (*make)(TestUnit&);
    HRESULT ofTheCall, ofTheCalculation;
    ULONG references;  // on the feed afterwards
    const char* status;
  };
  const Call calls[] = {
      {"changes", [](TestUnit& u) { return u.Parameter(0).put_value(com::MakeString("1.1").Get()); }, S_OK, S_OK, 2,
       "unit not validated"},
      {"calculates", [](TestUnit& u) { return u.Calculate(); }, kFailed, S_OK, 2, "unit is solved"},
      {"terminates", [](TestUnit& u) { return u.Terminate(); }, S_OK, kFailed, 1,
       "Calculation failed:\r\nThe unit was terminated while it was calculated\r\n"},
  };
  for (const Call& call : calls) {
    SCOPED_TRACE(call.title);
    Bench bench;
    bench.ConnectBoth();
    HRESULT inner = E_UNEXPECTED;
    bench.unit->onCalculate = [&](std::optional<com::Name>&) { inner = call.make(*bench.unit); };
    EXPECT_EQ(bench.unit->Calculate(), call.ofTheCalculation);
    EXPECT_EQ(inner, call.ofTheCall);
    EXPECT_EQ(bench.feed->References(), call.references);
    EXPECT_EQ(bench.unit->Initialize(), S_OK);
    EXPECT_EQ(bench.door.Report("Status"), call.status);
  }
}

TEST(BaseUnit, SelectsReportsByName) {
  Bench bench;
  com::Variant list;
  EXPECT_EQ(bench.unit->get_reports(list.Put()), S_OK);
  EXPECT_EQ(com::ReadStrings(list.Get()), (std::vector<std::string>{"Status", "Last run"}));
  EXPECT_EQ(bench.unit->put_selectedReport(com::ToBstr("last RUN").Get()), S_OK);
  EXPECT_EQ(bench.unit->put_selectedReport(com::ToBstr("Profile").Get()), kFailed);
  EXPECT_EQ(bench.Error(), (Texts{"unknown report", "unknown report name in put_selectedReport", "put_selectedReport",
                                  "ICapeUnitReport"}));
  EXPECT_EQ(bench.unit->put_selectedReport(nullptr), kFailed);
  EXPECT_EQ(TextFrom(static_cast<ICapeUnit*>(bench.unit.Get()), &ICapeUnitReport::get_selectedReport), "Last run");
}

}  // namespace morvelan::test::base_unit
