// An InformationCalculator in a fake host.

#include <cfenv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tests/support/Persistence.h"
#include "tests/support/StreamEncoder.h"
#include "tests/units/UnitBench.h"

namespace morvelan::test::information_calculator {

using Json = nlohmann::json;

const std::vector<double> kKelvin = {0, 0, 0, 0, 1};
const std::vector<double> kKelvinDifference = {0, 0, 0, 0, 1, 0, 0, 0, 1};
const std::vector<double> kNone = {};

/// A calculator of the difference of two temperatures, and what is connected to it.
struct Calculator : UnitBench {
  Calculator() : UnitBench("InformationCalculator", true) {
    Set(R"({"formula": "\"T1\" - \"t2\"", "outputVariable": {"name": "range", "unit": "K;Delta"},
            "inputVariables": [{"name": "T1", "unit": "K"}, {"name": "T2", "unit": "K^1"}]})");
    for (const auto& [port, kelvin] : {std::pair("T1", 350.0), std::pair("T2", 320.0)})
      ConnectValue(port, kKelvin, kelvin);
    ConnectValue("range", kKelvinDifference, 0);
    Restart();
  }

  [[nodiscard]] HRESULT TrySet(const std::string& json) {
    return door.unit.As<IUnitConfiguration>()->SetConfiguration(com::ToBstr(json).Get());
  }
  void Set(const std::string& json) { EXPECT_EQ(TrySet(json), S_OK) << ErrorOf(door.unit.Get()); }
  [[nodiscard]] std::string Get() const {
    com::Bstr json;
    EXPECT_EQ(door.unit.As<IUnitConfiguration>()->GetConfiguration(json.Put()), S_OK);
    return com::ToUtf8(json.Get());
  }
  void SetFormula(const std::string& formula) { Set(Json({{"formula", formula}}).dump()); }

  [[nodiscard]] com::Variant& ValueAt(const std::string& port) { return streams.at(port)->parameters[0]->value; }
  [[nodiscard]] double Result() { return com::ReadDouble(ValueAt("range").Get()); }
  [[nodiscard]] std::string Invalid() const {
    std::string message;
    EXPECT_FALSE(door.IsValid(message));
    return message;
  }
  /// The names of the ports, each with "+" when it is connected.
  [[nodiscard]] std::string Ports() const {
    std::string text;
    for (const std::string& name : PortNames()) {
      com::Ref<IDispatch> object;
      EXPECT_EQ(door.Port(name)->get_connectedObject(object.Put()), S_OK);
      text += (text.empty() ? "" : " ") + name + (object ? "+" : "");
    }
    return text;
  }
};

TEST(CInformationCalculator, CalculatesItsOutlet) {
  Calculator bench;
  bench.Calculate();
  EXPECT_EQ(bench.Result(), 30);
  EXPECT_EQ(bench.door.Report("Last run"),
            "+++ input values +++\r\n\r\nT1:\t350 K\r\nT2:\t320 K\r\n\r\n+++ Formula +++\r\n\"T1\" - \"t2\"\r\n"
            "\r\n+++ Result +++\r\nrange:\t30 K\r\n");
  bench.ValueAt("T1") = com::MakeDouble(300.1234567);
  bench.AskForSimplifiedModel();
  bench.Calculate();
  EXPECT_DOUBLE_EQ(bench.Result(), 300.1234567 - 320);
  EXPECT_NE(bench.door.Report("Last run").find("range:\t30 K"), std::string::npos) << "of the run before";
  EXPECT_EQ(bench.door.Port("range")->Disconnect(), S_OK);
  bench.Calculate();  // an outlet may be unconnected
}

TEST(CInformationCalculator, IsBornWithAnOutputOnly) {
  UnitBench bench("InformationCalculator", true);
  EXPECT_EQ(bench.PortNames(), std::vector<std::string>{"output"});
  std::string message;
  EXPECT_FALSE(bench.door.IsValid(message));
  EXPECT_EQ(message, "Please enter a formula for the output information");
  bench.Configure(R"({"formula": "2 * PI"})");
  bench.Calculate();
  EXPECT_NE(bench.door.Report("Last run").find("output:\t6.28319\r\n"), std::string::npos);
}

