#include "framework/UnitStorage.h"

#include <string>

namespace morvelan {
namespace {

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
  throw LoadFailure("invalid header: unit operation may have been written by newer MORVELAN version", "invalid header");
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

void WriteParameters(UnitWriter& writer, const DeclaredParameters::ParameterList& parameters) {
  writer.WriteBytes(kHeaders[0].text, kHeaderLength);
  writer.Write(static_cast<std::int32_t>(parameters.size()));
  for (const auto& parameter : parameters) parameter->Record().Write(writer);
}

void WriteReports(UnitWriter& writer, const Reports& reports) {
  writer.Write(static_cast<std::int32_t>(reports.Named().size()));
  for (const Reports::Report& report : reports.Named()) {
    writer.WriteTerminatedText(report.name);
    writer.WriteTerminatedText(report.text);
  }
}

SavedUnit ReadSavedUnit(UnitReader& reader, UnitSlots& unit, const DeclaredParameters::ParameterList& parameters,
                        std::span<const char* const> reportNames) {
  SavedUnit saved;
  const int version = ReadVersion(reader);
  const std::size_t count = reader.ReadCount();
  for (std::size_t i = 0; i < count; ++i) {
    ParameterRecord record = ParameterRecord::Read(reader);
    if (i >= parameters.size()) {
      saved.further.push_back(com::Make<CParameter>(std::move(record), &unit));
      continue;
    }
    if (record.value.index() != parameters[i]->Value().index())
      throw LoadFailure("invalid parameter type", "invalid parameter type");
    saved.records.push_back(std::move(record));
  }
  saved.takeOverUnitData = unit.LoadUnit(reader, version, saved.records);
  if (version < kFirstVersionWithReports) return saved;
  saved.namedReports = ReadReports(reader);
  // The unit writes its own reports, which the stream may lack.
  for (std::size_t i = saved.namedReports->size(); i < reportNames.size(); ++i)
    saved.namedReports->push_back({reportNames[i], Reports::kNotAvailable});
  return saved;
}

}  // namespace morvelan
