#include <gtest/gtest.h>

#include "tests/support/Approved.h"

namespace morvelan::test::approved {

struct Pair {
  const char* approved;
  const char* actual;
  const char* difference;  // as it begins
};

const Pair kPairs[] = {
    {"a\nb\n", "a\r\nb\r\n", ""},
    {"a\nb\n", "a\nc\n", "line 2\n  approved: b\n  actual:   c"},
    {"a\n", "a\nb\n", "line 2\n  approved: (no line)\n  actual:   b"},
    {"a\nb\n", "a\n", "line 2\n  approved: b\n  actual:   (no line)"},
    {"a  b", "a b", "line 1"},
    // Numbers: relative, and by the last of six digits or more
    {"T = 0.5 K", "T = 0.5000004 K", ""},
    {"T = 0.5 K", "T = 0.500001 K", "line 1"},
    {"T = 0.5 K", "T = 0.6 K", "line 1"},
    {"P 1e+05", "P 100000.01", ""},
    {"P 1e+05", "P 1.1e+05", "line 1"},
    {"x  0.000123456  y", "x 0.000123457 y", ""},
    {"x  0.000123456  y", "x 0.000123458 y", "line 1"},
    {"x  -1.23456e-07", "x -1.23457e-07", ""},
    {"x  -1.23456e-07", "x 1.23456e-07", "line 1"},
    {"0.3 of 7", "0.3000001 of 8", "line 1"},
    {"0.3 of 7", "0.3000001 of 7", ""},
    // Whole numbers count something.
    {"3000001 rounds", "3000002 rounds", "line 1"},
};

TEST(Approved, ComparesNumbersAsNumbersAndTextsAsTexts) {
  for (const auto& [approved, actual, difference] : kPairs) {
    const std::string found = FirstDifference(approved, actual);
    EXPECT_EQ(found.empty(), *difference == '\0') << approved << "\n" << actual << "\n" << found;
    EXPECT_TRUE(found.starts_with(difference)) << found;
  }
}

}  // namespace morvelan::test::approved
