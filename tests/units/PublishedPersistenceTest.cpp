// Every published unit in streams of the host, through the door that hosts use; and streams kept for ever,
// which units of all later versions and platforms must read.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "morvelan.h"
#include "tests/support/Persistence.h"
#include "tests/support/Published.h"

namespace morvelan::test {
namespace {

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
  EXPECT_EQ(parameter->get_value(value.Put()), S_OK);
  if (const VARIANT& held = value.Get(); held.vt == VT_BOOL) return com::MakeBoolean(!com::ReadBoolean(held));
  if (value.Get().vt == VT_R8) return com::MakeDouble(500.25 + static_cast<double>(position));
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

/// A configuration other than the one that a unit is born with, for units that have one.
struct OtherConfiguration {
  const char* unit;
  const char* json;
};

constexpr OtherConfiguration kOtherConfigurations[] = {
    {"HeaterCooler", R"({"heatPort": "outlet"})"},
    {"Mixer", R"({"numberOfInlets": 4})"},
    {"Splitter", R"({"numberOfOutlets": 3})"},
};

void Configure(const com::PublishedClass& unitClass, const KeptUnit& unit) {
  const auto configuration = unit.object.As<IUnitConfiguration>();
  const auto* other = std::ranges::find(kOtherConfigurations, unitClass.name, &OtherConfiguration::unit);
  ASSERT_EQ(other != std::end(kOtherConfigurations), static_cast<bool>(configuration))
      << "a unit with a configuration has a row in the table, and no other";
  if (configuration)
    EXPECT_EQ(configuration->SetConfiguration(com::ToBstr(other->json).Get()), S_OK)
        << ErrorOf(configuration.Get());
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
      EXPECT_EQ(DescriptionOf(target.door), DescriptionOf(source.door));
      EXPECT_NE(DescriptionOf(target.door), DescriptionOf(KeptUnit(unitClass).door));
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

// ---- Streams kept for ever

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
  std::ofstream(stem.string() + ".txt", std::ios::binary) << DescriptionOf(unit.door);
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
    const auto found = Lines(DescriptionOf(unit.door));
    // A later version may have more parameters, never others.
    for (const std::string& line : expected)
      EXPECT_EQ(std::ranges::count(found, line), std::ranges::count(expected, line)) << line;
  }
}

}  // namespace
}  // namespace morvelan::test
