#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <string>

#include "numerics/NonlinearSystem.h"

namespace morvelan::numerics {

/// Calls the functions of a system for a solver that is written in C. It keeps exceptions, and the reason why something
/// failed, until the solver has returned.
class SystemCalls {
 public:
  /// Tells the solver to go on, to try a shorter step if it can, or to stop.
  enum Answer : int { kDone = 0, kFailed = 1, kStop = -1 };

  /// Both arguments must outlive the object.
  SystemCalls(const NonlinearSystem& equations, std::span<const std::size_t> positiveUnknowns)
      : system(equations), positive(positiveUnknowns) {}

  /// F at a trial point of an iteration.
  [[nodiscard]] Answer Residual(long iteration, std::span<const double> x, std::span<double> F) noexcept;
  /// The Jacobian of the system itself.
  [[nodiscard]] Answer GivenJacobian(std::span<const double> x, SquareMatrix J) noexcept;
  /// The Jacobian by finite differences: forward, or backward where forward is not valid or fails. An unknown that has
  /// to stay positive stays so. F is the residual at x; nearX and nearF are working space.
  [[nodiscard]] Answer PerturbedJacobian(std::span<const double> x, std::span<const double> F, SquareMatrix J,
                                         std::span<double> nearX, std::span<double> nearF) noexcept;
  /// Keeps a message of the solver.
  void KeepMessage(const char* module, const char* message) noexcept;

  [[nodiscard]] std::int64_t Evaluations() const { return evaluations; }
  /// Why the last call failed; empty if it did not.
  [[nodiscard]] const std::string& FunctionMessage() const { return functionMessage; }
  [[nodiscard]] const std::string& LastMessage() const {
    return functionMessage.empty() ? solverMessage : functionMessage;
  }
  /// Throws the exception that a function of the system has thrown, if any.
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
