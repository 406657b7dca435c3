#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cape_open.h"
#include "com/Ref.h"
#include "com/Values.h"
#include "framework/Dimensionality.h"

namespace morvelan {

/// A parameter of the object that a host connects to an energy or information port.
struct ConnectedParameter {
  com::Variant id;  // its index, or its name, in the collection
  std::string name;
  std::vector<double> dimensionality;  // as many exponents as the object gives; none for no dimensionality
};

/// The parameters of a connected object, in index order. Throws Failure when the object is no collection of
/// at least one parameter, when one can't be read, or when two bear the same name.
[[nodiscard]] std::vector<ConnectedParameter> ReadConnectedParameters(ICapeCollection& collection);

/// The parameter that a collection yields for a name although its count leaves it out, as some hosts' energy
/// streams do; nothing when there is none.
[[nodiscard]] std::optional<ConnectedParameter> FindConnectedParameter(ICapeCollection& collection,
                                                                       const std::string& name);

/// True when the exponents agree within 1e-6 and those that are missing are 0 in `expected`.
[[nodiscard]] bool MatchesDimensionality(const std::vector<double>& exponents, const Dimensionality& expected);

}  // namespace morvelan
