#include "framework/ParameterSpecification.h"

#include <algorithm>
#include <array>
#include <limits>

#include "morvelan.h"

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

/// The dispatch interface of a parameter of a value's kind.
GUID AutomationTypeOf(const ParameterValue& value) {
  const GUID types[] = {__uuidof(DRealParameter), __uuidof(DIntegerParameter), __uuidof(DOptionParameter),
                        __uuidof(DBooleanParameter), __uuidof(DArrayParameter)};
  return types[value.index()];
}

GUID SpecificationOf(CapeParamType kind) {
  const GUID types[] = {__uuidof(ICapeRealParameterSpec), __uuidof(ICapeIntegerParameterSpec),
                        __uuidof(ICapeOptionParameterSpec), __uuidof(ICapeBooleanParameterSpec),
                        __uuidof(ICapeArrayParameterSpec)};
  return types[kind];
}

/// True for each message that is empty.
com::Variant MakeVerdicts(const std::vector<std::string>& messages) {
  com::Variant result = com::MakeArray(messages.size(), VT_BOOL);
  std::ranges::transform(messages, static_cast<VARIANT_BOOL*>(result.Get().parray->pvData),
                         [](const std::string& message) { return com::ToVariantBool(message.empty()); });
  return result;
}

}  // namespace

ParameterSpecification::ParameterSpecification(const ParameterDeclaration& declaration)
    : Implements(declaration.name, declaration.description, AutomationTypeOf(declaration.defaultValue)),
      defaultValue(declaration.defaultValue),
      mode(declaration.mode),
      lowerBound(declaration.lowerBound),
      upperBound(declaration.upperBound),
      dimensionality(declaration.dimensionality),
      options(declaration.options),
      restrictedToList(declaration.restrictedToList) {}

template <class Body>
HRESULT ParameterSpecification::EnterSpec(CapeParamType kind, std::string_view scope, std::string_view interfaceName,
                                          Body&& body) {
  return Guard(scope, interfaceName, [&] {
    if (Kind() != kind)
      throw Failure(UnitError{"invalid call", "wrong interface for parameter type", scope, interfaceName});
    body();
  });
}

HRESULT ParameterSpecification::ValidateCandidate(CapeParamType kind, std::string_view interfaceName,
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

HRESULT ParameterSpecification::get_Type(CapeParamType* type) {
  if (!type) return E_POINTER;
  *type = Kind();
  return S_OK;
}

HRESULT ParameterSpecification::get_Dimensionality(VARIANT* exponents) {
  if (!exponents) return E_POINTER;
  VariantInit(exponents);
  return Guard("get_Dimensionality", "ICapeParameterSpec",
               [&] { *exponents = MakeForHost([&] { return ToVariant(dimensionality); }).Detach(); });
}

HRESULT ParameterSpecification::get_DefaultValue(double* result) {
  if (!result) return E_POINTER;
  *result = {};
  return EnterSpec(CAPE_REAL, "get_DefaultValue", kReal, [&] { *result = std::get<double>(defaultValue); });
}

HRESULT ParameterSpecification::get_LowerBound(double* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_REAL, "get_LowerBound", kReal, [&] { *bound = lowerBound; });
}

HRESULT ParameterSpecification::get_UpperBound(double* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_REAL, "get_UpperBound", kReal, [&] { *bound = upperBound; });
}

HRESULT ParameterSpecification::Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_REAL, kReal, [&] { return candidate; }, message, isValid);
}

HRESULT ParameterSpecification::get_DefaultValue(LONG* result) {
  if (!result) return E_POINTER;
  *result = {};
  return EnterSpec(CAPE_INT, "get_DefaultValue", kInteger, [&] { *result = std::get<std::int32_t>(defaultValue); });
}

HRESULT ParameterSpecification::get_LowerBound(LONG* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_INT, "get_LowerBound", kInteger, [&] { *bound = ToBound(lowerBound); });
}

HRESULT ParameterSpecification::get_UpperBound(LONG* bound) {
  if (!bound) return E_POINTER;
  *bound = {};
  return EnterSpec(CAPE_INT, "get_UpperBound", kInteger, [&] { *bound = ToBound(upperBound); });
}

