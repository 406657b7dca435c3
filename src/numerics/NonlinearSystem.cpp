#include "numerics/NonlinearSystem.h"

#include <nvector/nvector_serial.h>
#include <sunlinsol/sunlinsol_lapackdense.h>
#include <sunmatrix/sunmatrix_dense.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "numerics/SolverFailure.h"
#include "numerics/SundialsOwners.h"
#include "numerics/SystemCalls.h"

namespace morvelan::numerics {
namespace {

/// A limit that no step reaches. Without it, a guess of zeros would limit the Newton step to one.
constexpr double kLargestStep = 1e100;

std::span<double> Values(N_Vector vector) {
  return {N_VGetArrayPointer(vector), static_cast<std::size_t>(N_VGetLength(vector))};
}

SquareMatrix Square(SUNMatrix matrix) {
  const auto order = static_cast<std::size_t>(SUNDenseMatrix_Rows(matrix));
  return {{SUNDenseMatrix_Data(matrix), order * order}, order};
}

/// The solver for one system, with everything that it works on.
class Solution {
 public:
  Solution(const NonlinearSystem& equations, const NonlinearOptions& choices)
      : system(equations), options(choices), calls(equations, choices.positiveUnknowns) {}

  NonlinearResult Run(std::span<double> x);

 private:
  const char* SetUp(std::span<const double> guess);
  const char* MakeSolver(std::span<const double> guess);
  const char* SetLimits();
  const char* AttachLinearSolver();
  const char* SetSteps();
  const char* SetPositive();

  // The solver calls these functions; `data` is the solution.
  static int Residual(N_Vector x, N_Vector F, void* data) {
    auto& self = *static_cast<Solution*>(data);
    long iteration = 0;
    KINGetNumNonlinSolvIters(self.solver.get(), &iteration);
    return self.calls.Residual(iteration, Values(x), Values(F));
  }
  static int GivenJacobian(N_Vector x, N_Vector, SUNMatrix J, void* data, N_Vector, N_Vector) {
    return static_cast<Solution*>(data)->calls.GivenJacobian(Values(x), Square(J));
  }
  static int PerturbedJacobian(N_Vector x, N_Vector F, SUNMatrix J, void* data, N_Vector nearX, N_Vector nearF) {
    return static_cast<Solution*>(data)->calls.PerturbedJacobian(Values(x), Values(F), Square(J), Values(nearX),
                                                                 Values(nearF));
  }
  static void KeepMessage(int, const char* module, const char*, char* message, void* data) {
    static_cast<Solution*>(data)->calls.KeepMessage(module, message);
  }

