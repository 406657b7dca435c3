#include "host/objects/Arguments.h"

#include "com/Text.h"

namespace morvelan::host {

std::vector<std::string> ReadNames(const VARIANT& names) {
  const VARIANT v = com::Borrow(names);
  if (v.vt == VT_EMPTY) return {};
  if (v.vt == VT_BSTR) return {com::ToUtf8(v.bstrVal)};
  return com::ReadStrings(v);
}

std::vector<double> ReadNumbers(const VARIANT& numbers) {
  const VARIANT v = com::Borrow(numbers);
  if (v.vt & VT_ARRAY) return com::ReadDoubles(v);
  return {com::ReadDouble(v)};
}

}  // namespace morvelan::host
