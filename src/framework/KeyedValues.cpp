#include "framework/KeyedValues.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "errors/Failure.h"

namespace morvelan {
namespace {

constexpr std::int32_t kNewestVersion = 1;

enum Kind : std::int32_t { kText, kFlag, kTexts, kNumbers };

/// An empty list is written as one of texts.
Kind KindOf(const Json& value) {
  if (value.is_string()) return kText;
  if (value.is_boolean()) return kFlag;
  return !value.empty() && !value.front().is_string() ? kNumbers : kTexts;
}

void WriteKeyedValue(UnitWriter& writer, const Json& value) {
  const Kind kind = KindOf(value);
  writer.Write(std::int32_t{kind});
  if (kind == kText) return writer.WriteText(value.get<std::string>());
  if (kind == kFlag) return writer.Write(std::int32_t{value.get<bool>()});
  writer.Write(static_cast<std::int32_t>(value.size()));
  for (const Json& element : value)
    kind == kTexts ? writer.WriteText(element.get<std::string>()) : writer.Write(element.get<double>());
}

Json ReadKeyedValue(UnitReader& reader) {
  const auto kind = reader.Read<std::int32_t>();
  if (kind == kText) return reader.ReadText();
  if (kind == kFlag) return reader.Read<std::int32_t>() != 0;
  if (kind != kTexts && kind != kNumbers) throw Failure("parse error");
  Json elements = Json::array();
  for (std::size_t left = reader.ReadCount(); left > 0; --left)
    if (kind == kTexts)
      elements.push_back(reader.ReadText());
    else
      elements.push_back(reader.Read<double>());
  return elements;
}

}  // namespace

void WriteKeyedValues(UnitWriter& writer, const Json& values) {
  writer.Write(kNewestVersion);
  writer.Write(static_cast<std::int32_t>(values.size()));
  for (const auto& entry : values.items()) {
    writer.WriteText(entry.key());
    WriteKeyedValue(writer, entry.value());
  }
}

Json ReadKeyedValues(UnitReader& reader, const Json& known) {
  if (reader.Read<std::int32_t>() > kNewestVersion)
    throw Failure("Unit was saved with a newer version than available on this system");
  Json values = Json::object();
  for (std::size_t left = reader.ReadCount(); left > 0; --left) {
    const std::string key = reader.ReadText();
    if (key.empty()) throw Failure("empty parameter name");
    if (!known.contains(key)) throw Failure("unknown parameter '" + key + "'");
    if (values.contains(key)) throw Failure("duplicate parameter '" + key + "'");
    Json value = ReadKeyedValue(reader);
    if (value.type() != known[key].type()) throw Failure("parse error");
    values[key] = std::move(value);
  }
  return values;
}

}  // namespace morvelan
