#pragma once

#include <Eigen/Core>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace morvelan {

/// A state that is tried.
struct ExtentTrial {
  Eigen::VectorXd extents = {};  // [mol/s], one per reaction
  Eigen::VectorXd flows = {};    // [mol/s], one per compound; trials may make them negative
  double temperature = 0;        // [K]
};

/// One equation per reaction, and one more where the temperature is an unknown too.
struct ExtentEquations {
  Eigen::MatrixXd nu = {};          // net stoichiometric coefficients, compounds by reactions
  Eigen::VectorXd inletFlows = {};  // [mol/s]
  double temperature = 0;           // [K], that of the feed where it is an unknown
  bool temperatureIsUnknown = false;
  bool equilibriaOnly = false;  // each residual is ln Q - ln K of its reaction
  /// Computes the residuals, of the order of one: false, with a text, where it can't. Each reaction's rises
  /// with its extent.
  std::function<bool(const ExtentTrial& trial, std::span<double> residuals, std::string& why)> residual = {};
  /// Where the temperature is an unknown: that at which the heat balance of a trial closes [K].
  std::function<double(const ExtentTrial& trial)> balancedTemperature = {};
};

struct ExtentSolution {
  bool success = false;
  ExtentTrial trial = {};       // with success
  std::int32_t iterations = 0;  // Newton steps, of the start that led there
  const char* start = "";       // which start that was
  std::string errorText = {};   // without success: why the first start led nowhere
};

/// Solves for the extents, and for the temperature if it is an unknown, by Newton's method from one start
/// after the other until one leads to a solution:
///
/// 1. no reaction, at the temperature of the feed;
/// 2. every reaction hardly begun, so that there is a trace of every compound;
/// 3. what solving for one reaction after the other comes to.
///
/// The unknowns are the extents divided by the feed at first, then the flows of those compounds of which
/// there is least: close to complete conversion the small difference between two large numbers says nothing.
[[nodiscard]] ExtentSolution SolveExtents(const ExtentEquations& equations, double tolerance,
                                          std::int32_t maxIterations);

}  // namespace morvelan
