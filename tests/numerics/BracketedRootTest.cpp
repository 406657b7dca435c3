#include "numerics/BracketedRoot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "tests/support/Allocations.h"

namespace morvelan::numerics::test::bracketed_root {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kFound = "";
constexpr const char* kNoValue = "no value";
constexpr const char* kExceeded = "Maximum number of iterations exceeded";
constexpr const char* kNoSolution = "Solution does not exist within given domain";

double InfiniteOutside(double x) { return x < 0.3 ? -HUGE_VAL : x > 0.6 ? HUGE_VAL : x - 0.4; }
double Hump(double x) { return x < 0.2 ? -1 : x < 0.5 ? 3 * x - 1.3 : x < 0.9 ? 1 : 0.5; }
double Kinks(double x) { return x < 1 ? 1.5 - 0.2 * x : x < 2 ? 1.3 + 0.7 * (x - 1) : 2 - 3.6 * (x - 2); }

struct Trial {
  const char* name;
  double (*residual)(double x);  // NaN: no value
  double low, high, tolerance;
  int allowed, evaluations;
  const char* message;  // kFound: the last point is the root
  const char* points;   // of every evaluation, in order
};

// The points are an independent calculation: the steps of the search were written down naively in another language.
const Trial kTrials[] = {
    {"smooth", [](double x) { return std::cos(x) - x; }, 0, 1, 1e-6, 100, 10, kFound,
     "0 1 0.685073357326 0.736298997614 0.739091058285 0.739085129565 0.739085133215 0.73908809575 0.739086614483 "
     "0.739085873849 0.739085133215"},
    {"cubic", [](double x) { return x * x * x - 2 * x - 5; }, 2, 3, 1e-10, 100, 11, kFound,
     "2 3 2.05882352941 2.52941176471 2.29411764706 2.17647058824 2.11764705882 2.09408458981 2.09454546592 "
     "2.09455148158 2.09455148154"},
    {"cubic, bounds the other way round", [](double x) { return x * x * x - 2 * x - 5; }, 3, 2, 1e-10, 100, 11, kFound,
     "3 2 2.05882352941 2.52941176471 2.29411764706 2.17647058824 2.11764705882 2.09408458981 2.09454546592 "
     "2.09455148158 2.09455148154"},
    {"flat", [](double x) { return std::pow(x - 1, 9); }, 0, 3, 0.02, 100, 18, kFound,
     "0 3 0.00584795321637 1.50292397661 1.49968245996 0.75276520659 0.754090282322 1.12688637114 1.12592231932 "
     "0.940006300823 0.940241152788 1.03308173606 1.03263061079 0.986435881789 0.986452994892 1.00954180284 "
     "1.0085970015 0.997524998198"},
    {"steep", [](double x) { return std::exp(20 * x) - 1000; }, -1, 1, 1e-9, 100, 14, kFound,
     "-1 1 -0.999995877693 2.06115362245e-06 0.500001030577 0.250001545865 0.375001288221 0.314139285251 "
     "0.336360905593 0.346534990278 0.3452815236 0.345386549366 0.345387763969 0.345387763949"},
    {"saturating", [](double x) { return std::atan(x - 2); }, -3, 10, 1e-9, 100, 9, kFound,
     "-3 10 3.33163465975 0.780675851691 2.02601851025 1.99041669369 2.00000136561 1.99999999996 2"},
    {"pole", [](double x) { return 1 / (x - 0.3); }, 0, 1, 0.01, 100, 10, kFound,
     "0 1 0.7 0.35 0.175 0.2625 0.30625 0.284375 0.2953125 0.30078125 1"},
    {"pole that is met", [](double x) { return 1 / (x - 0.5); }, 0, 1, 0.02, 100, 8, kFound,
     "0 1 0.5 0.25 0.375 0.4375 0.46875 0.484375 1"},
    {"infinite at a bound", [](double x) { return std::log(x) + 1; }, 0, 1, 1e-6, 100, 10, kFound,
     "0 1 1 0.5 0.25 0.375 0.367741366869 0.367880773247 0.367879441421 0.367879441171"},
    {"infinite at both bounds", InfiniteOutside, 0, 1, 1e-6, 100, 7, kFound, "0 1 0.5 0.25 0.375 0.4 0.4"},
    {"jump", [](double x) { return x < 0.4 ? -1.0 : 2.0; }, 0, 1, 0.01, 100, 10, kFound,
     "0 1 0.333333333333 0.666666666667 0.5 0.416666666667 0.375 0.388888888889 0.402777777778 0.395833333333 0"},
    {"hump", Hump, 0, 1, 0.01, 100, 12, kFound,
     "0 1 0.666666666667 0.333333333333 0.410256410256 0.431839144069 0.433304439034 0.54998555285 0.491644995942 "
     "0.462474717488 0.447889578261 0.440597008647 0.433304439034"},
    {"rounding takes a secant too far", Kinks, 0, 3, 0.02, 100, 10, kFound,
     "0 3 1.45161290323 2.22580645161 2.55555555556 2.77777777778 2.66666666667 2.61111111111 2.58333333333 "
     "2.56944444444 2.55555555556"},
    {"tie: the high bound is the better end", [](double x) { return x * x * x + x; }, -1, 1, 1e-9, 100, 4, kFound,
     "-1 1 0 0"},
    {"secant only, by the tolerance", [](double x) { return 1e-8 * (x * x - 2); }, 0, 2, 0.003, 100, 15, kFound,
     "0 2 1 1.33333333333 1.4 1.41176470588 1.41379310345 1.70689655172 1.56034482759 1.48706896552 1.45043103448 "
     "1.43211206897 1.42295258621 1.41837284483 1.41608297414 1.41379310345"},
    {"product of residuals underflows", [](double x) { return 1e-165 * (x * x - 2); }, 0, 2, 0.003, 100, 15, kFound,
     "0 2 1 1.33333333333 1.4 1.41176470588 1.41379310345 1.70689655172 1.56034482759 1.48706896552 1.45043103448 "
     "1.43211206897 1.42295258621 1.41837284483 1.41608297414 1.41379310345"},
    {"zero at the low bound", [](double x) { return x; }, 0, 1, 1e-6, 100, 3, kFound, "0 1 0"},
    {"zero at both bounds", [](double x) { return x * (x - 1) * (x - 0.3); }, 0, 1, 0.02, 100, 8, kFound,
     "0 1 0.5 0.75 0.875 0.9375 0.96875 0.984375 1"},
    {"one allowed", [](double x) { return std::cos(x) - x; }, 0, 1, 1e-8, 1, 2, kExceeded, "0 1"},
    {"two allowed", [](double x) { return std::cos(x) - x; }, 0, 1, 1e-8, 2, 3, kExceeded, "0 1 0.685073357326"},
    {"none allowed, none needed", [](double x) { return x; }, -1e-09, 2e-09, 1e-6, 0, 2, kFound, "-1e-09 2e-09 -1e-09"},
    {"narrow, the high bound is the better", [](double x) { return x; }, -2e-09, 1e-09, 1e-6, 100, 2, kFound,
     "-2e-09 1e-09"},
    {"as wide as the tolerance", [](double x) { return std::cos(x) - x; }, 0, 1, 1, 100, 2, kFound, "0 1"},
    {"equal signs", [](double x) { return x * x + 1; }, -1, 2, 1e-6, 100, 2, kNoSolution, "-1 2"},
    {"equal signs, product underflows", [](double x) { return 1e-165 * (x + 2); }, -1, 2, 1e-6, 100, 2, kNoSolution,
     "-1 2"},
    {"nowhere", [](double) { return kNan; }, 0, 1, 1e-6, 100, 0, "Failed to evaluate at search boundary: no value",
     "0"},
    {"not at the high bound", [](double x) { return x > 0.9 ? kNan : x - 0.5; }, 0, 1, 1e-6, 100, 0,
     "Failed to evaluate at search boundary: no value", "0 1"},
    {"not inside", [](double x) { return x > 2.0944 && x < 2.0947 ? kNan : x * x * x - 2 * x - 5; }, 2, 3, 1e-10, 100,
     8, "Failed to evaluate inside bracketed region boundary: no value",
     "2 3 2.05882352941 2.52941176471 2.29411764706 2.17647058824 2.11764705882 2.09408458981 2.09454546592"},
};

/// Notes the points at which the residual is called. Where there is no value, it fails with a message or only gives
/// NaN.
struct Recorder {
  explicit Recorder(const Trial& tried, bool hasFailures) : trial(tried), fails(hasFailures) { points.reserve(200); }

