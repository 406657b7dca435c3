// A unit's life in a stream of the host: saved with its parameters and reports, loaded whole or not at all.

#include <string>

#include "framework/BaseUnit.h"

namespace morvelan {
namespace {

constexpr std::string_view kInterface = "IPersistStream";
constexpr HRESULT kOutOfMemory = static_cast<HRESULT>(0x8007000Eu);

struct Header {
  const char* text;
  int version;
};

/// The first is written; the others are those of older files. A header's number and its version differ below
/// 7, and there has never been a header 0006.
constexpr Header kHeaders[] = {
    {"MORVELAN0007", 7}, {"MORVELAN0005", 6}, {"MORVELAN0004", 5}, {"MORVELAN0003", 4},
    {"MORVELAN0002", 3}, {"MORVELAN0001", 2}, {"SIMPLEUNITOP", 1},
};
constexpr std::size_t kHeaderLength = 12;
constexpr int kFirstVersionWithReports = 4;

int ReadVersion(UnitReader& reader) {
  std::string header(kHeaderLength, '\0');
  reader.ReadBytes(header.data(), header.size());
  for (const Header& known : kHeaders)
    if (header == known.text) return known.version;
  throw Failure(UnitError{"invalid header: unit operation may have been written by newer MORVELAN version",
                          "invalid header", "Load", kInterface});
}

std::vector<Reports::Report> ReadReports(UnitReader& reader) {
  std::vector<Reports::Report> reports;
  for (std::size_t left = reader.ReadCount(); left > 0; --left) {
    std::string name = reader.ReadTerminatedText();
    reports.push_back({std::move(name), reader.ReadTerminatedText()});
  }
  return reports;
}

}  // namespace

void* BaseUnit::FindInterface(REFIID iid) {
  if (iid == __uuidof(IPersist)) return static_cast<IPersistStream*>(this);
  return Implements::FindInterface(iid);
}

HRESULT BaseUnit::GetClassID(CLSID* clsid) {
  if (!clsid) return E_POINTER;
  *clsid = classId;
  return S_OK;
}

HRESULT BaseUnit::IsDirty() { return dirty ? S_OK : S_FALSE; }

HRESULT BaseUnit::InitNew() { return S_OK; }

HRESULT BaseUnit::GetSizeMax(ULARGE_INTEGER* size) {
  if (!size) return E_POINTER;
  size->QuadPart = 0;
  return Guard("GetSizeMax", kInterface, [&] {
    EnsureCreated();
    UnitWriter counter(nullptr);
    WriteParameters(counter);
    SaveUnit(counter);
    WriteReports(counter);
    size->QuadPart = counter.Count();
  });
}

HRESULT BaseUnit::Save(IStream* stream, BOOL clearDirty) {
  if (!stream) return E_POINTER;
  HRESULT outcome = S_OK;
  const HRESULT hr = Guard("Save", kInterface, [&] {
    EnsureCreated();
    const auto target = com::Ref<IStream>::Share(stream);
    const Activity busy(*this, "saved");
    UnitWriter writer(stream);
    WriteParameters(writer);
    writer.Flush();
    outcome = SaveUnit(writer);
    if (outcome != S_OK) return;
    writer.Flush();  // a unit whose data can't be written stays dirty
    if (clearDirty) dirty = false;
    WriteReports(writer);
    writer.Flush();
  });
  return FAILED(hr) ? hr : outcome;
}

void BaseUnit::WriteParameters(UnitWriter& writer) const {
  writer.WriteBytes(kHeaders[0].text, kHeaderLength);
  writer.Write(static_cast<std::int32_t>(parameters.size()));
  for (const auto& parameter : parameters) parameter->Record().Write(writer);
}

void BaseUnit::WriteReports(UnitWriter& writer) const {
  writer.Write(static_cast<std::int32_t>(reports.Named().size()));
  for (const Reports::Report& report : reports.Named()) {
    writer.WriteTerminatedText(report.name);
    writer.WriteTerminatedText(report.text);
  }
}

std::function<void()> BaseUnit::LoadUnit(UnitReader& reader, int, const std::vector<ParameterRecord>& records) {
  if (!declare.IsDeclared()) return {};
  return [this, loaded = declare.ReadSettings(reader, records)]() mutable {
    for (auto& [parameter, text] : loaded.options) parameter->SetResult(std::move(text));
    CommitSettings(loaded.staged, SettingsFrom::kStream);
  };
}

struct BaseUnit::Saved {
  std::vector<ParameterRecord> records;                      // for the unit's own parameters
  std::vector<com::Ref<CParameter>> further;                 // beyond them
  std::function<void()> takeOverUnitData;                    // may be empty
  std::optional<std::vector<Reports::Report>> namedReports;  // absent from old streams
};

HRESULT BaseUnit::Load(IStream* stream) {
  if (!stream) return E_POINTER;
  bool outOfMemory = false;
  const HRESULT hr = Guard("Load", kInterface, [&] {
    RequireIdle();
    const Activity busy(*this, "loaded");
    const auto source = com::Ref<IStream>::Share(stream);
    UnitReader reader(*stream);
    try {
      EnsureCreated();
      TakeOver(ReadSaved(reader));
    } catch (const std::bad_alloc&) {
      outOfMemory = true;
      throw;
    }
  });
  return outOfMemory ? kOutOfMemory : hr;
}

BaseUnit::Saved BaseUnit::ReadSaved(UnitReader& reader) {
  Saved saved;
  const int version = ReadVersion(reader);
  const std::size_t count = reader.ReadCount();
  for (std::size_t i = 0; i < count; ++i) {
    ParameterRecord record = ParameterRecord::Read(reader);
    if (i >= parameters.size()) {
      saved.further.push_back(com::Make<CParameter>(std::move(record), this));
      continue;
    }
    if (record.value.index() != parameters[i]->Value().index())
      throw Failure("invalid parameter type", "Load", kInterface);
    saved.records.push_back(std::move(record));
  }
  saved.takeOverUnitData = LoadUnit(reader, version, saved.records);
  if (version >= kFirstVersionWithReports) {
    saved.namedReports = ReadReports(reader);
    // The unit writes its own reports, which the stream may lack.
    for (std::size_t i = saved.namedReports->size(); i < declaration.reports.size(); ++i)
      saved.namedReports->push_back({declaration.reports[i], Reports::kNotAvailable});
  }
  parameters.reserve(parameters.size() + saved.further.size());
  return saved;
}

void BaseUnit::TakeOver(Saved saved) {
  std::vector<ParameterRecord> former;
  for (std::size_t i = 0; i < saved.records.size(); ++i) former.push_back(parameters[i]->Record());
  for (std::size_t i = 0; i < saved.records.size(); ++i) parameters[i]->Restore(std::move(saved.records[i]));
  try {
    if (saved.takeOverUnitData) saved.takeOverUnitData();
  } catch (...) {  // of memory that ran out
    for (std::size_t i = 0; i < former.size(); ++i) parameters[i]->Restore(std::move(former[i]));
    throw;
  }
  parameters.insert(parameters.end(), saved.further.begin(), saved.further.end());
  thermo.Forget();
  if (saved.namedReports) reports.Replace(std::move(*saved.namedReports));
  Invalidate();
  dirty = false;
  NotifyInputs();
}

}  // namespace morvelan
