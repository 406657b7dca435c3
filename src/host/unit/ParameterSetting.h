#pragma once

#include <string>

#include "host/flowsheet/JsonFile.h"
#include "host/unit/HostedUnit.h"

namespace morvelan::host {

/// Puts a value from a file into a unit's parameter, turned into the parameter's kind. Throws FlowsheetError
/// for a value of another kind, an output parameter, or a value that the unit refuses, with the unit's text
/// and what is allowed.
void PutParameter(const UnitParameter& parameter, const JsonNode& value);

/// A parameter's value; null when it is not set.
[[nodiscard]] Json ParameterValue(const UnitParameter& parameter);

/// What a parameter allows, as "from 0 to 1e+10" or "\"1.0\", \"1.1\""; empty when anything goes.
[[nodiscard]] std::string AllowedValues(const UnitParameter& parameter);

/// A parameter's default as text; empty for an array.
[[nodiscard]] std::string DefaultValue(const UnitParameter& parameter);

/// "real", "integer", "option", "boolean" or "array".
[[nodiscard]] const char* KindName(CapeParamType kind);

/// A number with as few digits as tell it from all others, without the locale.
[[nodiscard]] std::string PlainNumber(double value);

}  // namespace morvelan::host
