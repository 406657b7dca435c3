#include <gtest/gtest.h>
#include <windows.h>

#include "numerics/formula/NumericEntry.h"

namespace morvelan::test::parse_mutex_windows {

TEST(ParseMutexName, IsTheOneThatOthersKnow) {
  const HANDLE mutex = CreateMutexW(nullptr, TRUE, L"VELTParseMutex");
  ASSERT_NE(mutex, nullptr);
  ReleaseMutex(mutex);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").value, 1);
  CloseHandle(mutex);
}

TEST(ParseMutexName, TakenBySomethingElseFails) {
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, L"VELTParseMutex");
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").failure,
            "Failed to create a mutex for locking the parser for the current thread");
  CloseHandle(event);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").value, 1);
}

}  // namespace morvelan::test::parse_mutex_windows
