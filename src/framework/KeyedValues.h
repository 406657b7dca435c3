#pragma once

#include "framework/Settings.h"
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

}  // namespace morvelan
