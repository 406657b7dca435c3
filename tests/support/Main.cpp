#include <gtest/gtest.h>

#include "com/Program.h"
#include "tests/support/LibraryRegistration.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const morvelan::com::Program program(argc, argv);
  morvelan::test::RegisterBuiltLibrary();
  return RUN_ALL_TESTS();
}
