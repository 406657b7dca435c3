#include "host/objects/StreamParameter.h"

#include <cmath>
#include <limits>

namespace morvelan::host {
namespace {

constexpr const char* kInterface = "ICapeParameter";
constexpr double kNotSet = std::numeric_limits<double>::lowest();

std::optional<double> IfSet(double value) {
  return std::isnan(value) || value == kNotSet ? std::nullopt : std::optional(value);
}

}  // namespace

StreamParameter::StreamParameter(std::string parameterName, const Exponents& dimensions, std::optional<double> initial)
    : Implements(std::move(parameterName), "Value of a stream"),
      exponents(dimensions),
      initialValue(initial),
      current(initial) {}

HRESULT StreamParameter::get_Specification(IDispatch** specification) {
  if (!specification) return E_POINTER;
  *specification = com::Query<IDispatch>(static_cast<ICapeParameter*>(this)).Detach();
  return S_OK;
}

HRESULT StreamParameter::get_value(VARIANT* result) {
  return Answer("get_value", kInterface, result, [&] { return com::MakeDouble(current.value_or(kNotSet)); });
}

HRESULT StreamParameter::put_value(VARIANT newValue) {
  return Guard("put_value", kInterface, [&] {
    const double value = com::ReadDouble(newValue);
    if (std::isinf(value)) throw HostError(kECapeOutOfBounds, "the value of \"" + Name() + "\" must be finite");
    current = IfSet(value);
  });
}

HRESULT StreamParameter::get_ValStatus(CapeValidationStatus* status) {
  if (!status) return E_POINTER;
  *status = CAPE_VALID;
  return S_OK;
}

HRESULT StreamParameter::get_Mode(CapeParamMode* mode) {
  if (!mode) return E_POINTER;
  *mode = CAPE_INPUT_OUTPUT;
  return S_OK;
}

HRESULT StreamParameter::put_Mode(CapeParamMode) {
  return Guard("put_Mode", kInterface,
               [] { throw HostError(kECapeNoImpl, "the mode of a stream's value can't be set"); });
}

HRESULT StreamParameter::Validate(BSTR* message, VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = VARIANT_TRUE;
  return S_OK;
}

HRESULT StreamParameter::Reset() {
  current = initialValue;
  return S_OK;
}

HRESULT StreamParameter::get_Type(CapeParamType* type) {
  if (!type) return E_POINTER;
  *type = CAPE_REAL;
  return S_OK;
}

HRESULT StreamParameter::get_Dimensionality(VARIANT* dimensions) {
  return Answer("get_Dimensionality", "ICapeParameterSpec", dimensions, [&] { return com::MakeDoubles(exponents); });
}

HRESULT StreamParameter::get_DefaultValue(double* value) {
  if (!value) return E_POINTER;
  *value = initialValue.value_or(kNotSet);
  return S_OK;
}

HRESULT StreamParameter::get_LowerBound(double* bound) {
  if (!bound) return E_POINTER;
  *bound = std::numeric_limits<double>::lowest();
  return S_OK;
}

HRESULT StreamParameter::get_UpperBound(double* bound) {
  if (!bound) return E_POINTER;
  *bound = std::numeric_limits<double>::max();
  return S_OK;
}

HRESULT StreamParameter::Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = com::ToVariantBool(!std::isinf(candidate));
  return S_OK;
}

}  // namespace morvelan::host
