#pragma once

#include <array>
#include <limits>
#include <optional>
#include <string>

#include "host/objects/HostObject.h"

namespace morvelan::host {

/// Exponents of meter, kilogram, second, ampere, kelvin, mole, candela and radian, and a ninth that is 1 for a
/// difference.
using Exponents = std::array<double, 9>;

inline constexpr Exponents kPowerExponents = {2, 1, -3, 0, 0, 0, 0, 0, 0};
inline constexpr Exponents kTemperatureExponents = {0, 0, 0, 0, 1, 0, 0, 0, 0};

/// The standard's mark for a real value that is not set.
inline constexpr double kNotSet = std::numeric_limits<double>::lowest();

/// A value that came from a unit; absent for the mark above and for NaN.
[[nodiscard]] std::optional<double> IfSet(double value);

/// One real value of an energy or information stream.
class StreamParameter final
    : public com::Implements<HostObject, ICapeParameter, ICapeParameterSpec, ICapeRealParameterSpec> {
 public:
  StreamParameter(std::string parameterName, const Exponents& dimensions, std::optional<double> initial);

  [[nodiscard]] std::optional<double> Value() const { return current; }
  [[nodiscard]] const Exponents& Dimensions() const { return exponents; }

  // ICapeParameter
  HRESULT get_Specification(IDispatch** specification) override;
  HRESULT get_value(VARIANT* result) override;
  HRESULT put_value(VARIANT newValue) override;
  HRESULT get_ValStatus(CapeValidationStatus* status) override { return ReturnValue(status, CAPE_VALID); }
  HRESULT get_Mode(CapeParamMode* mode) override { return ReturnValue(mode, CAPE_INPUT_OUTPUT); }
  HRESULT put_Mode(CapeParamMode mode) override;
  HRESULT Validate(BSTR* message, VARIANT_BOOL* isValid) override;
  HRESULT Reset() override;
  // ICapeParameterSpec
  HRESULT get_Type(CapeParamType* type) override { return ReturnValue(type, CAPE_REAL); }
  HRESULT get_Dimensionality(VARIANT* dimensions) override;
  // ICapeRealParameterSpec
  HRESULT get_DefaultValue(double* value) override { return ReturnValue(value, initialValue.value_or(kNotSet)); }
  HRESULT get_LowerBound(double* bound) override { return ReturnValue(bound, std::numeric_limits<double>::lowest()); }
  HRESULT get_UpperBound(double* bound) override { return ReturnValue(bound, std::numeric_limits<double>::max()); }
  HRESULT Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) override;

 private:
  Exponents exponents;
  std::optional<double> initialValue;
  std::optional<double> current;
};

}  // namespace morvelan::host
