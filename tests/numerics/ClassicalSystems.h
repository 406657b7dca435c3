#pragma once

#include <string>
#include <vector>

#include "numerics/NonlinearSystem.h"

namespace morvelan::numerics::test {

/// A system of equations from the literature with a known root.
struct ClassicalSystem {
  std::string name;
  NonlinearSystem equations;  // with a Jacobian and a region of validity
  NonlinearOptions options;
  std::vector<double> guess;
  std::vector<double> root;
  double error;  // of an unknown at most, where the residuals are within the tolerance
};

[[nodiscard]] ClassicalSystem Rosenbrock();
[[nodiscard]] ClassicalSystem PowellSingular();
[[nodiscard]] ClassicalSystem BroydenTridiagonal();
[[nodiscard]] ClassicalSystem PropaneCombustion();

}  // namespace morvelan::numerics::test
