#pragma once

#include <Eigen/Core>
#include <vector>

namespace morvelan::host {

/// Accelerates a fixed-point iteration x <- g(x) by Anderson mixing: of the last steps, that combination is
/// taken whose residual g(x) - x is the smallest (D. G. Anderson, J. ACM 12 (1965) 547).
class AndersonMixing {
 public:
  /// The next x after g was found at x.
  [[nodiscard]] Eigen::VectorXd Next(const Eigen::VectorXd& x, const Eigen::VectorXd& g);
  /// Forgets the steps so far.
  void Restart() { steps.clear(); }

 private:
  struct Step {
    Eigen::VectorXd g;
    Eigen::VectorXd residual;
  };

  std::vector<Step> steps;
};

}  // namespace morvelan::host
