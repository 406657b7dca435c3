// Parameters, their specifications and their collection through the host's interfaces; report lines of
// parameters.

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "framework/ReportFormat.h"
#include "tests/support/Approved.h"
#include "tests/support/Door.h"
#include "tests/support/TestUnit.h"

namespace morvelan::test::parameter {

constexpr double kUnset = -1.7976931348623157e308;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const std::vector<double> kHalves = {0.5, 0.25};
const ParameterDeclaration kParameters[] = {
    kThermoVersionParameter,
    {.name = "Drop",
     .description = "d",
     .defaultValue = 5.0,
     .lowerBound = 0,
     .upperBound = 1e10,
     .dimensionality = kPressureDropDimension},
    {.name = "Result", .description = "d", .mode = CAPE_OUTPUT, .defaultValue = 0.0, .lowerBound = 0, .upperBound = 1},
    {.name = "Count", .description = "d", .defaultValue = std::int32_t{2}, .lowerBound = 2, .upperBound = 128},
    {.name = "Serial", .description = "d", .defaultValue = false},
    {.name = "Factors", .description = "d", .defaultValue = kHalves, .lowerBound = 0, .upperBound = 1},
    {.name = "Both", .description = "d", .mode = CAPE_INPUT_OUTPUT, .defaultValue = 0.0, .upperBound = 1},
    {.name = "Free count", .description = "d", .defaultValue = std::int32_t{0}},
    {.name = "Duty", .description = "d", .defaultValue = "Heat duty", .options = {"Heat duty", "Temperature"}},
    {.name = "Phase", .description = "d", .defaultValue = "Vapor", .options = {"Vapor"}, .restrictedToList = false},
};
const TestDeclaration kUnit = {.name = "U", .description = "", .about = "", .ports = {}, .parameters = kParameters};

struct Bench {
  Bench() { EXPECT_EQ(unit->Initialize(), S_OK); }
  com::Ref<ICapeParameter> Parameter(const char* name) { return door.Parameter(name); }

