// Connecting streams to ports: what is accepted, what is refused, and what the host's log says of it.

#include <gtest/gtest.h>

#include "tests/support/Approved.h"
#include "tests/support/Door.h"
#include "tests/support/FakeHost.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/Faults.h"
#include "tests/support/TestUnit.h"

namespace morvelan::test::unit_port {

constexpr InformationItem kTemperatureItem[] = {{"Temperature", "a temperature", kTemperatureDimension}};
constexpr InformationItem kPlainItem[] = {{"number", "a number"}};
constexpr PortDeclaration kPorts[] = {
    {"Inlet", "feed", CAPE_INLET},
    {"Heat", "heat", CAPE_INLET, CAPE_ENERGY, kEnergyItems},
    {"Signal", "signal", CAPE_INLET, CAPE_INFORMATION, kTemperatureItem},
    {"Plain", "plain", CAPE_INLET, CAPE_INFORMATION, kPlainItem},
    {"Result", "result", CAPE_OUTLET, CAPE_INFORMATION, kTemperatureItem},
};
const TestDeclaration kUnit = {
    .name = "U", .description = "", .about = "", .ports = kPorts, .parameters = kOnlyThermoVersion};

const std::vector<double> kPower = {2, 1, -3, 0, 0, 0, 0, 0};
const std::vector<double> kKelvin = {0, 0, 0, 0, 1, 0, 0, 0, 0};

struct Bench {
  Bench() {
    EXPECT_EQ(unit->Initialize(), S_OK);
    EXPECT_EQ(unit->put_simulationContext(static_cast<ICapeIdentification*>(context.Get())), S_OK);
    script->Restart();
  }
  template <class Object>
  HRESULT Connect(const char* port, const com::Ref<Object>& object) {
    return door.Port(port)->Connect(static_cast<ICapeIdentification*>(object.Get()));
  }
  CUnitInfoPort& InfoPort(std::size_t inlet) { return static_cast<CUnitInfoPort&>(unit->Inlet(inlet)); }
  bool IsConnected(const char* port) const {
    com::Ref<IDispatch> object;
    EXPECT_EQ(door.Port(port)->get_connectedObject(object.Put()), S_OK);
    return static_cast<bool>(object);
  }

