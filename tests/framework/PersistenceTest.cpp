// Units in streams of the host: the layout, byte by byte, and what becomes of a unit when a stream fails.

#include "tests/support/Persistence.h"

#include <gtest/gtest.h>

#include <new>

#include "tests/support/FakeHost.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/StreamEncoder.h"
#include "tests/support/TestUnit.h"

namespace morvelan::test::persistence {

constexpr double kMost = 1.7976931348623157e308;
constexpr CLSID kClass = {0x12345678, 0x9abc, 0xdef0, {1, 2, 3, 4, 5, 6, 7, 8}};

const Texts kReadError = {"read error", "read error", "Load", "IPersistStream"};
const Texts kWriteError = {"Write error", "Write error", "Save", "IPersistStream"};
const Texts kTypeError = {"invalid parameter type", "invalid parameter type", "Load", "IPersistStream"};
const Texts kHeaderError = {"invalid header: unit operation may have been written by newer MORVELAN version",
                            "invalid header", "Load", "IPersistStream"};

enum Position : std::size_t { kVersion, kDrop, kCount, kSubstance, kSerial, kFactors };

const std::vector<double> kHalves = {0.5, 0.25};
const ParameterDeclaration kParameters[] = {
    kThermoVersionParameter,
    {.name = "Druckabfall \u00d6",
     .description = "\u0394p",
     .mode = CAPE_OUTPUT,
     .defaultValue = 5.5,
     .lowerBound = 0,
     .upperBound = 1e10,
     .dimensionality = kPressureDropDimension},
    {.name = "Count", .description = "n", .defaultValue = std::int32_t{3}, .lowerBound = 2},
    {.name = "\u6c34",
     .description = "",
     .mode = CAPE_INPUT_OUTPUT,
     .defaultValue = "Vapor",
     .restrictedToList = false},
    {.name = "Serial", .description = "s", .defaultValue = false},
    {.name = "Factors", .description = "f", .defaultValue = kHalves, .lowerBound = 0, .upperBound = 1},
};
constexpr const char* kReports[] = {"Last run", "Gr\u00f6\u00dfen"};
const TestDeclaration kUnit = {
    .name = "U", .description = "", .ports = kOneInOneOut, .parameters = kParameters, .reports = kReports};

using Records = std::vector<std::string>;

/// What `Filled` has put into its parameters.
Records FilledRecords(int flags = 0) {
  const std::array<float, 9> none{};
  const std::array<float, 9> drop{-1, 1, -2, 0, 0, 0, 0, 0, 1};
  Encoder version, real, integer, option, boolean, array;
  version.Head(u"Thermo Version", u"Thermodynamics CAPE-OPEN Interface version", 0, flags, none, 2);
  version.Text(u"1.1").Text(u"1.0").Int(1).Int(2).Text(u"1.0").Text(u"1.1");
  real.Head(u"Druckabfall \u00d6", u"\u0394p", 1, flags, drop, 0).Real(-7.25).Real(5.5).Real(0).Real(1e10);
  integer.Head(u"Count", u"n", 0, flags, none, 1).Int(-4).Int(3).Int(2).Int(0x7fffffff);
  option.Head(u"\u6c34", u"", 2, flags, none, 2).Text(u"\U0001f600").Text(u"Vapor").Int(0).Int(0);
  boolean.Head(u"Serial", u"s", 0, flags, none, 3).Bits(0xffff, 2).Bits(0, 2);
  array.Head(u"Factors", u"f", 0, flags, none, 4).Int(3).Real(0.125).Real(1).Real(-kMost);
  array.Real(0.5).Real(0).Real(1);
  return {version.bytes, real.bytes, integer.bytes, option.bytes, boolean.bytes, array.bytes};
}

/// The record of a report.
std::string Report(const char16_t* name, const char16_t* text) {
  return Encoder().Text(name).Bits(0, 2).Text(text).Bits(0, text[0] ? 2 : 0).bytes;
}

/// The two named reports of `Filled`.
std::string FilledReports() {
  return Encoder().Int(2).bytes + Report(u"Last run", u"\u00d6\r\n") + Report(u"Gr\u00f6\u00dfen", u"");
}

std::string StreamOf(const Records& records, const std::string& rest = FilledReports(),
                     const std::string& header = "MORVELAN0007") {
  Encoder stream(header);
  stream.Int(static_cast<std::int32_t>(records.size()));
  for (const std::string& record : records) stream.bytes += record;
  return stream.bytes + rest;
}

com::Ref<TestUnit> Fresh(bool initialized = true) {
  auto unit = com::Make<TestUnit>(kUnit);
  if (initialized) EXPECT_EQ(unit->Initialize(), S_OK);
  return unit;
}

com::Ref<TestUnit> Filled() {
  auto unit = Fresh();
  const ParameterValue values[] = {"1.1",        -7.25, std::int32_t{-4},
                                   "\U0001f600", true,  std::vector<double>{0.125, 1, -kMost}};
  for (std::size_t i = 0; i < std::size(values); ++i) unit->Parameter(i).Put(values[i]);
  unit->SetReportText(1, "\u00d6\r\n");
  unit->SetReportText(2, "");
  return unit;
}

IPersistStream* Door(const com::Ref<TestUnit>& unit) { return unit.Get(); }
UnitDoor HostDoor(const com::Ref<TestUnit>& unit) { return UnitDoor(com::Query<IUnknown>(Door(unit))); }
std::string SelectedReport(const UnitDoor& door) {
  return TextFrom(door.reports.Get(), &ICapeUnitReport::get_selectedReport);
}

TEST(Persistence, SavesTheDocumentedLayout) {
  for (const bool empty : {false, true}) {
    const TestDeclaration bare = {.name = "B", .description = "", .ports = {}, .parameters = {}};
    const auto unit = empty ? com::Make<TestUnit>(bare) : Filled();
    const std::string expected = empty ? StreamOf({}, Encoder().Int(0).bytes) : StreamOf(FilledRecords());
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), expected));
    ULARGE_INTEGER size{};
    EXPECT_EQ(unit->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, expected.size());
  }
}

