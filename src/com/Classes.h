#pragma once

#include <string>
#include <vector>

#include "com/Ref.h"

namespace morvelan::com {

/// A class that a component library has published for the programs of this machine.
struct PublishedClass {
  CLSID clsid;
  std::string progId;
  std::string name;
  std::string description;
};

/// The unit classes published for the current user and for the machine, the user's first. Throws
/// std::runtime_error when what is published can't be read.
[[nodiscard]] std::vector<PublishedClass> PublishedClasses();

/// Loads the class's library and makes an object. Throws std::runtime_error with the reason.
[[nodiscard]] Ref<IUnknown> CreateObject(const CLSID& clsid);

}  // namespace morvelan::com
