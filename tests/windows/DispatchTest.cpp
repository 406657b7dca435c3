// Objects as compiled clients and scripts call them by name: forms of values, ways to pass a text, and failures. What a
// script finds of a whole unit is in script.vbs.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "com/Classes.h"
#include "morvelan.h"
#include "tests/support/Door.h"
#include "tests/support/FakeReactionPackage.h"
#include "tests/support/TestUnit.h"
#include "tests/windows/LateBound.h"

namespace morvelan::test::dispatch {

using com::MakeBoolean;
using com::MakeDouble;
using com::MakeInteger;
using com::MakeString;
using com::Ref;
using com::Variant;

constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;
constexpr WORD kCall = DISPATCH_METHOD;

Ref<IDispatch> MakeNoOperation(bool initialized = true) {
  const auto unit = com::CreateObject(__uuidof(NoOperation)).As<IDispatch>();
  if (initialized) EXPECT_EQ(unit.As<ICapeUtilities>()->Initialize(), S_OK);
  return unit;
}

VARIANT Reference(VARTYPE type, void* target) {
  VARIANT reference{};
  reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
  reference.byref = target;
  return reference;
}

Variant MakeShort(short value) {
  VARIANT variant{};
  variant.vt = VT_I2;
  variant.iVal = value;
  return Variant(variant);
}

std::string TextOf(const VARIANT& value) {
  if (value.vt == (VT_ARRAY | VT_VARIANT)) {
    std::ostringstream text;
    for (const double element : com::ReadDoubles(value)) text << element << ' ';
    return text.str();
  }
  Variant text;
  return FAILED(VariantChangeType(text.Put(), const_cast<VARIANT*>(&value), 0, VT_BSTR))
             ? "no text"
             : com::ToUtf8(text.Get().bstrVal);
}

TEST(Dispatch, HandsAReactionPackageToAReactor) {
  const Ref<IDispatch> reactor = com::CreateObject(__uuidof(FixedConversionReactor)).As<IDispatch>();
  const auto package = com::Make<FakeReactionPackage>(std::make_shared<HostScript>(), FakePackageState{});
  const Variant object = com::MakeObject(static_cast<ICapeReactionProperties*>(package.Get()));
  VARIANT variable = object.Get();
  const ULONG held = package->References();
  for (const VARIANT& given : {object.Get(), Reference(VT_VARIANT, &variable)}) {
    EXPECT_EQ(CallByName(reactor.Get(), "SetReactionObject", kCall, {given}).code, S_OK);
    EXPECT_EQ(package->References(), held + 1);
    EXPECT_EQ(CallByName(reactor.Get(), "SetReactionObject", kCall, {com::kNoValue}).code, S_OK);
    EXPECT_EQ(package->References(), held);
  }
  EXPECT_EQ(CallByName(reactor.Get(), "SetReactionObject", kCall, {MakeInteger(1).Get()}).code, DISP_E_TYPEMISMATCH);
}

struct Put {
  const char* parameter;
  Variant given;
  HRESULT outcome;
  const char* text;  // the value afterwards, or why it was refused
  VARTYPE type;      // of the value afterwards
};

TEST(Dispatch, TakesAScriptsFormsOfValues) {
  const ParameterDeclaration kParameters[] = {
      {.name = "Real", .description = "", .defaultValue = 0.5, .lowerBound = -10, .upperBound = 10},
      {.name = "Integer", .description = "", .defaultValue = std::int32_t{1}, .lowerBound = -10, .upperBound = 10},
      {.name = "Option", .description = "", .defaultValue = "a", .options = {"a", "b"}},
      {.name = "Boolean", .description = "", .defaultValue = false},
      {.name = "Array", .description = "", .defaultValue = std::vector{1.0}},
  };
  const auto object =
      com::Make<TestUnit>(TestDeclaration{.name = "", .description = "", .ports = {}, .parameters = kParameters});
  const auto unit = com::Query<IDispatch>(static_cast<ICapeUnit*>(object.Get()));
  EXPECT_EQ(CallByName(unit.Get(), "Initialize").code, S_OK);
  const Ref<IDispatch> parameters = ObjectByName(unit.Get(), "parameters");
  ASSERT_TRUE(parameters);
  std::vector<Variant> numbers;
  numbers.push_back(MakeShort(2));
  numbers.push_back(MakeInteger(3));
  const Put kPuts[] = {
      {"Real", MakeShort(3), S_OK, "3", VT_R8},
      {"Real", MakeInteger(-4), S_OK, "-4", VT_R8},
      {"Real", MakeDouble(2.5), S_OK, "2.5", VT_R8},
      {"Real", MakeInteger(11), DISP_E_EXCEPTION, "value out of bounds", VT_R8},
      {"Real", MakeString("warm"), DISP_E_EXCEPTION, "invalid argument type", VT_R8},
      {"Integer", MakeDouble(3.0), S_OK, "3", VT_I4},
      {"Integer", MakeShort(-5), S_OK, "-5", VT_I4},
      {"Integer", MakeDouble(2.5), DISP_E_EXCEPTION, "invalid argument type", VT_I4},
      {"Integer", MakeDouble(1e10), DISP_E_EXCEPTION, "invalid argument type", VT_I4},
      {"Option", MakeString("B"), S_OK, "B", VT_BSTR},
      {"Option", MakeDouble(1.0), DISP_E_EXCEPTION, "invalid argument type", VT_BSTR},
      {"Boolean", MakeBoolean(true), S_OK, "-1", VT_BOOL},
      {"Boolean", MakeInteger(1), DISP_E_EXCEPTION, "invalid argument type", VT_BOOL},
      {"Array", com::MakeVariants(numbers), S_OK, "2 3 ", VT_ARRAY | VT_VARIANT},
      {"Array", MakeDouble(1.0), DISP_E_EXCEPTION, "invalid type for array parameter value", VT_ARRAY | VT_VARIANT},
  };
  for (const Put& put : kPuts) {
    SCOPED_TRACE(std::string(put.parameter) + " = " + TextOf(put.given.Get()));
    const Ref<IDispatch> parameter = ObjectByName(parameters.Get(), "Item", {MakeString(put.parameter).Get()});
    ASSERT_TRUE(parameter);
    const Outcome outcome = CallByName(parameter.Get(), "value", kPut, {put.given.Get()});
    const Outcome value = CallByName(parameter.Get(), "value", kGet);
    EXPECT_EQ(outcome.code, put.outcome);
    EXPECT_EQ(FAILED(outcome.code) ? outcome.description : TextOf(value.result.Get()), put.text);
    EXPECT_EQ(value.result.Get().vt, put.type);
  }
}

TEST(Dispatch, HandsTextsBackHoweverTheyArePassed) {
  const Ref<IDispatch> unit = MakeNoOperation();
  const std::string wanted = "not all material ports are connected";
  EXPECT_EQ(CallByName(unit.Get(), "Validate", kCall, {MakeString("by value").Get()}).code, S_OK);
  Variant named = MakeInteger(5);
  VARIANT reference = Reference(VT_VARIANT, const_cast<VARIANT*>(&named.Get()));
  DISPID first = 0, validate = DISPID_UNKNOWN;
  EXPECT_EQ(FindName(unit.Get(), "Validate", validate), S_OK);
  DISPPARAMS byName{&reference, &first, 1, 1};
  EXPECT_EQ(InvokeMember(unit.Get(), validate, kCall, byName).code, S_OK);
  EXPECT_EQ(TextOf(named.Get()), wanted) << "by the argument's name";
  BSTR text = com::ToBstr("old").Detach();
  EXPECT_EQ(CallByName(unit.Get(), "Validate", kCall, {Reference(VT_BSTR, &text)}).code, S_OK);
  EXPECT_EQ(com::ToUtf8(com::Bstr(text).Get()), wanted);
}

TEST(Dispatch, ExplainsFailures) {
  const Ref<IDispatch> unit = MakeNoOperation(false);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(unit.As<ICapeUnit>()->Calculate(), static_cast<HRESULT>(0x80040501u));
  Ref<IErrorInfo> error;
  ASSERT_EQ(GetErrorInfo(0, error.Put()), S_OK);
  com::Bstr description, source;
  EXPECT_EQ(error->GetDescription(description.Put()), S_OK);
  EXPECT_EQ(error->GetSource(source.Put()), S_OK);
  EXPECT_EQ(com::ToUtf8(description.Get()), "Initialize not called");
  EXPECT_EQ(com::ToUtf8(source.Get()), "NoOperation");
  const auto support = unit.As<ISupportErrorInfo>();
  ASSERT_TRUE(support);
  for (const GUID& iid :
       {__uuidof(ICapeUnit), __uuidof(ICapeUtilities), __uuidof(ICapeUnitReport), __uuidof(ICapeIdentification)})
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(iid), S_OK) << com::ToText(iid);
}

