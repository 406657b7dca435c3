#include "host/objects/StreamParameter.h"

#include <cmath>

namespace morvelan::host {

std::optional<double> IfSet(double value) {
  return std::isnan(value) || value == kNotSet ? std::nullopt : std::optional(value);
}

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
  return Answer("get_value", "ICapeParameter", result, [&] { return com::MakeDouble(current.value_or(kNotSet)); });
}

HRESULT StreamParameter::put_value(VARIANT newValue) {
  return Guard("put_value", "ICapeParameter", [&] {
    const double value = com::ReadDouble(newValue);
    if (std::isinf(value)) throw HostError(kECapeOutOfBounds, "the value of \"" + Name() + "\" must be finite");
    current = IfSet(value);
  });
}

HRESULT StreamParameter::put_Mode(CapeParamMode) {
  return Refuse("put_Mode", "ICapeParameter", kECapeNoImpl, "the mode of a stream's value can't be set");
}

HRESULT StreamParameter::Validate(BSTR* message, VARIANT_BOOL* isValid) {
  return message ? ReturnValue(isValid, VARIANT_TRUE) : E_POINTER;
}

HRESULT StreamParameter::Reset() {
  current = initialValue;
  return S_OK;
}

HRESULT StreamParameter::get_Dimensionality(VARIANT* dimensions) {
  return Answer("get_Dimensionality", "ICapeParameterSpec", dimensions, [&] { return com::MakeDoubles(exponents); });
}

HRESULT StreamParameter::Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) {
  return message ? ReturnValue(isValid, com::ToVariantBool(!std::isinf(candidate))) : E_POINTER;
}

}  // namespace morvelan::host
