// What units are told beyond their parameters: the numbers of ports, the side of a port.

#include <gtest/gtest.h>

#include "morvelan.h"
#include "tests/support/Approved.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/Persistence.h"
#include "tests/units/UnitBench.h"

namespace morvelan::test::configuration {

struct Configured {
  explicit Configured(const char* unitClass) : object(CreateUnit(unitClass)), door(object) {
    door.utilities->Initialize();
    configuration = object.As<IUnitConfiguration>();
  }

  [[nodiscard]] HRESULT Set(const std::string& json) {
    return configuration->SetConfiguration(com::ToBstr(json).Get());
  }
  [[nodiscard]] std::string Get() {
    com::Bstr json;
    return FAILED(configuration->GetConfiguration(json.Put())) ? "<failed>" : com::ToUtf8(json.Get());
  }
  [[nodiscard]] std::string PortNames() const {
    std::string names;
    LONG count = 0;
    door.Ports()->Count(&count);
    for (LONG i = 1; i <= count; ++i) {
      com::Ref<IDispatch> port;
      door.Ports()->Item(com::MakeInteger(i).Get(), port.Put());
      names += (i == 1 ? "" : ",") + TextFrom(port.Get(), &ICapeIdentification::get_ComponentName);
    }
    return names;
  }
  [[nodiscard]] std::vector<double> SplitFactors() const {
    com::Variant value;
    door.Parameter("Split factors")->get_value(value.Put());
    return com::ReadDoubles(value.Get());
  }