TEST(CInformationCalculator, SaysWhatKeepsItFromBeingValid) {
  Calculator bench;
  EXPECT_EQ(bench.door.Port("T2")->Disconnect(), S_OK);
  bench.SetFormula("");
  EXPECT_EQ(bench.Invalid(), "Inlet port \"T2\" is not connected") << "before the formula";
  bench.ConnectValue("T2", kKelvin, 320);
  struct {
    const char* formula;
    const char* message;
  } const cases[] = {
      {"", "Please enter a formula for the output information"},
      {"\"T3\"", "Parsing error for output formula: unknown token T3"},
      {"T1", "Parsing error for output formula: parse error: unknown token T1"},
      {"1/0", "Parsing error for output formula: division by zero\r\n"},
      {"SQRT(\"T1\", 2)", "Parsing error for output formula: SQRT should have one argument\r\n"},
  };
  for (const auto& c : cases) {
    bench.SetFormula(c.formula);
    EXPECT_TRUE(bench.Invalid().starts_with(c.message)) << c.formula << ": " << bench.Invalid();
  }
  bench.SetFormula("\"T1\"");
  bench.Calculate();
  EXPECT_EQ(bench.Result(), 350) << "the former formula is gone";
}

TEST(CInformationCalculator, FailsWhereItsFormulaDoes) {
  Calculator bench;
  bench.SetFormula("1 / (\"T1\" - 350)");
  bench.ValueAt("range") = com::MakeDouble(7);
  bench.Validate();
  std::feclearexcept(FE_ALL_EXCEPT);
  CheckFailedCalculation(bench.door, "floating point exception in division: Division by zero", "CalculationError");
  EXPECT_EQ(std::fetestexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW), 0) << "the host's own state";
  EXPECT_EQ(bench.Result(), 7) << "nothing is written";
  bench.SetFormula("\"T1\"");
  bench.Calculate();
  EXPECT_EQ(bench.Result(), 350);
}

// The fault walk has answers of other kinds.
TEST(CInformationCalculator, NeedsRealNumbers) {
  Calculator bench;
  const auto expectFailure = [&](com::Variant value, const std::string& why) {
    bench.ValueAt("T1") = std::move(value);
    CheckFailedCalculation(bench.door, "Failed to get value for inlet port \"T1\": " + why);
  };
  expectFailure(com::MakeInteger(3), "invalid data type (real value expected)");
  expectFailure(com::MakeDouble(kMissing), "value is not set");
  expectFailure(com::MakeDouble(kNaN), "value is not set");
  com::Variant single;
  VARIANT* variant = single.Put();
  variant->vt = VT_R4;
  variant->fltVal = 321.5f;
  bench.ValueAt("T1") = std::move(single);
  bench.Calculate();
  EXPECT_EQ(bench.Result(), 1.5);
}

// What has been read is no longer what the unit is connected to.
TEST(CInformationCalculator, FailsWhenTheHostChangesItWhileItReads) {
  const auto disconnect = [](Calculator& bench) { EXPECT_EQ(bench.door.Port("T1")->Disconnect(), S_OK); };
  const auto validate = [](Calculator& bench) {
    std::string message;
    (void)bench.door.IsValid(message);
  };
  const std::function<void(Calculator&)> changes[] = {
      disconnect,
      [&](Calculator& bench) { disconnect(bench), validate(bench); },
      [&](Calculator& bench) { disconnect(bench), bench.ConnectValue("T1", kKelvin, 400), validate(bench); },
      [](Calculator& bench) {
        EXPECT_EQ(bench.door.utilities->Terminate(), S_OK);
        EXPECT_EQ(bench.door.utilities->Initialize(), S_OK);
      },
  };
  for (const auto& change : changes) {
    SCOPED_TRACE(&change - changes);
    Calculator bench;
    bench.Validate();
    int asked = 0;
    bench.script->oddAnswers["get_value"] = [&] {
      if (++asked == 2) change(bench);
      return com::MakeDouble(300);
    };
    EXPECT_EQ(bench.door.unit->Calculate(), kUnitFailed);
    EXPECT_EQ(ErrorOf(bench.door.unit.Get()).description, "The unit was changed while it was calculated");
    EXPECT_EQ(bench.Result(), 0) << "nothing is written";
  }
}

