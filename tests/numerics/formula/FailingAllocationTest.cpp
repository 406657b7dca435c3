// If memory runs out, at whichever allocation, there is a failure with a message, and nothing leaks or stays locked.

#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <future>
#include <new>

#include "numerics/formula/CalculatorFormula.h"
#include "numerics/formula/NumericEntry.h"
#include "tests/numerics/formula/OpenHandles.h"

namespace morvelan::test::failing_allocation {

using namespace numerics;
using Lasts = FailingAllocation::Lasts;

// A value, and failures of the lexer, the grammar, the check and the evaluation.
const char* const kTexts[] = {"2*PI*0.5^2+SQRT(MAX(1,2))",
                              "1.5+\"a name that is long enough to be allocated\"",
                              "1+2.x",
                              "(1+2",
                              "SQRT(1,2,3)",
                              "1/0",
                              "SQRT(-1)"};

/// Runs `operation` with each of its allocations failing in turn; returns how many there were. Its text must be `usual`
/// if they all succeed, and otherwise `message`, or a shorter one if the message cannot be allocated either.
template <class Operation>
std::size_t FailEach(Lasts lasts, const std::string& usual, const std::string& message, const Operation& operation) {
  for (std::size_t n = 0;; ++n) {
    const std::size_t handles = OpenHandles();
    bool happened = false;
    std::string failure;
    {
      const FailingAllocation failing(n, lasts);
      failure = operation();
      happened = failing.Happened();
    }
    EXPECT_EQ(OpenHandles(), handles) << "allocation " << n;
    EXPECT_EQ(failure, !happened ? usual : lasts == Lasts::kForGood ? "out of memory" : message) << "allocation " << n;
    if (!happened || testing::Test::HasFailure()) return n;
  }
}

TEST(FailingAllocation, EndsAnEntryAndReleasesTheMutex) {
  for (const Lasts lasts : {Lasts::kOnce, Lasts::kForGood})
    for (const char* text : kTexts) {
      SCOPED_TRACE(text);
      const std::string usual = EvaluateNumericEntry(text).failure;
      const auto evaluate = [&] { return EvaluateNumericEntry(text).failure; };
      EXPECT_GT(FailEach(lasts, usual, "memory exhausted", evaluate), 1u);
      EXPECT_EQ(std::async(std::launch::async, [] { return EvaluateNumericEntry("1").value; }).get(), 1);
    }
}

TEST(FailingAllocation, EndsTheCheckOfAFormula) {
  const std::vector<std::string> names = {"x"};
  for (const Lasts lasts : {Lasts::kOnce, Lasts::kForGood})
    for (const char* text : kTexts) {
      SCOPED_TRACE(text);
      const std::string usual = CheckFormula(text, names).failure;
      const auto check = [&] { return CheckFormula(text, names).failure; };
      EXPECT_GT(FailEach(lasts, usual, "parser stack overflow", check), 1u);
    }
}

TEST(FailingAllocation, EndsTheEvaluationOfAFormula) {
  const std::vector<double> values = {0};
  const FormulaCheck check = CheckFormula("1+1/\"x\"", std::vector<std::string>{"x"});
  ASSERT_TRUE(check.formula.has_value());
  const std::string usual = "floating point exception in division: Division by zero";
  const auto evaluate = [&] { return check.formula->Evaluate(values).failure; };
  for (const Lasts lasts : {Lasts::kOnce, Lasts::kForGood})
    EXPECT_GT(FailEach(lasts, usual, "memory exhausted", evaluate), 1u);
}

// The counts above include the mutex.
TEST(FailingAllocation, AnOpenMutexIsCounted) {
  const std::size_t handles = OpenHandles();
  auto mutex = OpenParseMutex();
  EXPECT_EQ(OpenHandles(), handles + 1);
  mutex.reset();
  EXPECT_EQ(OpenHandles(), handles);
}

struct MutexState {
  int waited = 0, released = 0, closed = 0;
};

class WatchedMutex : public NamedMutex {
 public:
  explicit WatchedMutex(MutexState& watched) : state(watched) {}
  ~WatchedMutex() override { ++state.closed; }
  bool Wait() override { return ++state.waited > 0; }
  void Release() override { state.released += state.closed == 0; }

 private:
  MutexState& state;
};

TEST(FailingAllocation, ReleasesTheMutexBeforeItIsClosed) {
  bool happened = true;
  for (std::size_t n = 0; happened; ++n) {
    MutexState state;
    auto mutex = std::make_unique<WatchedMutex>(state);
    {
      const FailingAllocation failing(n, Lasts::kForGood);
      try {
        (void)EvaluateNumericEntry(kTexts[0], std::move(mutex));
      } catch (const std::bad_alloc&) {  // this function may throw it
      }
      happened = failing.Happened();
    }
    EXPECT_TRUE(state.waited == 1 && state.released == 1 && state.closed == 1) << "allocation " << n;
  }
}

}  // namespace morvelan::test::failing_allocation
