#pragma once

#include "framework/Configuration.h"
#include "framework/UnitStream.h"

namespace morvelan {

// What a unit keeps beyond its parameters when it is what its configuration says too: values by key, in one
// JSON object. In the stream: the version of what follows, the number of keys, and for each key its text, the
// kind of its value and the value.

/// Writes an object whose values are texts, flags, lists of texts or lists of numbers.
void WriteKeyedValues(UnitWriter& writer, const Json& values);

/// Reads what `WriteKeyedValues` wrote; each key is one of `known` and its value of the same kind as there.
/// Throws Failure.
[[nodiscard]] Json ReadKeyedValues(UnitReader& reader, const Json& known);

// One value of a configuration, or what is in force when the key is absent. Throw Failure.

[[nodiscard]] bool ReadConfiguredFlag(const Json& configuration, const char* key, bool otherwise);
[[nodiscard]] std::vector<std::string> ReadConfiguredTexts(const Json& configuration, const char* key,
                                                           std::vector<std::string> otherwise);
/// A null or NaN is read as the mark of a value that is not set.
[[nodiscard]] std::vector<double> ReadConfiguredNumbers(const Json& configuration, const char* key,
                                                        std::vector<double> otherwise);

}  // namespace morvelan
