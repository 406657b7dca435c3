#include <gtest/gtest.h>

#include "tests/support/MessageBoxes.h"

namespace morvelan::test {

std::string MessageBoxesOf(const std::function<void()>& body) {
  testing::internal::CaptureStderr();
  body();
  return testing::internal::GetCapturedStderr();
}

}  // namespace morvelan::test