  bool operator()(double x, double& r, std::string& message) {
    points.push_back(x);
    r = trial.residual(x);
    if (!std::isnan(r) || !fails) return true;
    message = kNoValue;
    return false;
  }
  BracketedRoot Solve(int allowed) { return SolveBracketed(*this, trial.low, trial.high, trial.tolerance, allowed); }

  const Trial& trial;
  bool fails;
  std::vector<double> points;
};

TEST(BracketedRoot, EvaluatesWhereTheStepsSay) {
  for (const Trial& trial : kTrials)
    for (const bool fails : {true, false}) {
      SCOPED_TRACE(trial.name);
      Recorder recorder(trial, fails);
      const std::size_t allocations = morvelan::test::AllocationCount();
      const BracketedRoot root = recorder.Solve(trial.allowed);
      if (root.success) EXPECT_EQ(morvelan::test::AllocationCount(), allocations);
      std::string message = trial.message;
      if (const std::size_t reason = message.find(kNoValue); reason != std::string::npos && !fails)
        message.replace(reason, std::string::npos, "a residual is not a finite number");
      EXPECT_EQ(root.message, message);
      EXPECT_EQ(root.success, message.empty());
      EXPECT_EQ(root.evaluations, trial.evaluations);
      std::istringstream stream(trial.points);
      const std::vector<double> points{std::istream_iterator<double>(stream), {}};
      EXPECT_EQ(recorder.points.size(), points.size());
      // Platforms differ in the last digits of exp, cos and the like.
      for (std::size_t i = 0; i < std::min(recorder.points.size(), points.size()); ++i)
        EXPECT_NEAR(recorder.points[i], points[i], 1e-10 * std::abs(trial.high - trial.low)) << "point " << i;
      EXPECT_EQ(root.x, root.success ? recorder.points.back() : 0.0);
    }
}

TEST(BracketedRoot, RefusesBoundsAndTolerancesThatAreNotFiniteAndLetsExceptionsThrough) {
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
  EXPECT_THROW((void)SolveBracketed(residual, 0.0, 1.0, 1e-6, 10), std::runtime_error);
}

TEST(BracketedRoot, RepeatsTheMessageOfTheFailedEvaluationOnly) {
  for (const int failing : {2, 3}) {
    SCOPED_TRACE(failing);
    int calls = 0;
    const auto residual = [&](double x, double& r, std::string& message) {
      r = x - 0.3;
      if (++calls == failing) return false;  // without a message
      message = "converged slowly";
      return true;
    };
    const BracketedRoot root = SolveBracketed(residual, 0.0, 1.0, 1e-6, 10);
    EXPECT_FALSE(root.success);
    EXPECT_EQ(root.message, failing == 2 ? "Failed to evaluate at search boundary: "
                                         : "Failed to evaluate inside bracketed region boundary: ");
  }
}

TEST(BracketedRoot, KeepsToTheLimitOfEvaluations) {
  for (const Trial& trial : kTrials)
    for (int allowed = -1; allowed < 20; ++allowed) {
      SCOPED_TRACE(testing::Message() << trial.name << ", " << allowed << " allowed");
      Recorder recorder(trial, true);
      const BracketedRoot root = recorder.Solve(allowed);
      const int most = std::max(allowed + 1, 2);
      EXPECT_LE(root.evaluations, most);
      EXPECT_LE(static_cast<int>(recorder.points.size()), most + root.success);
    }
}

TEST(BracketedRoot, IgnoresAFailureOfTheLastEvaluation) {
  int calls = 0;
  const auto residual = [&](double x, double& r, std::string& message) {
    message = "too often";
    r = x - 1.0;
    return ++calls < 3;
  };
  // The tolerance is so wide that there is no step: the low bound is the better one, and is evaluated again.
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
  EXPECT_EQ(root.message, kExceeded);
  EXPECT_EQ(root.evaluations, 301);
}

}  // namespace morvelan::numerics::test::bracketed_root
