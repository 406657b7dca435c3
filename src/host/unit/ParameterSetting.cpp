#include "host/unit/ParameterSetting.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "com/Text.h"
#include "host/flowsheet/Nearest.h"

namespace morvelan::host {
namespace {

constexpr double kNotSet = std::numeric_limits<double>::lowest();
constexpr double kUnbounded = 1e300;  // bounds beyond it bound nothing

Json NumberOrNull(double value) { return std::isnan(value) || value == kNotSet ? Json() : Json(value); }

com::Variant ToArray(const JsonNode& value) {
  std::vector<com::Variant> elements;
  for (const JsonNode& item : value.Items()) elements.push_back(com::MakeDouble(item.Number()));
  return com::MakeVariants(elements);
}

com::Variant ToInteger(const JsonNode& value) {
  const double number = value.Number();
  if (number != std::nearbyint(number) || std::abs(number) > std::numeric_limits<std::int32_t>::max())
    value.Fail("an integer is expected, " + Shown(value.Value()) + " found");
  return com::MakeInteger(static_cast<std::int32_t>(number));
}

com::Variant ToVariant(CapeParamType kind, const JsonNode& value) {
  switch (kind) {
    case CAPE_REAL:
      return com::MakeDouble(value.Number());
    case CAPE_INT:
      return ToInteger(value);
    case CAPE_OPTION:
      return com::MakeString(value.Text());
    case CAPE_BOOLEAN:
      return com::MakeBoolean(value.Boolean());
    default:
      return ToArray(value);
  }
}

/// The interface of a parameter's specification for its kind.
template <class Specification>
com::Ref<Specification> SpecificationOf(const UnitParameter& parameter) {
  com::Ref<IDispatch> dispatch;
  Check(parameter.object->get_Specification(dispatch.Put()), parameter.object.Get());
  return dispatch.As<Specification>();
}

template <class Specification, class Number>
std::string Bounds(const UnitParameter& parameter) {
  const auto specification = SpecificationOf<Specification>(parameter);
  Number lower{}, upper{};
  if (!specification || FAILED(specification->get_LowerBound(&lower)) || FAILED(specification->get_UpperBound(&upper)))
    return {};
  const auto low = static_cast<double>(lower);
  const auto high = static_cast<double>(upper);
  if (low <= -kUnbounded && high >= kUnbounded) return {};
  if (high >= kUnbounded) return "from " + PlainNumber(low);
  if (low <= -kUnbounded) return "up to " + PlainNumber(high);
  return "from " + PlainNumber(low) + " to " + PlainNumber(high);
}

std::string Options(const UnitParameter& parameter) {
  const auto specification = SpecificationOf<ICapeOptionParameterSpec>(parameter);
  com::Variant list;
  VARIANT_BOOL restricted = VARIANT_FALSE;
  if (!specification || FAILED(specification->get_OptionList(list.Put())) ||
      FAILED(specification->get_RestrictedToList(&restricted)))
    return {};
  const std::string listed = Listed(com::ReadStrings(list.Get()));
  return restricted != VARIANT_FALSE || listed.empty() ? listed : listed + " or any other text";
}

}  // namespace

void PutParameter(const UnitParameter& parameter, const JsonNode& value) {
  CapeParamMode mode = CAPE_INPUT;  // what it is now: options decide what the other parameters are
  Check(parameter.object->get_Mode(&mode), parameter.object.Get());
  if (mode == CAPE_OUTPUT) value.Fail("parameter \"" + parameter.name + "\" is a result of the unit and can't be set");
  const com::Variant variant = ToVariant(parameter.kind, value);
  const HRESULT outcome = parameter.object->put_value(variant.Get());
  if (SUCCEEDED(outcome)) return;
  const std::string allowed = AllowedValues(parameter);
  value.Fail("the value " + Shown(value.Value()) + " is refused: " + FaultOf(parameter.object.Get(), outcome).Text() +
             (allowed.empty() ? "" : "; allowed are values " + allowed));
}

Json ParameterValue(const UnitParameter& parameter) {
  com::Variant value;
  Check(parameter.object->get_value(value.Put()), parameter.object.Get());
  switch (parameter.kind) {
    case CAPE_REAL:
      return NumberOrNull(com::ReadDouble(value.Get()));
    case CAPE_INT:
      return com::ReadInteger(value.Get());
    case CAPE_OPTION:
      return com::ReadString(value.Get());
    case CAPE_BOOLEAN:
      return com::ReadBoolean(value.Get());
    default:
      break;
  }
  Json elements = Json::array();
  for (const double element : com::ReadDoubles(value.Get())) elements.push_back(NumberOrNull(element));
  return elements;
}

std::string AllowedValues(const UnitParameter& parameter) {
  switch (parameter.kind) {
    case CAPE_REAL:
      return Bounds<ICapeRealParameterSpec, double>(parameter);
    case CAPE_INT:
      return Bounds<ICapeIntegerParameterSpec, LONG>(parameter);
    case CAPE_OPTION:
      return Options(parameter);
    default:
      return {};
  }
}

std::string DefaultValue(const UnitParameter& parameter) {
  if (parameter.kind == CAPE_REAL) {
    double value = kNotSet;
    const auto specification = SpecificationOf<ICapeRealParameterSpec>(parameter);
    if (specification) Check(specification->get_DefaultValue(&value), specification.Get());
    return NumberOrNull(value).is_null() ? "not set" : PlainNumber(value);
  }
  if (parameter.kind == CAPE_INT) {
    LONG value = 0;
    const auto specification = SpecificationOf<ICapeIntegerParameterSpec>(parameter);
    if (specification) Check(specification->get_DefaultValue(&value), specification.Get());
    return std::to_string(value);
  }
  if (parameter.kind == CAPE_OPTION) {
    com::Bstr value;
    const auto specification = SpecificationOf<ICapeOptionParameterSpec>(parameter);
    if (specification) Check(specification->get_DefaultValue(value.Put()), specification.Get());
    return com::ToUtf8(value.Get());
  }
  if (parameter.kind == CAPE_BOOLEAN) {
    VARIANT_BOOL value = VARIANT_FALSE;
    const auto specification = SpecificationOf<ICapeBooleanParameterSpec>(parameter);
    if (specification) Check(specification->get_DefaultValue(&value), specification.Get());
    return value == VARIANT_FALSE ? "false" : "true";
  }
  return {};
}

const char* KindName(CapeParamType kind) {
  switch (kind) {
    case CAPE_REAL:
      return "real";
    case CAPE_INT:
      return "integer";
    case CAPE_OPTION:
      return "option";
    case CAPE_BOOLEAN:
      return "boolean";
    default:
      return "array";
  }
}

std::string PlainNumber(double value) {
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, end.ptr};
}

}  // namespace morvelan::host