struct Misuse {
  const char* title;
  const char* name;
  WORD flags;
  std::vector<LONG> arguments;
  std::vector<DISPID> names = {};  // of the first of them
};

// With codes that differ between systems.
TEST(Dispatch, RefusesMisuse) {
  const Ref<IDispatch> unit = MakeNoOperation();
  const Ref<IDispatch> ports = ObjectByName(unit.Get(), "ports");
  const Misuse kMisuses[] = {
      {"too few", "Item", kCall, {}},
      {"too many", "Item", kCall, {1, 2}},
      {"too many for none", "Count", kCall, {1}},
      {"unknown name of an argument", "Item", kCall, {1}, {7}},
      {"put without a value", "selectedReport", kPut, {}},
      {"put of a method", "Count", kPut, {1}, {DISPID_PROPERTYPUT}},
      {"put of what is only read", "ports", kPut, {1}, {DISPID_PROPERTYPUT}},
      {"too many for a text", "Validate", kCall, {1, 2}},
      {"unknown name of a text", "Validate", kCall, {1}, {7}},
      {"negative name of a text", "ProduceReport", kCall, {1}, {DISPID_PROPERTYPUT}},
  };
  for (const Misuse& misuse : kMisuses) {
    SCOPED_TRACE(misuse.title);
    DISPID id = DISPID_UNKNOWN;
    IDispatch* object = SUCCEEDED(FindName(ports.Get(), misuse.name, id)) ? ports.Get() : unit.Get();
    EXPECT_EQ(FindName(object, misuse.name, id), S_OK);
    std::vector<VARIANT> arguments;
    for (const LONG argument : misuse.arguments) arguments.push_back(MakeInteger(argument).Detach());
    std::vector<DISPID> names = misuse.names;
    DISPPARAMS parameters{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                          static_cast<UINT>(names.size())};
    EXPECT_TRUE(FAILED(InvokeMember(object, id, misuse.flags, parameters).code));
  }
}

