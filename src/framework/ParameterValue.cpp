#include "framework/ParameterValue.h"

#include <algorithm>

#include "material/MissingValue.h"

namespace morvelan {
namespace {

constexpr const char* kElementOutOfBounds = "value out of bounds an array element for setting array parameter value";

constexpr const char* kNoDouble = "invalid type for an array element for setting array parameter value: VT_R8 expected";

template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};

ReadValue Accept(ParameterValue value, const ValueLimits& limits) {
  std::string fault = CheckLimits(value, limits);
  if (!fault.empty()) return {std::nullopt, std::move(fault)};
  return {std::move(value), {}};
}

/// Why a variant is no array of the form that parameters take; null when it is one.
const char* FindArrayFault(const VARIANT& array) {
  if (array.vt != (VT_ARRAY | VT_VARIANT) || !array.parray) return "invalid type for array parameter value";
  if (SafeArrayGetDim(array.parray) != 1) return "invalid dimension for array parameter value";
  LONG lower = 0;
  if (FAILED(SafeArrayGetLBound(array.parray, 1, &lower)) || lower != 0)
    return "invalid range for array parameter; lower index of 0 expected";
  return nullptr;
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
                          const bool listed = std::ranges::any_of(*limits.allowed, [&](const std::string& choice) {
                            return com::EqualNoCase(choice, option);
                          });
                          return listed ? "" : "invalid choice";
                        },
                        [](bool) -> std::string { return ""; },
                        [&](const std::vector<double>& elements) -> std::string {
                          for (const double element : elements)
                            if (std::string fault = CheckElement(element, limits); !fault.empty()) return fault;
                          return "";
                        },
                    },
                    value);
}

ReadElements ReadArrayParameter(const VARIANT& variant, const ValueLimits& limits) {
  const VARIANT array = com::Borrow(variant);
  if (const char* fault = FindArrayFault(array)) return {{}, {}, fault};
  ReadElements read;
  try {
    for (const com::Variant& element : com::ReadVariants(array)) {
      const bool isDouble = element.Get().vt == VT_R8;
      read.values.push_back(isDouble ? element.Get().dblVal : 0.0);
      read.faults.push_back(isDouble ? CheckElement(read.values.back(), limits) : kNoDouble);
    }
  } catch (const com::ValueError&) {
    return {{}, {}, "failed to get an array element for setting array parameter value"};
  }
  return read;
}

ReadValue ReadParameterValue(CapeParamType kind, const VARIANT& variant, const ValueLimits& limits) {
  const VARIANT v = com::Borrow(variant);
  if (kind == CAPE_REAL && v.vt == VT_R8) return Accept(v.dblVal, limits);
  if (kind == CAPE_INT && v.vt == VT_I4) return Accept(std::int32_t{v.lVal}, limits);
  if (kind == CAPE_OPTION && v.vt == VT_BSTR) return Accept(com::ToUtf8(v.bstrVal), limits);
  if (kind == CAPE_BOOLEAN && v.vt == VT_BOOL) return {v.boolVal != VARIANT_FALSE, {}};
  if (kind != CAPE_ARRAY) return {std::nullopt, "invalid argument type"};
  ReadElements read = ReadArrayParameter(v, limits);
  for (const std::string& fault : read.faults)
    if (read.fault.empty()) read.fault = fault;
  if (!read.fault.empty()) return {std::nullopt, read.fault};
  return {std::move(read.values), {}};
}

}  // namespace morvelan
