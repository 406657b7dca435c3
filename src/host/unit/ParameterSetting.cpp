#include "host/unit/ParameterSetting.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "host/file/NumberText.h"

namespace morvelan::host {
namespace {

constexpr double kUnbounded = 1e300;  // a bound beyond it is no bound

Json NumberOrNull(double value) {
  const auto number = IfSet(value);
  return number ? Json(*number) : Json();
}

com::Variant ToArray(const JsonNode& value) {
  std::vector<com::Variant> elements;
  for (const JsonNode& item : value.Items()) elements.push_back(com::MakeDouble(item.Number()));
  return com::MakeVariants(elements);
}

com::Variant ToInteger(const JsonNode& value) {
  const double number = value.Number();
  if (number != std::nearbyint(number) || std::abs(number) > std::numeric_limits<std::int32_t>::max())
    value.Fail("an integer is expected, " + Describe(value.Value()) + " found");
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

/// The default that a specification gives, or `value` when the parameter has no specification of this kind.
template <class Specification, class Value>
Value DefaultOf(const UnitParameter& parameter, Value value) {
  const auto specification = SpecificationOf<Specification>(parameter);
  if (specification) Check(specification->get_DefaultValue(&value), specification.Get());
  return value;
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
  CapeParamMode mode = CAPE_INPUT;  // the present one, because options change the modes of other parameters
  Check(parameter.object->get_Mode(&mode), parameter.object.Get());
  if (mode == CAPE_OUTPUT) value.Fail("parameter \"" + parameter.name + "\" is a result of the unit and can't be set");
  const com::Variant variant = ToVariant(parameter.kind, value);
  const HRESULT outcome = parameter.object->put_value(variant.Get());
  if (SUCCEEDED(outcome)) return;
  const std::string allowed = AllowedValues(parameter);
  value.Fail("the value " + Describe(value.Value()) +
             " is refused: " + ReportedErrorOf(parameter.object.Get(), outcome).Text() +
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
  switch (parameter.kind) {
    case CAPE_REAL: {
      const auto value = IfSet(DefaultOf<ICapeRealParameterSpec>(parameter, kNotSet));
      return value ? PlainNumber(*value) : "not set";
    }
    case CAPE_INT:
      return std::to_string(DefaultOf<ICapeIntegerParameterSpec>(parameter, LONG{0}));
    case CAPE_OPTION: {
      const com::Bstr value(DefaultOf<ICapeOptionParameterSpec>(parameter, BSTR{}));
      return com::ToUtf8(value.Get());
    }
    case CAPE_BOOLEAN:
      return DefaultOf<ICapeBooleanParameterSpec>(parameter, VARIANT_FALSE) == VARIANT_FALSE ? "false" : "true";
    default:
      return {};
  }
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

}  // namespace morvelan::host
