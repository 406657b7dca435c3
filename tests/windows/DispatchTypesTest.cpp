// The identifiers by which scripts and compilers of late-bound code call an object: those of its dispatch
// interface in the type library, of the object itself and of the standard's interfaces must be the same.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "com/Classes.h"
#include "server/ClassTable.h"
#include "tests/support/TestUnit.h"
#include "tests/windows/LateBound.h"
#include "tests/windows/StandardInterfaces.h"

namespace morvelan::test::dispatch_types {

using com::Ref;
using Identifiers = std::map<std::string, DISPID>;

/// The interfaces whose members each dispatch interface lists, in the order of their places.
const std::map<std::string, std::vector<std::string>> kFaces = {
    {"DUnit", {"ICapeUtilities", "ICapeUnit", "ICapeUnitReport"}},
    {"DConfigurableUnit", {"ICapeUtilities", "ICapeUnit", "ICapeUnitReport", "IUnitConfiguration"}},
    {"DReactor",
     {"ICapeUtilities", "ICapeUnit", "ICapeUnitReport", "IUnitConfiguration", "ICapeKineticReactionContext"}},
    {"DUnitPort", {"ICapeUnitPort"}},
    {"DUnitInfoPort", {"ICapeUnitPort", "ICapeCollection"}},
    {"DCollection", {"ICapeCollection"}},
    {"DInfoParamDesc", {"ICapeParameterSpec"}},
    {"DRealParameter", {"ICapeParameter", "ICapeParameterSpec", "ICapeRealParameterSpec"}},
    {"DIntegerParameter", {"ICapeParameter", "ICapeParameterSpec", "ICapeIntegerParameterSpec"}},
    {"DOptionParameter", {"ICapeParameter", "ICapeParameterSpec", "ICapeOptionParameterSpec"}},
    {"DBooleanParameter", {"ICapeParameter", "ICapeParameterSpec", "ICapeBooleanParameterSpec"}},
    {"DArrayParameter", {"ICapeParameter", "ICapeParameterSpec", "ICapeArrayParameterSpec"}},
};

std::vector<std::string> AllFacesOf(const std::string& type) {
  std::vector<std::string> faces = {"ICapeIdentification", "ECapeRoot", "ECapeUser", "ECapeUnknown"};
  const auto& own = kFaces.at(type);
  faces.insert(faces.end(), own.begin(), own.end());
  return faces;
}

/// The names of all the faces; the first face that has a name has it for all.
Identifiers WantedIdentifiers(const std::string& type) {
  Identifiers wanted;
  DISPID place = 0;
  for (const std::string& face : AllFacesOf(type)) {
    ++place;
    for (const auto& [name, id] : StandardInterfaces().at(face).members) wanted.emplace(name, place * 0x10000 + id);
  }
  return wanted;
}

Identifiers ListedIdentifiers(ITypeInfo* info) {
  Identifiers listed;
  FUNCDESC* function = nullptr;
  for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &function)); ++i) {
    com::Bstr name;
    info->GetDocumentation(function->memid, name.Put(), nullptr, nullptr, nullptr);
    // The members of IDispatch are listed too, for nobody to call.
    if (!(function->wFuncFlags & FUNCFLAG_FRESTRICTED)) listed.emplace(com::ToUtf8(name.Get()), function->memid);
    info->ReleaseFuncDesc(function);
  }
  return listed;
}

/// Checks an object's identifiers and gives the name of its dispatch interface.
std::string Check(const Ref<IDispatch>& object) {
  Ref<ITypeInfo> info;
  if (!object || FAILED(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Put()))) return "no type";
  com::Bstr typeName;
  info->GetDocumentation(MEMBERID_NIL, typeName.Put(), nullptr, nullptr, nullptr);
  const std::string type = com::ToUtf8(typeName.Get());
  SCOPED_TRACE(type);
  EXPECT_EQ(ListedIdentifiers(info.Get()), WantedIdentifiers(type));
  for (const auto& [name, wanted] : WantedIdentifiers(type)) {
    DISPID id = DISPID_UNKNOWN;
    EXPECT_EQ(FindName(object.Get(), name, id), S_OK) << name;
    EXPECT_EQ(id, wanted) << name;
  }
  for (const std::string& face : AllFacesOf(type)) {
    const StandardInterface& standard = StandardInterfaces().at(face);
    Ref<IDispatch> own;
    EXPECT_EQ(object->QueryInterface(standard.iid, reinterpret_cast<void**>(own.Put())), S_OK) << face;
    for (const auto& [name, wanted] : standard.members) {
      DISPID id = DISPID_UNKNOWN;
      EXPECT_EQ(own ? FindName(own.Get(), name, id) : E_NOINTERFACE, S_OK) << face << ' ' << name;
      EXPECT_EQ(id, wanted) << "by " << face << ' ' << name;
    }
  }
  return type;
}

