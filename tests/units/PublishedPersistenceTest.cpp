// Every published unit in streams of the host; and streams kept for ever, which units of all later versions and
// platforms must read.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>

#include "morvelan.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/Persistence.h"
#include "tests/support/Published.h"

namespace morvelan::test::published_persistence {

/// A published unit as a host makes and keeps it.
struct KeptUnit {
  explicit KeptUnit(const com::PublishedClass& unitClass, bool initialized = true)
      : object(com::CreateObject(unitClass.clsid)), stream(object.As<IPersistStream>()), door(object) {
    if (initialized) EXPECT_EQ(door.utilities->Initialize(), S_OK);
  }

  com::Ref<IUnknown> object;
  com::Ref<IPersistStream> stream;
  UnitDoor door;
};

/// Another value that an input may have, made from its own: the last option, half the elements, or a number
/// between the bounds that differs from parameter to parameter.
com::Variant OtherValue(const com::Ref<ICapeParameter>& parameter, std::size_t position) {
  com::Variant value;
  // A conversion can be put at any time, but not read before its reaction was found.
  if (FAILED(parameter->get_value(value.Put()))) value = com::MakeDouble(0);
  if (const VARIANT& held = value.Get(); held.vt == VT_BOOL) return com::MakeBoolean(!com::ReadBoolean(held));
  if (value.Get().vt == VT_R8) {
    double lowest = 0, highest = 0;
    const auto bounds = parameter.As<ICapeRealParameterSpec>();
    EXPECT_EQ(bounds->get_LowerBound(&lowest), S_OK);
    EXPECT_EQ(bounds->get_UpperBound(&highest), S_OK);
    const double other = 500.25 + static_cast<double>(position);
    return com::MakeDouble(other < highest ? other : 0.5 * (lowest + highest));
  }
  if (value.Get().vt == VT_I4) return com::MakeInteger(com::ReadInteger(value.Get()) + 1);
  if (value.Get().vt == VT_BSTR) {
    com::Variant options;
    EXPECT_EQ(parameter.As<ICapeOptionParameterSpec>()->get_OptionList(options.Put()), S_OK);
    return com::MakeString(com::ReadStrings(options.Get()).back());
  }
  std::vector<com::Variant> elements;
  for (const double element : com::ReadDoubles(value.Get())) elements.push_back(com::MakeDouble(element / 2));
  return com::MakeVariants(elements);
}

/// What a host finds of a unit, with a line for each key of its configuration.
std::string WholeDescriptionOf(const UnitDoor& door) {
  std::string text = DescriptionOf(door);
  const auto configuration = door.unit.As<IUnitConfiguration>();
  com::Bstr json;
  if (!configuration) return text;
  EXPECT_EQ(configuration->GetConfiguration(json.Put()), S_OK);
  const auto keys = nlohmann::ordered_json::parse(com::ToUtf8(json.Get()));
  for (const auto& entry : keys.items()) text += "configuration " + entry.key() + ": " + entry.value().dump() + "\n";
  return text;
}

/// A configuration other than the one that a unit is born with, for units that have one.
struct OtherConfiguration {
  const char* unit;
  const char* json;
};

constexpr OtherConfiguration kOtherConfigurations[] = {
    {"CSTR", R"({"reactionNames": ["R1", "R2"]})"},
    {"EquilibriumReactor", R"({"reactionNames": ["R2"]})"},
    {"FixedConversionReactor",
     R"({"reactionNames": ["R1", "R2"], "reactionCompounds": ["methane", ""],
         "reactionConversions": [0.1, 1.2], "serialReactions": true})"},
    {"HeaterCooler", R"({"heatPort": "outlet"})"},
    {"InformationCalculator",
     R"({"formula": "\"T_hot\" - \"T_cold\"", "outputVariable": {"name": "range", "unit": "K;Delta"},
         "inputVariables": [{"name": "T_hot", "unit": "K"}, {"name": "T_cold", "unit": "K^1"}]})"},
    {"Mixer", R"({"numberOfInlets": 4})"},
    {"Splitter", R"({"numberOfOutlets": 3})"},
};

void Configure(const com::PublishedClass& unitClass, const KeptUnit& unit) {
  const auto configuration = unit.object.As<IUnitConfiguration>();
  const auto* other = std::ranges::find(kOtherConfigurations, unitClass.name, &OtherConfiguration::unit);
  ASSERT_EQ(other != std::end(kOtherConfigurations), static_cast<bool>(configuration))
      << "a unit with a configuration has a row in the table, and no other";
  if (configuration)
    EXPECT_EQ(configuration->SetConfiguration(com::ToBstr(other->json).Get()), S_OK) << ErrorOf(configuration.Get());
}

