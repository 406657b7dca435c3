// The type library in the built library: the standard's interfaces as hosts marshal and late-bind them, and
// the classes.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "com/Classes.h"
#include "com/Ref.h"
#include "com/Values.h"
#include "morvelan.h"
#include "server/ClassTable.h"
#include "tests/windows/StandardInterfaces.h"

namespace morvelan::test::type_library {

using com::Ref;

constexpr int kDispatchSlots = 7;

Ref<ITypeLib> LibraryTypes() {
  Ref<ITypeLib> types;
  const com::Bstr file = com::ToBstr(MORVELAN_LIBRARY);
  if (FAILED(LoadTypeLibEx(file.Get(), REGKIND_NONE, types.Put()))) throw std::runtime_error("no type library");
  return types;
}

std::string NameOf(ITypeInfo* info, MEMBERID member = MEMBERID_NIL) {
  com::Bstr name;
  info->GetDocumentation(member, name.Put(), nullptr, nullptr, nullptr);
  return com::ToUtf8(name.Get());
}

/// The attributes of a type, as long as they are wanted.
class Attributes {
 public:
  explicit Attributes(Ref<ITypeInfo> typeInfo) : info(std::move(typeInfo)) {
    if (FAILED(info->GetTypeAttr(&attributes))) throw std::runtime_error("no type attributes");
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { info->ReleaseTypeAttr(attributes); }
  const TYPEATTR* operator->() const { return attributes; }
  [[nodiscard]] bool Has(WORD flags) const { return (attributes->wTypeFlags & flags) == flags; }

 private:
  Ref<ITypeInfo> info;
  TYPEATTR* attributes = nullptr;
};

Ref<ITypeInfo> Referenced(ITypeInfo* info, HREFTYPE reference) {
  Ref<ITypeInfo> target;
  info->GetRefTypeInfo(reference, target.Put());
  return target;
}

/// The type that stands at a place of a type's list of interfaces.
Ref<ITypeInfo> Implemented(ITypeInfo* info, UINT place) {
  HREFTYPE reference = 0;
  return SUCCEEDED(info->GetRefTypeOfImplType(place, &reference)) ? Referenced(info, reference) : nullptr;
}

std::string TypeText(ITypeInfo* info, const TYPEDESC& type) {
  static const std::map<VARTYPE, std::string> kPlain = {{VT_BSTR, "BSTR"},         {VT_VARIANT, "VARIANT"},
                                                        {VT_BOOL, "VARIANT_BOOL"}, {VT_DISPATCH, "IDispatch*"},
                                                        {VT_I4, "LONG"},           {VT_R8, "double"}};
  if (type.vt == VT_PTR) return TypeText(info, *type.lptdesc) + "*";
  if (type.vt == VT_USERDEFINED) return NameOf(Referenced(info, type.hreftype).Get());
  const auto plain = kPlain.find(type.vt);
  return plain == kPlain.end() ? "type " + std::to_string(type.vt) : plain->second;
}

std::string KindText(INVOKEKIND kind) {
  return kind == INVOKE_FUNC          ? "method"
         : kind == INVOKE_PROPERTYGET ? "propget"
         : kind == INVOKE_PROPERTYPUT ? "propput"
                                      : "another kind";
}

std::string DirectionText(USHORT flags) {
  flags &= static_cast<USHORT>(~PARAMFLAG_FHASCUSTDATA);
  return flags == PARAMFLAG_FIN                      ? "[in]"
         : flags == (PARAMFLAG_FIN | PARAMFLAG_FOUT) ? "[in,out]"
                                                     : "[flags " + std::to_string(flags) + "]";
}

/// A member in the words of the standard's table. What the standard's members have in common shows only where
/// it lacks.
std::string MemberText(ITypeInfo* info, const FUNCDESC& function) {
  const auto parameterCount = static_cast<UINT>(function.cParams);
  std::vector<com::Bstr> names(1 + parameterCount);
  static_assert(sizeof(com::Bstr) == sizeof(BSTR));
  UINT nameCount = 0;
  info->GetNames(function.memid, const_cast<BSTR*>(&names[0].Get()), 1 + parameterCount, &nameCount);
  std::string parameters, result;
  for (UINT i = 0; i < parameterCount; ++i) {
    const ELEMDESC& parameter = function.lprgelemdescParam[i];
    if (parameter.paramdesc.wParamFlags == (PARAMFLAG_FOUT | PARAMFLAG_FRETVAL)) {
      result = " -> " + (parameter.tdesc.vt == VT_PTR ? TypeText(info, *parameter.tdesc.lptdesc) : "no pointer");
      continue;
    }
    if (!parameters.empty()) parameters += ", ";
    parameters += DirectionText(parameter.paramdesc.wParamFlags) + ' ' + TypeText(info, parameter.tdesc);
    if (function.invkind != INVOKE_PROPERTYPUT) parameters += ' ' + com::ToUtf8(names[1 + i].Get());
  }
  const auto slot = function.oVft / static_cast<int>(sizeof(void*)) - kDispatchSlots + 1;
  const bool ordinary = function.elemdescFunc.tdesc.vt == VT_HRESULT && function.callconv == CC_STDCALL &&
                        function.funckind == FUNC_PUREVIRTUAL && function.cParamsOpt == 0;
  return std::to_string(slot) + ' ' + std::to_string(function.memid) + ' ' + KindText(function.invkind) + ' ' +
         com::ToUtf8(names[0].Get()) + '(' + parameters + ')' + result + (ordinary ? "" : " in another way") + '\n';
}

/// A dual interface, whose virtual table is described by the interface behind its dispatch interface.
std::string InterfaceText(ITypeInfo* dispatch) {
  const Ref<ITypeInfo> info = Implemented(dispatch, static_cast<UINT>(-1));
  const Attributes attributes(info);
  const Ref<ITypeInfo> base = Implemented(info.Get(), 0);
  const bool isDual =
      attributes.Has(TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION) && Attributes(base)->guid == __uuidof(IDispatch);
  std::string text = "interface " + NameOf(info.Get()) + ' ' + com::ToText(attributes->guid) +
                     (isDual ? " dual" : " based on " + NameOf(base.Get())) + '\n';
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(info->GetFuncDesc(i, &function))) return text + "a member that can't be read";
    text += MemberText(info.Get(), *function);
    info->ReleaseFuncDesc(function);
  }
  return text;
}

