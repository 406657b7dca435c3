#pragma once

#include <stdexcept>
#include <string>

#include "com/Classes.h"

namespace morvelan::test {

/// A unit made as a host makes it: by the name under which the library published its class.
inline com::Ref<IUnknown> CreateUnit(const std::string& name) {
  for (const com::PublishedClass& published : com::PublishedClasses())
    if (published.name == name) return com::CreateObject(published.clsid);
  throw std::runtime_error("no class " + name + " is published");
}

}  // namespace morvelan::test
