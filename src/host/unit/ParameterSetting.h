#pragma once

#include <string>

#include "host/file/JsonNode.h"
#include "host/unit/HostedUnit.h"

namespace morvelan::host {

/// Puts a value from a file into a unit's parameter, converted to the parameter's kind. Throws FileError for a value of
/// another kind, for an output parameter, and for a value that the unit refuses. The text then has the unit's text and
/// the allowed values.
void PutParameter(const UnitParameter& parameter, const JsonNode& value);

/// A parameter's value; null when it is not set.
[[nodiscard]] Json ParameterValue(const UnitParameter& parameter);

/// The allowed values of a parameter, as "from 0 to 1e+10" or "\"1.0\", \"1.1\""; empty when all are allowed.
[[nodiscard]] std::string AllowedValues(const UnitParameter& parameter);

/// A parameter's default as text; empty for an array.
[[nodiscard]] std::string DefaultValue(const UnitParameter& parameter);

/// "real", "integer", "option", "boolean" or "array".
[[nodiscard]] const char* KindName(CapeParamType kind);

}  // namespace morvelan::host
