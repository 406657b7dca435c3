#include <gtest/gtest.h>

#include "tests/support/LibraryRegistration.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  morvelan::test::RegisterBuiltLibrary();
  return RUN_ALL_TESTS();
}
