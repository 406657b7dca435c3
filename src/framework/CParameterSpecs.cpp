// The specification interfaces of a parameter.

#include <algorithm>
#include <array>
#include <new>

#include "framework/BaseUnit.h"
#include "framework/CParameter.h"

namespace morvelan {
namespace {

constexpr std::string_view kReal = "ICapeRealParameterSpec";
constexpr std::string_view kInteger = "ICapeIntegerParameterSpec";
constexpr std::string_view kOption = "ICapeOptionParameterSpec";
constexpr std::string_view kBoolean = "ICapeBooleanParameterSpec";
constexpr std::string_view kArray = "ICapeArrayParameterSpec";

/// Makes an array for the host and names its own failure as these calls do.
template <class Make>
com::Variant MakeForHost(std::string_view scope, std::string_view interfaceName, Make&& make) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    throw Failure("Out of memory", scope, interfaceName);
  }
}

/// True for each message that is empty.
com::Variant MakeVerdicts(const std::vector<std::string>& messages) {
  com::Variant result = com::MakeArray(messages.size(), VT_BOOL);
  std::ranges::transform(messages, static_cast<VARIANT_BOOL*>(result.Get().parray->pvData),
                         [](const std::string& message) { return com::ToVariantBool(message.empty()); });
  return result;
}

}  // namespace

template <class Body>
HRESULT CParameter::EnterSpec(CapeParamType kind, std::string_view scope, std::string_view interfaceName,
                              Body&& body) {
  return Guard(scope, interfaceName, [&] {
    if (Kind() != kind)
      throw Failure(UnitError{"invalid call", "wrong interface for parameter type", scope, interfaceName});
    body();
  });
}

HRESULT CParameter::ValidateCandidate(CapeParamType kind, std::string_view interfaceName,
                                      const ParameterValue& candidate, BSTR* message, VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = VARIANT_FALSE;
  return EnterSpec(kind, "Validate", interfaceName, [&] {
    const std::string fault = Check(candidate);
    ReplaceText(message, fault);
    *isValid = com::ToVariantBool(fault.empty());
  });
}

HRESULT CParameter::get_Type(CapeParamType* type) {
  if (!type) return E_POINTER;
  *type = Kind();
  return S_OK;
}

HRESULT CParameter::get_Dimensionality(VARIANT* exponents) {
  if (!exponents) return E_POINTER;
  VariantInit(exponents);
  return Guard("get_Dimensionality", "ICapeParameterSpec", [&] {
    *exponents = MakeForHost("get_Dimensionality", "ICapeParameterSpec", [&] {
                   return ToVariant(dimensionality);
                 }).Detach();
  });
}

HRESULT CParameter::get_DefaultValue(double* result) {
  if (!result) return E_POINTER;
  return EnterSpec(CAPE_REAL, "get_DefaultValue", kReal, [&] { *result = std::get<double>(defaultValue); });
}

HRESULT CParameter::get_LowerBound(double* bound) {
  if (!bound) return E_POINTER;
  return EnterSpec(CAPE_REAL, "get_LowerBound", kReal, [&] { *bound = lowerBound; });
}

HRESULT CParameter::get_UpperBound(double* bound) {
  if (!bound) return E_POINTER;
  return EnterSpec(CAPE_REAL, "get_UpperBound", kReal, [&] { *bound = upperBound; });
}

HRESULT CParameter::Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(CAPE_REAL, kReal, candidate, message, isValid);
}

HRESULT CParameter::get_DefaultValue(LONG* result) {
  if (!result) return E_POINTER;
  return EnterSpec(CAPE_INT, "get_DefaultValue", kInteger,
                   [&] { *result = std::get<std::int32_t>(defaultValue); });
}

HRESULT CParameter::get_LowerBound(LONG* bound) {
  if (!bound) return E_POINTER;
  return EnterSpec(CAPE_INT, "get_LowerBound", kInteger, [&] { *bound = static_cast<LONG>(lowerBound); });
}

HRESULT CParameter::get_UpperBound(LONG* bound) {
  if (!bound) return E_POINTER;
  return EnterSpec(CAPE_INT, "get_UpperBound", kInteger, [&] { *bound = static_cast<LONG>(upperBound); });
}

HRESULT CParameter::Validate(LONG candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(CAPE_INT, kInteger, std::int32_t{candidate}, message, isValid);
}

