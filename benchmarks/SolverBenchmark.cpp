// The cost of finding a root: evaluations of the bracketed search beside those of TOMS 748 and bisection, and the time
// of the nonlinear driver relative to KINSOL called directly with the same options.

#include <benchmark/benchmark.h>
#include <nvector/nvector_serial.h>
#include <sunlinsol/sunlinsol_lapackdense.h>
#include <sunmatrix/sunmatrix_dense.h>

#include <boost/math/tools/toms748_solve.hpp>
#include <chrono>
#include <cmath>

#include "numerics/BracketedRoot.h"
#include "numerics/NonlinearSystem.h"
#include "numerics/SundialsOwners.h"

namespace {

using namespace morvelan::numerics;

constexpr double kWidth = 1e-9;

struct Function {
  const char* name;
  double (*f)(double);
  double low, high;
};

const Function kFunctions[] = {
    {"cos x - x", [](double x) { return std::cos(x) - x; }, 0.0, 1.0},
    {"x^3 - 2x - 5", [](double x) { return x * x * x - 2.0 * x - 5.0; }, 2.0, 3.0},
    {"(x - 1)^9", [](double x) { return std::pow(x - 1.0, 9); }, 0.0, 3.0},
    {"exp(20x) - 1000", [](double x) { return std::exp(20.0 * x) - 1000.0; }, -1.0, 1.0},
    {"exp(-5x) - 1e-4", [](double x) { return std::exp(-5.0 * x) - 1e-4; }, 0.0, 5.0},
    {"atan(x - 2)", [](double x) { return std::atan(x - 2.0); }, -3.0, 10.0},
    {"1/(x - 0.3)", [](double x) { return 1.0 / (x - 0.3); }, 0.0, 1.0},
    {"a jump", [](double x) { return x < 0.4 ? -1.0 : 2.0; }, 0.0, 1.0},
    {"1e4 (x^2 - 2)", [](double x) { return 1e4 * (x * x - 2.0); }, 0.0, 2.0},
    {"x ln x - 10", [](double x) { return x * std::log(x) - 10.0; }, 1.0, 50.0},
};

int Bracketed(const Function& function) {
  int calls = 0;
  const auto residual = [&](double x, double& r, std::string&) {
    ++calls;
    r = function.f(x);
    return true;
  };
  benchmark::DoNotOptimize(SolveBracketed(residual, function.low, function.high, kWidth, 1000).x);
  return calls;
}

int Toms748(const Function& function) {
  int calls = 0;
  const auto f = [&](double x) {
    ++calls;
    return function.f(x);
  };
  const auto isNarrow = [](double a, double b) { return std::abs(b - a) <= kWidth; };
  std::uintmax_t steps = 1000;
  benchmark::DoNotOptimize(boost::math::tools::toms748_solve(f, function.low, function.high, isNarrow, steps));
  return calls;
}

int Bisection(const Function& function) {
  int calls = 2;
  double low = function.low;
  double high = function.high;
  const bool rises = function.f(low) < function.f(high);
  for (; high - low > kWidth; ++calls) {
    const double middle = (low + high) / 2.0;
    ((function.f(middle) < 0.0) == rises ? low : high) = middle;
  }
  return calls;
}

void Evaluations(benchmark::State& state) {
  const Function& function = kFunctions[state.range(0)];
  for (auto _ : state) benchmark::DoNotOptimize(Bracketed(function));
  state.SetLabel(function.name);
  state.counters["evaluations"] = Bracketed(function);
  state.counters["toms748"] = Toms748(function);
  state.counters["bisection"] = Bisection(function);
}
BENCHMARK(Evaluations)->DenseRange(0, std::size(kFunctions) - 1);

struct Rosenbrock {
  static constexpr double kGuess = -1.2;
  static void Residual(std::span<const double> x, std::span<double> F) {
    F[0] = 10.0 * (x[1] - x[0] * x[0]);
    F[1] = 1.0 - x[0];
  }
  static void Jacobian(std::span<const double> x, SquareMatrix J) {
    J(0, 0) = -20.0 * x[0];
    J(0, 1) = 10.0;
    J(1, 0) = -1.0;
  }
};

/// Broyden's tridiagonal system.
struct Tridiagonal {
  static constexpr double kGuess = -1.0;
  static void Residual(std::span<const double> x, std::span<double> F) {
    for (std::size_t i = 0; i < x.size(); ++i)
      F[i] = (3.0 - 2.0 * x[i]) * x[i] - (i > 0 ? x[i - 1] : 0.0) - 2.0 * (i + 1 < x.size() ? x[i + 1] : 0.0) + 1.0;
  }
  static void Jacobian(std::span<const double> x, SquareMatrix J) {
    for (std::size_t i = 0; i < x.size(); ++i) {
      J(i, i) = 3.0 - 4.0 * x[i];
      if (i > 0) J(i, i - 1) = -1.0;
      if (i + 1 < x.size()) J(i, i + 1) = -2.0;
    }
  }
};

/// A reaction in a slab (Bratu's equation): costs an exponential per equation, as a rate or an equilibrium
/// does.
struct Slab {
  static constexpr double kGuess = 0.0;
  static double Rate(std::size_t size, double x) {
    const double h = 1.0 / static_cast<double>(size + 1);
    return h * h * 2.0 * std::exp(x);
  }
  static void Residual(std::span<const double> x, std::span<double> F) {
    for (std::size_t i = 0; i < x.size(); ++i)
      F[i] = (i > 0 ? x[i - 1] : 0.0) - 2.0 * x[i] + (i + 1 < x.size() ? x[i + 1] : 0.0) + Rate(x.size(), x[i]);
  }
  static void Jacobian(std::span<const double> x, SquareMatrix J) {
    for (std::size_t i = 0; i < x.size(); ++i) {
      J(i, i) = Rate(x.size(), x[i]) - 2.0;
      if (i > 0) J(i, i - 1) = 1.0;
      if (i + 1 < x.size()) J(i, i + 1) = 1.0;
    }
  }
};

constexpr double kTolerance = 1e-10;
constexpr long kIterations = 100;

template <class System>
NonlinearSystem Equations(bool givesJacobian) {
  NonlinearSystem system;
  system.residual = [](std::span<const double> x, std::span<double> F, std::string&) {
    System::Residual(x, F);
    return true;
  };
  if (givesJacobian)
    system.jacobian = [](std::span<const double> x, SquareMatrix J) {
      System::Jacobian(x, J);
      return true;
    };
  return system;
}

std::span<double> Values(N_Vector vector) {
  return {N_VGetArrayPointer(vector), static_cast<std::size_t>(N_VGetLength(vector))};
}

template <class System>
int DirectResidual(N_Vector x, N_Vector F, void*) {
  System::Residual(Values(x), Values(F));
  return 0;
}

template <class System>
int DirectJacobian(N_Vector x, N_Vector, SUNMatrix J, void*, N_Vector, N_Vector) {
  const auto order = static_cast<std::size_t>(SUNDenseMatrix_Rows(J));
  System::Jacobian(Values(x), {{SUNDenseMatrix_Data(J), order * order}, order});
  return 0;
}

void KeepQuiet(int, const char*, const char*, char*, void*) {}

template <class System>
bool SolveDirectly(std::span<double> x, bool givesJacobian) {
  SUNContext made = nullptr;
  SUNContext_Create(nullptr, &made);
  const OwnedContext context(made);
  const auto size = static_cast<sunindextype>(x.size());
  const OwnedVector unknowns(N_VNew_Serial(size, made));
  const OwnedVector scale(N_VNew_Serial(size, made));
  std::copy(x.begin(), x.end(), Values(unknowns.get()).begin());
  N_VConst(1.0, scale.get());
  const OwnedMatrix matrix(SUNDenseMatrix(size, size, made));
  const OwnedLinearSolver linearSolver(SUNLinSol_LapackDense(unknowns.get(), matrix.get(), made));
  const OwnedSolver solver(KINCreate(made));
  KINInit(solver.get(), DirectResidual<System>, unknowns.get());
  KINSetErrHandlerFn(solver.get(), KeepQuiet, nullptr);
  KINSetNumMaxIters(solver.get(), kIterations);
  KINSetFuncNormTol(solver.get(), kTolerance);
  KINSetLinearSolver(solver.get(), linearSolver.get(), matrix.get());
  if (givesJacobian) KINSetJacFn(solver.get(), DirectJacobian<System>);
  KINSetMaxNewtonStep(solver.get(), 1e100);
  KINSetMaxSetupCalls(solver.get(), 1);
  if (KINSol(solver.get(), unknowns.get(), KIN_LINESEARCH, scale.get(), scale.get()) < 0) return false;
  std::ranges::copy(Values(unknowns.get()), x.begin());
  return true;
}

double Seconds(const auto& action, int repeats) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < repeats; ++i) action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times both in turns, so that other load of the machine falls on both.
template <class System>
void DriverAgainstKinsol(benchmark::State& state) {
  const auto unknowns = static_cast<std::size_t>(state.range(0));
  const bool givesJacobian = state.range(1) != 0;
  const NonlinearSystem system = Equations<System>(givesJacobian);
  const NonlinearOptions options{.tolerance = kTolerance, .maxIterations = kIterations};
  bool solved = true;
  const auto driver = [&] {
    std::vector<double> x(unknowns, System::kGuess);
    solved = SolveNonlinear(system, x, options).success && solved;
  };
  const auto direct = [&] {
    std::vector<double> x(unknowns, System::kGuess);
    solved = SolveDirectly<System>(x, givesJacobian) && solved;
  };
  constexpr int kBatch = 20;
  double driverTime = 0.0;
  double directTime = 0.0;
  for (auto _ : state) {
    const double time = Seconds(driver, kBatch);
    directTime += Seconds(direct, kBatch);
    driverTime += time;
    state.SetIterationTime(time);
  }
  if (!solved) state.SkipWithError("not solved");
  state.counters["microseconds"] = 1e6 * driverTime / (kBatch * static_cast<double>(state.iterations()));
  state.counters["ratio"] = driverTime / directTime;
}
BENCHMARK(DriverAgainstKinsol<Rosenbrock>)
    ->ArgNames({"unknowns", "jacobian"})
    ->Args({2, 0})
    ->Args({2, 1})
    ->UseManualTime();
BENCHMARK(DriverAgainstKinsol<Slab>)
    ->ArgNames({"unknowns", "jacobian"})
    ->ArgsProduct({{10, 50}, {0, 1}})
    ->UseManualTime();
BENCHMARK(DriverAgainstKinsol<Tridiagonal>)
    ->ArgNames({"unknowns", "jacobian"})
    ->ArgsProduct({{10, 50}, {0, 1}})
    ->UseManualTime();

}  // namespace
