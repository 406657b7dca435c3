#include "framework/ParameterRecord.h"

#include <algorithm>
#include <limits>

#include "com/Values.h"
#include "errors/Failure.h"

namespace morvelan {
namespace {

void WriteKind(UnitWriter& writer, const ParameterRecord& record, double value) {
  writer.Write(value);
  writer.Write(std::get<double>(record.defaultValue));
  writer.Write(record.lowerBound);
  writer.Write(record.upperBound);
}

/// A bound as an integer; the open ends are the integers' own.
std::int32_t IntegerBound(double bound) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp(bound, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

void WriteKind(UnitWriter& writer, const ParameterRecord& record, std::int32_t value) {
  writer.Write(value);
  writer.Write(std::get<std::int32_t>(record.defaultValue));
  writer.Write(IntegerBound(record.lowerBound));
  writer.Write(IntegerBound(record.upperBound));
}

void WriteKind(UnitWriter& writer, const ParameterRecord& record, const std::string& value) {
  writer.WriteText(value);
  writer.WriteText(std::get<std::string>(record.defaultValue));
  writer.Write(static_cast<std::int32_t>(record.restrictedToList));
  writer.Write(static_cast<std::int32_t>(record.options.size()));
  for (const std::string& option : record.options) writer.WriteText(option);
}

void WriteKind(UnitWriter& writer, const ParameterRecord& record, bool value) {
  writer.Write(com::ToVariantBool(value));
  writer.Write(com::ToVariantBool(std::get<bool>(record.defaultValue)));
}

void WriteKind(UnitWriter& writer, const ParameterRecord& record, const std::vector<double>& value) {
  writer.Write(static_cast<std::int32_t>(value.size()));
  for (const double element : value) writer.Write(element);
  writer.Write(std::get<double>(record.defaultValue));
  writer.Write(record.lowerBound);
  writer.Write(record.upperBound);
}

template <class Number>
void ReadBounds(UnitReader& reader, ParameterRecord& record) {
  record.defaultValue = reader.Read<Number>();
  record.lowerBound = reader.Read<Number>();
  record.upperBound = reader.Read<Number>();
}

void ReadOption(UnitReader& reader, ParameterRecord& record) {
  record.value = reader.ReadText();
  record.defaultValue = reader.ReadText();
  record.restrictedToList = reader.Read<std::int32_t>() != 0;
  for (std::size_t left = reader.ReadCount(); left > 0; --left) record.options.push_back(reader.ReadText());
}

void ReadArray(UnitReader& reader, ParameterRecord& record) {
  std::vector<double> elements;
  for (std::size_t left = reader.ReadCount(); left > 0; --left) elements.push_back(reader.Read<double>());
  record.value = std::move(elements);
  ReadBounds<double>(reader, record);
}

void ReadKind(UnitReader& reader, ParameterRecord& record, std::int32_t kind) {
  switch (kind) {
    case CAPE_REAL:
      record.value = reader.Read<double>();
      return ReadBounds<double>(reader, record);
    case CAPE_INT:
      record.value = reader.Read<std::int32_t>();
      return ReadBounds<std::int32_t>(reader, record);
    case CAPE_OPTION:
      return ReadOption(reader, record);
    case CAPE_BOOLEAN:
      record.value = reader.Read<VARIANT_BOOL>() != VARIANT_FALSE;
      record.defaultValue = reader.Read<VARIANT_BOOL>() != VARIANT_FALSE;
      return;
    case CAPE_ARRAY:
      return ReadArray(reader, record);
    default:
      throw Failure("invalid parameter type", "Load", "IPersistStream");
  }
}

CapeParamMode ModeFrom(std::int32_t mode) {
  if (mode != CAPE_INPUT && mode != CAPE_OUTPUT && mode != CAPE_INPUT_OUTPUT)
    throw Failure("read error", "Load", "IPersistStream");
  return static_cast<CapeParamMode>(mode);
}

}  // namespace

void ParameterRecord::Write(UnitWriter& writer) const {
  writer.WriteText(name);
  writer.WriteText(description);
  writer.Write(static_cast<std::int32_t>(mode));
  writer.Write(flagWord);
  for (const float exponent : dimensionality) writer.Write(exponent);
  writer.Write(static_cast<std::int32_t>(value.index()));
  std::visit([&](const auto& held) { WriteKind(writer, *this, held); }, value);
}

ParameterRecord ParameterRecord::Read(UnitReader& reader) {
  ParameterRecord record;
  record.name = reader.ReadText();
  record.description = reader.ReadText();
  record.mode = ModeFrom(reader.Read<std::int32_t>());
  record.flagWord = reader.Read<std::int32_t>();
  for (float& exponent : record.dimensionality) exponent = reader.Read<float>();
  ReadKind(reader, record, reader.Read<std::int32_t>());
  return record;
}

}  // namespace morvelan
