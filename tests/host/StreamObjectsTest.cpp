// Energy and information streams and the simulation context, as a unit's ports and base see them.

#include <gtest/gtest.h>

#include <limits>

#include "host/objects/SimulationContext.h"
#include "host/objects/ValueStream.h"
#include "tests/support/Door.h"

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
  const auto expectRefused = [&](const com::Variant& id, const char* text) {
    EXPECT_FALSE(ItemOf(stream, id)) << text;
    EXPECT_EQ(ErrorOf(stream.Get()).description, text);
  };
  expectRefused(com::MakeInteger(0), "stream \"duty\" has 2 values, number 0 was asked for");
  expectRefused(com::MakeInteger(3), "stream \"duty\" has 2 values, number 3 was asked for");
  expectRefused(com::MakeString("temperatureHigh"), "stream \"duty\" has no value \"temperatureHigh\"");
  expectRefused(com::Variant(), "the name or the number of a value is expected");
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
