#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/Door.h"
#include "tests/support/FakeIStream.h"
#include "tests/support/Heap.h"
#include "tests/support/LongTests.h"

namespace morvelan::test {

/// The bytes that a unit saves.
template <class Unit>
std::string SavedBytes(Unit* unit, BOOL clearDirty = FALSE) {
  const auto stream = com::Make<FakeIStream>();
  EXPECT_EQ(unit->Save(stream.Get(), clearDirty), S_OK);
  return stream->bytes;
}

template <class Unit>
HRESULT LoadBytes(Unit* unit, std::string bytes) {
  return unit->Load(com::Make<FakeIStream>(std::move(bytes)).Get());
}

inline testing::AssertionResult SameBytes(const std::string& found, const std::string& expected) {
  if (found == expected) return testing::AssertionSuccess();
  const auto same = std::ranges::mismatch(found, expected).in1 - found.begin();
  return testing::AssertionFailure() << found.size() << " bytes found, " << expected.size() << " expected, the first "
                                     << same << " are the same";
}

/// Units that meet damaged streams, and a good stream for them that holds something else.
struct DamageBench {
  DamageBench(std::function<com::Ref<IPersistStream>()> maker, std::string good)
      : undamaged(std::move(good)), unit(maker()), other(maker()), before(SavedBytes(unit.Get())) {}

  /// Loads a damaged stream. When it is refused, the unit saves the same bytes as before. When it is taken,
  /// because it is another good stream, a unit that loads what the first one saves then saves the same.
  void Try(const std::string& damaged, bool mayBeTaken) {
    const auto stream = com::Make<FakeIStream>(damaged);
    const HRESULT hr = unit->Load(stream.Get());
    EXPECT_EQ(stream->References(), 1u);
    EXPECT_TRUE(FAILED(hr) || mayBeTaken);
    if (FAILED(hr)) return CheckRefusal(hr);
    const std::string taken = SavedBytes(unit.Get());
    EXPECT_EQ(LoadBytes(other.Get(), taken), S_OK) << ErrorOf(other.Get());
    EXPECT_TRUE(SameBytes(SavedBytes(other.Get()), taken));
    EXPECT_EQ(LoadBytes(unit.Get(), before), S_OK);
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), before)) << "what was saved does not bring it back";
  }

  void CheckRefusal(HRESULT hr) {
    static constexpr const char* kReasons[] = {
        "read error", "invalid header", "invalid parameter type",
        // of a unit's own data
        "failed to load: read error", "parse error", "empty parameter name", "unknown parameter '",
        "duplicate parameter '", "Unit was saved with a newer version than available on this system",
        "Name cannot be empty", "Invalid character in variable name", "Input variables must be different",
        "There can be no more than", "array size mismatch", "empty strings", "\"HeatDutySpecification\" of",
        "\"EnthalpyType\" of"};
    const Texts error = ErrorOf(unit.Get());
    EXPECT_EQ(hr, kFailed);
    EXPECT_TRUE(std::ranges::any_of(kReasons, [&](const char* reason) {
      return error.description.starts_with(reason);
    })) << error;
    EXPECT_EQ(error.scope + " " + error.interfaceName, "Load IPersistStream");
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), before));
  }

  /// Loads a stream with a huge number somewhere, which may be a length: little memory is taken.
  void TryHuge(const std::string& damaged) {
    constexpr std::size_t kMuch = 1 << 18;  // [bytes]; a stream of these tests has some 1000
    const auto stream = com::Make<FakeIStream>(damaged);
    std::size_t most = 0;
    // What a reader set aside for a text or a list is still there when the stream ends.
    stream->onEnd = [&] { most = std::max(most, HeapInUse()); };
    const std::size_t heap = HeapInUse();
    (void)unit->Load(stream.Get());
    EXPECT_LT(std::max(most, HeapInUse()), heap + kMuch);
    EXPECT_EQ(LoadBytes(unit.Get(), before), S_OK);
  }

  std::string undamaged;
  com::Ref<IPersistStream> unit;
  com::Ref<IPersistStream> other;
  std::string before;
};

