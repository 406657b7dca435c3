// The specification interfaces of a parameter.

#include <algorithm>
#include <array>
#include <limits>

#include "framework/CParameter.h"

namespace morvelan {
namespace {

constexpr std::string_view kReal = "ICapeRealParameterSpec";
constexpr std::string_view kInteger = "ICapeIntegerParameterSpec";
constexpr std::string_view kOption = "ICapeOptionParameterSpec";
constexpr std::string_view kBoolean = "ICapeBooleanParameterSpec";
constexpr std::string_view kArray = "ICapeArrayParameterSpec";

LONG ToBound(double bound) {
  constexpr double kLowest = std::numeric_limits<LONG>::min();
  constexpr double kHighest = std::numeric_limits<LONG>::max();
  return static_cast<LONG>(std::clamp(bound, kLowest, kHighest));
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
HRESULT CParameter::EnterSpec(CapeParamType kind, std::string_view scope, std::string_view interfaceName, Body&& body) {
  return Guard(scope, interfaceName, [&] {
    if (Kind() != kind)
      throw Failure(UnitError{"invalid call", "wrong interface for parameter type", scope, interfaceName});
    body();
  });
}

HRESULT CParameter::ValidateCandidate(CapeParamType kind, std::string_view interfaceName,
                                      const std::function<ParameterValue()>& candidate, BSTR* message,
                                      VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = VARIANT_FALSE;
  return EnterSpec(kind, "Validate", interfaceName, [&] {
    const std::string fault = Check(candidate());
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
  return Guard("get_Dimensionality", "ICapeParameterSpec",
               [&] { *exponents = MakeForHost([&] { return ToVariant(dimensionality); }).Detach(); });
}

HRESULT CParameter::get_DefaultValue(double* result) {
  if (!result) return E_POINTER;
  *result = {};
  return EnterSpec(CAPE_REAL, "get_DefaultValue", kReal, [&] { *result = std::get<double>(defaultValue); });
}

HRESULT CParameter::get_LowerBound(double* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_REAL, "get_LowerBound", kReal, [&] { *bound = lowerBound; });
}

HRESULT CParameter::get_UpperBound(double* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_REAL, "get_UpperBound", kReal, [&] { *bound = upperBound; });
}

HRESULT CParameter::Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_REAL, kReal, [&] { return candidate; }, message, isValid);
}

HRESULT CParameter::get_DefaultValue(LONG* result) {
  if (!result) return E_POINTER;
  *result = {};
  return EnterSpec(CAPE_INT, "get_DefaultValue", kInteger, [&] { *result = std::get<std::int32_t>(defaultValue); });
}

HRESULT CParameter::get_LowerBound(LONG* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_INT, "get_LowerBound", kInteger, [&] { *bound = ToBound(lowerBound); });
}

HRESULT CParameter::get_UpperBound(LONG* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_INT, "get_UpperBound", kInteger, [&] { *bound = ToBound(upperBound); });
}

HRESULT CParameter::Validate(LONG candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_INT, kInteger, [&] { return std::int32_t{candidate}; }, message, isValid);
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
  return EnterSpec(CAPE_OPTION, "get_OptionList", kOption, [&] { *list = com::MakeStrings(options).Detach(); });
}

HRESULT CParameter::get_RestrictedToList(VARIANT_BOOL* restricted) {
  if (!restricted) return E_POINTER;
  *restricted = {};
  return EnterSpec(CAPE_OPTION, "get_RestrictedTolist", kOption,
                   [&] { *restricted = com::ToVariantBool(restrictedToList); });
}

HRESULT CParameter::Validate(BSTR candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_OPTION, kOption, [&] { return com::ToUtf8(candidate); }, message, isValid);
}

HRESULT CParameter::get_DefaultValue(VARIANT_BOOL* result) {
  if (!result) return E_POINTER;
  *result = {};
  return EnterSpec(CAPE_BOOLEAN, "get_DefaultValue", kBoolean,
                   [&] { *result = com::ToVariantBool(std::get<bool>(defaultValue)); });
}

HRESULT CParameter::Validate(VARIANT_BOOL candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_BOOLEAN, kBoolean, [&] { return candidate != VARIANT_FALSE; }, message, isValid);
}

HRESULT CParameter::get_NumDimensions(LONG* count) {
  if (!count) return E_POINTER;
  *count = {};
  return EnterSpec(CAPE_ARRAY, "get_NumDimensions", kArray, [&] { *count = 1; });
}

HRESULT CParameter::get_Size(VARIANT* sizes) {
  if (!sizes) return E_POINTER;
  VariantInit(sizes);
  return EnterSpec(CAPE_ARRAY, "get_Size", kArray, [&] {
    const std::array<std::int32_t, 1> size = {static_cast<std::int32_t>(std::get<std::vector<double>>(value).size())};
    *sizes = MakeForHost([&] { return com::MakeIntegers(size); }).Detach();
  });
}

HRESULT CParameter::get_ItemsSpecifications(VARIANT* specifications) {
  if (!specifications) return E_POINTER;
  VariantInit(specifications);
  return EnterSpec(CAPE_ARRAY, "get_ItemsSpecifications", kArray, [&] {
    *specifications = MakeForHost([&] {
                        std::vector<com::Variant> members(std::get<std::vector<double>>(value).size());
                        for (std::size_t i = 0; i < members.size(); ++i)
                          members[i] = com::MakeObject(
                              com::Query<IDispatch>(static_cast<ICapeParameter*>(MakeArrayMember(i).Get())).Get());
                        return com::MakeVariants(members);
                      }).Detach();
  });
}

HRESULT CParameter::Validate(VARIANT candidate, VARIANT* messages, VARIANT* areValid) {
  if (!messages || !areValid) return E_POINTER;
  VariantInit(areValid);
  return EnterSpec(CAPE_ARRAY, "Validate", kArray, [&] {
    ReadElements read = ReadArrayParameter(candidate, Limits());
    if (!read.fault.empty()) throw Failure(read.fault);
    if (std::ranges::all_of(read.faults, &std::string::empty)) {
      // What the unit holds against the array as a whole counts against each element.
      const std::string fault = AskUnit(read.values);
      if (read.values.empty() && !fault.empty()) throw Failure(fault);
      read.faults.assign(read.values.size(), fault);
    }
    com::Variant flags = MakeVerdicts(read.faults);
    com::Variant result = com::MakeStrings(read.faults);
    VariantClear(messages);
    *messages = result.Detach();
    *areValid = flags.Detach();
  });
}

com::Ref<CParameter> CParameter::MakeArrayMember(std::size_t position) const {
  const auto& initial = std::get<std::vector<double>>(defaultValue);
  ParameterDeclaration element{.name = ComponentName().c_str(),
                               .description = "Element of an array parameter",
                               .mode = mode,
                               .defaultValue = position < initial.size() ? initial[position] : lowerBound,
                               .lowerBound = lowerBound,
                               .upperBound = upperBound,
                               .dimensionality = dimensionality};
  auto member = com::Make<CParameter>(element, nullptr);
  member->isArrayMember = true;
  return member;
}

}  // namespace morvelan
