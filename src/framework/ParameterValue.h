#pragma once

#include <optional>
#include <string>
#include <vector>

#include "com/Values.h"
#include "errors/Failure.h"
#include "framework/Declarations.h"

namespace morvelan {

/// A value as hosts receive it: VT_R8, VT_I4, VT_BSTR, VT_BOOL, or an array of variants with a double each.
[[nodiscard]] com::Variant ToVariant(const ParameterValue& value);

/// The nine exponents as hosts receive them: an array of doubles.
[[nodiscard]] com::Variant ToVariant(const Dimensionality& dimensionality);

/// What a value must satisfy before its unit is asked.
struct ValueLimits {
  bool boundsChecked = false;  // of a real or integer value
  double lower = 0;
  double upper = 0;
  const std::vector<std::string>* allowed = nullptr;  // an option's choices when it is restricted to them
};

/// Why a value is outside its limits; empty when it is inside.
[[nodiscard]] std::string CheckLimits(const ParameterValue& value, const ValueLimits& limits);

/// The same for one element of an array, which is always bound and never unset.
[[nodiscard]] std::string CheckElement(double element, const ValueLimits& limits);

/// The outcome of reading a host's value as one kind of parameter: the value, or why it is none.
struct ReadValue {
  std::optional<ParameterValue> value;
  std::string fault;
};

/// Reads a host's variant, which must have exactly the form of the kind and lie within the limits; references
/// to such a form are followed.
[[nodiscard]] ReadValue ReadParameterValue(CapeParamType kind, const VARIANT& variant, const ValueLimits& limits);

/// The outcome of reading a host's value as an array parameter: its elements, with what is wrong with each
/// (empty for nothing), or why it is no array.
struct ReadElements {
  std::vector<double> values;
  std::vector<std::string> faults;
  std::string fault;
};

[[nodiscard]] ReadElements ReadArrayParameter(const VARIANT& variant, const ValueLimits& limits);

/// Makes an array for a host; running out of memory is a failure with the text that parameters use.
template <class Make>
[[nodiscard]] com::Variant MakeForHost(Make&& make) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    throw Failure("Out of memory");
  }
}

}  // namespace morvelan
