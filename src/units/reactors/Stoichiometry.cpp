#include "units/reactors/Stoichiometry.h"

#include <Eigen/LU>
#include <Eigen/QR>
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace morvelan {
namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

/// What a coefficient may deviate from a combination of others, relative to the greatest.
constexpr double kDependenceTolerance = 1e-9;
constexpr double kCoefficientRounding = 1e-12;  // of the greatest coefficient

/// How a column follows from the columns of a basis; empty when it doesn't.
VectorXd Combination(const MatrixXd& basis, const VectorXd& column) {
  if (column.isZero(0)) return VectorXd::Zero(basis.cols());
  if (basis.cols() == 0) return {};
  const VectorXd weights = basis.colPivHouseholderQr().solve(column);
  const bool follows =
      (basis * weights - column).lpNorm<Eigen::Infinity>() <= kDependenceTolerance * column.lpNorm<Eigen::Infinity>();
  return follows ? weights : VectorXd();
}

/// What non-negative multiples of columns leave of a vector at least, by their least squares: C. L. Lawson
/// and R. J. Hanson, Solving Least Squares Problems, 1974, algorithm NNLS. No column points in its direction.
VectorXd LeastRemainder(const MatrixXd& columns, const VectorXd& vector) {
  std::vector<Index> used;
  VectorXd multiples = VectorXd::Zero(columns.cols());
  for (Index step = 0; step < 3 * columns.cols(); ++step) {
    Index best = 0;
    const VectorXd gain = columns.transpose() * (vector - columns * multiples);
    if (gain.maxCoeff(&best) <= kDependenceTolerance || std::ranges::find(used, best) != used.end()) break;
    used.push_back(best);
    for (bool accepted = false; !accepted;) {
      const VectorXd wanted = columns(Eigen::all, used).colPivHouseholderQr().solve(vector);
      double part = 1;
      for (Index i = 0; i < wanted.size(); ++i) {
        const double now = multiples[used[static_cast<std::size_t>(i)]];
        if (wanted[i] <= 0) part = std::min(part, now / (now - wanted[i]));
      }
      multiples(used) += part * (wanted - multiples(used));
      accepted = part == 1;
      std::erase_if(used, [&](Index j) {
        const bool isSpent = multiples[j] <= kDependenceTolerance;
        if (isSpent) multiples[j] = 0;
        return isSpent && !accepted;
      });
    }
  }
  return vector - columns * multiples;
}

}  // namespace

VectorXd WithoutRounding(const VectorXd& coefficients) {
  const double least = kCoefficientRounding * coefficients.lpNorm<Eigen::Infinity>();
  return (coefficients.array().abs() > least).select(coefficients, 0);
}

MatrixXd StoichiometricMatrix(std::span<const Reaction> reactions, std::size_t compoundCount) {
  MatrixXd nu = MatrixXd::Zero(Index(compoundCount), Index(reactions.size()));
  for (std::size_t r = 0; r < reactions.size(); ++r) {
    for (std::size_t i = 0; i < reactions[r].coefficients.size(); ++i)
      nu(reactions[r].compoundIndices[i], Index(r)) += reactions[r].coefficients[i];
    nu.col(Index(r)) = WithoutRounding(nu.col(Index(r)));
  }
  return nu;
}

std::vector<std::vector<std::size_t>> DependentSets(const MatrixXd& nu) {
  const auto count = static_cast<std::size_t>(nu.cols());
  // Reactions with the same label are of the same set.
  std::vector<std::size_t> label(count);
  std::iota(label.begin(), label.end(), std::size_t{0});
  std::vector<bool> isDependent(count, false);
  std::vector<std::size_t> basis;
  MatrixXd basisColumns(nu.rows(), 0);
  for (std::size_t r = 0; r < count; ++r) {
    const VectorXd column = nu.col(Index(r));
    const VectorXd weights = Combination(basisColumns, column);
    if (weights.size() == 0 && !column.isZero(0)) {
      basis.push_back(r);
      basisColumns.conservativeResize(Eigen::NoChange, basisColumns.cols() + 1);
      basisColumns.rightCols(1) = column;
      continue;
    }
    isDependent[r] = true;
    for (std::size_t i = 0; i < basis.size(); ++i) {
      if (std::abs(weights[Index(i)]) <= kDependenceTolerance) continue;
      isDependent[basis[i]] = true;
      const std::size_t joined = label[basis[i]];
      std::ranges::replace(label, joined, std::size_t{label[r]});
    }
  }
  std::vector<std::vector<std::size_t>> sets;
  for (std::size_t wanted = 0; wanted < count; ++wanted) {
    std::vector<std::size_t> set;
    for (std::size_t r = 0; r < count; ++r)
      if (isDependent[r] && label[r] == wanted) set.push_back(r);
    if (!set.empty()) sets.push_back(std::move(set));
  }
  std::ranges::sort(sets);
  return sets;
}

ExtentRange RangeOfExtent(const VectorXd& coefficients, const VectorXd& flows) {
  ExtentRange range{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  for (Index j = 0; j < flows.size(); ++j) {
    const double end = std::max(flows[j], 0.0) / -coefficients[j];
    if (coefficients[j] < 0) range.highest = std::min(range.highest, end);
    if (coefficients[j] > 0) range.lowest = std::max(range.lowest, end);
  }
  // Only a wrong package has a reaction that uses up no compound or makes none; the feed limits its extent.
  if (std::isinf(range.lowest)) range.lowest = -flows.sum();
  if (std::isinf(range.highest)) range.highest = flows.sum();
  return range;
}

Feasibility FindFeasibility(const MatrixXd& nu, const VectorXd& inletFlows) {
  std::vector<Index> absent;
  for (Index j = 0; j < nu.rows(); ++j)
    if (!(inletFlows[j] > 0) && !nu.row(j).isZero(0)) absent.push_back(j);
  // Extents are feasible where they make no negative amount of an absent compound: by Farkas' lemma they make
  // none of a compound if and only if the negative of its row is made up of the rows of absent compounds.
  const MatrixXd rows = nu(absent, Eigen::all).rowwise().normalized();
  Feasibility feasibility{.inactive = {}, .degenerate = {}, .direction = VectorXd::Zero(nu.cols())};
  MatrixXd never(0, nu.cols());
  for (Index i = 0; i < rows.rows(); ++i) {
    const VectorXd remainder = LeastRemainder(rows.transpose(), -rows.row(i).transpose());
    if (remainder.norm() > kDependenceTolerance) {
      feasibility.direction -= remainder.normalized();
      continue;
    }
    never.conservativeResize(never.rows() + 1, Eigen::NoChange);
    never.bottomRows(1) = rows.row(i);
  }
  if (never.rows() == 0) return feasibility;
  const MatrixXd free = Eigen::FullPivLU<MatrixXd>(never).setThreshold(kDependenceTolerance).kernel();
  for (Index r = 0; r < nu.cols(); ++r) {
    if (free.row(r).isZero(kDependenceTolerance))
      feasibility.inactive.push_back(static_cast<std::size_t>(r));
    else if (!never.col(r).isZero(kDependenceTolerance))
      feasibility.degenerate.push_back(static_cast<std::size_t>(r));
  }
  return feasibility;
}

}  // namespace morvelan