  std::shared_ptr<HostScript> script = std::make_shared<HostScript>();
  com::Ref<FakeContext> context = com::Make<FakeContext>(script);
  com::Ref<FakeStream> stream = com::Make<FakeStream>(script);
  com::Ref<TestUnit> unit = com::Make<TestUnit>(kUnit);
  UnitDoor door{com::Query<IUnknown>(static_cast<ICapeUnit*>(unit.Get()))};
};

TEST(CUnitPort, TakesTheThermoVersionOfItsMaterial) {
  const std::tuple<bool, bool, const char*> offers[] = {
      {true, false, "1.0"}, {false, true, "1.1"}, {true, true, "1.1"}};
  for (const auto& [thermo10, thermo11, version] : offers) {
    Bench bench;
    const auto material = com::Make<FakeMaterial>(bench.script, FakeState{.thermo10 = thermo10, .thermo11 = thermo11});
    EXPECT_EQ(bench.Connect("Inlet", material), S_OK);
    EXPECT_EQ(bench.door.ParameterText("Thermo Version"), version);
    EXPECT_EQ(bench.Connect("Inlet", material), S_OK) << "connecting again drops the earlier connection";
    EXPECT_EQ(material->References(), 2u);
    EXPECT_EQ(bench.door.Port("Inlet")->Disconnect(), S_OK);
    EXPECT_EQ(material->References(), 1u);
  }
}

TEST(CUnitPort, RefusesWhatIsNoMaterial) {
  Bench bench;
  EXPECT_EQ(bench.Connect("Inlet", bench.stream), kFailed);
  EXPECT_EQ(ErrorOf(bench.door.Port("Inlet").Get()),
            (Texts{"failed to connect",
                   "The object that requested connection implements neither an ICapeMaterial nor an "
                   "ICapeMaterialObject interface",
                   "Connect", "ICapeUnitPort"}));
  EXPECT_EQ(bench.door.Port("Inlet")->Connect(nullptr), kFailed);
  EXPECT_EQ(ErrorOf(bench.door.Port("Inlet").Get()).description,
            InThisSystemsWords("failed to obtain IDispatch interface to material: Invalid pointer"));
  EXPECT_FALSE(bench.IsConnected("Inlet"));
  EXPECT_EQ(bench.door.Port("Heat")->Connect(nullptr), kFailed);
  EXPECT_EQ(ErrorOf(bench.door.Port("Heat").Get()).description,
            InThisSystemsWords("failed to obtain IDispatch interface to energy object: Invalid pointer"));
}

TEST(CUnitPort, IsUnconnectedAfterAFailedConnect) {
  Bench bench;
  const auto material = com::Make<FakeMaterial>(bench.script);
  EXPECT_EQ(bench.Connect("Inlet", material), S_OK);
  EXPECT_EQ(bench.Connect("Inlet", bench.stream), kFailed);
  EXPECT_FALSE(bench.IsConnected("Inlet"));
  EXPECT_EQ(material->References(), 1u);
  // The unit may fail when it is told.
  bench.unit->onInputsChanged = [&] {
    if (bench.unit->Inlet(0).IsConnected()) throw Failure("no room for another port");
  };
  EXPECT_EQ(bench.Connect("Inlet", material), kFailed);
  EXPECT_FALSE(bench.IsConnected("Inlet"));
  EXPECT_EQ(material->References(), 1u);
}

TEST(CUnitPort, TellsItsUnitBeforeAndAfterConnecting) {
  Bench bench;
  const auto material = com::Make<FakeMaterial>(bench.script, FakeState{.thermo11 = false});
  std::vector<bool> connectedWhenTold;
  bench.unit->onInputsChanged = [&] { connectedWhenTold.push_back(bench.unit->Inlet(0).IsConnected()); };
  EXPECT_EQ(bench.Connect("Inlet", material), S_OK);
  EXPECT_EQ(bench.Connect("Inlet", material), S_OK);
  EXPECT_EQ(connectedWhenTold, (std::vector<bool>{false, true, false, true}));
}

TEST(CUnitPort, LeavesItsUnitForGood) {
  Bench bench;
  const auto port = bench.door.Port("Result");
  EXPECT_EQ(bench.Connect("Result", bench.stream), kFailed);
  bench.stream->Add("T", kKelvin, 1);
  EXPECT_EQ(bench.Connect("Result", bench.stream), S_OK);
  bench.unit->RemoveOutlets();
  EXPECT_EQ(bench.stream->References(), 1u);
  EXPECT_FALSE(bench.door.Port("Result"));
  EXPECT_EQ(port->Connect(static_cast<ICapeIdentification*>(bench.stream.Get())), kFailed);
  EXPECT_EQ(bench.door.Status(), CAPE_NOT_VALIDATED);
}

TEST(CUnitPort, RefusesToDisconnectTwice) {
  Bench bench;
  EXPECT_EQ(bench.door.Port("Heat")->Disconnect(), kFailed);
  EXPECT_EQ(ErrorOf(bench.door.Port("Heat").Get()),
            (Texts{"failed to disconnect", "cannot disconnect: port not connected", "Connect", "ICapeUnitPort"}));
  EXPECT_EQ(bench.unit->inputChanges, 1);
}

TEST(CUnitPort, IsFoundByNameAndIndex) {
  Bench bench;
  const auto ports = bench.door.Ports();
  const auto nameAt = [&](com::Variant id) {
    com::Ref<IDispatch> port;
    if (ports->Item(id.Get(), port.Put()) != S_OK) return std::string("<refused>");
    return TextFrom(port.Get(), &ICapeIdentification::get_ComponentName);
  };
  EXPECT_EQ(nameAt(com::MakeString("inlet")), "Inlet");
  EXPECT_EQ(nameAt(com::MakeDouble(5)), "Result");
  for (const char* wrong : {"x", ""}) EXPECT_EQ(nameAt(com::MakeString(wrong)), "<refused>");
  EXPECT_EQ(bench.door.Port("Plain").As<ICapeIdentification>()->put_ComponentName(nullptr), S_OK);
  EXPECT_EQ(nameAt(com::MakeString("<UNKNOWN>")), "");
  EXPECT_EQ(nameAt(com::MakeInteger(6)), "<refused>");
  EXPECT_EQ(ErrorOf(ports.Get()),
            (Texts{"invalid index or id", "could not find port, invalid index or id", "Item", "ICapeCollection"}));
}

TEST(CUnitPort, DescribesTheValuesThatItCarries) {
  Bench bench;
  EXPECT_FALSE(bench.door.Port("Inlet").As<ICapeCollection>()) << "a material port carries no values";
  const auto items = bench.door.Port("Heat").As<ICapeCollection>();
  LONG count = 0;
  EXPECT_EQ(items->Count(&count), S_OK);
  EXPECT_EQ(count, 3);
  com::Ref<IDispatch> item;
  EXPECT_EQ(items->Item(com::MakeString("TEMPERATURELOW").Get(), item.Put()), S_OK);
  com::Variant exponents;
  EXPECT_EQ(item.As<ICapeParameterSpec>()->get_Dimensionality(exponents.Put()), S_OK);
  EXPECT_EQ(com::ReadDoubles(exponents.Get()), kKelvin);
  EXPECT_EQ(items->Item(com::MakeInteger(4).Get(), item.Put()), kFailed);
  EXPECT_EQ(ErrorOf(items.Get()),
            (Texts{"index out of range for parameter specification specification",
                   "index out of range for parameter specification specification", "Item", "ICapeCollection"}));
}

struct MatchCase {
  const char* title;
  const char* port;
  std::vector<std::pair<const char*, std::vector<double>>> parameters;  // name and dimensionality
  LONG counted = -1;                                                    // -1: all
};

const MatchCase kMatches[] = {
    {"one item, one parameter: by dimensionality alone", "Signal", {{"T", kKelvin}}},
    {"eight exponents for nine", "Signal", {{"T", {0, 0, 0, 0, 1, 0, 0, 0}}}},
    {"just outside the tolerance", "Signal", {{"T", {0, 0, 0, 0, 1 + 2e-6, 0, 0, 0}}}},
    {"within the tolerance", "Signal", {{"T", {0, 0, 0, 0, 1 + 9e-7, 0, 0, 0}}}},
    {"another difference flag", "Signal", {{"T", {0, 0, 0, 0, 1, 0, 0, 0, 1}}}},
    {"no dimensionality on either side", "Plain", {{"x", {}}}},
    {"one of each, other dimensionality", "Signal", {{"P", kPower}}},
    {"one of each, no dimensionality", "Signal", {{"x", {}}}},
    {"all three", "Heat", {{"Work", kPower}, {"temperatureLow", kKelvin}, {"temperatureHigh", kKelvin}}},
    {"only the heat", "Heat", {{"work", kPower}}},
    {"counted less than answered",
     "Heat",
     {{"work", kPower}, {"temperatureLow", kKelvin}, {"temperatureHigh", kKelvin}},
     1},
    {"more than wanted", "Heat", {{"work", kPower}, {"colour", {}}}},
    {"name without dimensionality", "Heat", {{"work", kKelvin}, {"temperatureLow", kKelvin}}},
    {"two of one name", "Heat", {{"work", kPower}, {"Work", kPower}}},
    {"none", "Heat", {}},
};

TEST(CUnitInfoPort, MatchesItsItemsToTheParametersOfAStream) {
  std::string text;
  for (const MatchCase& c : kMatches) {
    SCOPED_TRACE(c.title);
    Bench bench;
    for (const auto& [name, dimensionality] : c.parameters) bench.stream->Add(name, dimensionality, 1);
    bench.stream->counted = c.counted;
    const HRESULT outcome = bench.Connect(c.port, bench.stream);
    const Texts error = ErrorOf(bench.door.Port(c.port).Get());
    text += std::string(c.title) + ": " + (outcome == S_OK ? "connected" : error.description) + '\n';
    for (const std::string& line : bench.context->log) text += "  log: " + line + '\n';
    EXPECT_EQ(bench.IsConnected(c.port), outcome == S_OK);
    EXPECT_EQ(bench.stream->References(), outcome == S_OK ? 2u : 1u);
    if (outcome == S_OK) continue;
    EXPECT_EQ(outcome, kFailed);
    EXPECT_EQ(error, (Texts{"failed to connect", error.description, "Connect", "ICapeUnitPort"}));
  }
  ExpectApproved("framework/matching", text);
}

TEST(CUnitInfoPort, ReadsAndWritesValues) {
  Bench bench;
  bench.stream->Add("work", kPower, 5);
  bench.stream->Add("temperatureHigh", kKelvin, 400);
  EXPECT_EQ(bench.Connect("Heat", bench.stream), S_OK);
  CUnitInfoPort& heat = bench.InfoPort(1);
  EXPECT_EQ(com::ReadDouble(heat.ReadInformation(0).Get()), 5);
  EXPECT_FALSE(heat.IsMatched(1));
  EXPECT_EQ(com::ReadDouble(heat.ReadInformation(2).Get()), 400);
  heat.WriteInformation(0, -3);
  EXPECT_EQ(bench.stream->parameters[0]->value.Get().dblVal, -3);
  const auto textOf = [&](auto action) {
    try {
      action();
      return std::string("<none>");
    } catch (const Failure& failure) {
      return failure.error.description;
    }
  };
  EXPECT_EQ(textOf([&] { (void)heat.ReadInformation(1); }),
            "information was not mapped to parameter on connected object");
  EXPECT_EQ(textOf([&] { heat.WriteInformation(3, 0); }), "internal error, information item is not exported by port");
  EXPECT_EQ(textOf([&] { bench.InfoPort(2).WriteInformation(0, 0); }), "<none>") << "unconnected";
  EXPECT_EQ(textOf([&] { (void)bench.InfoPort(2).ReadInformation(0); }), "port is not connected");
}

// Failing reads and writes of values are walked through with the units that do them.
TEST(CUnitInfoPort, ExplainsEveryFailingCallOfAConnectionAndRecovers) {
  Bench undisturbed;
  undisturbed.stream->Add("T", kKelvin, 300);
  EXPECT_EQ(undisturbed.Connect("Signal", undisturbed.stream), S_OK);
  const std::vector<std::string> calls = undisturbed.script->calls;
  std::string text;
  for (std::size_t k = 0; k < calls.size(); ++k) {
    std::string explanation;
    for (const FaultMode& mode : kFaultModes) {
      SCOPED_TRACE(calls[k] + ", " + mode.title);
      Bench bench;
      bench.stream->Add("T", kKelvin, 300);
      EXPECT_EQ(bench.Connect("Signal", bench.stream), S_OK);
      const ULONG references = bench.stream->References();
      Provoke(*bench.script, mode, static_cast<int>(k) + 1);
      const HRESULT outcome = bench.Connect("Signal", bench.stream);
      const std::string error = ErrorOf(bench.door.Port("Signal").Get()).description;
      const std::string found = outcome == S_OK ? "connected" : WithoutReason(error, calls[k], mode);
      if (explanation.empty()) explanation = found;
      EXPECT_EQ(found, explanation) << "as with the other failures";
      EXPECT_EQ(bench.IsConnected("Signal"), outcome == S_OK);
      EXPECT_EQ(bench.stream->parameters[0]->References(), 1u);
      bench.script->Restart();
      EXPECT_EQ(bench.Connect("Signal", bench.stream), S_OK);
      EXPECT_EQ(bench.stream->References(), references);
    }
    text += calls[k] + ": " + explanation + '\n';
  }
  ExpectApproved("framework/connection-faults", text);
}

}  // namespace morvelan::test::unit_port
