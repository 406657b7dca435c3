#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/material/MaterialState.h"

namespace morvelan::host {

/// Told of each round: its number from 1, and the largest relative change of a torn stream.
using RecycleProgress = std::function<void(int round, double change)>;

/// Solves a flowsheet with recycles by iteration on the states of the torn streams.
///
/// `calculate` calculates all units once. It starts from the state of each torn stream and leaves a new state there. It
/// is repeated until flow, temperature, pressure (relative) and mole fractions change by no more than 1e-6, and then as
/// long as the change falls fast, so that balances close as well. Between rounds the flows of compounds, the pressure
/// and the enthalpy are accelerated by Anderson mixing. The iteration ends too when `calculate` returns false.
///
/// Returns an empty text, or why the recycle is not solved. Throws when `calculate` leaves no equilibrium.
[[nodiscard]] std::string CloseRecycles(const std::vector<MaterialState*>& tornStreams,
                                        const std::function<bool()>& calculate, const RecycleProgress& progress);

}  // namespace morvelan::host
