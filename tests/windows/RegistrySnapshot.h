#pragma once

#include <map>
#include <string>

namespace morvelan::test {

/// What stands below "Software\Classes" for the machine and for the user. Each key and each value has its
/// place, "machine\<key>|<value>" or "user\<key>|<value>" in lower case; the value without a name is the
/// key's own. A value that is no text shows its type and its bytes.
using RegistrySnapshot = std::map<std::string, std::string>;

[[nodiscard]] RegistrySnapshot TakeSnapshot();

/// The place of a value.
[[nodiscard]] std::string PlaceOf(const std::string& key, const std::string& name);

/// What the second has and the first has not, and the other way round; a line for each.
[[nodiscard]] std::string Difference(const RegistrySnapshot& first, const RegistrySnapshot& second);

}  // namespace morvelan::test
