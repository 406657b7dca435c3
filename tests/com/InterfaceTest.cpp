// The widths in which hosts pass values. Identifiers and slots of the interfaces come from the IDL files, whose type
// library is compared with the standard on Windows.

#include <gtest/gtest.h>

#include "cape_open.h"

namespace morvelan::test::interfaces {

TEST(Interfaces, PassValuesInTheWidthsOfTheWire) {
  EXPECT_EQ(sizeof(VARIANT), 24u);
  EXPECT_EQ(sizeof(LONG), 4u);
  EXPECT_EQ(sizeof(HRESULT), 4u);
  EXPECT_EQ(sizeof(VARIANT_BOOL), 2u);
  EXPECT_EQ(sizeof(OLECHAR), 2u);
  EXPECT_EQ(sizeof(CapeReactionType), 4u);
}

}  // namespace morvelan::test::interfaces