/// Cuts the stream at every byte, and overwrites 32 bits at every place, of which some are lengths, counts and kinds.
/// With `briefly` these become too large only, and unless long tests are wanted every fifth place is tried.
inline void ExpectLoadsWholeOrNotAtAll(DamageBench bench, bool briefly = false) {
  const std::size_t stride = briefly ? ShortOrLong<std::size_t>(5, 1) : 1;
  for (std::size_t length = 0; length < bench.undamaged.size(); length += stride) {
    SCOPED_TRACE(testing::Message() << "cut to " << length << " bytes");
    bench.Try(bench.undamaged.substr(0, length), false);
  }
  constexpr std::uint32_t kHuge = 0x7fffffff;
  for (std::size_t at = 0; at + sizeof(std::uint32_t) <= bench.undamaged.size(); at += stride) {
    std::uint32_t was;
    std::memcpy(&was, bench.undamaged.data() + at, sizeof was);
    for (const std::uint32_t field : {kHuge, 0xffffffffu, 0x40000000u, was + 1, was - 1}) {
      SCOPED_TRACE(testing::Message() << "byte " << at << " and on is " << field << " instead of " << was);
      std::string damaged = bench.undamaged;
      std::memcpy(damaged.data() + at, &field, sizeof field);
      bench.Try(damaged, true);
      if (field == kHuge) bench.TryHuge(damaged);
      if (briefly) break;
    }
  }
}

inline std::string ValueText(const VARIANT& value) {
  if (value.vt == VT_BSTR) return '"' + com::ReadString(value) + '"';
  if (value.vt == VT_BOOL) return com::ReadBoolean(value) ? "true" : "false";
  if (!(value.vt & VT_ARRAY)) {
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, com::ReadDouble(value)).ptr};
  }
  std::string joined = "[";
  for (const com::Variant& element : com::ReadVariants(value))
    joined += (joined.size() > 1 ? ", " : "") + ValueText(element.Get());
  return joined + "]";
}

inline std::string ParameterText(const com::Ref<ICapeParameter>& parameter) {
  CapeParamMode mode = CAPE_INPUT;
  com::Variant value;
  EXPECT_EQ(parameter->get_Mode(&mode), S_OK);
  const bool hasValue = SUCCEEDED(parameter->get_value(value.Put()));
  constexpr const char* kModes[] = {"input", "output", "input and output"};
  return TextFrom(parameter.Get(), &ICapeIdentification::get_ComponentName) + " (" + kModes[mode] +
         ") = " + (hasValue ? ValueText(value.Get()) : "<" + ErrorOf(parameter.Get()).description + ">");
}

/// A collection's items as an interface.
template <class Interface>
std::vector<com::Ref<Interface>> ItemsOf(const com::Ref<ICapeCollection>& collection) {
  LONG count = 0;
  EXPECT_EQ(collection->Count(&count), S_OK);
  std::vector<com::Ref<Interface>> items;
  for (LONG i = 1; i <= count; ++i) {
    com::Ref<IDispatch> item;
    EXPECT_EQ(collection->Item(com::MakeInteger(static_cast<std::int32_t>(i)).Get(), item.Put()), S_OK);
    items.push_back(item.As<Interface>());
  }
  return items;
}

/// A line for each port, parameter and report of an initialized unit.
inline std::string DescriptionOf(const UnitDoor& door) {
  std::string text;
  for (const auto& port : ItemsOf<ICapeUnitPort>(door.Ports())) {
    CapePortDirection direction = CAPE_INLET_OUTLET;
    EXPECT_EQ(port->get_direction(&direction), S_OK);
    text += "port " + TextFrom(port.Get(), &ICapeIdentification::get_ComponentName) +
            (direction == CAPE_INLET ? ", inlet" : ", outlet") + "\n";
  }
  for (const auto& parameter : ItemsOf<ICapeParameter>(door.Parameters())) text += ParameterText(parameter) + "\n";
  com::Bstr selected;
  EXPECT_EQ(door.reports->get_selectedReport(selected.Put()), S_OK);
  com::Variant reports;
  EXPECT_EQ(door.reports->get_reports(reports.Put()), S_OK);
  for (const std::string& name : com::ReadStrings(reports.Get()))
    text += "report " + name + ": " + door.Report(name) + "\n";
  EXPECT_EQ(door.reports->put_selectedReport(selected.Get()), S_OK);
  return text;
}

}  // namespace morvelan::test