/// Input variables with their units.
Json Inputs(const std::vector<std::pair<const char*, const char*>>& variables) {
  Json inputs = Json::array();
  for (const auto& [name, unit] : variables) inputs.push_back({{"name", name}, {"unit", unit}});
  return {{"inputVariables", inputs}};
}

TEST(CInformationCalculator, KeepsConnectionsWhenVariablesAreRenamedAndMoved) {
  struct {
    const char* title;
    Json changes;
    const char* ports;  // null: refused
  } const cases[] = {
      {"renamed", Inputs({{"hot", "K"}, {"T2", "K"}}), "hot+ T2+ range+"},
      {"in other letters", Inputs({{"t1", "K"}, {"T2", "K"}}), "t1+ T2+ range+"},
      {"moved", Inputs({{"T2", "K"}, {"T1", "K"}}), "T2+ T1+ range+"},
      {"one in front", Inputs({{"n", ""}, {"T1", "K"}, {"T2", "K"}}), "n T1+ T2+ range+"},
      {"one less", Inputs({{"T2", "K"}}), "T2+ range+"},
      {"another unit", Inputs({{"T1", "Pa"}, {"T2", "K"}}), nullptr},
      {"another dimension", Inputs({{"T1", "kg"}, {"T2", "K"}}), "T1 T2+ range+"},
      {"output", R"({"outputVariable": {"name": "dT", "unit": "K^1;delta"}})"_json, "T1+ T2+ dT+"},
      {"output without unit", R"({"outputVariable": {"name": "range"}})"_json, "T1+ T2+ range"},
      {"formula", R"({"formula": "1"})"_json, "T1+ T2+ range+"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.title);
    Calculator bench;
    EXPECT_EQ(bench.TrySet(c.changes.dump()), c.ports ? S_OK : kUnitFailed);
    EXPECT_EQ(bench.Ports(), c.ports ? c.ports : "T1+ T2+ range+");
    bench.Set(bench.Get());
    EXPECT_EQ(bench.Ports(), c.ports ? c.ports : "T1+ T2+ range+") << "what it says brings back what it is";
  }
}

TEST(CInformationCalculator, ReadsTheRightStreamAfterARename) {
  Calculator bench;
  bench.Set(R"({"formula": "\"cold\" / \"hot\"", "outputVariable": {"name": "ratio", "unit": ""},
                "inputVariables": [{"name": "hot", "unit": "K"}, {"name": "cold", "unit": "K"}]})");
  EXPECT_EQ(bench.Ports(), "hot+ cold+ ratio");
  bench.ConnectValue("ratio", kNone, 0);
  bench.Calculate();
  EXPECT_DOUBLE_EQ(com::ReadDouble(bench.ValueAt("ratio").Get()), 320.0 / 350.0);
}

TEST(CInformationCalculator, KeepsTheNamesThatAHostGaveItsPorts) {
  Calculator bench;
  const auto port = bench.door.Port("T1").As<ICapeIdentification>();
  EXPECT_EQ(port->put_ComponentName(com::ToBstr("Feed T").Get()), S_OK);
  bench.SetFormula("\"T1\" * 2");
  EXPECT_EQ(bench.Ports(), "Feed T+ T2+ range+");
  bench.Calculate();
  EXPECT_EQ(bench.Result(), 700);
}

TEST(CInformationCalculator, FindsItsValueByNameAmongSeveral) {
  Calculator bench;
  bench.Set(R"({"inputVariables": [{"name": "T1", "unit": "K"}, {"name": "cold", "unit": "K"}],
                "formula": "\"cold\""})");
  const auto stream = com::Make<FakeStream>(bench.script);
  stream->Add("hot", kKelvin, 400);
  stream->Add("Cold", kKelvin, 280);
  EXPECT_EQ(bench.door.Port("cold")->Connect(UnitBench::Dispatch(stream)), S_OK);
  bench.Calculate();
  EXPECT_EQ(bench.Result(), 280);
}

