// How foreign failure codes are explained when their object says nothing; what objects say is part of every
// fault test.

#include <gtest/gtest.h>

#include "errors/ErrorText.h"
#include "tests/support/SystemText.h"

namespace morvelan::test::error_text {

struct CodeText {
  std::uint32_t code;
  const char* text;
};

TEST(ErrorText, ExplainsCodesWithoutAnObject) {
  const CodeText cases[] = {
      {0x80040501, "Failed to get error name for ECapeUnknown"},
      {0x80040502, "invalid data"},
      {0x80040503, "Failed to get error name for ECapeUnknown"},
      {0x80040504, "Bad Cape-Open parameter"},
      {0x80040505, "Bad argument"},
      {0x80040506, "Invalid argument"},
      {0x80040507, "index out of bounds"},
      {0x80040508, "current implementation related error"},
      {0x80040509, "not implemented"},
      {0x8004050A, "implementation is limited"},
      {0x8004050B, "computation error"},
      {0x8004050C, "out of resources"},
      {0x8004050D, "out of memory"},
      {0x8004050E, "operation was timed out"},
      {0x8004050F, "initialization error"},
      {0x80040510, "solution error"},
      {0x80040511, "invalid order of invocations"},
      {0x80040512, "invalid operation"},
      {0x80040513, "storage / persistence error"},
      {0x80040514, "illegal access"},
      {0x80040515, "persistence error: not found"},
      {0x80040516, "persistence system error"},
      {0x80040517, "persistence overflow error"},
      {0x80040518, "solver scope error"},
      {0x80040519, "Hessian information not available"},
      {0x8004051A, "One or more of the requested thermodynamic properties are not set on the material"},
      {0x8004051B, "error code 0x8004051B"},
      {0x80040500, "error code 0x80040500"},
      {0x80004005, "Unspecified error"},
  };
  for (const CodeText& c : cases)
    EXPECT_EQ(ErrorText(nullptr, static_cast<HRESULT>(c.code)), InThisSystemsWords(c.text));
}

}  // namespace morvelan::test::error_text
