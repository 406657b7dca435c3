#include "numerics/BracketedRoot.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string_view>

#include "tests/numerics/BracketedTrials.h"
#include "tests/support/Allocations.h"

namespace morvelan::numerics::test::bracketed_root {

/// A residual that notes where it is called, and that says where it has no value unless it is not to.
struct Recorder {
  explicit Recorder(const BracketedTrial& searched, bool tells = true) : trial(searched), says(tells) {
    points.reserve(200);
  }

  bool operator()(double x, double& r, std::string& message) {
    points.push_back(x);
    r = trial.residual(x);
    if (!std::isnan(r) || !says) return true;
    message = "no value";
    return false;
  }

  const BracketedTrial& trial;
  bool says;
  std::vector<double> points;
};

TEST(BracketedRoot, EvaluatesWhereTheStepsSay) {
  for (const BracketedTrial& trial : kBracketedTrials) {
    SCOPED_TRACE(trial.name);
    Recorder recorder(trial);
    const std::size_t allocations = morvelan::test::AllocationCount();
    const BracketedRoot root = SolveBracketed(recorder, trial.low, trial.high, trial.tolerance, trial.allowed);
    if (root.success) EXPECT_EQ(morvelan::test::AllocationCount(), allocations);

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

TEST(BracketedRoot, TakesAResidualThatIsNoNumberForAFailure) {
  constexpr std::string_view kNoValue = "no value";
  std::size_t failures = 0;
  for (const BracketedTrial& trial : kBracketedTrials) {
    std::string message = trial.message;
    if (!message.ends_with(kNoValue)) continue;
    SCOPED_TRACE(trial.name);
    ++failures;
    Recorder recorder(trial, false);
    const BracketedRoot root = SolveBracketed(recorder, trial.low, trial.high, trial.tolerance, trial.allowed);
    EXPECT_FALSE(root.success);
    message.replace(message.size() - kNoValue.size(), kNoValue.size(), "a residual is not a finite number");
    EXPECT_EQ(root.message, message);
    EXPECT_EQ(root.evaluations, trial.count);
    EXPECT_EQ(recorder.points.size(), trial.points.size());
  }
  EXPECT_EQ(failures, 3u);  // at the low bound, at the high one, inside
}

TEST(BracketedRoot, RefusesBoundsAndTolerancesThatAreNotFinite) {
  const auto residual = [](double, double&, std::string&) -> bool { throw std::runtime_error("called"); };
  for (const double value : {kNan, HUGE_VAL, -HUGE_VAL}) {
    SCOPED_TRACE(value);
    const auto expectRefusal = [&](double low, double high, double tolerance, const char* message) {
      const BracketedRoot root = SolveBracketed(residual, low, high, tolerance, 10);
      EXPECT_FALSE(root.success);
      EXPECT_EQ(root.message, message);
      EXPECT_EQ(root.evaluations, 0);
    };
    expectRefusal(value, 1.0, 1e-6, "Search bounds are not finite numbers");
    expectRefusal(0.0, value, 1e-6, "Search bounds are not finite numbers");
    expectRefusal(0.0, 1.0, value, "Search tolerance is not a finite number");
  }
}

TEST(BracketedRoot, RepeatsTheMessageOfTheFailedEvaluationOnly) {
  for (const int failing : {2, 3}) {
    SCOPED_TRACE(failing);
    int calls = 0;
    const auto residual = [&](double x, double& r, std::string& message) {
      r = x - 0.3;
      if (++calls == failing) return false;  // says nothing
      message = "converged slowly";
      return true;
    };
    const BracketedRoot root = SolveBracketed(residual, 0.0, 1.0, 1e-6, 10);
    EXPECT_FALSE(root.success);
    EXPECT_EQ(root.message, failing == 2 ? "Failed to evaluate at search boundary: "
                                         : "Failed to evaluate inside bracketed region boundary: ");
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

}  // namespace morvelan::numerics::test::bracketed_root
