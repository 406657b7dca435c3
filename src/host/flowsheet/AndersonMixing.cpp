#include "host/flowsheet/AndersonMixing.h"

#include <Eigen/QR>

namespace morvelan::host {
namespace {

constexpr std::size_t kDepth = 6;

}  // namespace

Eigen::VectorXd AndersonMixing::Next(const Eigen::VectorXd& x, const Eigen::VectorXd& g) {
  steps.push_back({g, g - x});
  if (steps.size() > kDepth) steps.erase(steps.begin());
  const auto differences = static_cast<Eigen::Index>(steps.size()) - 1;
  if (differences == 0) return g;
  // Minimize |f - dF c| over c, where dF holds the residuals' differences to the newest, f.
  Eigen::MatrixXd dF(x.size(), differences), dG(x.size(), differences);
  for (Eigen::Index i = 0; i < differences; ++i) {
    dF.col(i) = steps.back().residual - steps[static_cast<std::size_t>(i)].residual;
    dG.col(i) = steps.back().g - steps[static_cast<std::size_t>(i)].g;
  }
  const Eigen::VectorXd c = dF.completeOrthogonalDecomposition().solve(steps.back().residual);
  return g - dG * c;
}

}  // namespace morvelan::host