std::string EnumerationText(ITypeInfo* info) {
  const Attributes attributes((Ref<ITypeInfo>::Share(info)));
  std::string text = "enum " + NameOf(info);
  for (UINT i = 0; i < attributes->cVars; ++i) {
    VARDESC* variable = nullptr;
    if (FAILED(info->GetVarDesc(i, &variable))) return text + " a value that can't be read";
    text += ' ' + NameOf(info, variable->memid) + '=' + std::to_string(com::ReadInteger(*variable->lpvarValue));
    info->ReleaseVarDesc(variable);
  }
  return text;
}

std::string ClassText(ITypeInfo* info) {
  const Attributes attributes((Ref<ITypeInfo>::Share(info)));
  INT flags = 0;
  info->GetImplTypeFlags(0, &flags);
  return com::ToText(attributes->guid) + (attributes.Has(TYPEFLAG_FCANCREATE) ? " creatable" : " noncreatable") +
         (flags == IMPLTYPEFLAG_FDEFAULT ? ", by default " : ", first ") + NameOf(Implemented(info, 0).Get());
}

/// What `text` says of each of the library's types of a kind, by name.
std::map<std::string, std::string> TextsOf(TYPEKIND kind, std::string (*text)(ITypeInfo*), WORD flags = 0) {
  const Ref<ITypeLib> types = LibraryTypes();
  std::map<std::string, std::string> texts;
  for (UINT i = 0; i < types->GetTypeInfoCount(); ++i) {
    Ref<ITypeInfo> info;
    if (FAILED(types->GetTypeInfo(i, info.Put()))) continue;
    const Attributes attributes(info);
    if (attributes->typekind == kind && attributes.Has(flags)) texts[NameOf(info.Get())] = text(info.Get());
  }
  return texts;
}

TEST(TypeLibrary, IntroducesItself) {
  const Ref<ITypeLib> types = LibraryTypes();
  com::Bstr name, help;
  ASSERT_EQ(types->GetDocumentation(-1, name.Put(), help.Put(), nullptr, nullptr), S_OK);
  EXPECT_EQ(com::ToUtf8(name.Get()), "SIMPLEUNITOPSLib");
  EXPECT_EQ(com::ToUtf8(help.Get()), "VELT MORVELAN 1.0 Type Library");
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(types->GetLibAttr(&attributes), S_OK);
  EXPECT_EQ(com::ToText(attributes->guid), "{EC39714A-2F1E-42C4-8DC6-FEC9C07E73D6}");
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(attributes->wMinorVerNum, 0);
  EXPECT_EQ(attributes->syskind, SYS_WIN64);
  types->ReleaseTLibAttr(attributes);
}

TEST(TypeLibrary, HasTheStandardsInterfaces) {
  auto own = TextsOf(TKIND_DISPATCH, InterfaceText, TYPEFLAG_FDUAL);
  for (const auto& [name, standard] : StandardInterfaces()) {
    EXPECT_EQ(own[name], standard.text);
    own.erase(name);
  }
  for (const auto& [name, text] : own) ADD_FAILURE() << "not the standard's: " << text;
}

TEST(TypeLibrary, HasTheStandardsEnumerations) {
  auto wanted = StandardEnumerations();
  wanted.erase("CapePhaseStatus");  // travels in arrays: no member has it as a type
  EXPECT_EQ(TextsOf(TKIND_ENUM, EnumerationText), wanted);
}

TEST(TypeLibrary, HasEveryClassAndWhatUnitsMakeForTheirHosts) {
  std::map<std::string, std::string> wanted = {
      {"UnitPort", "{B12A27BF-08D8-4580-A996-40CFA36CA5C8} noncreatable, by default DUnitPort"},
      {"UnitInfoPort", "{E4835B44-1D49-48E3-A73A-ED69C08FCCD6} noncreatable, by default DUnitInfoPort"},
      {"Parameter", "{03C06EA4-CC4A-4B31-8BB3-514AD9723383} noncreatable, by default DRealParameter"},
      {"ParamCollection", "{64625F74-35FC-40D5-B59F-5FA657695784} noncreatable, by default DCollection"},
      {"InfoParamDesc", "{2D378A00-7C50-4F27-8DAB-A8DAD22C5DF8} noncreatable, by default DInfoParamDesc"},
  };
  for (const server::UnitClass& unitClass : server::UnitClasses()) {
    const auto unit = com::CreateObject(unitClass.clsid);
    const char* type = unit.As<ICapeKineticReactionContext>() ? "DReactor"
                       : unit.As<IUnitConfiguration>()        ? "DConfigurableUnit"
                                                              : "DUnit";
    wanted[unitClass.name] = com::ToText(unitClass.clsid) + " creatable, by default " + type;
  }
  EXPECT_EQ(TextsOf(TKIND_COCLASS, ClassText), wanted);
}

}  // namespace morvelan::test::type_library