template <class Interface>
void ExpectPersists(const com::Ref<TestUnit>& unit) {
  const auto door = com::Query<Interface>(Door(unit));
  ASSERT_TRUE(door);
  CLSID clsid{};
  EXPECT_EQ(door->GetClassID(&clsid), S_OK);
  EXPECT_TRUE(clsid == kClass);
  EXPECT_EQ(door->GetClassID(nullptr), E_POINTER);
  if constexpr (!std::is_same_v<Interface, IPersist>) {
    EXPECT_TRUE(SameBytes(SavedBytes(door.Get()), StreamOf(FilledRecords())));
    EXPECT_EQ(door->Load(nullptr), E_POINTER);
    EXPECT_EQ(door->Save(nullptr, TRUE), E_POINTER);
    EXPECT_EQ(door->GetSizeMax(nullptr), E_POINTER);
    EXPECT_EQ(door->IsDirty(), S_OK) << "a save without a stream is none";
  }
}

TEST(Persistence, AnswersToEveryInterfaceOfPersistence) {
  const auto unit = Filled();
  unit->SetClassId(kClass);
  ExpectPersists<IPersist>(unit);
  ExpectPersists<IPersistStream>(unit);
  ExpectPersists<IPersistStreamInit>(unit);
  EXPECT_EQ(unit->InitNew(), S_OK);
}

