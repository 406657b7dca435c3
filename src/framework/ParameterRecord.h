#pragma once

#include <string>
#include <vector>

#include "framework/Declarations.h"
#include "framework/UnitStream.h"

namespace morvelan {

/// A parameter as a stream keeps it.
struct ParameterRecord {
  std::string name;
  std::string description;
  CapeParamMode mode = CAPE_INPUT;
  std::int32_t flagWord = 0;  // kept for who wrote it
  Dimensionality dimensionality{};
  ParameterValue value;
  ParameterValue defaultValue;  // of an array: a number, the default of its elements
  double lowerBound = 0;
  double upperBound = 0;
  std::vector<std::string> options;
  bool restrictedToList = true;

  void Write(UnitWriter& writer) const;
  /// Throws Failure.
  [[nodiscard]] static ParameterRecord Read(UnitReader& reader);
};

}  // namespace morvelan
