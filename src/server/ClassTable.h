#pragma once

#include <span>
#include <string>
#include <vector>

#include "framework/BaseUnit.h"

namespace morvelan::server {

/// What hosts are told about a unit class, and how one is made. The class identifier is for ever: flowsheets
/// name it.
struct UnitClass {
  CLSID clsid;
  const char* progId;       // without the version, as "VELT_MORV.Valve"
  const char* displayName;  // of the class in the system's registry
  const char* name;
  const char* description;
  bool consumesThermodynamics;
  com::Ref<BaseUnit> (*create)();
};

/// Every unit class of the library, in the order in which hosts list them.
[[nodiscard]] std::span<const UnitClass> UnitClasses();

/// The program identifier with the version at its end.
[[nodiscard]] std::string VersionedProgId(const UnitClass& unitClass);

/// The categories under which hosts look for a unit class.
[[nodiscard]] std::span<const GUID> CategoriesOf(const UnitClass& unitClass);

/// One value of the description that hosts read to list a unit.
struct DescriptionValue {
  const char* name;
  std::string text;
};

/// Every value that hosts expect of a class: they read them without a check.
[[nodiscard]] std::vector<DescriptionValue> DescriptionOf(const UnitClass& unitClass);

}  // namespace morvelan::server
