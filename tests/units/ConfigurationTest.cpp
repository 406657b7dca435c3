// What units are told beyond their parameters: the numbers of ports, the side of a port.

#include <gtest/gtest.h>

#include "morvelan.h"
#include "tests/support/Door.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/Published.h"
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
  const char* unitClass;
  const char* json;
  const char* why;
};

constexpr Refusal kRefusals[] = {
    {"Mixer", R"({"numberOfInlets": 129})", "must be a whole number from 2 to 128"},
    {"Mixer", R"({"numberOfInlets": 1})", "must be a whole number from 2 to 128"},
    {"Mixer", R"({"numberOfInlets": 4294967299})", "must be a whole number from 2 to 128"},
    {"Mixer", R"({"numberOfInlets": 2.5})", "must be a whole number from 2 to 128"},
    {"Mixer", R"({"numberOfInlets": true})", "must be a whole number from 2 to 128"},
    {"Mixer", R"({"numberOfInlets": null})", "must be a whole number from 2 to 128"},
    {"Mixer", R"({"numberOfInlets": 1e300})", "must be a whole number from 2 to 128"},
    {"Mixer", R"({"numberOfInlets": 3, "inlets": 3})", "unknown key \"inlets\""},
    {"Mixer", "[3]", "no JSON object"},
    {"Mixer", "{\"numberOfInlets\": ", "can't be read"},
    {"Mixer", "", "can't be read"},
    {"Splitter", R"({"numberOfInlets": 3})", "known are \"numberOfOutlets\""},
    {"HeaterCooler", R"({"heatPort": "both"})", "must be one of \"inlet\", \"outlet\""},
    {"HeaterCooler", R"({"heatPort": 1})", "must be one of \"inlet\", \"outlet\""},
};

TEST(Configuration, IsRefusedWholeWhenItIsBad) {
  for (const Refusal& refusal : kRefusals) {
    SCOPED_TRACE(std::string(refusal.unitClass) + " " + refusal.json);
    Configured unit(refusal.unitClass);
    const std::string ports = unit.PortNames(), before = unit.Get();
    EXPECT_TRUE(FAILED(unit.Set(refusal.json)));
    const Texts texts = ErrorOf(unit.configuration.Get());
    EXPECT_NE(texts.description.find(refusal.why), std::string::npos) << texts.description;
    EXPECT_EQ(texts.interfaceName, "IUnitConfiguration");
    EXPECT_EQ(unit.PortNames(), ports);
    EXPECT_EQ(unit.Get(), before);
  }
}

TEST(Configuration, IsOfferedByUnitsThatHaveOneOnly) {
  EXPECT_FALSE(CreateUnit("Valve").As<IUnitConfiguration>());
  const auto mixer = CreateUnit("Mixer").As<IUnitConfiguration>();
  EXPECT_TRUE(FAILED(mixer->SetConfiguration(com::ToBstr("{}").Get()))) << "before Initialize";
  EXPECT_EQ(mixer->GetConfiguration(nullptr), E_POINTER);
}

}  // namespace morvelan::test::configuration