/// Checks a unit and all that it hands out; gives the kinds of objects, each with their number.
std::map<std::string, int> CheckAll(const Ref<IDispatch>& unit) {
  std::map<std::string, int> seen;
  EXPECT_EQ(CallByName(unit.Get(), "Initialize").code, S_OK);
  std::vector<Ref<IDispatch>> objects = {unit, ObjectByName(unit.Get(), "ports"),
                                         ObjectByName(unit.Get(), "parameters")};
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const std::string type = Check(objects[i]);
    ++seen[type];
    const bool isCollection = type == "DCollection" || type == "DUnitInfoPort";
    const int count = isCollection ? com::ReadInteger(CallByName(objects[i].Get(), "Count").result.Get()) : 0;
    for (int item = 1; item <= count; ++item)
      objects.push_back(ObjectByName(objects[i].Get(), "Item", {com::MakeInteger(item).Get()}));
  }
  return seen;
}

TEST(DispatchTypes, AreThoseOfTheUnitsObjects) {
  for (const server::UnitClass& unitClass : server::UnitClasses()) {
    SCOPED_TRACE(unitClass.name);
    const auto unit = com::CreateObject(unitClass.clsid);
    const auto seen = CheckAll(unit.As<IDispatch>());
    EXPECT_EQ(seen.contains("DUnit") + seen.contains("DConfigurableUnit") + seen.contains("DReactor"), 1);
    EXPECT_TRUE(seen.contains("DCollection"));
    EXPECT_TRUE(seen.contains("DUnitPort") || seen.contains("DUnitInfoPort"));
    EXPECT_EQ(unit.As<ICapeUnit>().As<IDispatch>().Get(), unit.As<IDispatch>().Get());
    EXPECT_EQ(unit.As<IDispatch>().As<IUnknown>().Get(), unit.Get());
    Ref<ITypeInfo> info;
    ASSERT_EQ(unit.As<IProvideClassInfo>()->GetClassInfo(info.Put()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
    EXPECT_EQ(com::ToText(attributes->guid), com::ToText(unitClass.clsid));
    info->ReleaseTypeAttr(attributes);
  }
}

TEST(DispatchTypes, AreThoseOfEveryKindOfObject) {
  constexpr PortDeclaration kPorts[] = {{"Inlet", "", CAPE_INLET}, {"Heat", "", CAPE_INLET, CAPE_ENERGY, kEnergyItems}};
  const ParameterDeclaration kParameters[] = {
      {.name = "Real", .description = "", .defaultValue = 1.0},
      {.name = "Integer", .description = "", .defaultValue = std::int32_t{1}},
      {.name = "Option", .description = "", .defaultValue = "a"},
      {.name = "Boolean", .description = "", .defaultValue = true},
      {.name = "Array", .description = "", .defaultValue = std::vector{1.0}},
  };
  const auto unit = com::Make<TestUnit>(
      TestDeclaration{.name = "Test", .description = "", .ports = kPorts, .parameters = kParameters});
  const auto seen = CheckAll(com::Query<IDispatch>(static_cast<ICapeUnit*>(unit.Get())));
  std::string text;
  for (const auto& [type, count] : seen) text += type + ' ' + std::to_string(count) + ' ';
  EXPECT_EQ(
      text,
      "DArrayParameter 1 DBooleanParameter 1 DCollection 2 DInfoParamDesc 3 DIntegerParameter 1 DOptionParameter 1 "
      "DRealParameter 1 DUnit 1 DUnitInfoPort 1 DUnitPort 1 ");
  EXPECT_EQ(seen.size() + 2, kFaces.size()) << "all but DConfigurableUnit and DReactor of published units";
}

}  // namespace morvelan::test::dispatch_types
