// Strings, variants, arrays and streams of the platform as the library relies on them, and reading what hosts
// give.

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "com/Ref.h"
#include "com/Values.h"

namespace morvelan::test::automation {

VARIANT Plain(VARTYPE type) {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = type;
  return variant;
}

TEST(Text, GoesToUtf16AndBack) {
  for (const std::string text : {"", "Inlet", "W/m²/K", "π ≈ 3", "emoji \xF0\x9F\x98\x80 end"})
    EXPECT_EQ(com::ToUtf8(com::ToBstr(text).Get()), text);
  EXPECT_EQ(com::ToUtf8(static_cast<BSTR>(nullptr)), "");
}

TEST(Text, ReplacesWhatIsNoText) {
  const char* replacement = "\xEF\xBF\xBD";
  for (const std::string broken : {"\xC3", "\xED\xA0\x80", "\xF8", "\xC0\x80"}) {
    const std::string back = com::ToUtf8(com::ToBstr("<" + broken + ">").Get());
    EXPECT_TRUE(back.starts_with(std::string("<") + replacement)) << back;
    EXPECT_TRUE(back.ends_with(">")) << back;
  }
  const OLECHAR lone[] = {0xd800, 'x'};
  EXPECT_EQ(com::ToUtf8(lone, 2), std::string(replacement) + "x");
}

TEST(Text, ComparesNamesWithoutCase) {
  EXPECT_TRUE(com::KeepName("OVERALL") == com::KeepName("overall"));
  EXPECT_TRUE(com::Name() == com::KeepName(""));
  EXPECT_FALSE(com::KeepName("Mole") == com::KeepName("Mol"));
  EXPECT_FALSE(com::KeepName("Ä") == com::KeepName("ä")) << "only the letters A to Z";
  EXPECT_FALSE(com::EqualNoCase("abc", "abcd"));
}

TEST(Text, ReadsAndWritesClassIdentifiers) {
  const std::string text = "{A158F66A-9B33-489F-A4D1-DCFE3BFD26B0}";
  CLSID clsid;
  EXPECT_EQ(CLSIDFromString(com::ToBstr(text).Get(), &clsid), S_OK);
  EXPECT_EQ(clsid.Data1, 0xa158f66au);
  EXPECT_EQ(com::ToText(clsid), text);
  for (const char* wrong : {"", "{A158F66A-9B33-489F-A4D1-DCFE3BFD26B}", "{A158F66A-9B33-489F-A4D1-DCFE3BFD26BG}"})
    EXPECT_NE(CLSIDFromString(com::ToBstr(wrong).Get(), &clsid), S_OK) << wrong;
}

com::Variant Unsigned64(ULONGLONG value) {
  VARIANT variant = Plain(VT_UI8);
  variant.ullVal = value;
  return com::Variant(variant);
}

/// A variant as a type, where it has another than a text, and its value.
std::string Show(const VARIANT& value) {
  switch (value.vt) {
    case VT_I4:
      return "I4 " + std::to_string(value.lVal);
    case VT_BOOL:
      return "BOOL " + std::to_string(value.boolVal);
    case VT_R8:
      return "R8 " + std::to_string(value.dblVal);
    case VT_BSTR:
      return com::ToUtf8(value.bstrVal);
    default:
      return "another type";
  }
}

TEST(Variants, ConvertBetweenNumbersBooleansAndTexts) {
  const struct {
    const char* title;
    com::Variant from;
    VARTYPE to;
    HRESULT outcome;
    const char* result = "";
  } cases[] = {
      {"double to integer rounds to even", com::MakeDouble(2.5), VT_I4, S_OK, "I4 2"},
      {"double to integer rounds up", com::MakeDouble(3.5), VT_I4, S_OK, "I4 4"},
      {"too large for 32 bits", com::MakeDouble(3e9), VT_I4, DISP_E_OVERFLOW},
      {"large unsigned to integer", Unsigned64(1ull << 40), VT_I4, DISP_E_OVERFLOW},
      {"text to integer", com::MakeString(" 12 "), VT_I4, S_OK, "I4 12"},
      {"text that is no number", com::MakeString("12a"), VT_I4, DISP_E_TYPEMISMATCH},
      {"boolean to integer", com::MakeBoolean(true), VT_I4, S_OK, "I4 -1"},
      {"integer to boolean", com::MakeInteger(5), VT_BOOL, S_OK, "BOOL -1"},
      {"nothing to double", com::Variant(), VT_R8, S_OK, "R8 0.000000"},
      {"integer to text", com::MakeInteger(-7), VT_BSTR, S_OK, "-7"},
      {"boolean to text", com::MakeBoolean(false), VT_BSTR, S_OK, "0"},
      {"array to text", com::MakeDoubles(std::array{1.0}), VT_BSTR, DISP_E_TYPEMISMATCH},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.title);
    com::Variant result;
    EXPECT_EQ(VariantChangeTypeEx(result.Put(), const_cast<VARIANT*>(&c.from.Get()), LOCALE_INVARIANT, 0, c.to),
              c.outcome);
    if (SUCCEEDED(c.outcome)) EXPECT_EQ(Show(result.Get()), c.result);
  }
}