/// A unit in which all differs that a host may change.
KeptUnit Changed(const com::PublishedClass& unitClass) {
  KeptUnit unit(unitClass);
  Configure(unitClass, unit);
  const auto parameters = ItemsOf<ICapeParameter>(unit.door.Parameters());
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    CapeParamMode mode = CAPE_OUTPUT;
    EXPECT_EQ(parameters[i]->get_Mode(&mode), S_OK);
    if (mode == CAPE_INPUT)
      EXPECT_EQ(parameters[i]->put_value(OtherValue(parameters[i], i).Get()), S_OK)
          << unitClass.name << ": " << ErrorOf(parameters[i].Get());
  }
  return unit;
}

TEST(PublishedPersistence, RestoresEveryUnit) {
  for (const com::PublishedClass& unitClass : com::PublishedClasses())
    for (const bool initialized : {false, true}) {
      SCOPED_TRACE(testing::Message() << unitClass.name << ", initialized: " << initialized);
      const KeptUnit source = Changed(unitClass);
      CLSID clsid{};
      EXPECT_EQ(source.stream->GetClassID(&clsid), S_OK);
      EXPECT_TRUE(clsid == unitClass.clsid);
      EXPECT_EQ(source.stream->IsDirty(), S_OK);
      const std::string bytes = SavedBytes(source.stream.Get(), TRUE);
      EXPECT_EQ(source.stream->IsDirty(), S_FALSE);
      ULARGE_INTEGER size{};
      EXPECT_EQ(source.stream->GetSizeMax(&size), S_OK);
      EXPECT_EQ(size.QuadPart, bytes.size());

      const KeptUnit target(unitClass, initialized);
      EXPECT_EQ(LoadBytes(target.stream.Get(), bytes), S_OK) << ErrorOf(target.stream.Get());
      EXPECT_EQ(target.door.utilities->Initialize(), S_OK);
      EXPECT_EQ(WholeDescriptionOf(target.door), WholeDescriptionOf(source.door));
      EXPECT_NE(WholeDescriptionOf(target.door), WholeDescriptionOf(KeptUnit(unitClass).door));
      EXPECT_TRUE(SameBytes(SavedBytes(target.stream.Get()), bytes));
    }
}

TEST(PublishedPersistence, LoadsEveryUnitWholeOrNotAtAll) {
  for (const com::PublishedClass& unitClass : com::PublishedClasses()) {
    SCOPED_TRACE(unitClass.name);
    ExpectLoadsWholeOrNotAtAll(
        {[&] { return KeptUnit(unitClass).stream; }, SavedBytes(Changed(unitClass).stream.Get())}, true);
  }
}

/// The place in the streams of Mixer and Splitter of the number of ports, whose record comes first.
constexpr std::size_t CountPlace(std::size_t nameLength, std::size_t descriptionLength) {
  return 12 + 4 + (4 + 2 * nameLength) + (4 + 2 * descriptionLength) + 4 + 4 + 36 + 4;
}

std::string WithCount(std::string bytes, std::size_t place, std::int32_t count) {
  std::memcpy(bytes.data() + place, &count, sizeof count);
  return bytes;
}

/// A new unit of a class that publishes itself under a name.
KeptUnit NewUnit(const std::string& name) {
  for (const com::PublishedClass& unitClass : com::PublishedClasses())
    if (unitClass.name == name) return KeptUnit(unitClass);
  throw std::runtime_error("no class " + name);
}

TEST(PublishedPersistence, HasAsManyPortsAsCanBe) {
  constexpr std::size_t kPlace = CountPlace(std::size("Number of inlets") - 1, std::size("Number of inlet ports") - 1);
  struct {
    std::int32_t saved;
    LONG inlets;
  } const cases[] = {{2, 2}, {3, 3}, {128, 128}, {129, 128}, {0x7fffffff, 128}, {1, 2}, {0, 2}, {-1, 2}};
  const std::string bytes = SavedBytes(NewUnit("Mixer").stream.Get());
  for (const auto& c : cases) {
    SCOPED_TRACE(c.saved);
    const KeptUnit unit = NewUnit("Mixer");
    EXPECT_EQ(LoadBytes(unit.stream.Get(), WithCount(bytes, kPlace, c.saved)), S_OK);
    LONG ports = 0;
    EXPECT_EQ(unit.door.Ports()->Count(&ports), S_OK);
    EXPECT_EQ(ports, c.inlets + 1);
    com::Variant shown;
    EXPECT_EQ(unit.door.Parameter("Number of inlets")->get_value(shown.Put()), S_OK);
    EXPECT_EQ(com::ReadInteger(shown.Get()), c.inlets);
  }
}