TEST(Persistence, TellsWhetherItIsDirty) {
  const auto unit = Fresh();
  const auto put = [&] { unit->Parameter(kSerial).Put(true); };
  EXPECT_EQ(unit->IsDirty(), S_FALSE);
  put();
  EXPECT_EQ(unit->IsDirty(), S_OK);
  const std::string bytes = SavedBytes(unit.Get(), FALSE);
  EXPECT_EQ(unit->IsDirty(), S_OK);
  (void)SavedBytes(unit.Get(), TRUE);
  EXPECT_EQ(unit->IsDirty(), S_FALSE);
  put();
  EXPECT_EQ(LoadBytes(unit.Get(), bytes.substr(1)), kFailed);
  EXPECT_EQ(unit->IsDirty(), S_OK) << "nothing was loaded";
  EXPECT_EQ(LoadBytes(unit.Get(), bytes), S_OK);
  EXPECT_EQ(unit->IsDirty(), S_FALSE);
  EXPECT_EQ(unit->Parameter(kSerial).Reset(), S_OK);
  EXPECT_EQ(unit->IsDirty(), S_OK);
}

TEST(Persistence, RestoresWhatItSaved) {
  const std::string expected = DescriptionOf(HostDoor(Filled()));
  for (const bool initialized : {false, true}) {
    SCOPED_TRACE(testing::Message() << "initialized: " << initialized);
    const auto unit = Fresh(initialized);
    // What follows belongs to the host, or to the next component in the same file.
    const auto stream = com::Make<FakeIStream>(StreamOf(FilledRecords(0x12345678)) + "rest");
    EXPECT_EQ(unit->Load(stream.Get()), S_OK) << ErrorOf(Door(unit));
    EXPECT_EQ(stream->position + 4, stream->bytes.size());
    EXPECT_EQ(unit->Initialize(), S_OK);
    EXPECT_EQ(DescriptionOf(HostDoor(unit)), expected);
    EXPECT_TRUE(unit->UsesThermo11());
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()) + "rest", stream->bytes));
  }
}

TEST(Persistence, KeepsTheObjectsThatTheHostHolds) {
  const auto unit = Fresh();
  const UnitDoor door = HostDoor(unit);
  const auto parameter = door.Parameter("Count");
  EXPECT_EQ(parameter->put_value(com::MakeInteger(5).Get()), S_OK);
  std::string message;
  (void)door.IsValid(message);
  const std::string status = door.Report("Status");
  EXPECT_EQ(door.reports->put_selectedReport(com::ToBstr("Gr\u00f6\u00dfen").Get()), S_OK);
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(FilledRecords(), "")), kFailed);
  EXPECT_EQ(SelectedReport(door), "Gr\u00f6\u00dfen") << "a refused stream changes nothing";
  EXPECT_EQ(door.Report("Status"), status);
  EXPECT_EQ(door.reports->put_selectedReport(com::ToBstr("Gr\u00f6\u00dfen").Get()), S_OK);
  const int changes = unit->inputChanges;
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(FilledRecords())), S_OK);
  EXPECT_GT(unit->inputChanges, changes) << "the unit follows its parameters";
  com::Variant value;
  EXPECT_EQ(parameter->get_value(value.Put()), S_OK);
  EXPECT_EQ(com::ReadInteger(value.Get()), -4);
  EXPECT_EQ(parameter.Get(), door.Parameter("Count").Get());
  EXPECT_EQ(door.Status(), CAPE_NOT_VALIDATED);
  EXPECT_EQ(SelectedReport(door), "Gr\u00f6\u00dfen");
}

TEST(Persistence, KeepsTheReportsThatTheUnitWrites) {
  const auto unit = Fresh();
  const UnitDoor door = HostDoor(unit);
  const std::string three = Encoder().Int(3).bytes + Report(u"a", u"") + Report(u"b", u"") + Report(u"c", u"");
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf({}, three)), S_OK);
  EXPECT_EQ(door.reports->put_selectedReport(com::ToBstr("c").Get()), S_OK);
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf({}, Encoder().Int(1).bytes + Report(u"a", u""))), S_OK);
  EXPECT_EQ(SelectedReport(door), "Status") << "the selected report went";
  EXPECT_EQ(door.Report("Gr\u00f6\u00dfen"), "Report is not available") << "what the stream lacks";
  unit->SetReportText(2, "written");
  EXPECT_EQ(door.Report("Gr\u00f6\u00dfen"), "written");
}