TEST(CInformationCalculator, HasLimits) {
  for (const int count : {128, 129}) {
    Json inputs = Json::array();
    for (int i = 0; i < count; ++i) inputs.push_back({{"name", "x" + std::to_string(i)}});
    Calculator bench;
    EXPECT_EQ(bench.TrySet(Json({{"inputVariables", inputs}}).dump()), count == 128 ? S_OK : kUnitFailed);
    EXPECT_EQ(bench.PortNames().size(), count == 128 ? 129u : 3u);
  }
}

std::string WithUnit(const char* unit) { return Json({{"outputVariable", {{"name", "y"}, {"unit", unit}}}}).dump(); }

TEST(CInformationCalculator, ReadsUnitsOfMeasureLeniently) {
  struct {
    const char* text;
    const char* written;
  } const cases[] = {
      {"", ""},
      {"m^2 kg^1 s^-3", "m^2 kg^1 s^-3"},
      {"  s^-3*kg\tm^2 ", "m^2 kg^1 s^-3"},
      {"m m^0.5", "m^1.5"},
      {"m^0.33333333", "m^0.333333"},
      {"m m^-1", ""},
      {"K;Delta", "K^1;Delta"},
      {"mol^1 s^-1 ; DELTA ", "s^-1 mol^1;Delta"},
      {";Delta", ";Delta"},
      {"A cd rad", "A^1 cd^1 rad^1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Calculator bench;
    bench.Set(WithUnit(c.text));
    EXPECT_EQ(Json::parse(bench.Get())["outputVariable"]["unit"], c.written);
    const auto port = bench.door.Port("y");
    bench.Set(bench.Get());
    EXPECT_EQ(bench.door.Port("y").Get(), port.Get()) << "its own text brings back the same";
  }
  for (const char* refused : {"W", "k", "m^", "m^2x", "m^nan", "m^inf", "m;", "m;Delta;Delta", "^2", "m2"})
    EXPECT_EQ(Calculator().TrySet(WithUnit(refused)), kUnitFailed) << refused;
}

Encoder Header() {
  Encoder stream("MORVELAN0007");
  return stream.Int(0), stream;
}

std::string Reports() { return Encoder().Int(0).bytes; }

TEST(CInformationCalculator, SavesItsConfiguration) {
  const Calculator bench;
  Encoder expected = Header();
  expected.Int(1).Int(3).Text(u"formula").Text(u"\"T1\" - \"t2\"");
  expected.Text(u"outputVariable").Text(u"range").Text(u"K^1;Delta");
  expected.Text(u"inputVariables").Int(2).Text(u"T1").Text(u"K^1").Text(u"T2").Text(u"K^1");
  expected.Int(1).Text(u"Last run").Bits(0, 2).Text(u"Report is not available").Bits(0, 2);
  EXPECT_TRUE(SameBytes(SavedBytes(bench.door.unit.As<IPersistStream>().Get()), expected.bytes));
}

TEST(CInformationCalculator, LoadsAndKeepsConnections) {
  Encoder stream = Header();
  stream.Int(1).Int(2).Text(u"inputVariables").Int(2).Text(u"T").Text(u"").Text(u"t2").Text(u"K");
  stream.Text(u"formula").Text(u"\"T2\"");
  Calculator bench;
  EXPECT_EQ(LoadBytes(bench.door.unit.As<IPersistStream>().Get(), stream.bytes + Reports()), S_OK);
  EXPECT_EQ(bench.Ports(), "T t2+ output");
  // Only a stream can bring such variables.
  stream = Header();
  stream.Int(1).Int(2).Text(u"inputVariables").Int(2).Text(u"T").Text(u"").Text(u"t").Text(u"");
  stream.Text(u"formula").Text(u"\"T\"");
  EXPECT_EQ(LoadBytes(bench.door.unit.As<IPersistStream>().Get(), stream.bytes + Reports()), S_OK);
  EXPECT_EQ(bench.Invalid(), "Multiple input variables exist with name \"t\"");
  const auto ports = ItemsOf<ICapeUnitPort>(bench.door.Ports());
  const auto other = com::Make<FakeStream>(bench.script);
  other->Add("value", kNone, 5);
  EXPECT_EQ(ports[1]->Connect(UnitBench::Dispatch(other)), S_OK);
  EXPECT_EQ(LoadBytes(bench.door.unit.As<IPersistStream>().Get(), stream.bytes + Reports()), S_OK);
  EXPECT_EQ(ItemsOf<ICapeUnitPort>(bench.door.Ports())[1].Get(), ports[1].Get()) << "by its place";
  bench.Set(R"({"inputVariables": [{"name": "T"}, {"name": "t2"}], "formula": "\"t2\""})");
  EXPECT_EQ(bench.Ports(), "T t2+ output") << "and when the name is mended";
}

