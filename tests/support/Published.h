#pragma once

#include <stdexcept>
#include <string>

#include "com/Classes.h"

namespace morvelan::test {

/// A unit made as a host makes it: by the name under which the library published its class.
inline com::Ref<IUnknown> CreateUnit(const std::string& name) {
  // A real host lists the classes once, too.
  static const std::vector<com::PublishedClass> published = com::PublishedClasses();
  for (const com::PublishedClass& unitClass : published)
    if (unitClass.name == name) return com::CreateObject(unitClass.clsid);
  throw std::runtime_error("no class " + name + " is published");
}

}  // namespace morvelan::test
