// Systems of equations from the literature with known roots.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <thread>
#include <vector>

#include "numerics/NonlinearSystem.h"

namespace morvelan::numerics::test::classical_systems {

/// A system of equations from the literature with a known root.
struct ClassicalSystem {
  std::string name;
  NonlinearSystem equations;  // with a region of validity
  double tolerance;
  std::vector<double> guess, root;
  double error;    // the largest of an unknown if the residuals are within the tolerance
  int iterations;  // at most
  std::vector<std::size_t> positiveUnknowns = {};

  [[nodiscard]] NonlinearOptions Options() const {
    return {.tolerance = tolerance, .positiveUnknowns = positiveUnknowns};
  }
};

using Vector = std::span<const double>;

bool IsAnything(Vector) { return true; }
bool IsPositive(Vector x) {
  return std::ranges::all_of(x, [](double value) { return value > 0.0; });
}

// K. Meintjes and A. P. Morgan, ACM Trans. Math. Softw. 16 (1990) 143: the amounts [mol] of CO2, H2O, N2, CO, H2, H,
// OH, O, NO and O2, and their sum, when propane burns in air, at 40 atm and with ten mol of oxygen atoms per mol of
// propane. The root is the only positive one, by Newton's method in decimal numbers of 50 digits; their solution
// (3.114102e-3, 34.59792, 0.06504177, 0.8593780, 0.03695185) of the five equations that remain after elimination gives
// the same CO2, H2O, N2 and CO in six digits.
constexpr double kPressure = 40.0;  // [atm]
constexpr double kOxygen = 10.0;    // [mol]
constexpr double K5 = 1.930e-1, K6 = 2.597e-3, K7 = 3.448e-3, K8 = 1.799e-5, K9 = 2.155e-4, K10 = 3.846e-5;

bool PropaneResidual(Vector n, std::span<double> F, std::string& errorText) {
  if (!IsPositive(n)) {
    errorText = "an amount is not positive";
    return false;
  }
  const auto x = [&](std::size_t i) { return n[i - 1]; };
  const double p = kPressure / x(11);
  F[0] = x(1) + x(4) - 3.0;
  F[1] = 2.0 * x(1) + x(2) + x(4) + x(7) + x(8) + x(9) + 2.0 * x(10) - kOxygen;
  F[2] = 2.0 * x(2) + 2.0 * x(5) + x(6) + x(7) - 8.0;
  F[3] = 2.0 * x(3) + x(9) - 4.0 * kOxygen;
  F[4] = K5 * x(2) * x(4) - x(1) * x(5);
  F[5] = K6 * std::sqrt(x(2) * x(4)) - std::sqrt(x(1) * p) * x(6);
  F[6] = K7 * std::sqrt(x(1) * x(2)) - std::sqrt(x(4) * p) * x(7);
  F[7] = K8 * x(1) - x(4) * x(8) * p;
  F[8] = K9 * x(1) * std::sqrt(x(3)) - x(4) * x(9) * std::sqrt(p);
  F[9] = K10 * x(1) * x(1) - x(4) * x(4) * x(10) * p;
  F[10] = x(11);
  for (std::size_t i = 1; i <= 10; ++i) F[10] -= x(i);
  return true;
}

const std::vector<std::size_t> kAmounts = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
const std::vector<double> kPropaneGuess = {2.0, 3.0, 15.0, 0.1, 0.1, 0.01, 0.01, 0.01, 0.1, 0.1, 20.0};
const std::vector<double> kPropaneRoot = {2.91572542389522,   3.96094281080888,     19.9862916465515,
                                          0.0842745761047758, 0.0220956017698933,   0.000722766590884169,
                                          0.0332004082515746, 0.000421099693391768, 0.0274167068969182,
                                          0.031146775227007,  27.0622378157901};

// C. G. Broyden, Math. Comput. 19 (1965) 577.
bool BroydenResidual(Vector x, std::span<double> F, std::string&) {
  for (std::size_t i = 0; i < x.size(); ++i)
    F[i] = (3.0 - 2.0 * x[i]) * x[i] - (i > 0 ? x[i - 1] : 0.0) - 2.0 * (i + 1 < x.size() ? x[i + 1] : 0.0) + 1.0;
  return true;
}

bool BroydenJacobian(Vector x, SquareMatrix J) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    J(i, i) = 3.0 - 4.0 * x[i];
    if (i > 0) J(i, i - 1) = -1.0;
    if (i + 1 < x.size()) J(i, i + 1) = -2.0;
  }
  return true;
}

// The root by Newton's method in decimal numbers of 50 digits. (Far from both ends neighbors are equal: 1 - 2x^2 = 0.)
const std::vector<double> kBroydenGuess(50, -1.0);
const std::vector<double> kBroydenRoot = {
    -0.570761192974751, -0.681910128868088, -0.702486020667649, -0.706260575800898, -0.706951854298137,
    -0.707078417842332, -0.707101588592845, -0.707105830558626, -0.707106607151521, -0.707106749325303,
    -0.70710677535359,  -0.707106780118686, -0.70710678099105,  -0.707106781150757, -0.707106781179995,
    -0.707106781185348, -0.707106781186327, -0.707106781186504, -0.707106781186531, -0.707106781186521,
    -0.707106781186478, -0.707106781186359, -0.707106781186033, -0.707106781185142, -0.70710678118271,
    -0.707106781176067, -0.707106781157922, -0.707106781108368, -0.707106780973028, -0.707106780603397,
    -0.707106779593881, -0.707106776836753, -0.70710676930665,  -0.707106748740886, -0.707106692572912,
    -0.707106539170326, -0.70710612020647,  -0.707104975957988, -0.707101850858293, -0.70709331579567,
    -0.707070005507273, -0.707006343051128, -0.706832480937586, -0.706357705989197, -0.705061527325323,
    -0.701525195307705, -0.691894628950408, -0.665797523342182, -0.596035312626653, -0.416412301166842};

