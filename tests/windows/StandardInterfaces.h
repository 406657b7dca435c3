#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "com/Platform.h"

namespace morvelan::test {

/// An interface as the standard has it. The text has a line for the interface and one for each member.
struct StandardInterface {
  GUID iid;
  std::vector<std::pair<std::string, DISPID>> members;
  std::string text;
};

/// The standard's interfaces by name.
[[nodiscard]] const std::map<std::string, StandardInterface>& StandardInterfaces();

/// The standard's enumerations by name: "enum Name FIRST=0 SECOND=1".
[[nodiscard]] const std::map<std::string, std::string>& StandardEnumerations();

}  // namespace morvelan::test
