#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "cape_open.h"
#include "framework/Dimensionality.h"

namespace morvelan {

/// A parameter's value; the alternatives stand in the order of `CapeParamType`.
using ParameterValue = std::variant<double, std::int32_t, std::string, bool, std::vector<double>>;

/// What a parameter is, as a unit declares it. SI units throughout.
struct ParameterDeclaration {
  const char* name;
  const char* description;
  CapeParamMode mode = CAPE_INPUT;
  /// Decides the kind. For an array: the initial elements.
  ParameterValue defaultValue;
  /// Both inclusive; of each element for an array; not used by options and booleans.
  double lowerBound = -std::numeric_limits<double>::max();
  double upperBound = std::numeric_limits<double>::max();
  Dimensionality dimensionality = kDimensionless;
  /// The choices of an option.
  std::vector<std::string> options = {};
  bool restrictedToList = true;
};

/// One value that an energy or information stream carries through a port.
struct InformationItem {
  const char* name;
  const char* description;
  Dimensionality dimensionality = kDimensionless;
  bool optional = false;
};

/// A port, as a unit declares it. `items` belong to energy and information ports.
struct PortDeclaration {
  const char* name;
  const char* description;
  CapePortDirection direction;
  CapePortType type = CAPE_MATERIAL;
  std::span<const InformationItem> items = {};
};

/// The whole face of a unit as a host sees it before anything is connected.
struct UnitDeclaration {
  const char* name;
  const char* description;
  /// What the edit window's "About" page says.
  const char* about = "";
  const char* helpTopic = "";
  std::span<const PortDeclaration> ports;
  std::span<const ParameterDeclaration> parameters;
  /// Names of the reports besides "Status".
  std::span<const char* const> reports = {};
};

/// An energy stream's values: the heat flow [W] and the temperatures [K] between which it is available.
inline constexpr InformationItem kEnergyItems[] = {
    {"work", "Energy flow", kPowerDimension},
    {"temperatureLow", "Lower temperature of the heat", kTemperatureDimension, true},
    {"temperatureHigh", "Upper temperature of the heat", kTemperatureDimension, true},
};

}  // namespace morvelan
