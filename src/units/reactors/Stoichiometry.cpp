#include "units/reactors/Stoichiometry.h"

#include <Eigen/QR>
#include <algorithm>
#include <limits>
#include <numeric>

namespace morvelan {
namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

/// What a coefficient may deviate from a combination of others, relative to the greatest.
constexpr double kDependenceTolerance = 1e-9;

Index Signed(std::size_t i) { return static_cast<Index>(i); }

/// How a column follows from the columns of a basis; empty when it doesn't.
VectorXd Combination(const MatrixXd& basis, const VectorXd& column) {
  if (column.isZero(0)) return VectorXd::Zero(basis.cols());
  if (basis.cols() == 0) return {};
  const VectorXd weights = basis.colPivHouseholderQr().solve(column);
  const bool follows = (basis * weights - column).lpNorm<Eigen::Infinity>() <=
                       kDependenceTolerance * column.lpNorm<Eigen::Infinity>();
  return follows ? weights : VectorXd();
}

/// Which compounds are fed or can be made, and which reactions make them.
struct Reach {
  std::vector<bool> compounds;
  std::vector<bool> reactions;
};

bool HasAll(const VectorXd& coefficients, double sign, const std::vector<bool>& present) {
  for (Index j = 0; j < coefficients.size(); ++j)
    if (sign * coefficients[j] < 0 && !present[static_cast<std::size_t>(j)]) return false;
  return true;
}

Reach ReachOf(const MatrixXd& nu, const VectorXd& inletFlows) {
  Reach reach{.compounds = {}, .reactions = std::vector<bool>(static_cast<std::size_t>(nu.cols()), false)};
  for (const double flow : inletFlows) reach.compounds.push_back(flow > 0);
  for (bool changed = true; changed;) {
    changed = false;
    for (Index r = 0; r < nu.cols(); ++r) {
      const auto column = static_cast<std::size_t>(r);
      if (reach.reactions[column]) continue;
      if (!HasAll(nu.col(r), 1, reach.compounds) && !HasAll(nu.col(r), -1, reach.compounds)) continue;
      reach.reactions[column] = changed = true;
      for (Index j = 0; j < nu.rows(); ++j)
        if (nu(j, r) != 0) reach.compounds[static_cast<std::size_t>(j)] = true;
    }
  }
  return reach;
}

}  // namespace

MatrixXd StoichiometricMatrix(std::span<const ReactionRecord> reactions, std::size_t compoundCount) {
  MatrixXd nu = MatrixXd::Zero(Signed(compoundCount), Signed(reactions.size()));
  for (std::size_t r = 0; r < reactions.size(); ++r)
    for (std::size_t i = 0; i < reactions[r].coefficients.size(); ++i)
      nu(reactions[r].compoundIndices[i], Signed(r)) += reactions[r].coefficients[i];
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
    const VectorXd column = nu.col(Signed(r));
    const VectorXd weights = Combination(basisColumns, column);
    if (weights.size() == 0 && !column.isZero(0)) {
      basis.push_back(r);
      basisColumns.conservativeResize(Eigen::NoChange, basisColumns.cols() + 1);
      basisColumns.rightCols(1) = column;
      continue;
    }
    isDependent[r] = true;
    for (std::size_t i = 0; i < basis.size(); ++i) {
      if (std::abs(weights[Signed(i)]) <= kDependenceTolerance) continue;
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
  // Mass comes from nothing in a package's mistake only; then the feed shall be enough.
  return {std::max(range.lowest, -flows.sum()), std::min(range.highest, flows.sum())};
}

std::vector<std::size_t> IdleReactions(const MatrixXd& nu, const VectorXd& inletFlows) {
  const Reach reach = ReachOf(nu, inletFlows);
  std::vector<std::size_t> idle;
  for (std::size_t r = 0; r < reach.reactions.size(); ++r)
    if (!reach.reactions[r]) idle.push_back(r);
  return idle;
}

bool CouldCombine(const MatrixXd& nu, const VectorXd& inletFlows, const std::vector<std::size_t>& idle) {
  const Reach reach = ReachOf(nu, inletFlows);
  MatrixXd absent(nu.rows(), Signed(idle.size()));
  for (Index j = 0; j < nu.rows(); ++j)
    for (std::size_t i = 0; i < idle.size(); ++i)
      absent(j, Signed(i)) = reach.compounds[static_cast<std::size_t>(j)] ? 0 : nu(j, Signed(idle[i]));
  return !DependentSets(absent).empty();
}

std::string JoinedNames(std::span<const ReactionRecord> reactions, const std::vector<std::size_t>& set) {
  std::string joined;
  for (const std::size_t r : set) joined += (joined.empty() ? "" : " and ") + reactions[r].name;
  return joined;
}

}  // namespace morvelan