TEST(Variants, CopyWhatTheyHold) {
  std::vector<com::Variant> elements;
  elements.push_back(com::MakeString("text"));
  elements.push_back(com::MakeDoubles(std::array{1.0, 2.0}));
  const com::Variant original = com::MakeVariants(elements);
  const com::Variant copy = com::Copy(original.Get());
  const auto read = com::ReadVariants(copy.Get());
  EXPECT_EQ(com::ReadString(read[0].Get()), "text");
  EXPECT_EQ(com::ReadDoubles(read[1].Get()), (std::vector<double>{1, 2}));
  VARIANT reference = Plain(VT_VARIANT | VT_BYREF);
  reference.pvarVal = const_cast<VARIANT*>(&copy.Get());
  com::Variant deep;
  EXPECT_EQ(VariantCopyInd(deep.Put(), &reference), S_OK);
  EXPECT_EQ(com::ReadVariants(deep.Get()).size(), 2u);
}

TEST(SafeArrays, IndexEveryDimensionFromItsLowerBound) {
  SAFEARRAYBOUND bounds[] = {{2, -1}, {3, 10}};
  com::SafeArray array(SafeArrayCreate(VT_I4, 2, bounds));
  for (LONG i = -1; i <= 0; ++i)
    for (LONG j = 10; j <= 12; ++j) {
      LONG indices[] = {i, j};
      LONG value = 100 * i + j;
      EXPECT_EQ(SafeArrayPutElement(array.Get(), indices, &value), S_OK);
    }
  LONG lower = 0;
  LONG upper = 0;
  EXPECT_EQ(SafeArrayGetLBound(array.Get(), 2, &lower), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(array.Get(), 2, &upper), S_OK);
  EXPECT_EQ(lower, 10);
  EXPECT_EQ(upper, 12);
  const LONG* data = static_cast<const LONG*>(array.Get()->pvData);
  EXPECT_EQ(data[1], 10) << "the first index varies fastest";
  LONG value = 0;
  for (LONG i = -1; i <= 0; ++i)
    for (LONG j = 10; j <= 12; ++j) {
      LONG indices[] = {i, j};
      EXPECT_EQ(SafeArrayGetElement(array.Get(), indices, &value), S_OK);
      EXPECT_EQ(value, 100 * i + j);
    }
  LONG outside[] = {0, 13};
  EXPECT_EQ(SafeArrayGetElement(array.Get(), outside, &value), DISP_E_BADINDEX);
}

TEST(SafeArrays, RefuseWhatCannotBeAllocated) {
  EXPECT_THROW((void)com::MakeArray(std::size_t{1} << 33, VT_R8), com::ArrayAllocationError);
}

