#include "framework/ParameterValue.h"

#include <algorithm>

#include "material/MissingValue.h"

namespace morvelan {
namespace {

constexpr const char* kElementOutOfBounds =
    "value out of bounds an array element for setting array parameter value";

template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};

ReadValue Fault(const char* text) { return {std::nullopt, text}; }

ReadValue ReadArray(const VARIANT& array) {
  if (array.vt != (VT_ARRAY | VT_VARIANT) || !array.parray)
    return Fault("invalid type for array parameter value");
  if (SafeArrayGetDim(array.parray) != 1) return Fault("invalid dimension for array parameter value");
  LONG lower = 0;
  if (FAILED(SafeArrayGetLBound(array.parray, 1, &lower)) || lower != 0)
    return Fault("invalid range for array parameter; lower index of 0 expected");
  std::vector<double> values;
  try {
    for (const com::Variant& element : com::ReadVariants(array)) {
      if (element.Get().vt != VT_R8)
        return Fault("invalid type for an array element for setting array parameter value: VT_R8 expected");
      values.push_back(element.Get().dblVal);
    }
  } catch (const com::ValueError&) {
    return Fault("failed to get an array element for setting array parameter value");
  }
  return {std::move(values), {}};
}

bool OutOfBounds(double value, const ValueLimits& limits) {
  return limits.boundsChecked && (value < limits.lower || value > limits.upper);
}

}  // namespace

com::Variant ToVariant(const ParameterValue& value) {
  return std::visit(Overloaded{
                        [](double real) { return com::MakeDouble(real); },
                        [](std::int32_t integer) { return com::MakeInteger(integer); },
                        [](const std::string& option) { return com::MakeString(option); },
                        [](bool boolean) { return com::MakeBoolean(boolean); },
                        [](const std::vector<double>& elements) {
                          std::vector<com::Variant> variants;
                          for (const double element : elements) variants.push_back(com::MakeDouble(element));
                          return com::MakeVariants(variants);
                        },
                    },
                    value);
}

com::Variant ToVariant(const Dimensionality& dimensionality) {
  return com::MakeDoubles(std::vector<double>(dimensionality.begin(), dimensionality.end()));
}

ReadValue ReadParameterValue(CapeParamType kind, const VARIANT& variant) {
  const VARIANT v = com::Borrow(variant);
  if (kind == CAPE_REAL && v.vt == VT_R8) return {v.dblVal, {}};
  if (kind == CAPE_INT && v.vt == VT_I4) return {std::int32_t{v.lVal}, {}};
  if (kind == CAPE_OPTION && v.vt == VT_BSTR) return {com::ToUtf8(v.bstrVal), {}};
  if (kind == CAPE_BOOLEAN && v.vt == VT_BOOL) return {v.boolVal != VARIANT_FALSE, {}};
  if (kind == CAPE_ARRAY) return ReadArray(v);
  return Fault("invalid argument type");
}

std::string CheckElement(double element, const ValueLimits& limits) {
  return IsMissing(element) || element < limits.lower || element > limits.upper ? kElementOutOfBounds : "";
}

std::string CheckLimits(const ParameterValue& value, const ValueLimits& limits) {
  return std::visit(Overloaded{
                        [&](double real) -> std::string {
                          return !IsMissing(real) && OutOfBounds(real, limits) ? "value out of bounds" : "";
                        },
                        [&](std::int32_t integer) -> std::string {
                          return OutOfBounds(integer, limits) ? "value out of bounds" : "";
                        },
                        [&](const std::string& option) -> std::string {
                          if (!limits.allowed) return "";
                          const bool listed = std::ranges::any_of(
                              *limits.allowed,
                              [&](const std::string& choice) { return com::EqualNoCase(choice, option); });
                          return listed ? "" : "invalid choice";
                        },
                        [](bool) -> std::string { return ""; },
                        [&](const std::vector<double>& elements) -> std::string {
                          for (const double element : elements)
                            if (std::string fault = CheckElement(element, limits); !fault.empty())
                              return fault;
                          return "";
                        },
                    },
                    value);
}

}  // namespace morvelan
