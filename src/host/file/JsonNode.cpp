#include "host/file/JsonNode.h"

#include <algorithm>

#include "host/file/Nearest.h"

namespace morvelan::host {

void JsonNode::Fail(const std::string& what) const { throw FileError(Where(), what); }

void JsonNode::Expect(bool isKind, const char* kind) const {
  if (!isKind) Fail(std::string(kind) + " is expected, " + Describe(*value) + " found");
}

void JsonNode::AllowKeys(const std::vector<std::string>& keys) const {
  for (const auto& [key, member] : Members())
    if (std::ranges::find(keys, key) == keys.end()) member.Fail("the key is unknown; allowed here are " + Joined(keys));
}

std::optional<JsonNode> JsonNode::Find(const char* key) const {
  Expect(value->is_object(), "an object");
  const auto member = value->find(key);
  if (member == value->end()) return std::nullopt;
  return JsonNode(*this, *member, ChildPath(path, key));
}

JsonNode JsonNode::At(const char* key) const {
  auto member = Find(key);
  if (!member) Fail(std::string("the key \"") + key + "\" is missing");
  return *member;
}

std::vector<std::pair<std::string, JsonNode>> JsonNode::Members() const {
  Expect(value->is_object(), "an object");
  std::vector<std::pair<std::string, JsonNode>> members;
  for (const auto& [key, child] : value->items())
    members.emplace_back(key, JsonNode(*this, child, ChildPath(path, key)));
  return members;
}

std::vector<JsonNode> JsonNode::Items() const {
  Expect(value->is_array(), "an array");
  std::vector<JsonNode> items;
  for (std::size_t i = 0; i < value->size(); ++i) items.push_back({*this, (*value)[i], ChildPath(path, i)});
  return items;
}

double JsonNode::Number() const {
  Expect(value->is_number(), "a number");
  return value->get<double>();
}

double JsonNode::Positive() const {
  if (!(Number() > 0)) Fail("must be above 0, " + Describe(*value) + " found");
  return Number();
}

double JsonNode::NotNegative() const {
  if (!(Number() >= 0)) Fail("must not be negative, " + Describe(*value) + " found");
  return Number();
}

bool JsonNode::Boolean() const {
  Expect(value->is_boolean(), "true or false");
  return value->get<bool>();
}

std::string JsonNode::Text() const {
  Expect(value->is_string(), "a text");
  return value->get<std::string>();
}

std::string JsonNode::OneOf(const std::vector<std::string>& texts) const {
  std::string text = Text();
  if (std::ranges::find(texts, text) == texts.end())
    Fail(Describe(*value) + " is unknown; allowed are " + Listed(texts));
  return text;
}

std::string Describe(const Json& value) {
  if (value.is_object()) return "an object";
  if (value.is_array()) return "an array";
  return value.dump();
}

}  // namespace morvelan::host