// H. H. Rosenbrock, Comput. J. 3 (1960) 175, as a system: the root follows from the second equation.
bool RosenbrockResidual(Vector x, std::span<double> F, std::string&) {
  F[0] = 10.0 * (x[1] - x[0] * x[0]);
  F[1] = 1.0 - x[0];
  return true;
}

bool RosenbrockJacobian(Vector x, SquareMatrix J) {
  J(0, 0) = -20.0 * x[0];
  J(0, 1) = 10.0;
  J(1, 0) = -1.0;
  return true;
}

// M. J. D. Powell, Comput. J. 5 (1962) 147: the Jacobian is singular at the root, zero.
bool PowellResidual(Vector x, std::span<double> F, std::string&) {
  F[0] = x[0] + 10.0 * x[1];
  F[1] = std::sqrt(5.0) * (x[2] - x[3]);
  F[2] = (x[1] - 2.0 * x[2]) * (x[1] - 2.0 * x[2]);
  F[3] = std::sqrt(10.0) * (x[0] - x[3]) * (x[0] - x[3]);
  return true;
}

bool PowellJacobian(Vector x, SquareMatrix J) {
  J(0, 0) = 1.0;
  J(0, 1) = 10.0;
  J(1, 2) = std::sqrt(5.0);
  J(1, 3) = -std::sqrt(5.0);
  J(2, 1) = 2.0 * (x[1] - 2.0 * x[2]);
  J(2, 2) = -4.0 * (x[1] - 2.0 * x[2]);
  J(3, 0) = 2.0 * std::sqrt(10.0) * (x[0] - x[3]);
  J(3, 3) = -2.0 * std::sqrt(10.0) * (x[0] - x[3]);
  return true;
}

/// The rows are made anew, so that threads share none.
std::vector<ClassicalSystem> Systems() {
  return {{"Rosenbrock", {RosenbrockResidual, RosenbrockJacobian, IsAnything}, 1e-10, {-1.2, 1}, {1, 1}, 1e-9, 20},
          // If the largest residual is r = 1e-12, the unknowns differ by sqrt(r) at most; this explains the error.
          {"Powell", {PowellResidual, PowellJacobian, IsAnything}, 1e-12, {3, -1, 0, 1}, {0, 0, 0, 0}, 2e-6, 25},
          {"Broyden", {BroydenResidual, BroydenJacobian, IsAnything}, 1e-10, kBroydenGuess, kBroydenRoot, 1e-9, 8},
          {"propane", {PropaneResidual, {}, IsPositive}, 1e-12, kPropaneGuess, kPropaneRoot, 1e-9, 8, kAmounts}};
}

enum class Derivatives { kSolvers, kPerturbed, kGiven };

/// The system with derivatives from one source only, and with its residual counted.
NonlinearSystem With(Derivatives source, const ClassicalSystem& system, int& evaluations) {
  NonlinearSystem equations = system.equations;
  if (source != Derivatives::kGiven) equations.jacobian = nullptr;
  if (source == Derivatives::kSolvers) equations.isValid = nullptr;
  equations.residual = [residual = equations.residual, &evaluations](auto x, auto F, std::string& errorText) {
    ++evaluations;
    return residual(x, F, errorText);
  };
  return equations;
}

double LargestResidual(const ClassicalSystem& system, const std::vector<double>& x) {
  std::vector<double> F(x.size());
  std::string errorText;
  EXPECT_TRUE(system.equations.residual(x, F, errorText)) << errorText;
  return std::abs(*std::ranges::max_element(F, {}, [](double value) { return std::abs(value); }));
}

TEST(ClassicalSystems, AreSolvedWithEachSourceOfDerivatives) {
  for (const ClassicalSystem& system : Systems())
    for (const Derivatives source : {Derivatives::kSolvers, Derivatives::kPerturbed, Derivatives::kGiven}) {
      if (source == Derivatives::kGiven && !system.equations.jacobian) continue;
      SCOPED_TRACE(system.name + ", derivatives: " + std::to_string(static_cast<int>(source)));
      int evaluations = 0;
      std::vector<double> x = system.guess;
      const NonlinearResult result = SolveNonlinear(With(source, system, evaluations), x, system.Options());
      ASSERT_TRUE(result.success) << result.errorText << " (" << result.lastMessage << ")";
      EXPECT_EQ(result.errorText, "");
      EXPECT_LE(result.iterations, system.iterations);
      EXPECT_EQ(result.residualEvaluations, evaluations);
      EXPECT_LE(LargestResidual(system, x), system.tolerance);
      for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(x[i], system.root[i], system.error) << "unknown " << i;
    }
}

TEST(ClassicalSystems, AreSolvedInSeveralThreadsAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int> solved(4, 0);
  for (int& count : solved)
    threads.emplace_back([&count] {
      for (ClassicalSystem& system : Systems()) {
        system.equations.jacobian = nullptr;
        std::vector<double> x = system.guess;
        const bool success = SolveNonlinear(system.equations, x, system.Options()).success;
        count += success && std::ranges::equal(x, system.root, [&](double found, double wanted) {
                   return std::abs(found - wanted) <= system.error;
                 });
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(solved, std::vector<int>(4, 4));
}

}  // namespace morvelan::numerics::test::classical_systems
