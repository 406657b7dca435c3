#pragma once

#include <kinsol/kinsol.h>
#include <sundials/sundials_context.h>
#include <sundials/sundials_linearsolver.h>
#include <sundials/sundials_matrix.h>
#include <sundials/sundials_nvector.h>

#include <memory>

namespace morvelan::numerics {

/// Releases the objects of SUNDIALS.
struct SundialsRelease {
  void operator()(SUNContext context) const { SUNContext_Free(&context); }
  void operator()(N_Vector vector) const { N_VDestroy(vector); }
  void operator()(SUNMatrix matrix) const { SUNMatDestroy(matrix); }
  void operator()(SUNLinearSolver solver) const { SUNLinSolFree(solver); }
  void operator()(void* solver) const { KINFree(&solver); }
};

using OwnedContext = std::unique_ptr<_SUNContext, SundialsRelease>;
using OwnedVector = std::unique_ptr<_generic_N_Vector, SundialsRelease>;
using OwnedMatrix = std::unique_ptr<_generic_SUNMatrix, SundialsRelease>;
using OwnedLinearSolver = std::unique_ptr<_generic_SUNLinearSolver, SundialsRelease>;
using OwnedSolver = std::unique_ptr<void, SundialsRelease>;

}  // namespace morvelan::numerics
