#pragma once

#include <array>
#include <optional>
#include <string>

#include "host/objects/HostObject.h"

namespace morvelan::host {

/// Exponents of metre, kilogram, second, ampere, kelvin, mole, candela and radian, and a ninth that is 1 for
/// a difference.
using Exponents = std::array<double, 9>;

inline constexpr Exponents kPowerExponents = {2, 1, -3, 0, 0, 0, 0, 0, 0};
inline constexpr Exponents kTemperatureExponents = {0, 0, 0, 0, 1, 0, 0, 0, 0};

/// One real value of an energy or information stream. A value that nobody has set reads as the most negative
/// double, the standard's mark for it.
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
  HRESULT get_ValStatus(CapeValidationStatus* status) override;
  HRESULT get_Mode(CapeParamMode* mode) override;
  HRESULT put_Mode(CapeParamMode mode) override;
  HRESULT Validate(BSTR* message, VARIANT_BOOL* isValid) override;
  HRESULT Reset() override;
  // ICapeParameterSpec
  HRESULT get_Type(CapeParamType* type) override;
  HRESULT get_Dimensionality(VARIANT* dimensions) override;
  // ICapeRealParameterSpec
  HRESULT get_DefaultValue(double* value) override;
  HRESULT get_LowerBound(double* bound) override;
  HRESULT get_UpperBound(double* bound) override;
  HRESULT Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) override;

 private:
  Exponents exponents;
  std::optional<double> initialValue;
  std::optional<double> current;
};

}  // namespace morvelan::host