TEST(Dispatch, RefusesIdentifiersThatAreNoMembers) {
  const Ref<IDispatch> unit = MakeNoOperation();
  constexpr DISPID kNoMembers[] = {DISPID_VALUE, DISPID_UNKNOWN, DISPID_NEWENUM, 1,
                                   0x10000,      0x10099,        0x80001,        0x7fff0001};
  for (const DISPID id : kNoMembers) {
    DISPPARAMS none{};
    EXPECT_EQ(InvokeMember(unit.Get(), id, kCall | kGet, none).code, DISP_E_MEMBERNOTFOUND) << std::hex << id;
  }
  DISPID id = 1;
  EXPECT_EQ(unit->GetIDsOfNames(IID_NULL, nullptr, 1, LOCALE_USER_DEFAULT, &id), E_POINTER);
  EXPECT_EQ(FindName(unit.Get(), "NoSuchMember", id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(id, DISPID_UNKNOWN);
}

// A host that has an interface may call it by the standard's identifiers.
TEST(Dispatch, AnswersByTheStandardsIdentifiersOnAnInterface) {
  const auto unit = MakeNoOperation().As<ICapeUnit>();
  BSTR text = nullptr;
  VARIANT message = Reference(VT_BSTR, &text);
  DISPPARAMS parameters{&message, nullptr, 1, 0};
  constexpr DISPID kValidate = 4;
  const Outcome outcome = InvokeMember(unit.Get(), kValidate, kCall, parameters);
  EXPECT_EQ(outcome.code, S_OK);
  EXPECT_EQ(outcome.result.Get().vt, VT_BOOL);
  EXPECT_EQ(com::ToUtf8(com::Bstr(text).Get()), "not all material ports are connected");
  DISPID id = DISPID_UNKNOWN;
  EXPECT_EQ(FindName(unit.Get(), "ComponentName", id), DISP_E_UNKNOWNNAME) << "of another interface";
}

}  // namespace morvelan::test::dispatch
