#include "numerics/BracketedRoot.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/numerics/AllocationCount.h"
#include "tests/numerics/BracketedTrials.h"

namespace morvelan::numerics::test {
namespace {

/// A residual that notes where it is called.
struct Recorder {
  explicit Recorder(const BracketedTrial& searched) : trial(searched) { points.reserve(200); }

  bool operator()(double x, double& r, std::string& message) {
    points.push_back(x);
    r = trial.residual(x);
    if (!std::isnan(r)) return true;
    message = "no value";
    return false;
  }

  const BracketedTrial& trial;
  std::vector<double> points;
};

TEST(BracketedRoot, EvaluatesWhereTheStepsSay) {
  for (const BracketedTrial& trial : kBracketedTrials) {
    SCOPED_TRACE(trial.name);
    Recorder recorder(trial);
    const std::size_t allocations = AllocationCount();
    const BracketedRoot root =
        SolveBracketed(recorder, trial.low, trial.high, trial.tolerance, trial.allowed);
    if (root.success) EXPECT_EQ(AllocationCount(), allocations);

    EXPECT_EQ(root.success, std::string(trial.message).empty());
    EXPECT_EQ(root.message, trial.message);
    EXPECT_EQ(root.evaluations, trial.count);
    // Systems differ in the last digits of exp, cos and the like.
    const double close = 1e-10 * std::abs(trial.high - trial.low);
    EXPECT_NEAR(root.x, trial.best, close);
    ASSERT_EQ(recorder.points.size(), trial.points.size());
    for (std::size_t i = 0; i < trial.points.size(); ++i)
      EXPECT_NEAR(recorder.points[i], trial.points[i], close) << "point " << i;
    if (root.success) EXPECT_EQ(recorder.points.back(), root.x);
  }
}

TEST(BracketedRoot, MakesNoMoreEvaluationsThanAllowedAndOneAndTheLastOne) {
  for (const BracketedTrial& trial : kBracketedTrials)
    for (int allowed = -1; allowed < 40; ++allowed) {
      SCOPED_TRACE(testing::Message() << trial.name << ", " << allowed << " allowed");
      Recorder recorder(trial);
      const BracketedRoot root = SolveBracketed(recorder, trial.low, trial.high, trial.tolerance, allowed);
      EXPECT_LE(root.evaluations, std::max(allowed + 1, 2));
      EXPECT_LE(recorder.points.size(), static_cast<std::size_t>(std::max(allowed + 1, 2)) + root.success);
    }
}

TEST(BracketedRoot, IgnoresWhenTheLastEvaluationFails) {
  int calls = 0;
  const auto residual = [&](double x, double& r, std::string& message) {
    message = "too often";
    r = x - 1.0;
    return ++calls < 3;
  };
  // Wide enough for no step: the low bound is the better, and is evaluated again.
  const BracketedRoot root = SolveBracketed(residual, 1.5, 0.0, 2.0, 10);
  EXPECT_TRUE(root.success) << root.message;
  EXPECT_EQ(root.x, 1.5);
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(root.evaluations, 2);
}

TEST(BracketedRoot, EndsWhereTheBracketCannotBecomeNarrower) {
  const auto residual = [](double x, double& r, std::string&) {
    r = x * x - 2.0;
    return true;
  };
  const BracketedRoot root = SolveBracketed(residual, 0.0, 2.0, 0.0, 300);
  EXPECT_FALSE(root.success);
  EXPECT_EQ(root.message, "Maximum number of iterations exceeded");
  EXPECT_EQ(root.evaluations, 301);
}

TEST(BracketedRoot, LetsExceptionsThrough) {
  const auto residual = [](double, double&, std::string&) -> bool { throw std::runtime_error("cancelled"); };
  EXPECT_THROW((void)SolveBracketed(residual, 0.0, 1.0, 1e-6, 10), std::runtime_error);
}

}  // namespace
}  // namespace morvelan::numerics::test