  com::Ref<IUnknown> object;
  UnitDoor door;
  com::Ref<IUnitConfiguration> configuration;
};

TEST(Configuration, MovesPortsAndKeepsThoseThatStay) {
  Configured mixer("Mixer");
  const auto material = com::Make<FakeMaterial>(std::make_shared<HostScript>());
  const auto kept = mixer.door.Port("Inlet 2");
  ASSERT_EQ(kept->Connect(material.As<IDispatch>().Get()), S_OK);
  EXPECT_EQ(mixer.Get(), R"({"numberOfInlets":2})");
  ASSERT_EQ(mixer.Set(R"({"numberOfInlets": 4})"), S_OK);
  EXPECT_EQ(mixer.PortNames(), "Inlet 1,Inlet 2,Inlet 3,Inlet 4,Outlet");
  ASSERT_EQ(mixer.Set(R"({"numberOfInlets": 3.0})"), S_OK);
  EXPECT_EQ(mixer.PortNames(), "Inlet 1,Inlet 2,Inlet 3,Outlet");
  EXPECT_EQ(mixer.door.Parameter("Number of inlets")->Reset(), S_OK);
  com::Variant count;
  mixer.door.Parameter("Number of inlets")->get_value(count.Put());
  EXPECT_EQ(com::ReadInteger(count.Get()), 3);
  com::Ref<IDispatch> connected;
  mixer.door.Port("Inlet 2")->get_connectedObject(connected.Put());
  EXPECT_TRUE(connected) << "the connection stays";
  EXPECT_EQ(mixer.door.Port("Inlet 2").Get(), kept.Get());
  ASSERT_EQ(mixer.Set(R"({"numberOfInlets": 128})"), S_OK);
}

TEST(Configuration, GivesNewPortsNamesThatAreFree) {
  Configured mixer("Mixer");
  const auto renamed = mixer.door.Port("Inlet 2").As<ICapeIdentification>();
  ASSERT_EQ(renamed->put_ComponentName(com::ToBstr("inlet 3").Get()), S_OK);
  ASSERT_EQ(mixer.Set(R"({"numberOfInlets": 4})"), S_OK);
  EXPECT_EQ(mixer.PortNames(), "Inlet 1,inlet 3,Inlet 4,Inlet 5,Outlet");
}

TEST(Configuration, LeavesTheUnitToBeValidatedAndSaved) {
  UnitBench bench("Mixer", true);
  bench.Validate();
  const auto configuration = bench.door.unit.As<IUnitConfiguration>();
  EXPECT_EQ(configuration->SetConfiguration(com::ToBstr(R"({"numberOfInlets": 1})").Get()), kUnitFailed);
  EXPECT_EQ(bench.door.Status(), CAPE_VALID) << "refused";
  ASSERT_EQ(configuration->SetConfiguration(com::ToBstr(R"({"numberOfInlets": 3})").Get()), S_OK);
  EXPECT_EQ(bench.door.Status(), CAPE_NOT_VALIDATED);
  EXPECT_EQ(bench.door.unit.As<IPersistStream>()->IsDirty(), S_OK);
  CheckFailedCalculation(bench.door, "not all material ports are connected");
}

TEST(Configuration, IsRefusedWhileTheUnitIsCalculated) {
  UnitBench bench("Mixer", true);
  bench.Validate();
  const auto configuration = bench.door.unit.As<IUnitConfiguration>();
  int refused = 0;
  bench.script->oddAnswers["GetSinglePhaseProp enthalpy"] = [&] {
    refused += configuration->SetConfiguration(com::ToBstr(R"({"numberOfInlets": 9})").Get()) == kUnitFailed;
    EXPECT_EQ(ErrorOf(configuration.Get()).description, "The unit can't be changed while it is calculated");
    return com::MakeDoubles(std::array{15000.0});
  };
  bench.Calculate();
  EXPECT_EQ(refused, 4) << "two phases of two feeds";
  EXPECT_EQ(bench.PortNames().size(), 3u);
}

TEST(Configuration, ResizesTheSplitFactorsSoThatFlowsStay) {
  Configured splitter("Splitter");
  ASSERT_EQ(splitter.Set(R"({"numberOfOutlets": 4})"), S_OK);
  EXPECT_EQ(splitter.PortNames(), "Inlet,Outlet1,Outlet2,Outlet3,Outlet4");
  EXPECT_EQ(splitter.SplitFactors(), (std::vector<double>{0.5, 0.5, 0}));
  ASSERT_EQ(splitter.Set(R"({"numberOfOutlets": 2})"), S_OK);
  EXPECT_EQ(splitter.SplitFactors(), std::vector<double>{0.5});
}

TEST(Configuration, PutsTheHeatPortOnEitherSide) {
  Configured heater("HeaterCooler");
  const auto direction = [&] {
    CapePortDirection side = CAPE_INLET_OUTLET;
    heater.door.Port("Heat")->get_direction(&side);
    return side;
  };
  EXPECT_EQ(direction(), CAPE_INLET);
  ASSERT_EQ(heater.Set(R"({"heatPort": "outlet"})"), S_OK);
  EXPECT_EQ(direction(), CAPE_OUTLET);
  EXPECT_EQ(heater.Get(), R"({"heatPort":"outlet"})");
  ASSERT_EQ(heater.Set("{}"), S_OK);
  EXPECT_EQ(direction(), CAPE_OUTLET) << "what is not given stays";
}

struct Refusal {
  const char* unit;
  const char* json;
};

const Refusal kRefusals[] = {
    {"Mixer", R"({"numberOfInlets": 129})"},
    {"Mixer", R"({"numberOfInlets": 1})"},
    {"Mixer", R"({"numberOfInlets": 4294967299})"},
    {"Mixer", R"({"numberOfInlets": 2.5})"},
    {"Mixer", R"({"numberOfInlets": true})"},
    {"Mixer", R"({"numberOfInlets": null})"},
    {"Mixer", R"({"numberOfInlets": 1e300})"},
    {"Mixer", R"({"numberOfInlets": 3, "inlets": 3})"},
    {"Mixer", "[3]"},
    {"Mixer", "{\"numberOfInlets\": "},
    {"Mixer", ""},
    {"Splitter", R"({"numberOfInlets": 3})"},
    {"HeaterCooler", R"({"heatPort": "both"})"},
    {"HeaterCooler", R"({"heatPort": 1})"},
    {"FixedConversionReactor", R"({"reactionNames": ["A to B"]})"},
    {"FixedConversionReactor", R"({"reactionConversions": [0.1, 0.2, 0.3]})"},
    {"FixedConversionReactor", R"({"reactionNames": ["A to B", ""]})"},
    {"FixedConversionReactor", R"({"reactionNames": "A to B"})"},
    {"FixedConversionReactor", R"({"reactionCompounds": [1, 2]})"},
    {"FixedConversionReactor", R"({"reactionConversions": ["1", "1"]})"},
    {"FixedConversionReactor", R"({"serialReactions": 1})"},
    {"FixedConversionReactor", R"({"serial": true})"},
    {"InformationCalculator", R"({"inputVariables": [{"name": "a"}, {"name": "A"}]})"},
    {"InformationCalculator", R"({"inputVariables": [{"name": "Range"}]})"},
    {"InformationCalculator", R"({"outputVariable": {"name": "t1"}})"},
    {"InformationCalculator", R"({"inputVariables": [{"name": ""}]})"},
    {"InformationCalculator", R"({"outputVariable": {"name": "1a"}})"},
    {"InformationCalculator", R"({"inputVariables": [{"name": "a b"}]})"},
    {"InformationCalculator", R"({"inputVariables": [{"name": "\u00e4"}]})"},
    {"InformationCalculator", R"({"inputVariables": [{"unit": "m"}]})"},
    {"InformationCalculator", R"({"inputVariables": {}})"},
    {"InformationCalculator", R"({"inputVariables": [1]})"},
    {"InformationCalculator", R"({"outputVariable": {"name": "a", "dimension": "m"}})"},
    {"InformationCalculator", R"({"formula": 1})"},
    {"InformationCalculator", R"({"formula": "1", "outputVariable": {"name": "a", "unit": "furlong"}})"},
    {"InformationCalculator", R"({"variables": []})"},
    {"InformationCalculator", R"({"formula": "1", "formula": "2"})"},
    {"InformationCalculator", R"({"outputVariable": {"name": "a", "name": "b"}})"},
    {"InformationCalculator", R"({"outputVariable": {"name": "a", "unit": "m^3e38 m^3e38"}})"},
};

const std::map<std::string, std::string> kBefore = {
    {"FixedConversionReactor", R"({"reactionNames": ["A to B", "B to C"], "reactionCompounds": ["A", "B"],
                                   "reactionConversions": [0.5, 0.25], "serialReactions": true})"},
    {"InformationCalculator", R"({"formula": "1", "outputVariable": {"name": "range"},
                                  "inputVariables": [{"name": "T1", "unit": "K"}]})"},
};

