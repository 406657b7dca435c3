#pragma once

#include <map>
#include <string>

namespace morvelan::test {

/// What stands below "Software\Classes" for the machine and for the user: keys as "machine\<key>", values as
/// "machine\<key>|<value>", or with "user". A value that is no text shows its type and its bytes.
using RegistrySnapshot = std::map<std::string, std::string>;

[[nodiscard]] RegistrySnapshot TakeSnapshot();

/// What the second has and the first has not, and the other way round; a line for each, which begins with "+ " or "- ".
[[nodiscard]] std::string Difference(const RegistrySnapshot& first, const RegistrySnapshot& second);

}  // namespace morvelan::test