TEST(SafeArrays, OwnTheirStrings) {
  com::SafeArray array(SafeArrayCreateVector(VT_BSTR, 1, 2));
  LONG index = 2;
  EXPECT_EQ(SafeArrayPutElement(array.Get(), &index, com::ToBstr("kept").Get()), S_OK);
  EXPECT_EQ(SafeArrayPutElement(array.Get(), &index, com::ToBstr("kept instead").Get()), S_OK);
  com::Bstr text;
  EXPECT_EQ(SafeArrayGetElement(array.Get(), &index, text.Put()), S_OK);
  EXPECT_EQ(com::ToUtf8(text.Get()), "kept instead");
}

com::Variant Matrix() {
  SAFEARRAYBOUND bounds[] = {{1, 0}, {1, 0}};
  VARIANT variant = Plain(VT_ARRAY | VT_R8);
  variant.parray = SafeArrayCreate(VT_R8, 2, bounds);
  return com::Variant(variant);
}

TEST(Values, AreReadFromEveryFormOfArray) {
  com::Variant shorts = com::MakeArray(2, VT_I2);
  static_cast<SHORT*>(shorts.Get().parray->pvData)[1] = -4;
  EXPECT_EQ(com::ReadDoubles(shorts.Get()), (std::vector<double>{0, -4}));
  com::Variant fromThree = com::MakeDoubles(std::array{1.0, 2.0});
  fromThree.Get().parray->rgsabound[0].lLbound = 3;
  EXPECT_EQ(com::ReadDoubles(fromThree.Get()), (std::vector<double>{1, 2}));
  VARIANT none = Plain(VT_ARRAY | VT_R8);
  EXPECT_EQ(com::ReadDoubles(none), std::vector<double>{}) << "an array that is null";
}

TEST(Values, SayWhyTheyCannotBeRead) {
  const std::pair<com::Variant, const char*> cases[] = {
      {com::Variant(), "an array of numbers expected, nothing found"},
      {com::MakeDouble(1), "an array of numbers expected, a number found"},
      {com::MakeString("x"), "an array of numbers expected, a text found"},
      {com::MakeStrings(std::vector<std::string>{"x"}), "element 1: a number expected, a text found"},
      {Matrix(), "an array of numbers expected, an array of 2 dimensions found"},
  };
  for (const auto& [value, why] : cases) {
    try {
      (void)com::ReadDoubles(value.Get());
      ADD_FAILURE() << "was read instead of: " << why;
    } catch (const com::ValueError& error) {
      EXPECT_STREQ(error.what(), why);
    }
  }
  VARIANT circle = Plain(VT_VARIANT | VT_BYREF);
  circle.pvarVal = &circle;
  EXPECT_THROW((void)com::ReadDouble(circle), com::ValueError);
  VARIANT dangling = Plain(VT_VARIANT | VT_BYREF);
  EXPECT_THROW((void)com::ReadDoubles(dangling), com::ValueError);
  com::Variant disguised = com::MakeDoubles(std::array{1.0});
  const_cast<VARIANT&>(disguised.Get()).vt = VT_ARRAY | VT_BSTR;
  EXPECT_THROW((void)com::ReadStrings(disguised.Get()), com::ValueError);
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW((void)com::ReadInteger(com::MakeDouble(kNone).Get()), com::ValueError);
}

TEST(Streams, GrowInMemory) {
  com::Ref<IStream> stream;
  ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()), S_OK);
  ULONG count = 0;
  EXPECT_EQ(stream->Write("morvelan", 8, &count), S_OK);
  EXPECT_EQ(count, 8u);
  LARGE_INTEGER move;
  move.QuadPart = 3;
  EXPECT_EQ(stream->Seek(move, STREAM_SEEK_SET, nullptr), S_OK);
  char text[9] = {};
  EXPECT_TRUE(SUCCEEDED(stream->Read(text, 8, &count)));
  EXPECT_EQ(count, 5u) << "a short read at the end";
  EXPECT_STREQ(text, "velan");
  com::Ref<IStream> clone;
  EXPECT_EQ(stream->Clone(clone.Put()), S_OK);
  move.QuadPart = -9;
  EXPECT_NE(clone->Seek(move, STREAM_SEEK_END, nullptr), S_OK);
}

}  // namespace morvelan::test::automation
