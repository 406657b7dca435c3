#include "numerics/SystemCalls.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace morvelan::numerics {
namespace {

/// A line search ends after fewer trials than this, because its step becomes too small for a double. It may not end if
/// the residual gives different values at the same point, for example because it depends on an earlier calculation.
constexpr std::size_t kMostTrials = 2000;

/// Zero times a number is zero, unless the number is infinite or NaN. There are four sums at once, because this is done
/// in every evaluation.
bool AreFinite(std::span<const double> values) {
  std::array<double, 4> sums{};
  const std::size_t whole = values.size() / sums.size() * sums.size();
  for (std::size_t i = 0; i < whole; i += sums.size())
    for (std::size_t lane = 0; lane < sums.size(); ++lane) sums[lane] += 0.0 * values[i + lane];
  for (std::size_t i = whole; i < values.size(); ++i) sums[0] += 0.0 * values[i];
  return sums[0] + sums[1] + sums[2] + sums[3] == 0.0;
}

}  // namespace

template <class Body>
SystemCalls::Answer SystemCalls::Guarded(const Body& body) noexcept {
  try {
    return body();
  } catch (...) {
    exception = std::current_exception();
    return kStop;
  }
}

bool SystemCalls::Evaluate(std::span<const double> x, std::span<double> F) {
  ++evaluations;
  functionMessage.clear();
  if (!system.residual(x, F, functionMessage)) {
    if (functionMessage.empty()) functionMessage = "the residuals cannot be evaluated";
    return false;
  }
  functionMessage.clear();
  // With such a value the solver would not end.
  if (!AreFinite(F)) functionMessage = "a residual is not a finite number";
  return functionMessage.empty();
}

bool SystemCalls::MayTry(std::span<const double> x) {
  if (!AreFinite(x)) {
    functionMessage = "an unknown is not a finite number";
    return false;
  }
  if (system.isValid && !system.isValid(x)) {
    functionMessage = "the unknowns are outside the region where the residuals may be evaluated";
    return false;
  }
  return true;
}

bool SystemCalls::MayBecome(std::size_t unknown, double value) const {
  return value > 0.0 || std::ranges::find(positive, unknown) == positive.end();
}

SystemCalls::Answer SystemCalls::Residual(long iteration, std::span<const double> x, std::span<double> F) noexcept {
  return Guarded([&] {
    if (std::exchange(searchedIteration, iteration) != iteration) trials = 0;
    if (++trials > kMostTrials + x.size()) {  // the solver's own finite differences count, too
      functionMessage = "line search did not converge";
      return kStop;
    }
    return MayTry(x) && Evaluate(x, F) ? kDone : kFailed;
  });
}

SystemCalls::Answer SystemCalls::GivenJacobian(std::span<const double> x, SquareMatrix J) noexcept {
  return Guarded([&] { return system.jacobian(x, J) ? kDone : kFailed; });
}

SystemCalls::Answer SystemCalls::PerturbedJacobian(std::span<const double> x, std::span<const double> F, SquareMatrix J,
                                                   std::span<double> nearX, std::span<double> nearF) noexcept {
  return Guarded([&] {
    std::ranges::copy(x, nearX.begin());
    const auto fillsColumn = [&](std::size_t j, double step) {
      nearX[j] = x[j] + step;
      const double change = nearX[j] - x[j];
      const bool isUsable =
          MayBecome(j, nearX[j]) && system.isValid(nearX) && nearX[j] != x[j] && Evaluate(nearX, nearF);
      for (std::size_t i = 0; isUsable && i < F.size(); ++i) J(i, j) = (nearF[i] - F[i]) / change;
      nearX[j] = x[j];
      return isUsable;
    };
    for (std::size_t j = 0; j < x.size(); ++j) {
      const double step = std::max(std::abs(x[j]) * 1e-4, 1e-8);
      if (fillsColumn(j, step) || fillsColumn(j, -step)) continue;
      functionMessage = "Failed to perturb; no valid perturbation direction found";
      return kFailed;
    }
    return kDone;
  });
}

void SystemCalls::KeepMessage(const char* module, const char* message) noexcept {
  try {
    solverMessage = std::string(module) + " solver: " + message;
  } catch (...) {
    solverMessage.clear();
  }
}

}  // namespace morvelan::numerics