TEST(Configuration, IsRefusedWholeWhenItIsBad) {
  std::string text;
  for (const Refusal& refusal : kRefusals) {
    const std::string title = std::string(refusal.unit) + " " + refusal.json;
    SCOPED_TRACE(title);
    Configured unit(refusal.unit);
    if (kBefore.contains(refusal.unit)) EXPECT_EQ(unit.Set(kBefore.at(refusal.unit)), S_OK);
    (void)SavedBytes(unit.object.As<IPersistStream>().Get(), TRUE);
    const std::string ports = unit.PortNames(), before = unit.Get();
    EXPECT_EQ(unit.Set(refusal.json), kUnitFailed);
    const Texts texts = ErrorOf(unit.configuration.Get());
    EXPECT_EQ(texts.interfaceName, "IUnitConfiguration");
    EXPECT_EQ(unit.PortNames(), ports);
    EXPECT_EQ(unit.Get(), before);
    EXPECT_EQ(unit.object.As<IPersistStream>()->IsDirty(), S_FALSE);
    // The words of the JSON library follow.
    text += title + ": " + texts.description.substr(0, texts.description.find(": [json")) + '\n';
  }
  ExpectApproved("configurations", text);
}

TEST(Configuration, IsOfferedByUnitsThatHaveOneOnly) {
  EXPECT_FALSE(CreateUnit("Valve").As<IUnitConfiguration>());
  const auto mixer = CreateUnit("Mixer").As<IUnitConfiguration>();
  EXPECT_TRUE(FAILED(mixer->SetConfiguration(com::ToBstr("{}").Get()))) << "before Initialize";
  EXPECT_EQ(mixer->GetConfiguration(nullptr), E_POINTER);
}

}  // namespace morvelan::test::configuration