// A unit knows its choices by their positions.
TEST(Persistence, KeepsTheChoicesOfAnOption) {
  Records records = FilledRecords();
  Encoder version;
  version.Head(u"Thermo Version", u"", 0, 0, {}, 2).Text(u"1.1").Text(u"1.0").Int(0).Int(2).Text(u"1.1").Text(u"1.0");
  records[kVersion] = version.bytes;
  const auto unit = Fresh();
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(records)), S_OK);
  EXPECT_EQ(unit->Parameter(kVersion).OptionIndex(), 1u);
  EXPECT_EQ(unit->Parameter(kVersion).CheckCurrentValue(), "");
  unit->Parameter(kVersion).SetResult("2.0");
  EXPECT_EQ(unit->Parameter(kVersion).CheckCurrentValue(), "invalid choice");
}

TEST(Persistence, PrefersTheSavedThermoVersionToTheHosts) {
  for (const bool contextFirst : {false, true}) {
    SCOPED_TRACE(contextFirst);
    const auto unit = Fresh(false);
    const auto context = com::Make<FakeContext>(std::make_shared<HostScript>());
    context->namedValues["DefaultThermoVersion"] = com::MakeString("1.0");
    const auto give = [&] { return unit->put_simulationContext(static_cast<ICapeIdentification*>(context.Get())); };
    if (contextFirst) EXPECT_EQ(give(), S_OK);
    EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(FilledRecords())), S_OK);
    if (!contextFirst) EXPECT_EQ(give(), S_OK);
    EXPECT_EQ(unit->Initialize(), S_OK);
    EXPECT_EQ(HostDoor(unit).ParameterText("Thermo Version"), "1.1");
    EXPECT_TRUE(unit->UsesThermo11());
  }
}

TEST(Persistence, ReadsOlderHeaders) {
  // A version of 0 is refused.
  const std::pair<const char*, int> cases[] = {{"MORVELAN0007", 7}, {"MORVELAN0006", 0}, {"MORVELAN0005", 6},
                                               {"MORVELAN0004", 5}, {"MORVELAN0003", 4}, {"MORVELAN0002", 3},
                                               {"MORVELAN0001", 2}, {"SIMPLEUNITOP", 1}, {"MORVELAN0008", 0},
                                               {"MORVELAN0000", 0}, {"morvelan0007", 0}, {"simpleunitop", 0}};
  const char16_t* none = u"Report is not available";
  const std::string ownReports = Encoder().Int(2).bytes + Report(u"Last run", none) + Report(u"Gr\u00f6\u00dfen", none);
  for (const auto& [header, version] : cases) {
    SCOPED_TRACE(header);
    const auto unit = Fresh();
    const std::string own = SavedBytes(unit.Get());
    const bool hasReports = version == 0 || version >= 4;
    const auto stream = com::Make<FakeIStream>(StreamOf(FilledRecords(), hasReports ? FilledReports() : "", header));
    EXPECT_EQ(unit->Load(stream.Get()), version ? S_OK : kFailed);
    if (version == 0) {
      EXPECT_EQ(ErrorOf(Door(unit)), kHeaderError);
      EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), own));
      continue;
    }
    EXPECT_EQ(unit->loadedVersion, version);
    EXPECT_EQ(stream->position, stream->bytes.size());
    EXPECT_TRUE(
        SameBytes(SavedBytes(unit.Get()), StreamOf(FilledRecords(), hasReports ? FilledReports() : ownReports)));
  }
}

TEST(Persistence, LeavesParametersAloneThatTheStreamLacks) {
  const auto unit = Fresh();
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf({FilledRecords()[kVersion]})), S_OK);
  const auto expected = Fresh();
  expected->Parameter(kVersion).Put("1.1");
  expected->SetReportText(1, "\u00d6\r\n");
  expected->SetReportText(2, "");
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), SavedBytes(expected.Get())));
}

