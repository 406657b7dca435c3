#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace morvelan::numerics {

/// A square matrix that refers to memory of its owner, column by column.
struct SquareMatrix {
  std::span<double> values;
  std::size_t order = 0;

  [[nodiscard]] double& operator()(std::size_t row, std::size_t column) const { return values[column * order + row]; }
  [[nodiscard]] std::span<double> Column(std::size_t column) const { return values.subspan(column * order, order); }
};

/// N equations F(x) = 0 in N unknowns. Unknowns and equations should be scaled to the order of one. An exception of a
/// function ends the solution and reaches the solver's caller.
struct NonlinearSystem {
  /// Computes F at x. Returns false and the reason where F cannot be evaluated; a NaN or infinite value counts as such
  /// a failure. If it fails at the end of a full step, a shorter step is tried; if it fails in a finite difference with
  /// isValid, the other direction is tried. Any other failure (at the guess, in the solver's own differences, or after
  /// the line search has begun to shorten a step) ends the solution.
  std::function<bool(std::span<const double> x, std::span<double> F, std::string& errorText)> residual = {};
  /// Optional: computes J(i, j) = dF_i/dx_j at x, into a matrix of zeros; returns false where it cannot.
  /// Without it the derivatives are finite differences.
  std::function<bool(std::span<const double> x, SquareMatrix J)> jacobian = {};
  /// Optional: whether F may be evaluated at x. The residual is not called where this is false.
  std::function<bool(std::span<const double> x)> isValid = {};
};

struct NonlinearOptions {
  double tolerance = 1e-6;           // of the largest |F_i|, finite; 0 is the solver's own, 6e-6
  std::int32_t maxIterations = 100;  // 0 is the solver's own, 200
  /// Unknowns, by index, that stay above zero: a step of any length is cut so that they do. (Where only the residual
  /// fails or isValid refuses, a step is halved four times at most.)
  std::vector<std::size_t> positiveUnknowns = {};
};

struct NonlinearResult {
  bool success = false;
  std::int32_t iterations = 0;           // Newton steps; 1 if the guess was a solution
  std::int64_t residualEvaluations = 0;  // with those for finite differences
  std::string errorText;                 // without success: why
  std::string lastMessage;  // of the residual or a finite difference if that failed last, else the solver's
};

/// Solves the system from the guess in x by Newton's method with a line search; x changes only with success. Calls may
/// be nested and may run in several threads.
[[nodiscard]] NonlinearResult SolveNonlinear(const NonlinearSystem& system, std::span<double> x,
                                             const NonlinearOptions& options = {});

}  // namespace morvelan::numerics
