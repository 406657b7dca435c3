// Energy and information streams and the simulation context, as a unit's ports and base see them.

#include <gtest/gtest.h>

#include <limits>

#include "host/objects/SimulationContext.h"
#include "host/objects/ValueStream.h"
#include "tests/support/Door.h"
#include "tests/support/TestUnit.h"

namespace morvelan::test::stream_objects {

using host::StreamParameter;
using host::ValueStream;

constexpr double kMissing = std::numeric_limits<double>::lowest();

com::Ref<ValueStream> MakeHeat(std::optional<double> low) {
  return com::Make<ValueStream>("duty", "Energy stream",
                                std::vector<com::Ref<StreamParameter>>{
                                    com::Make<StreamParameter>("work", host::kPowerExponents, 1000.0),
                                    com::Make<StreamParameter>("temperatureLow", host::kTemperatureExponents, low)});
}

com::Ref<ICapeParameter> ItemOf(const com::Ref<ValueStream>& stream, const com::Variant& id) {
  com::Ref<IDispatch> item;
  return FAILED(stream->Item(id.Get(), item.Put())) ? nullptr : item.As<ICapeParameter>();
}

double ValueOf(const com::Ref<ICapeParameter>& parameter) {
  com::Variant value;
  EXPECT_EQ(parameter->get_value(value.Put()), S_OK);
  return com::ReadDouble(value.Get());
}

TEST(ValueStreamObject, FindsItsValuesByNameAndIndex) {
  const auto stream = MakeHeat(400.0);
  EXPECT_EQ(ValueOf(ItemOf(stream, com::MakeInteger(1))), 1000);
  EXPECT_EQ(ValueOf(ItemOf(stream, com::MakeDouble(2.0))), 400);
  EXPECT_EQ(ValueOf(ItemOf(stream, com::MakeString("WORK"))), 1000);
  EXPECT_EQ(ValueOf(ItemOf(stream, com::MakeString("temperaturelow"))), 400);
  struct {
    com::Variant id;
    const char* words;
  } const refused[] = {{com::MakeInteger(0), "number 0"},
                       {com::MakeInteger(3), "has 2 values"},
                       {com::MakeString("temperatureHigh"), "no value \"temperatureHigh\""},
                       {com::Variant(), "is expected"}};
  for (const auto& c : refused) {
    EXPECT_FALSE(ItemOf(stream, c.id)) << c.words;
    EXPECT_NE(ErrorOf(stream.Get()).description.find(c.words), std::string::npos) << ErrorOf(stream.Get());
  }
}

TEST(StreamParameterObject, KeepsRealValues) {
  const auto parameter = com::Make<StreamParameter>("work", host::kPowerExponents, std::nullopt);
  EXPECT_EQ(ValueOf(parameter), kMissing);
  ASSERT_EQ(parameter->put_value(com::MakeInteger(7).Get()), S_OK);
  EXPECT_EQ(parameter->Value(), 7.0);
  EXPECT_LT(parameter->put_value(com::MakeString("hot").Get()), 0);
  EXPECT_EQ(ErrorOf(parameter.Get()).name, "ECapeInvalidArgument");
  EXPECT_LT(parameter->put_value(com::MakeDouble(std::numeric_limits<double>::infinity()).Get()), 0);
  EXPECT_EQ(parameter->Value(), 7.0) << "a refused value changes nothing";
  ASSERT_EQ(parameter->put_value(com::MakeDouble(kMissing).Get()), S_OK);
  EXPECT_FALSE(parameter->Value());
  ASSERT_EQ(parameter->Reset(), S_OK);
  EXPECT_FALSE(parameter->Value());

  com::Ref<IDispatch> specification;
  ASSERT_EQ(parameter->get_Specification(specification.Put()), S_OK);
  CapeParamType type = CAPE_ARRAY;
  com::Variant exponents;
  ASSERT_EQ(specification.As<ICapeParameterSpec>()->get_Type(&type), S_OK);
  EXPECT_EQ(type, CAPE_REAL);
  ASSERT_EQ(specification.As<ICapeParameterSpec>()->get_Dimensionality(exponents.Put()), S_OK);
  EXPECT_EQ(com::ReadDoubles(exponents.Get()), (std::vector<double>{2, 1, -3, 0, 0, 0, 0, 0, 0}));
}

constexpr InformationItem kTemperature[] = {{"T", "", kTemperatureDimension}};
constexpr PortDeclaration kPorts[] = {{"Heat", "", CAPE_INLET, CAPE_ENERGY, kEnergyItems},
                                      {"Signal", "", CAPE_OUTLET, CAPE_INFORMATION, kTemperature}};
const TestDeclaration kUnit = {.name = "Test", .description = "", .about = "", .ports = kPorts, .parameters = {}};

TEST(ValueStreamObject, ConnectsToPortsThatReadAndWriteIt) {
  const auto context = com::Make<host::SimulationContext>(false, "");
  const auto unit = com::Make<TestUnit>(kUnit);
  unit->thermoVersionIndex = -1;
  ASSERT_EQ(unit->put_simulationContext(context.As<IDispatch>().Get()), S_OK);
  ASSERT_EQ(unit->Initialize(), S_OK);
  auto& heat = dynamic_cast<CUnitInfoPort&>(unit->Inlet(0));
  auto& signal = dynamic_cast<CUnitInfoPort&>(unit->Outlet(0));

  const auto stream = MakeHeat(400.0);
  ASSERT_EQ(heat.Connect(stream.As<IDispatch>().Get()), S_OK) << ErrorOf(&heat);
  EXPECT_EQ(com::ReadDouble(heat.ReadInformation(0).Get()), 1000);
  EXPECT_EQ(com::ReadDouble(heat.ReadInformation(1).Get()), 400);
  EXPECT_FALSE(heat.IsMatched(2)) << "the stream has no temperatureHigh";
  ASSERT_FALSE(context->Lines().empty());
  EXPECT_NE(context->Lines().back().find("temperatureHigh"), std::string::npos) << context->Lines().back();

  // A single value is matched by its dimensionality whatever its name.
  const auto value = com::Make<StreamParameter>("value", host::kTemperatureExponents, std::nullopt);
  const auto information = com::Make<ValueStream>("s", "Information stream", std::vector{value});
  ASSERT_EQ(signal.Connect(information.As<IDispatch>().Get()), S_OK) << ErrorOf(&signal);
  signal.WriteInformation(0, 321.5);
  EXPECT_EQ(value->Value(), 321.5);
  EXPECT_LT(signal.Connect(MakeHeat(400.0).As<IDispatch>().Get()), 0) << "no temperature called T";
  ASSERT_EQ(unit->Terminate(), S_OK);
}

TEST(SimulationContextObject, AnswersNamedValuesAndKeepsTheLog) {
  struct {
    bool simplified;
    const char* version;
    std::vector<std::string> names;
  } const cases[] = {{true, "1.1", {"DefaultThermoVersion", "SimplifiedModelRequest"}},
                     {false, "1.0", {"DefaultThermoVersion", "SimplifiedModelRequest"}},
                     {false, "", {"SimplifiedModelRequest"}}};
  for (const auto& c : cases) {
    const auto context = com::Make<host::SimulationContext>(c.simplified, c.version);
    com::Variant names, simplified, version;
    ASSERT_EQ(context->get_NamedValueList(names.Put()), S_OK);
    EXPECT_EQ(com::ReadStrings(names.Get()), c.names);
    ASSERT_EQ(context->get_NamedValue(com::ToBstr("simplifiedmodelrequest").Get(), simplified.Put()), S_OK);
    EXPECT_EQ(com::ReadBoolean(simplified.Get()), c.simplified);
    const HRESULT got = context->get_NamedValue(com::ToBstr("DefaultThermoVersion").Get(), version.Put());
    EXPECT_EQ(SUCCEEDED(got), *c.version != 0);
    if (SUCCEEDED(got)) EXPECT_EQ(com::ReadString(version.Get()), c.version);
    ASSERT_EQ(context->LogMessage(com::ToBstr("first").Get()), S_OK);
    ASSERT_EQ(context->PopUpMessage(com::ToBstr("zweite Größe").Get()), S_OK);
    ASSERT_EQ(context->LogMessage(nullptr), S_OK);
    EXPECT_EQ(context->Lines(), (std::vector<std::string>{"first", "zweite Größe", ""}));
  }
}

}  // namespace morvelan::test::stream_objects
