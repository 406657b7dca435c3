// What follows from the stoichiometry of reactions alone.

#include "units/reactors/Stoichiometry.h"

#include <gtest/gtest.h>

namespace morvelan::test::stoichiometry {

using Sets = std::vector<std::vector<std::size_t>>;

/// Compounds by reactions; each row of `reactions` is one reaction.
Eigen::MatrixXd Columns(const std::vector<std::vector<double>>& reactions) {
  Eigen::MatrixXd nu(static_cast<Eigen::Index>(reactions.at(0).size()), static_cast<Eigen::Index>(reactions.size()));
  for (Eigen::Index r = 0; r < nu.cols(); ++r)
    for (Eigen::Index j = 0; j < nu.rows(); ++j)
      nu(j, r) = reactions[static_cast<std::size_t>(r)][static_cast<std::size_t>(j)];
  return nu;
}

Eigen::VectorXd Flows(const std::vector<double>& flows) {
  return Eigen::Map<const Eigen::VectorXd>(flows.data(), static_cast<Eigen::Index>(flows.size()));
}

TEST(Stoichiometry, AddsUpWhatAReactionLists) {
  const Reaction reactions[] = {
      {.name = com::HostText("R1"), .compoundIndices = {2, 0}, .coefficients = {-1, 2}},
      {.name = com::HostText("R2"), .compoundIndices = {1, 0, 1}, .coefficients = {-1, 1, 3}},
      {.name = com::HostText("R3"), .compoundIndices = {3, 3, 3, 0}, .coefficients = {0.3, -0.1, -0.2, 1}},
  };
  EXPECT_EQ(StoichiometricMatrix(reactions, 4), Columns({{2, 0, -1, 0}, {1, 2, 0, 0}, {1, 0, 0, 0}}));
  EXPECT_EQ(JoinedNames(reactions, {0, 1}), "R1 and R2");
  EXPECT_EQ(JoinedNames(reactions, {1}), "R2");
}

TEST(Stoichiometry, FindsDependentSets) {
  struct {
    const char* title;
    std::vector<std::vector<double>> reactions;
    Sets sets;
  } const cases[] = {
      {"one", {{-1, 1}}, {}},
      {"one that changes nothing", {{0, 0}}, {{0}}},
      {"that and another", {{-1, 1}, {0, 0}}, {{1}}},
      {"independent", {{-1, 1, 0}, {0, -1, 1}}, {}},
      {"the same twice", {{-1, 1, 0}, {-1, 1, 0}}, {{0, 1}}},
      {"a multiple backwards", {{-1, 1, 0}, {0, -1, 1}, {2, -2, 0}}, {{0, 2}}},
      {"one of three", {{-1, 1, 0}, {0, -1, 1}, {-1, 0, 1}}, {{0, 1, 2}}},
      {"a cycle", {{-1, 1, 0}, {0, -1, 1}, {1, 0, -1}}, {{0, 1, 2}}},
      {"two sets, mixed", {{-1, 1, 0, 0}, {0, 0, -1, 1}, {0, 0, 1, -1}, {-2, 2, 0, 0}}, {{0, 3}, {1, 2}}},
      {"two sets that a reaction joins", {{-1, 1, 0, 0}, {-1, 1, 0, 0}, {0, 0, -1, 1}, {-1, 1, -1, 1}}, {{0, 1, 2, 3}}},
      {"thirds", {{-1. / 3, 1. / 3}, {-1, 1}}, {{0, 1}}},
      {"almost the same", {{-1, 1, 0}, {-1, 1, 1e-6}}, {}},
  };
  for (const auto& c : cases) EXPECT_EQ(DependentSets(Columns(c.reactions)), c.sets) << c.title;
}

using Reactions = std::vector<std::vector<double>>;

struct FeedCase {
  const char* title;
  Reactions reactions;
  std::vector<double> feed;
  std::vector<std::size_t> inactive;
  std::vector<std::size_t> degenerate = {};
};

const Reactions kExchange = {{-1, 0, 1, -1}, {0, -1, 1, -1}};  // A + D = B and A2 + D = B of A, A2, B, D

const FeedCase kFeedCases[] = {
    {"forwards", {{-1, 1, 0, 0}}, {1, 0, 0, 0}, {}},
    {"backwards", {{-1, 1, 0, 0}}, {0, 1, 0, 0}, {}},
    {"with one of two reactants", {{-1, -1, 1, 0}}, {1, 0, 0, 0}, {0}},
    {"with one of two products", {{-1, 0, 1, 1}}, {0, 0, 1, 0}, {0}},
    {"the other is made", {{0, -1, -1, 1}, {-1, 1, 1, 0}}, {1, 0, 0, 0}, {}},
    {"the other is made backwards", {{-1, -1, 0, 1}, {0, 1, -1, 0}}, {1, 0, 1, 0}, {}},
    {"in a chain", {{0, 0, -1, 1}, {0, -1, 1, 0}, {-1, 1, 0, 0}}, {1, 0, 0, 0}, {}},
    {"a chain without its beginning", {{0, 0, -1, 1}, {0, -1, 1, 0}}, {1, 0, 0, 0}, {0, 1}},
    {"a negative flow is none", {{-1, 1, 0, 0}}, {-1, 0, 0, 0}, {0}},
    // Methane, carbon dioxide, water, carbon monoxide, hydrogen: reforming and shift.
    {"two that make what both need", {{-1, 0, -1, 1, 3}, {0, 1, -1, -1, 1}}, {1, 1, 0, 0, 0}, {}},
    {"the same without one feed", {{-1, 0, -1, 1, 3}, {0, 1, -1, -1, 1}}, {1, 0, 0, 0, 0}, {0, 1}},
    {"through nothing", kExchange, {1, 1, 0, 0}, {}, {0, 1}},
    {"through nothing, from one", kExchange, {1, 0, 0, 0}, {}, {0, 1}},
    {"through something", kExchange, {1, 1, 1, 0}, {}},
    {"through something else", kExchange, {1, 1, 0, 1}, {}},
    {"through nothing beside another",
     {{-1, 0, 1, -1, 0}, {0, 0, 1, -1, -1}, {-1, 1, 0, 0, 0}},
     {1, 0, 0, 0, 1},
     {},
     {0, 1}},
};

TEST(Stoichiometry, TellsWhatReactionsCanDoWithAFeed) {
  for (const FeedCase& c : kFeedCases) {
    SCOPED_TRACE(c.title);
    const Eigen::MatrixXd nu = Columns(c.reactions);
    const Feasibility feasibility = FindFeasibility(nu, Flows(c.feed));
    EXPECT_EQ(feasibility.inactive, c.inactive);
    EXPECT_EQ(feasibility.degenerate, c.degenerate);
    // A little of its direction makes some of every compound that isn't fed, but of those that never are.
    const Eigen::VectorXd made = nu * feasibility.direction;
    const bool makesAll = c.inactive.empty() && c.degenerate.empty();
    for (Eigen::Index j = 0; j < made.size(); ++j)
      if (!(c.feed[static_cast<std::size_t>(j)] > 0) && !nu.row(j).isZero(0))
        EXPECT_TRUE(makesAll ? made[j] > 0.01 : made[j] > -1e-12) << "compound " << j << ": " << made[j];
  }
}

TEST(Stoichiometry, KnowsTheRangeOfAnExtent) {
  struct {
    const char* title;
    std::vector<double> coefficients, flows;
    double lowest, highest;
  } const cases[] = {
      {"of A alone", {-1, 1}, {2, 0}, 0, 2},
      {"both ways", {-1, 1}, {2, 3}, -3, 2},
      {"by the limiting one", {-1, -2, 4}, {2, 1, 8}, -2, 0.5},
      {"exhausted", {-1, -1, 1}, {2, 0, 0}, 0, 0},
      {"a negative flow is none", {-1, 1, 0}, {2, -1, 1}, 0, 2},
      {"by small coefficients", {-0.125, 0.25}, {2, 1}, -4, 16},
      {"something from nothing", {1, 0}, {2, 3}, -2, 5},
      {"nothing from something", {-1, 0}, {2, 3}, -5, 2},
  };
  for (const auto& c : cases) {
    const ExtentRange range = RangeOfExtent(Flows(c.coefficients), Flows(c.flows));
    EXPECT_EQ(range.lowest, c.lowest) << c.title;
    EXPECT_EQ(range.highest, c.highest) << c.title;
  }
}

}  // namespace morvelan::test::stoichiometry