  const NonlinearSystem& system;
  const NonlinearOptions& options;
  SystemCalls calls;
  // Each needs those before it.
  OwnedContext context;
  OwnedVector unknowns;
  OwnedVector scale;  // of the unknowns and of the equations
  OwnedMatrix matrix;
  OwnedLinearSolver linearSolver;
  OwnedSolver solver;
};

NonlinearResult Solution::Run(std::span<double> x) {
  NonlinearResult result;
  if (const char* failure = SetUp(x)) {
    result.errorText = failure;
    result.lastMessage = calls.LastMessage();
    return result;
  }
  const int outcome = KINSol(solver.get(), unknowns.get(), KIN_LINESEARCH, scale.get(), scale.get());
  calls.Rethrow();
  long iterations = 0;
  KINGetNumNonlinSolvIters(solver.get(), &iterations);
  result.iterations = outcome == KIN_INITIAL_GUESS_OK ? 1 : static_cast<std::int32_t>(iterations);
  result.residualEvaluations = calls.Evaluations();
  result.lastMessage = calls.LastMessage();
  result.success = outcome == KIN_SUCCESS || outcome == KIN_INITIAL_GUESS_OK;
  if (result.success)
    std::ranges::copy(Values(unknowns.get()), x.begin());
  else
    result.errorText = SolveFailureText(outcome, calls.FunctionMessage());
  return result;
}

const char* Solution::SetUp(std::span<const double> guess) {
  if (guess.empty() || !system.residual) return kInvalidArguments;
  if (const char* failure = MakeSolver(guess)) return failure;
  if (const char* failure = SetLimits()) return failure;
  if (const char* failure = AttachLinearSolver()) return failure;
  return SetSteps();
}

const char* Solution::MakeSolver(std::span<const double> guess) {
  SUNContext made = nullptr;
  if (SUNContext_Create(nullptr, &made) != 0) return kOutOfMemory;
  context.reset(made);
  const auto size = static_cast<sunindextype>(guess.size());
  unknowns.reset(N_VNew_Serial(size, made));
  scale.reset(N_VNew_Serial(size, made));
  solver.reset(KINCreate(made));
  if (!unknowns || !scale || !solver) return kOutOfMemory;
  std::ranges::copy(guess, Values(unknowns.get()).begin());
  N_VConst(1.0, scale.get());

  // Until the solver has our handler, it prints its messages, unless it has no file. Afterwards it needs one: it
  // flushes its file with every message, and without a file it would flush all files of the process.
  KINSetErrFile(solver.get(), nullptr);
  const int initialized = KINInit(solver.get(), Residual, unknowns.get());
  KINSetErrHandlerFn(solver.get(), KeepMessage, this);
  KINSetErrFile(solver.get(), stderr);
  if (initialized != KIN_SUCCESS) return SetupFailureText(initialized, kInvalidArguments);
  KINSetUserData(solver.get(), this);
  return nullptr;
}

// A refused value is not handed to the solver, which would print a message.
const char* Solution::SetLimits() {
  constexpr const char* kInvalidCount = "invalid maximum iteration count passed to solver";
  if (options.maxIterations < 0) return kInvalidCount;
  if (const int code = KINSetNumMaxIters(solver.get(), options.maxIterations))
    return SetupFailureText(code, kInvalidCount);
  constexpr const char* kInvalidTolerance = "invalid tolerance passed to solver";
  if (!std::isfinite(options.tolerance) || options.tolerance < 0.0) return kInvalidTolerance;
  if (const int code = KINSetFuncNormTol(solver.get(), options.tolerance))
    return SetupFailureText(code, kInvalidTolerance);
  return nullptr;
}

const char* Solution::AttachLinearSolver() {
  const sunindextype size = N_VGetLength(unknowns.get());
  matrix.reset(SUNDenseMatrix(size, size, context.get()));
  if (!matrix) return kOutOfMemory;
  linearSolver.reset(SUNLinSol_LapackDense(unknowns.get(), matrix.get(), context.get()));
  if (!linearSolver) return kOutOfMemory;
  if (const int code = KINSetLinearSolver(solver.get(), linearSolver.get(), matrix.get()))
    return LinearSetupFailureText(code);
  if (!system.jacobian && !system.isValid) return nullptr;
  const int code = KINSetJacFn(solver.get(), system.jacobian ? GivenJacobian : PerturbedJacobian);
  return code == KINLS_SUCCESS ? nullptr : LinearSetupFailureText(code);
}

const char* Solution::SetSteps() {
  if (const int code = KINSetMaxNewtonStep(solver.get(), kLargestStep))
    return SetupFailureText(code, kInvalidArguments);
  if (const int code = KINSetMaxSetupCalls(solver.get(), 1)) return SetupFailureText(code, kInvalidArguments);
  return options.positiveUnknowns.empty() ? nullptr : SetPositive();
}

const char* Solution::SetPositive() {
  constexpr double kAboveZero = 2.0;  // the solver's code of the constraint
  const OwnedVector constraints(N_VClone(unknowns.get()));
  if (!constraints) return kOutOfMemory;
  N_VConst(0.0, constraints.get());
  for (const std::size_t index : options.positiveUnknowns) {
    if (index >= Values(constraints.get()).size()) return kInvalidArguments;
    Values(constraints.get())[index] = kAboveZero;
  }
  const int code = KINSetConstraints(solver.get(), constraints.get());
  return code == KIN_SUCCESS ? nullptr : SetupFailureText(code, kInvalidArguments);
}

}  // namespace

NonlinearResult SolveNonlinear(const NonlinearSystem& system, std::span<double> x, const NonlinearOptions& options) {
  return Solution(system, options).Run(x);
}

}  // namespace morvelan::numerics
