#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <string>

#include "numerics/NonlinearSystem.h"

namespace morvelan::numerics {

/// Calls a system's functions on behalf of a solver written in C: exceptions are kept for later, and so is
/// why something failed.
class SystemCalls {
 public:
  /// What the solver is told: to go on, to try a shorter step if it can, or to stop.
  enum Answer : int { kDone = 0, kFailed = 1, kStop = -1 };

  /// What it is given is to outlive it.
  SystemCalls(const NonlinearSystem& equations, std::span<const std::size_t> positiveUnknowns)
      : system(equations), positive(positiveUnknowns) {}

  /// F at a trial point of an iteration.
  [[nodiscard]] Answer Residual(long iteration, std::span<const double> x, std::span<double> F) noexcept;
  /// The system's own Jacobian.
  [[nodiscard]] Answer GivenJacobian(std::span<const double> x, SquareMatrix J) noexcept;
  /// Finite differences, forward or, where that leaves what is valid or fails, backward, if the unknown then
  /// stays positive where it has to; F is the residual at x, the rest is working space.
  [[nodiscard]] Answer PerturbedJacobian(std::span<const double> x, std::span<const double> F, SquareMatrix J,
                                         std::span<double> nearX, std::span<double> nearF) noexcept;
  /// A message of the solver's.
  void KeepMessage(const char* module, const char* message) noexcept;

  [[nodiscard]] std::int64_t Evaluations() const { return evaluations; }
  /// Why the last call failed; empty when it did not.
  [[nodiscard]] const std::string& FunctionMessage() const { return functionMessage; }
  [[nodiscard]] const std::string& LastMessage() const {
    return functionMessage.empty() ? solverMessage : functionMessage;
  }
  /// Throws what a function of the system has thrown.
  void Rethrow() const {
    if (exception) std::rethrow_exception(exception);
  }

 private:
  template <class Body>
  Answer Guarded(const Body& body) noexcept;
  bool Evaluate(std::span<const double> x, std::span<double> F);
  bool MayTry(std::span<const double> x);
  [[nodiscard]] bool MayBecome(std::size_t unknown, double value) const;

  const NonlinearSystem& system;
  std::span<const std::size_t> positive;  // unknowns that stay above zero
  std::int64_t evaluations = 0;
  long searchedIteration = -1;
  std::size_t trials = 0;  // in that iteration
  std::string functionMessage;
  std::string solverMessage;
  std::exception_ptr exception;
};

}  // namespace morvelan::numerics