TEST(CInformationCalculator, RefusesStreamsThatItDoesNotKnow) {
  constexpr const char* kLost = "failed to load: read error";
  struct {
    std::string data;
    const char* name;
    const char* description;
  } const cases[] = {
      {Encoder().Int(2).Int(0).bytes, nullptr, "Unit was saved with a newer version than available on this system"},
      {Encoder().Int(1).Int(2).Text(u"formula").Text(u"1").Text(u"formula").Text(u"2").bytes, nullptr,
       "duplicate parameter 'formula'"},
      {Encoder().Int(1).Int(1).Text(u"Formula").Text(u"1").bytes, nullptr, "unknown parameter 'Formula'"},
      {Encoder().Int(1).Int(1).Text(u"").Text(u"1").bytes, nullptr, "empty parameter name"},
      {Encoder().Int(1).Int(1).Text(u"outputVariable").Text(u"y").Text(u"W").bytes, nullptr, "parse error"},
      {Encoder().Int(1).Int(1).Text(u"outputVariable").Text(u"").Text(u"").bytes, nullptr, "Name cannot be empty"},
      {Encoder().Int(1).Int(1).Text(u"inputVariables").Int(1).Text(u"Output").Text(u"").bytes, nullptr,
       "Input variables must be different from output variable name"},
      {Encoder().Int(1).Int(1).Text(u"inputVariables").Int(1 << 20).bytes, nullptr,
       "There can be no more than 128 input variables"},
      {Encoder().Int(0).Int(0).bytes, "Read error", kLost},
      {Encoder().Int(1).Int(-1).bytes, "Read error", kLost},
      {Encoder().Int(1).Int(1).Text(u"formula").Int(1000).bytes, "Read error", kLost},
  };
  Calculator bench;
  const auto door = bench.door.unit.As<IPersistStream>();
  const std::string before = SavedBytes(door.Get());
  for (const auto& c : cases) {
    EXPECT_EQ(LoadBytes(door.Get(), Header().bytes + c.data + Reports()), kUnitFailed) << c.description;
    EXPECT_EQ(ErrorOf(door.Get()), (Texts{c.name ? c.name : c.description, c.description, "Load", "IPersistStream"}));
    EXPECT_TRUE(SameBytes(SavedBytes(door.Get()), before));
  }
  EXPECT_EQ(bench.Ports(), "T1+ T2+ range+");
}

TEST(CInformationCalculator, ExplainsAWriteThatFails) {
  Calculator bench;
  const auto door = bench.door.unit.As<IPersistStream>();
  const auto stream = com::Make<FakeIStream>();
  stream->failAt = 2;
  EXPECT_EQ(door->Save(stream.Get(), TRUE), kUnitFailed);
  EXPECT_EQ(ErrorOf(door.Get()), (Texts{"Write error", "failed to save: write error", "Save", "IPersistStream"}));
  EXPECT_EQ(door->IsDirty(), S_OK);
}

}  // namespace morvelan::test::information_calculator