TEST(Persistence, AppendsParametersThatTheUnitLacks) {
  Records records = FilledRecords();
  for (const std::string& record : FilledRecords(7)) records.push_back(record);
  for (const bool initialized : {false, true}) {
    const auto unit = Fresh(initialized);
    EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(records)), S_OK) << ErrorOf(Door(unit));
    EXPECT_EQ(unit->Initialize(), S_OK);
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), StreamOf(records)));
    EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(records)), S_OK) << "none is appended anew";
    EXPECT_EQ(ItemsOf<ICapeParameter>(HostDoor(unit).Parameters()).size(), records.size());
    EXPECT_EQ(unit->IsDirty(), S_FALSE);
    EXPECT_EQ(unit->Parameter(11).Reset(), S_OK);
    EXPECT_EQ(unit->IsDirty(), S_OK) << "the unit hears of its new parameters";
  }
}

TEST(Persistence, RefusesParametersOfOtherKinds) {
  const auto unit = Fresh();
  const std::string before = SavedBytes(unit.Get());
  const Records good = FilledRecords();
  for (std::size_t at = 0; at < good.size(); ++at)
    for (std::size_t from = 0; from < good.size(); ++from) {
      SCOPED_TRACE(testing::Message() << "record " << from << " at " << at);
      Records records = good;
      records[at] = good[from];
      const auto isOption = [](std::size_t record) { return record == kVersion || record == kSubstance; };
      if (at == from || (isOption(at) && isOption(from))) continue;
      EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(records)), kFailed);
      EXPECT_EQ(ErrorOf(Door(unit)), kTypeError);
      EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), before));
    }
  for (const int kind : {-1, 5, 0x7fffffff}) {
    Records records = good;
    records.push_back(Encoder().Head(u"", u"", 0, 0, {}, kind).bytes);
    EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(records)), kFailed);
    EXPECT_EQ(ErrorOf(Door(unit)), kTypeError) << kind;
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), before));
  }
}

TEST(Persistence, LoadsWholeOrNotAtAll) {
  ExpectLoadsWholeOrNotAtAll({[] { return com::Query<IPersistStream>(Door(Fresh())); }, StreamOf(FilledRecords())});
}

TEST(Persistence, StaysNewWhenItsFirstStreamIsRefused) {
  const auto unit = Fresh(false);
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(FilledRecords(), "")), kFailed);
  EXPECT_EQ(ErrorOf(Door(unit)), kReadError);
  EXPECT_EQ(unit->Initialize(), S_OK);
  EXPECT_EQ(DescriptionOf(HostDoor(unit)), DescriptionOf(HostDoor(Fresh())));
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), SavedBytes(Fresh().Get())));
}

void ExpectError(const com::Ref<TestUnit>& unit, HRESULT hr, const Texts& texts) {
  EXPECT_EQ(hr, kFailed);
  EXPECT_EQ(ErrorOf(Door(unit)), texts);
  LONG code = 0;
  EXPECT_EQ(unit->get_code(&code), S_OK);
  EXPECT_EQ(code, kFailed);
}

/// Loads from a stream or saves to it with a fault at each of its calls.
template <class Try>
void WalkFaults(const com::Ref<FakeIStream>& whole, bool reads, Try attempt) {
  for (const StreamFault fault :
       {StreamFault::kFails, StreamFault::kDoesLess, StreamFault::kDoesNone, StreamFault::kClaimsMore})
    for (int k = 1; k <= whole->calls; ++k) {
      SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(fault) << " at call " << k);
      const auto stream = com::Make<FakeIStream>(reads ? whole->bytes : "");
      stream->failAt = k;
      stream->fault = fault;
      attempt(*stream.Get(), k);
      EXPECT_EQ(stream->References(), 1u);
    }
}