HRESULT ParameterSpecification::Validate(LONG candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_INT, kInteger, [&] { return std::int32_t{candidate}; }, message, isValid);
}

HRESULT ParameterSpecification::get_DefaultValue(BSTR* result) {
  if (!result) return E_POINTER;
  *result = nullptr;
  return EnterSpec(CAPE_OPTION, "get_DefaultValue", kOption,
                   [&] { *result = com::ToBstr(std::get<std::string>(defaultValue)).Detach(); });
}

HRESULT ParameterSpecification::get_OptionList(VARIANT* list) {
  if (!list) return E_POINTER;
  VariantInit(list);
  return EnterSpec(CAPE_OPTION, "get_OptionList", kOption, [&] { *list = com::MakeStrings(options).Detach(); });
}

HRESULT ParameterSpecification::get_RestrictedToList(VARIANT_BOOL* restricted) {
  if (!restricted) return E_POINTER;
  *restricted = {};
  return EnterSpec(CAPE_OPTION, "get_RestrictedTolist", kOption,
                   [&] { *restricted = com::ToVariantBool(restrictedToList); });
}

HRESULT ParameterSpecification::Validate(BSTR candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_OPTION, kOption, [&] { return com::ToUtf8(candidate); }, message, isValid);
}

HRESULT ParameterSpecification::get_DefaultValue(VARIANT_BOOL* result) {
  if (!result) return E_POINTER;
  *result = {};
  return EnterSpec(CAPE_BOOLEAN, "get_DefaultValue", kBoolean,
                   [&] { *result = com::ToVariantBool(std::get<bool>(defaultValue)); });
}

HRESULT ParameterSpecification::Validate(VARIANT_BOOL candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return ValidateCandidate(
      CAPE_BOOLEAN, kBoolean, [&] { return candidate != VARIANT_FALSE; }, message, isValid);
}

HRESULT ParameterSpecification::get_NumDimensions(LONG* count) {
  if (!count) return E_POINTER;
  *count = {};
  return EnterSpec(CAPE_ARRAY, "get_NumDimensions", kArray, [&] { *count = 1; });
}

HRESULT ParameterSpecification::get_Size(VARIANT* sizes) {
  if (!sizes) return E_POINTER;
  VariantInit(sizes);
  return EnterSpec(CAPE_ARRAY, "get_Size", kArray, [&] {
    const std::array<std::int32_t, 1> size = {static_cast<std::int32_t>(ElementCount())};
    *sizes = MakeForHost([&] { return com::MakeIntegers(size); }).Detach();
  });
}

HRESULT ParameterSpecification::get_ItemsSpecifications(VARIANT* specifications) {
  if (!specifications) return E_POINTER;
  VariantInit(specifications);
  return EnterSpec(CAPE_ARRAY, "get_ItemsSpecifications", kArray, [&] {
    *specifications = MakeForHost([&] {
                        std::vector<com::Variant> elements(ElementCount());
                        for (std::size_t i = 0; i < elements.size(); ++i)
                          elements[i] = com::MakeObject(MakeElement(i).Get());
                        return com::MakeVariants(elements);
                      }).Detach();
  });
}

HRESULT ParameterSpecification::Validate(VARIANT candidate, VARIANT* messages, VARIANT* areValid) {
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

ValueLimits ParameterSpecification::Limits() const {
  return {.boundsChecked = mode == CAPE_INPUT,
          .lower = lowerBound,
          .upper = upperBound,
          .allowed = restrictedToList ? &options : nullptr};
}

void ParameterSpecification::AppendFaces(std::vector<com::Face>& faces) {
  std::vector<com::Face> all;
  Implements::AppendFaces(all);
  // The specifications of the other kinds bear the same names.
  const GUID own = SpecificationOf(Kind());
  for (const com::Face& face : all) {
    const bool foreign = std::ranges::any_of(std::array{CAPE_REAL, CAPE_INT, CAPE_OPTION, CAPE_BOOLEAN, CAPE_ARRAY},
                                             [&](CapeParamType kind) { return face.iid == SpecificationOf(kind); }) &&
                         !(face.iid == own);
    if (!foreign) faces.push_back(face);
  }
}

}  // namespace morvelan