HRESULT CParameter::get_DefaultValue(BSTR* result) {
  if (!result) return E_POINTER;
  *result = nullptr;
  return EnterSpec(CAPE_OPTION, "get_DefaultValue", kOption,
                   [&] { *result = com::ToBstr(std::get<std::string>(defaultValue)).Detach(); });
}

HRESULT CParameter::get_OptionList(VARIANT* list) {
  if (!list) return E_POINTER;
  VariantInit(list);
  return EnterSpec(CAPE_OPTION, "get_OptionList", kOption,
                   [&] { *list = com::MakeStrings(options).Detach(); });
}

HRESULT CParameter::get_RestrictedToList(VARIANT_BOOL* restricted) {
  if (!restricted) return E_POINTER;
  return EnterSpec(CAPE_OPTION, "get_RestrictedTolist", kOption,
                   [&] { *restricted = com::ToVariantBool(restrictedToList); });
}

HRESULT CParameter::Validate(BSTR candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(CAPE_OPTION, kOption, com::ToUtf8(candidate), message, isValid);
}

HRESULT CParameter::get_DefaultValue(VARIANT_BOOL* result) {
  if (!result) return E_POINTER;
  return EnterSpec(CAPE_BOOLEAN, "get_DefaultValue", kBoolean,
                   [&] { *result = com::ToVariantBool(std::get<bool>(defaultValue)); });
}

HRESULT CParameter::Validate(VARIANT_BOOL candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(CAPE_BOOLEAN, kBoolean, candidate != VARIANT_FALSE, message, isValid);
}

HRESULT CParameter::get_NumDimensions(LONG* count) {
  if (!count) return E_POINTER;
  return EnterSpec(CAPE_ARRAY, "get_NumDimensions", kArray, [&] { *count = 1; });
}

HRESULT CParameter::get_Size(VARIANT* sizes) {
  if (!sizes) return E_POINTER;
  VariantInit(sizes);
  return EnterSpec(CAPE_ARRAY, "get_Size", kArray, [&] {
    const std::array<std::int32_t, 1> size = {
        static_cast<std::int32_t>(std::get<std::vector<double>>(value).size())};
    *sizes = MakeForHost("get_Size", kArray, [&] { return com::MakeIntegers(size); }).Detach();
  });
}

HRESULT CParameter::get_ItemsSpecifications(VARIANT* specifications) {
  if (!specifications) return E_POINTER;
  VariantInit(specifications);
  return EnterSpec(CAPE_ARRAY, "get_ItemsSpecifications", kArray, [&] {
    *specifications =
        MakeForHost("get_ItemsSpecifications", kArray, [&] {
          std::vector<com::Variant> members(std::get<std::vector<double>>(value).size());
          for (com::Variant& member : members)
            member = com::MakeObject(
                com::Query<IDispatch>(static_cast<ICapeParameter*>(MakeArrayMember().Get())).Get());
          return com::MakeVariants(members);
        }).Detach();
  });
}

HRESULT CParameter::Validate(VARIANT candidate, VARIANT* messages, VARIANT* areValid) {
  if (!messages || !areValid) return E_POINTER;
  VariantInit(areValid);
  return EnterSpec(CAPE_ARRAY, "Validate", kArray, [&] {
    const ReadValue read = ReadParameterValue(CAPE_ARRAY, candidate);
    if (!read.value) throw Failure(read.fault);
    const auto& elements = std::get<std::vector<double>>(*read.value);
    const std::string verdict = Check(*read.value);
    std::vector<std::string> texts;
    for (const double element : elements) texts.push_back(CheckElement(element, Limits()));
    // What the unit holds against the array as a whole counts against each element.
    if (std::ranges::all_of(texts, &std::string::empty)) texts.assign(elements.size(), verdict);
    com::Variant flags = MakeVerdicts(texts);
    com::Variant result = com::MakeStrings(texts);
    VariantClear(messages);
    *messages = result.Detach();
    *areValid = flags.Detach();
  });
}

com::Ref<CParameter> CParameter::MakeArrayMember() const {
  const auto& initial = std::get<std::vector<double>>(defaultValue);
  ParameterDeclaration element{.name = ComponentName().c_str(),
                               .description = "Element of an array parameter",
                               .mode = mode,
                               .defaultValue = initial.empty() ? 0.0 : initial.front(),
                               .lowerBound = lowerBound,
                               .upperBound = upperBound,
                               .dimensionality = dimensionality};
  auto member = com::Make<CParameter>(element, nullptr);
  member->isArrayMember = true;
  return member;
}

}  // namespace morvelan
