#pragma once

#include <string>
#include <utility>
#include <vector>

#include "com/Values.h"
#include "errors/HostCall.h"
#include "material/MissingValue.h"

namespace morvelan::material {

/// A name as messages show it.
[[nodiscard]] inline std::string DisplayName(com::Name name) { return name.text ? com::ToUtf8(name) : "<NULL>"; }

/// A failure of a property evaluation: one text, the operation of the caller, the port's class as interface.
[[nodiscard]] inline Failure EvaluationFailure(std::string text) { return Failure(std::move(text), {}, "CUnitPort"); }

/// A message that takes the host's text when it ends in ": ", and stands alone otherwise.
[[nodiscard]] inline std::string Explained(std::string message, const std::string& why) {
  if (message.ends_with(": ")) message += why;
  return message;
}

/// Reads what `read` makes of a host's value; `explain` makes the failure from the reason when it can't.
template <class Read, class Explain>
auto ReadOr(Read&& read, Explain&& explain) {
  try {
    return std::forward<Read>(read)();
  } catch (const com::ValueError& error) {
    throw std::forward<Explain>(explain)(std::string(error.what()));
  }
}

/// The only value of an array of numbers. `explain` makes the failure from the reason when the array is
/// unreadable or the value is not set, `wrongCount` when there is not exactly one value.
template <class Explain, class WrongCount>
double ReadScalar(const VARIANT& array, Explain&& explain, WrongCount&& wrongCount) {
  const std::optional<double> value = ReadOr([&] { return com::ReadOnlyDouble(array); }, explain);
  if (!value) throw wrongCount();
  if (IsMissing(*value)) throw explain("value is not set");
  return *value;
}

/// The same where one text fits every fault.
template <class Explain>
double ReadScalar(const VARIANT& array, Explain&& explain) {
  return ReadScalar(array, explain, [&] { return explain("scalar expected"); });
}

/// The only value of an array of numbers, which may be unset.
[[nodiscard]] inline double ReadOneDouble(const VARIANT& array) {
  const VARIANT held = com::Borrow(array);
  if (held.vt & VT_ARRAY && held.parray && SafeArrayGetDim(held.parray) != 1) throw Failure("unexpected array bounds");
  const std::optional<double> value = ReadOr([&] { return com::ReadOnlyDouble(array); },
                                             [](const std::string&) { return Failure("expected a double array"); });
  if (!value) throw Failure("expected a double array with dimension of 1");
  return *value;
}

}  // namespace morvelan::material