TEST(Persistence, ExplainsEveryFailingReadAndRecovers) {
  const auto whole = com::Make<FakeIStream>(StreamOf(FilledRecords()));
  EXPECT_EQ(Fresh()->Load(whole.Get()), S_OK);
  ASSERT_GT(whole->calls, 50);
  WalkFaults(whole, true, [&](FakeIStream& stream, int) {
    const auto unit = Fresh();
    const std::string before = SavedBytes(unit.Get());
    ExpectError(unit, unit->Load(&stream), kReadError);
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), before));
    EXPECT_EQ(LoadBytes(unit.Get(), whole->bytes), S_OK);
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), whole->bytes));
  });
}

TEST(Persistence, ExplainsEveryFailingWriteAndRecovers) {
  const auto unit = Filled();
  unit->SetReportText(2, std::string(150000, 'x'));
  const auto whole = com::Make<FakeIStream>();
  EXPECT_EQ(unit->Save(whole.Get(), FALSE), S_OK);
  ASSERT_GT(whole->calls, 1);
  WalkFaults(whole, false, [&](FakeIStream& stream, int k) {
    unit->Parameter(kSerial).Put(true);
    ExpectError(unit, unit->Save(&stream, TRUE), kWriteError);
    EXPECT_EQ(unit->IsDirty(), k == 1 ? S_OK : S_FALSE) << "the parameters are the first that is saved";
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), whole->bytes));
  });
}

TEST(Persistence, KeepsTheUnitsOwnData) {
  const std::string data = Encoder().Int(42).Text(u"own").bytes;
  const std::string stream = StreamOf(FilledRecords(), data + FilledReports());
  const auto unit = Filled();
  unit->onSave = [](UnitWriter& writer) {
    writer.Write(std::int32_t{42});
    writer.WriteText("own");
    return S_OK;
  };
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), stream));
  ULARGE_INTEGER size{};
  EXPECT_EQ(unit->GetSizeMax(&size), S_OK);
  EXPECT_EQ(size.QuadPart, stream.size());
  int taken = 0;
  unit->onLoad = [&](UnitReader& reader) -> std::function<void()> {
    const auto number = reader.Read<std::int32_t>();
    EXPECT_EQ(reader.ReadText(), "own");
    return [&, number] { taken = number; };
  };
  EXPECT_EQ(LoadBytes(unit.Get(), stream.substr(0, stream.size() - 1)), kFailed);
  EXPECT_EQ(taken, 0) << "the reports were cut";
  EXPECT_EQ(LoadBytes(unit.Get(), stream), S_OK);
  EXPECT_EQ(taken, 42);
}

TEST(Persistence, PassesOnWhatTheUnitSaysOfItsData) {
  const auto unit = Filled();
  for (const HRESULT outcome : {S_FALSE, E_ACCESSDENIED}) {
    unit->onSave = [&](UnitWriter&) { return outcome; };
    EXPECT_EQ(unit->Save(com::Make<FakeIStream>().Get(), TRUE), outcome);
    EXPECT_EQ(unit->IsDirty(), S_OK);
  }
  unit->onSave = nullptr;
  const std::string before = SavedBytes(unit.Get());
  const std::string other = StreamOf(FilledRecords(3));
  unit->onLoad = [](UnitReader&) -> std::function<void()> {
    throw Failure("empty parameter name", "Load", "IPersistStream");
  };
  ExpectError(unit, LoadBytes(unit.Get(), other),
              {"empty parameter name", "empty parameter name", "Load", "IPersistStream"});
  unit->onLoad = [](UnitReader&) -> std::function<void()> { throw std::bad_alloc(); };
  EXPECT_EQ(LoadBytes(unit.Get(), other), static_cast<HRESULT>(0x8007000Eu));
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), before));
}

/// A host's context that does something as its last reference goes.
class LastWish final : public com::Implements<FakeObject, ICapeSimulationContext> {
 public:
  explicit LastWish(std::function<void()> action)
      : Implements(std::make_shared<HostScript>(), "context"), wish(std::move(action)) {}
  ~LastWish() override { wish(); }

