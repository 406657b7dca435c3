#include "framework/InformationPorts.h"

#include "framework/CalculationFailure.h"
#include "material/MissingValue.h"

namespace morvelan {

double InformationPorts::Read(std::size_t i, const std::string& opening) const {
  com::Variant value;
  try {
    value = ports.at(i)->ReadInformation(0);
  } catch (const Failure& reason) {
    throw CalculationFailure(opening + reason.error.description);
  }
  const VARIANT held = com::Borrow(value.Get());
  if (held.vt != VT_R8 && held.vt != VT_R4)
    throw CalculationFailure(opening + "invalid data type (real value expected)");
  const double number = com::ReadDouble(held);
  if (IsMissing(number)) throw CalculationFailure(opening + "value is not set");
  return number;
}

void InformationPorts::Write(std::size_t i, double value) {
  InCalculation([&] { ports.at(i)->WriteInformation(0, value); });
}

}  // namespace morvelan