TEST(PublishedPersistence, LetsGoOfTheStreamsAtPortsThatAStreamLacks) {
  const std::string two = SavedBytes(NewUnit("Mixer").stream.Get());
  const KeptUnit unit = NewUnit("Mixer");
  EXPECT_EQ(unit.object.As<IUnitConfiguration>()->SetConfiguration(com::ToBstr(R"({"numberOfInlets": 4})").Get()),
            S_OK);
  std::vector<com::Ref<FakeMaterial>> materials;
  std::vector<com::Ref<ICapeUnitPort>> ports;
  for (int i = 1; i <= 4; ++i) {
    materials.push_back(com::Make<FakeMaterial>(std::make_shared<HostScript>()));
    ports.push_back(unit.door.Port("Inlet " + std::to_string(i)));
    EXPECT_EQ(ports.back()->Connect(materials.back().As<IDispatch>().Get()), S_OK);
  }
  EXPECT_EQ(LoadBytes(unit.stream.Get(), two), S_OK);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(materials[i]->References(), i < 2 ? 2u : 1u) << i;
  EXPECT_TRUE(FAILED(ports[3]->Connect(materials[3].As<IDispatch>().Get()))) << "the unit has it no more";
}

TEST(PublishedPersistence, ExplainsSplitFactorsThatDoNotFitItsOutlets) {
  constexpr std::size_t kPlace =
      CountPlace(std::size("Number of outlets") - 1, std::size("Number of outlet ports") - 1);
  const KeptUnit unit = NewUnit("Splitter");
  EXPECT_EQ(LoadBytes(unit.stream.Get(), WithCount(SavedBytes(unit.stream.Get()), kPlace, 3)), S_OK);
  for (const char* port : {"Inlet", "Outlet1", "Outlet2", "Outlet3"}) {
    const auto material = com::Make<FakeMaterial>(std::make_shared<HostScript>());
    EXPECT_EQ(unit.door.Port(port)->Connect(material.As<IDispatch>().Get()), S_OK);
  }
  std::string message;
  EXPECT_FALSE(unit.door.IsValid(message));
  EXPECT_EQ(message,
            "invalid value for parameter Split factors: Invalid number of array elements for split factor value");
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

std::vector<std::string> Lines(std::string text) {
  std::erase(text, '\r');  // of a checkout on Windows, and of the reports
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// Makes the files of a unit that has none. An existing file stays as it is, for its readers' sake.
void KeepForEver(const com::PublishedClass& unitClass, const std::filesystem::path& stem) {
  if (std::filesystem::exists(stem.string() + ".bin")) return;
  const KeptUnit unit = Changed(unitClass);
  std::ofstream(stem.string() + ".bin", std::ios::binary) << SavedBytes(unit.stream.Get());
  std::ofstream(stem.string() + ".txt", std::ios::binary) << WholeDescriptionOf(unit.door);
}

TEST(PublishedPersistence, ReadsTheStreamsOfAllTimesAndPlatforms) {
  const std::filesystem::path folder = MORVELAN_GOLDEN;
  const bool writesMissing = std::getenv("MORVELAN_WRITE_MISSING_GOLDEN") != nullptr;
  for (const com::PublishedClass& unitClass : com::PublishedClasses()) {
    SCOPED_TRACE(unitClass.name);
    if (writesMissing) KeepForEver(unitClass, folder / unitClass.name);
    const std::string bytes = ReadFile(folder / (unitClass.name + ".bin"));
    const auto expected = Lines(ReadFile(folder / (unitClass.name + ".txt")));
    ASSERT_FALSE(bytes.empty() || expected.empty()) << "see docs/persistence.md on keeping a unit's stream";
    const KeptUnit unit(unitClass, false);
    EXPECT_EQ(LoadBytes(unit.stream.Get(), bytes), S_OK) << ErrorOf(unit.stream.Get());
    EXPECT_EQ(unit.door.utilities->Initialize(), S_OK);
    const auto found = Lines(WholeDescriptionOf(unit.door));
    const auto isPort = [](const std::string& line) { return line.starts_with("port "); };
    const auto portsOf = [&](std::vector<std::string> lines) {
      std::erase_if(lines, std::not_fn(isPort));
      return lines;
    };
    EXPECT_EQ(portsOf(found), portsOf(expected));
    // A later version may have more parameters, never others.
    for (const std::string& line : expected)
      EXPECT_EQ(std::ranges::count(found, line), std::ranges::count(expected, line)) << line;
  }
}

}  // namespace morvelan::test::published_persistence
