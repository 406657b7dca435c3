#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <thread>

#include "tests/numerics/ClassicalSystems.h"

namespace morvelan::numerics::test::classical_systems {

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

void ExpectRoot(const ClassicalSystem& system, const std::vector<double>& x) {
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(x[i], system.root[i], system.error) << "unknown " << i;
}

double LargestResidual(const ClassicalSystem& system, const std::vector<double>& x) {
  std::vector<double> F(x.size());
  std::string errorText;
  EXPECT_TRUE(system.equations.residual(x, F, errorText)) << errorText;
  return std::abs(*std::ranges::max_element(F, {}, [](double value) { return std::abs(value); }));
}

struct SolvedCase {
  ClassicalSystem system;
  Derivatives derivatives;
  const char* source;
  int iterations;  // at most; with them the evaluations are bounded, for each difference costs one
};

TEST(ClassicalSystems, AreSolvedWithEachSourceOfDerivatives) {
  const SolvedCase cases[] = {
      {Rosenbrock(), Derivatives::kSolvers, "solver's differences", 20},
      {Rosenbrock(), Derivatives::kPerturbed, "perturbed", 20},
      {Rosenbrock(), Derivatives::kGiven, "given", 20},
      {PowellSingular(), Derivatives::kSolvers, "solver's differences", 25},
      {PowellSingular(), Derivatives::kPerturbed, "perturbed", 25},
      {PowellSingular(), Derivatives::kGiven, "given", 25},
      {BroydenTridiagonal(), Derivatives::kSolvers, "solver's differences", 6},
      {BroydenTridiagonal(), Derivatives::kPerturbed, "perturbed", 6},
      {BroydenTridiagonal(), Derivatives::kGiven, "given", 8},
      {PropaneCombustion(), Derivatives::kSolvers, "solver's differences", 8},
      {PropaneCombustion(), Derivatives::kPerturbed, "perturbed", 8},
      {PropaneCombustion(), Derivatives::kGiven, "given", 8},
  };
  for (const auto& [system, derivatives, source, iterations] : cases) {
    SCOPED_TRACE(system.name + ", derivatives: " + source);
    int evaluations = 0;
    std::vector<double> x = system.guess;
    const NonlinearResult result = SolveNonlinear(With(derivatives, system, evaluations), x, system.options);
    ASSERT_TRUE(result.success) << result.errorText << " (" << result.lastMessage << ")";
    EXPECT_EQ(result.errorText, "");
    EXPECT_LE(result.iterations, iterations);
    EXPECT_EQ(result.residualEvaluations, evaluations);
    EXPECT_LE(LargestResidual(system, x), system.options.tolerance);
    ExpectRoot(system, x);
    std::cout << system.name << ", derivatives " << source << ": " << result.iterations << " iterations, "
              << evaluations << " evaluations\n";
  }
}

TEST(ClassicalSystems, AreSolvedInSeveralThreadsAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int> solved(4, 0);
  for (int& count : solved)
    threads.emplace_back([&count] {
      for (const auto& make : {Rosenbrock, PowellSingular, BroydenTridiagonal, PropaneCombustion}) {
        ClassicalSystem system = make();
        system.equations.jacobian = nullptr;
        std::vector<double> x = system.guess;
        const bool success = SolveNonlinear(system.equations, x, system.options).success;
        count += success && std::ranges::equal(x, system.root, [&](double found, double wanted) {
                   return std::abs(found - wanted) <= system.error;
                 });
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(solved, std::vector<int>(4, 4));
}

}  // namespace morvelan::numerics::test::classical_systems
