#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "numerics/formula/Evaluation.h"

namespace morvelan::test {

/// What a text must give: a value or, when there is a message, that message.
struct FormulaCase {
  const char* text;
  double value = 0;
  const char* message = nullptr;
};

inline FormulaCase Fails(const char* text, const char* message) { return {text, 0, message}; }

/// A few roundings are allowed: literals are read digit by digit.
inline void ExpectOutcome(const FormulaCase& expected, const numerics::Evaluation& actual) {
  if (expected.message) {
    EXPECT_EQ(actual.failure, expected.message);
    EXPECT_TRUE(std::isnan(actual.value));
    return;
  }
  EXPECT_EQ(actual.failure, "");
  EXPECT_NEAR(actual.value, expected.value, 1e-15 * std::abs(expected.value));
  EXPECT_EQ(std::signbit(actual.value), std::signbit(expected.value));
}

}  // namespace morvelan::test