  com::Ref<TestUnit> unit = com::Make<TestUnit>(kUnit);
  UnitDoor door{com::Query<IUnknown>(static_cast<ICapeUnit*>(unit.Get()))};
};

com::Variant Doubles(std::vector<double> values) {
  std::vector<com::Variant> elements;
  for (const double value : values) elements.push_back(com::MakeDouble(value));
  return com::MakeVariants(elements);
}

com::Variant FromOne(std::vector<double> values) {
  com::Variant array = Doubles(std::move(values));
  array.Get().parray->rgsabound[0].lLbound = 1;
  return array;
}

/// A variant of a type, to be filled.
VARIANT Plain(VARTYPE type) {
  VARIANT variant{};
  variant.vt = type;
  return variant;
}

com::Variant TwoDimensional() {
  SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
  VARIANT variant = Plain(VT_ARRAY | VT_VARIANT);
  variant.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  return com::Variant(variant);
}

ParameterValue ValueOf(Bench& bench, std::string_view name) {
  for (const auto& parameter : bench.unit->Declarations().parameters.All())
    if (parameter->ComponentName() == name) return parameter->Value();
  return {};
}

CapeValidationStatus StatusOf(const com::Ref<ICapeParameter>& parameter) {
  CapeValidationStatus status = CAPE_INVALID;
  EXPECT_EQ(parameter->get_ValStatus(&status), S_OK);
  return status;
}

TEST(CParameter, AcceptsAndRefusesValues) {
  const com::Variant inner = com::MakeDouble(7);
  VARIANT reference = Plain(VT_VARIANT | VT_BYREF);
  reference.pvarVal = const_cast<VARIANT*>(&inner.Get());
  const struct {
    const char* parameter;
    com::Variant value;
    const char* fault;  // empty when accepted
  } cases[] = {
      {"Drop", com::MakeDouble(0), ""},
      {"Drop", com::MakeDouble(1e10), ""},
      {"Drop", com::MakeDouble(-1e-9), "value out of bounds"},
      {"Drop", com::MakeDouble(kUnset), ""},
      {"Drop", com::MakeDouble(kNaN), ""},
      {"Drop", com::MakeInteger(5), "invalid argument type"},
      {"Drop", com::MakeString("5"), "invalid argument type"},
      {"Drop", com::Variant(), "invalid argument type"},
      {"Drop", com::Variant(reference), ""},
      {"Result", com::MakeDouble(17), ""},
      {"Both", com::MakeDouble(17), ""},
      {"Count", com::MakeInteger(1), "value out of bounds"},
      {"Duty", com::MakeString("TEMPERATURE"), ""},
      {"Duty", com::MakeString("Temp"), "invalid choice"},
      {"Count", com::MakeInteger(128), ""},
      {"Count", com::MakeInteger(129), "value out of bounds"},
      {"Count", com::MakeDouble(3), "invalid argument type"},
      {"Serial", com::MakeBoolean(true), ""},
      {"Serial", com::MakeInteger(1), "invalid argument type"},
      {"Thermo Version", com::MakeString("1.1"), ""},
      {"Thermo Version", com::MakeString("1.2"), "invalid choice"},
      {"Phase", com::MakeString("gas"), ""},
      {"Factors", Doubles({0, 1, 0.5}), ""},
      {"Factors", com::MakeDoubles(std::array{0.5}), "invalid type for array parameter value"},
      {"Factors", com::MakeDouble(0.5), "invalid type for array parameter value"},
      {"Factors", TwoDimensional(), "invalid dimension for array parameter value"},
      {"Factors", FromOne({0.5}), "invalid range for array parameter; lower index of 0 expected"},
      {"Factors", com::MakeVariants(std::array{com::MakeInteger(1)}),
       "invalid type for an array element for setting array parameter value: VT_R8 expected"},
      {"Factors", Doubles({0.5, 1.5}), "value out of bounds an array element for setting array parameter value"},
      {"Factors", com::MakeVariants(std::array{com::MakeDouble(2), com::MakeInteger(1)}),
       "value out of bounds an array element for setting array parameter value"},
      {"Factors", Doubles({kNaN}), "value out of bounds an array element for setting array parameter value"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.parameter << " = " << com::Describe(c.value.Get()));
    Bench bench;
    const auto parameter = bench.Parameter(c.parameter);
    com::Bstr message;
    VARIANT_BOOL valid = VARIANT_FALSE;
    const ParameterValue before = ValueOf(bench, c.parameter);
    EXPECT_EQ(parameter->Validate(message.Put(), &valid), S_OK);
    const HRESULT put = parameter->put_value(c.value.Get());
    EXPECT_EQ(put, *c.fault ? kFailed : S_OK);
    EXPECT_EQ(StatusOf(parameter), *c.fault ? CAPE_VALID : CAPE_NOT_VALIDATED);
    EXPECT_EQ(ValueOf(bench, c.parameter) == before, static_cast<bool>(*c.fault)) << "the value";
    if (*c.fault) EXPECT_EQ(ErrorOf(parameter.Get()), (Texts{c.fault, c.fault, "put_value", "ICapeParameter"}));
  }
}

TEST(CParameter, AsksItsUnitAboutEveryKindOfValue) {
  Bench bench;
  bench.unit->onParameterValue = [](const CParameter& parameter, std::string& message, const ParameterValue&) {
    message = "not " + parameter.ComponentName();
    return false;
  };
  const auto factors = bench.Parameter("Factors");
  EXPECT_EQ(factors->put_value(Doubles({2}).Get()), kFailed);
  EXPECT_EQ(ErrorOf(factors.Get()).description,
            "value out of bounds an array element for setting array parameter value");
  EXPECT_EQ(factors->put_value(Doubles({1}).Get()), kFailed);
  EXPECT_EQ(ErrorOf(factors.Get()).description, "not Factors");
  com::Bstr message;
  VARIANT_BOOL valid = VARIANT_TRUE;
  EXPECT_EQ(bench.Parameter("Serial")->Validate(message.Put(), &valid), S_OK);
  EXPECT_EQ(valid, VARIANT_FALSE);
  EXPECT_EQ(com::ToUtf8(message.Get()), "not Serial");
  EXPECT_EQ(StatusOf(bench.Parameter("Serial")), CAPE_INVALID);
  EXPECT_EQ(bench.Parameter("Result")->Validate(message.Put(), &valid), S_OK);
  EXPECT_EQ(com::ToUtf8(message.Get()), "not Result") << "results are asked about too";
  com::Variant texts, verdicts;
  const auto spec = factors.As<ICapeArrayParameterSpec>();
  EXPECT_EQ(spec->Validate(Doubles({1, 0}).Get(), texts.Put(), verdicts.Put()), S_OK);
  EXPECT_EQ(com::ReadStrings(texts.Get()), (std::vector<std::string>{"not Factors", "not Factors"}));
  EXPECT_EQ(spec->Validate(Doubles({}).Get(), texts.Put(), verdicts.Put()), kFailed);
}

TEST(CParameter, ReportsThatItCouldNotBeChecked) {
  Bench bench;
  const auto drop = bench.Parameter("Drop");
  com::Bstr message = com::ToBstr("of an earlier call");
  VARIANT_BOOL valid = VARIANT_FALSE;
  EXPECT_EQ(drop->Validate(message.Put(), &valid), S_OK);
  EXPECT_EQ(StatusOf(drop), CAPE_VALID);
  EXPECT_EQ(com::ToUtf8(message.Get()), "");
  bench.unit->onParameterValue = [](const CParameter&, std::string&, const ParameterValue&) -> bool {
    throw Failure(UnitError{"title", "the host is gone", "elsewhere", "IOther"});
  };
  EXPECT_EQ(drop->Validate(message.Put(), &valid), kFailed);
  EXPECT_EQ(ErrorOf(drop.Get()), (Texts{"the host is gone", "the host is gone", "Validate", "ICapeParameter"}));
  EXPECT_EQ(StatusOf(drop), CAPE_INVALID);
  EXPECT_EQ(drop->put_value(com::MakeDouble(1).Get()), kFailed);
  EXPECT_EQ(ErrorOf(drop.Get()).scope, "put_value");
}

TEST(CParameter, ResetsToItsDefault) {
  Bench bench;
  const auto drop = [&] { return std::get<double>(bench.unit->Parameter(1).Value()); };
  EXPECT_EQ(drop(), 5);
  double whenTold = 0;
  bench.unit->onInputsChanged = [&] { whenTold = drop(); };
  EXPECT_EQ(bench.Parameter("Drop")->put_value(com::MakeDouble(7).Get()), S_OK);
  EXPECT_EQ(whenTold, 7);
  EXPECT_EQ(bench.Parameter("Drop")->Reset(), S_OK);
  EXPECT_EQ(whenTold, 5) << "the unit is told of the default";
  EXPECT_EQ(StatusOf(bench.Parameter("Drop")), CAPE_NOT_VALIDATED);
  const auto factors = bench.Parameter("Factors");
  EXPECT_EQ(factors->put_value(Doubles({1}).Get()), S_OK);
  EXPECT_EQ(factors->Reset(), S_OK);
  EXPECT_EQ(bench.unit->Parameter(5).Value(), ParameterValue(std::vector<double>{1})) << "an array only invalidates";
  // A result is stored without a word to the unit.
  bench.unit->inputChanges = 0;
  bench.unit->Parameter(1).SetResult(11.0);
  EXPECT_EQ(drop(), 11);
  EXPECT_EQ(bench.unit->inputChanges, 0);
}

TEST(CParameter, SwitchesTheUnitsInterfacesAtOnce) {
  Bench bench;
  EXPECT_FALSE(bench.unit->UsesThermo11());
  EXPECT_EQ(bench.Parameter("Thermo Version")->put_value(com::MakeString("1.1").Get()), S_OK);
  EXPECT_TRUE(bench.unit->UsesThermo11());
  EXPECT_EQ(bench.Parameter("Thermo Version")->Reset(), S_OK);
  EXPECT_TRUE(bench.unit->UsesThermo11()) << "a reset acts from the next validation on";
  std::string message;
  EXPECT_TRUE(bench.door.IsValid(message)) << message;
  EXPECT_FALSE(bench.unit->UsesThermo11());
}

// The bounds, defaults and choices of all units' parameters stand in their approved descriptions.
TEST(CParameter, IsItsOwnSpecification) {
  Bench bench;
  com::Ref<IDispatch> specification;
  EXPECT_EQ(bench.Parameter("Drop")->get_Specification(specification.Put()), S_OK);
  const auto drop = specification.As<ICapeRealParameterSpec>();
  ASSERT_TRUE(drop);
  com::Bstr text;
  VARIANT_BOOL flag = VARIANT_TRUE;
  EXPECT_EQ(drop->Validate(-1.0, text.Put(), &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_FALSE);
  EXPECT_EQ(com::ToUtf8(text.Get()), "value out of bounds");
  const auto duty = bench.Parameter("Duty").As<ICapeOptionParameterSpec>();
  flag = VARIANT_TRUE;
  EXPECT_EQ(duty->Validate(com::ToBstr("none").Get(), text.Put(), &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_FALSE);
  EXPECT_EQ(com::ToUtf8(text.Get()), "invalid choice");
  EXPECT_EQ(duty->get_RestrictedToList(&flag), S_OK);
  EXPECT_EQ(flag, VARIANT_TRUE);
  EXPECT_EQ(bench.Parameter("Phase").As<ICapeOptionParameterSpec>()->get_RestrictedToList(&flag), S_OK);
  EXPECT_EQ(flag, VARIANT_FALSE);
  LONG bound = 0;
  EXPECT_EQ(bench.Parameter("Free count").As<ICapeIntegerParameterSpec>()->get_UpperBound(&bound), S_OK);
  EXPECT_EQ(bound, std::numeric_limits<LONG>::max());
}

TEST(CParameter, AnswersAsItsOwnSpecificationOnly) {
  Bench bench;
  const char* parameters[] = {"Drop", "Count", "Thermo Version", "Serial", "Factors"};
  for (int kind = 0; kind < 5; ++kind) {
    SCOPED_TRACE(parameters[kind]);
    const auto parameter = bench.Parameter(parameters[kind]);
    CapeParamType type = CAPE_ARRAY;
    EXPECT_EQ(parameter.As<ICapeParameterSpec>()->get_Type(&type), S_OK);
    EXPECT_EQ(type, kind);
    double real = 0;
    LONG integer = 0;
    com::Bstr text;
    VARIANT_BOOL flag = VARIANT_FALSE;
    com::Variant value, verdicts;
    int own = 0;
    std::string interfaceName;
    const auto expect = [&](const char* scope, HRESULT hr) {
      SCOPED_TRACE(interfaceName + "::" + scope);
      EXPECT_EQ(hr, own == kind ? S_OK : kFailed);
      if (own != kind)
        EXPECT_EQ(ErrorOf(parameter.Get()),
                  (Texts{"invalid call", "wrong interface for parameter type", scope, interfaceName}));
    };
    own = CAPE_REAL, interfaceName = "ICapeRealParameterSpec";
    const auto realSpec = parameter.As<ICapeRealParameterSpec>();
    expect("get_DefaultValue", realSpec->get_DefaultValue(&real));
    expect("get_LowerBound", realSpec->get_LowerBound(&real));
    expect("get_UpperBound", realSpec->get_UpperBound(&real));
    expect("Validate", realSpec->Validate(1, text.Put(), &flag));
    own = CAPE_INT, interfaceName = "ICapeIntegerParameterSpec";
    const auto integerSpec = parameter.As<ICapeIntegerParameterSpec>();
    expect("get_DefaultValue", integerSpec->get_DefaultValue(&integer));
    expect("get_LowerBound", integerSpec->get_LowerBound(&integer));
    expect("get_UpperBound", integerSpec->get_UpperBound(&integer));
    expect("Validate", integerSpec->Validate(LONG{3}, text.Put(), &flag));
    own = CAPE_OPTION, interfaceName = "ICapeOptionParameterSpec";
    const auto optionSpec = parameter.As<ICapeOptionParameterSpec>();
    expect("get_DefaultValue", optionSpec->get_DefaultValue(text.Put()));
    expect("get_OptionList", optionSpec->get_OptionList(value.Put()));
    expect("get_RestrictedTolist", optionSpec->get_RestrictedToList(&flag));
    expect("Validate", optionSpec->Validate(nullptr, text.Put(), &flag));
    own = CAPE_BOOLEAN, interfaceName = "ICapeBooleanParameterSpec";
    const auto booleanSpec = parameter.As<ICapeBooleanParameterSpec>();
    expect("get_DefaultValue", booleanSpec->get_DefaultValue(&flag));
    expect("Validate", booleanSpec->Validate(VARIANT_TRUE, text.Put(), &flag));
    own = CAPE_ARRAY, interfaceName = "ICapeArrayParameterSpec";
    const auto arraySpec = parameter.As<ICapeArrayParameterSpec>();
    expect("Validate", arraySpec->Validate(Doubles({}).Get(), value.Put(), verdicts.Put()));
    expect("get_NumDimensions", arraySpec->get_NumDimensions(&integer));
    expect("get_Size", arraySpec->get_Size(value.Put()));
    expect("get_ItemsSpecifications", arraySpec->get_ItemsSpecifications(value.Put()));
  }
}

TEST(CParameter, DescribesTheElementsOfAnArray) {
  Bench bench;
  const auto spec = bench.Parameter("Factors").As<ICapeArrayParameterSpec>();
  com::Variant sizes, members;
  EXPECT_EQ(spec->get_Size(sizes.Put()), S_OK);
  EXPECT_EQ(com::ReadIntegers(sizes.Get()), std::vector<std::int32_t>{2});
  EXPECT_EQ(spec->get_ItemsSpecifications(members.Put()), S_OK);
  const auto objects = com::ReadVariants(members.Get());
  ASSERT_EQ(objects.size(), 2u);
  const auto second = com::Query<ICapeRealParameterSpec>(objects[1].Get().pdispVal);
  double upper = 0, ownDefault = 0;
  EXPECT_EQ(second->get_UpperBound(&upper), S_OK);
  EXPECT_EQ(second->get_DefaultValue(&ownDefault), S_OK);
  EXPECT_EQ(upper, 1);
  EXPECT_EQ(ownDefault, 0.25);
  const auto member = com::Query<ICapeParameter>(objects[0].Get().pdispVal);
  CapeParamMode mode = CAPE_INPUT;
  com::Bstr message;
  VARIANT_BOOL valid = VARIANT_FALSE;
  com::Ref<IDispatch> specification;
  CapeValidationStatus status = CAPE_VALID;
  const auto refused = [&](HRESULT hr, const char* scope) {
    EXPECT_EQ(hr, kFailed);
    EXPECT_EQ(ErrorOf(member.Get()),
              (Texts{"not a parameter", "Interface is not a parameter, but member of a parameter array", scope,
                     "ICapeParameter"}));
  };
  refused(member->get_Mode(&mode), "get_Mode");
  refused(member->get_ValStatus(&status), "get_ValStatus");
  refused(member->Reset(), "Reset");
  refused(member->Validate(message.Put(), &valid), "Validate");
  refused(member->get_Specification(specification.Put()), "get_Specification");
  refused(member->put_value(com::MakeString("invalid too").Get()), "put_value");

  EXPECT_EQ(member.As<ICapeRealParameterSpec>()->Validate(kNaN, message.Put(), &valid), S_OK);
  EXPECT_EQ(valid, VARIANT_FALSE) << "an element is never unset";

  com::Variant texts, verdicts;
  const std::array candidate = {com::MakeDouble(2), com::MakeInteger(1), com::MakeDouble(0.5)};
  EXPECT_EQ(spec->Validate(com::MakeVariants(candidate).Get(), texts.Put(), verdicts.Put()), S_OK);
  EXPECT_EQ(com::ReadStrings(texts.Get()),
            (std::vector<std::string>{
                "value out of bounds an array element for setting array parameter value",
                "invalid type for an array element for setting array parameter value: VT_R8 expected", ""}));
  const auto flags = com::ReadVariants(verdicts.Get());
  ASSERT_EQ(flags.size(), 3u);
  EXPECT_FALSE(com::ReadBoolean(flags[1].Get()));
  EXPECT_TRUE(com::ReadBoolean(flags[2].Get()));
}

TEST(CParameter, KeepsItsModeFromTheHost) {
  Bench bench;
  const auto parameter = bench.Parameter("Result");
  EXPECT_EQ(parameter->put_Mode(CAPE_INPUT), kFailed);
  CapeParamMode mode = CAPE_INPUT;
  EXPECT_EQ(parameter->get_Mode(&mode), S_OK);
  EXPECT_EQ(mode, CAPE_OUTPUT);
  com::Variant exponents;
  EXPECT_EQ(bench.Parameter("Drop").As<ICapeParameterSpec>()->get_Dimensionality(exponents.Put()), S_OK);
  EXPECT_EQ(com::ReadDoubles(exponents.Get()), (std::vector<double>{-1, 1, -2, 0, 0, 0, 0, 0, 1}));
}

TEST(CParamCollection, FindsByNameAndByAnyKindOfIndex) {
  Bench bench;
  bench.unit->declare.parameters.ReplaceFurther({{"Apart", "", {}}}, nullptr);
  VARIANT small = Plain(VT_I2);
  small.iVal = 3;
  const std::pair<const char*, com::Variant> cases[] = {
      {"integer", com::MakeInteger(1)},
      {"double", com::MakeDouble(2.0)},
      {"small integer", com::Variant(small)},
      {"name in other case", com::MakeString("factors")},
      {"beyond the list", com::MakeInteger(11)},
      {"zero", com::MakeInteger(0)},
      {"beyond all", com::MakeInteger(12)},
      {"empty name", com::MakeString("")},
      {"unknown name", com::MakeString("x")},
      {"nothing", com::Variant()},
      {"an array", com::MakeDoubles(std::array{1.0})},
      {"too large", com::MakeDouble(1e20)},
  };
  const auto parameters = bench.door.Parameters();
  LONG count = 0;
  EXPECT_EQ(parameters->Count(&count), S_OK);
  EXPECT_EQ(count, 11);
  std::string text;
  for (const auto& [title, id] : cases) {
    SCOPED_TRACE(title);
    com::Ref<IDispatch> item;
    const HRESULT outcome = parameters->Item(id.Get(), item.Put());
    const Texts error = ErrorOf(parameters.Get());
    text += title +
            (outcome == S_OK ? ": parameter " + TextFrom(item.Get(), &ICapeIdentification::get_ComponentName)
                             : ": " + error.name + "; " + error.description) +
            '\n';
    if (outcome == S_OK) continue;
    EXPECT_EQ(outcome, kFailed);
    EXPECT_FALSE(item);
    EXPECT_EQ(error.scope + " of " + error.interfaceName, "Item of ICapeCollection");
  }
  ExpectApproved("framework/parameter-items", text);
  EXPECT_EQ(bench.unit->requested, (std::vector<std::size_t>{0, 1, 2, 5}));
  EXPECT_EQ(parameters->Item(com::MakeInteger(1).Get(), nullptr), E_POINTER);
}

TEST(ReportFormat, PrintsOneLinePerParameter) {
  const auto real = [](double value, Dimensionality dimensionality = kDimensionless) {
    return ParameterDeclaration{
        .name = "x", .description = "", .defaultValue = value, .dimensionality = dimensionality};
  };
  const std::pair<ParameterDeclaration, const char*> cases[] = {
      {real(5000, kPressureDropDimension), "x:\t5000 Pa"},
      {real(1, {2, 1, -3, 0, -1, 0, 0, 0, 0}), "x:\t1 W/K"},
      {real(1, {2, 1, -2, 0, 0, 0, 0, 0, 0}), "x:\t1 J"},
      {real(1, {1, 1, -3, 0, 0, 0, 0, 0, 0}), "x:\t1 W/m"},
      {real(1, kMolarEnergyDimension), "x:\t1 J/mol"},
      {real(1, kSpecificEnergyDimension), "x:\t1 J/kg"},
      {real(1, {-1, 1, -1, 0, 0, 0, 0, 0, 0}), "x:\t1 Pa s"},
      {real(1, {0.5, 0, 0, 0, 0, 0, 0, 0, 0}), "x:\t1 m^0.5"},
      {{.name = "a", .description = "", .defaultValue = std::vector<double>{}}, "a:\t []"},
      {real(-1.5e-7, kPowerDimension), "x:\t-1.5e-07 W"},
      {real(1.0 / 3, kTemperatureDimension), "x:\t0.333333333333333 K"},
      {real(2, {0, 1, -3, 0, -1, 0, 0, 0, 0}), "x:\t2 W/m²/K"},
      {real(3, {1, 0, -1, 0, 0, 0, 0, 0, 0}), "x:\t3 m/s"},
      {real(3, {1, 0, -2, 0, 0, -1, 0, 0, 0}), "x:\t3 m/s^2 mol"},
      {real(3, {0, 0, -1, 0, 0, 0, 0, 0, 0}), "x:\t3 1/s"},
      {real(3, {0, 1, 0, 0, 0, 0, 0, 0, 1}), "x:\t3 kg delta"},
      {real(0.75), "x:\t0.75"},
      {real(kUnset, kPressureDimension), "x:\tN/A"},
      {real(kNaN), "x:\tN/A"},
      {{.name = "n", .description = "", .defaultValue = std::int32_t{3}}, "n:\t3"},
      {{.name = "b", .description = "", .defaultValue = true}, "b:\ttrue"},
      {{.name = "o", .description = "", .defaultValue = "Heat duty"}, "o:\tHeat duty"},
      {{.name = "a", .description = "", .defaultValue = std::vector<double>{0.3, 1e-7}}, "a:\t [ 0.3, 1e-07]"},
  };
  for (const auto& [declaration, line] : cases)
    EXPECT_EQ(FormatParameter(*com::Make<CParameter>(declaration, nullptr)), line);
  EXPECT_EQ(FormatNumber(1.0 / 3), "0.333333333333");
  EXPECT_EQ(FormatColumn(1.0 / 3), "    0.333333");
}

}  // namespace morvelan::test::parameter
