#include "numerics/SolverFailure.h"

#include <kinsol/kinsol.h>
#include <kinsol/kinsol_ls.h>

namespace morvelan::numerics {
namespace {

struct Outcome {
  int code;
  const char* text;
  bool isFollowedByReason = false;
};

constexpr Outcome kSolveOutcomes[] = {
    {KIN_STEP_LT_STPTOL, "Solution is stalled; no progress between iterations"},
    {KIN_REPTD_SYSFUNC_ERR, "Too many function evaluations failed: ", true},
    {KIN_FIRST_SYSFUNC_ERR, "Function cannot be evaluated at initial guess: ", true},
    {KIN_SYSFUNC_FAIL, "", true},
    {KIN_LSETUP_FAIL, "Preconditioner function failed"},
    {KIN_LSOLVE_FAIL, "Preconditioner function failed"},
    {KIN_LINIT_FAIL, "linear iteration solver initialization failed"},
    {KIN_LINSOLV_NO_RECOVERY,
     "The user-supplied routine psolve encountered a recoverable error, but the preconditioner is already "
     "current"},
    {KIN_LINESEARCH_NONCONV, "line search did not converge"},
    {KIN_LINESEARCH_BCFAIL, "line search did not converge"},
    {KIN_MXNEWT_5X_EXCEEDED, "too many failed (maximum) Newton steps"},
    {KIN_MAXITER_REACHED, "maximum number of iterations exceeded"},
    {KIN_MEM_NULL, kOutOfMemory},
    {KIN_NO_MALLOC, kOutOfMemory},
    {KIN_MEM_FAIL, kOutOfMemory},
    {KIN_ILL_INPUT, "invalid input to solver"},
};

constexpr const char* kUnknown = "unknown solver error";

}  // namespace

std::string SolveFailureText(int outcome, const std::string& functionMessage) {
  for (const Outcome& row : kSolveOutcomes)
    if (row.code == outcome) return row.isFollowedByReason ? row.text + functionMessage : row.text;
  return kUnknown;
}

const char* SetupFailureText(int outcome, const char* invalid) {
  switch (outcome) {
    case KIN_MEM_NULL:
    case KIN_NO_MALLOC:
    case KIN_MEM_FAIL:
      return kOutOfMemory;
    case KIN_ILL_INPUT:
      return invalid;
    default:
      return kUnknown;
  }
}

const char* LinearSetupFailureText(int outcome) {
  switch (outcome) {
    case KINLS_MEM_NULL:
    case KINLS_LMEM_NULL:
    case KINLS_MEM_FAIL:
      return kOutOfMemory;
    case KINLS_ILL_INPUT:
      return kInvalidArguments;
    default:
      return kUnknown;
  }
}

}  // namespace morvelan::numerics