 private:
  std::function<void()> wish;
};

TEST(Persistence, SavesAndLoadsDuringAndAfterTerminate) {
  const auto unit = Filled();
  std::string during;
  {
    const auto context = com::Make<LastWish>([&] { during = SavedBytes(unit.Get()); });
    EXPECT_EQ(unit->put_simulationContext(static_cast<ICapeIdentification*>(context.Get())), S_OK);
  }
  EXPECT_EQ(unit->Terminate(), S_OK);
  EXPECT_EQ(during, StreamOf(FilledRecords()));
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), StreamOf(FilledRecords())));
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(FilledRecords(5))), S_OK);
  EXPECT_EQ(unit->Initialize(), S_OK);
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), StreamOf(FilledRecords(5))));
}

TEST(Persistence, RefusesAHostThatInterferesWithALoadOrASave) {
  const std::string bytes = StreamOf(FilledRecords());
  const auto unit = Filled();
  const auto refuse = [&](const char* what, auto&& interfere) {
    const std::string text = std::string("The unit can't be ") + what;
    EXPECT_EQ(interfere(), kFailed) << text;
    EXPECT_EQ(ErrorOf(Door(unit)).description, text);
  };
  unit->SetReportText(2, std::string(150000, 'x'));
  const auto target = com::Make<FakeIStream>();
  target->onCall = [&] {
    refuse("changed while it is saved", [&] { return LoadBytes(unit.Get(), bytes); });
    refuse("calculated while it is being saved", [&] { return unit->Calculate(); });
  };
  EXPECT_EQ(unit->Save(target.Get(), FALSE), S_OK);
  EXPECT_GT(target->calls, 2);
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), target->bytes));
  const auto source = com::Make<FakeIStream>(bytes);
  source->onCall = [&] {
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), target->bytes)) << "nothing is loaded yet";
    refuse("changed while it is loaded", [&] { return LoadBytes(unit.Get(), bytes); });
    refuse("calculated while it is being loaded", [&] { return unit->Calculate(); });
  };
  EXPECT_EQ(unit->Load(source.Get()), S_OK);
  EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), bytes));
}

TEST(Persistence, StaysConnectedAndRefusesToLoadWhileCalculated) {
  const auto unit = Fresh();
  const auto material = com::Make<FakeMaterial>(std::make_shared<HostScript>());
  IDispatch* stream = static_cast<ICapeIdentification*>(material.Get());
  for (CUnitPort* port : {&unit->Inlet(0), &unit->Outlet(0)}) EXPECT_EQ(port->Connect(stream), S_OK);
  const std::string before = SavedBytes(unit.Get());
  HRESULT inner = S_OK;
  unit->onCalculate = [&](std::optional<com::Name>&) {
    inner = LoadBytes(unit.Get(), StreamOf(FilledRecords()));
    EXPECT_TRUE(SameBytes(SavedBytes(unit.Get()), before));
    const std::string text = "The unit can't be changed while it is calculated";
    EXPECT_EQ(ErrorOf(Door(unit)), (Texts{text, text, "Load", "IPersistStream"}));
  };
  EXPECT_EQ(unit->Calculate(), S_OK) << ErrorOf(Door(unit));
  EXPECT_EQ(inner, kFailed);
  EXPECT_EQ(LoadBytes(unit.Get(), StreamOf(FilledRecords())), S_OK);
  EXPECT_TRUE(unit->Inlet(0).IsConnected());
  EXPECT_TRUE(unit->Outlet(0).IsConnected());
  EXPECT_EQ(HostDoor(unit).Status(), CAPE_NOT_VALIDATED);
  EXPECT_EQ(unit->Terminate(), S_OK);
  EXPECT_EQ(material->References(), 1u);
}

}  // namespace morvelan::test::persistence
