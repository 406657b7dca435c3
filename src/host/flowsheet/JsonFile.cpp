#include "host/flowsheet/JsonFile.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <set>

namespace morvelan::host {
namespace {

constexpr std::size_t kDeepestNesting = 64;

std::string ChildPath(const std::string& parent, const std::string& key) {
  return parent.empty() ? key : parent + '/' + key;
}

std::string ItemPath(const std::string& parent, std::size_t index) {
  return parent + '[' + std::to_string(index) + ']';
}

/// The line of the character that was read last. The parser reads one character beyond a number, so that a
/// line end counts only with the character after it.
struct LineCounter {
  std::size_t line = 1;
  bool atLineEnd = false;

  void Read(char c) {
    if (atLineEnd) ++line;
    atLineEnd = c == '\n';
  }
};

/// Walks over the text and counts lines.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* start, LineCounter& lineCounter) : position(start), counter(&lineCounter) {}

  reference operator*() const { return *position; }
  CountingIterator& operator++() {
    counter->Read(*position++);
    return *this;
  }
  CountingIterator operator++(int) {
    CountingIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const CountingIterator& a, const CountingIterator& b) { return a.position == b.position; }
  friend bool operator!=(const CountingIterator& a, const CountingIterator& b) { return !(a == b); }

 private:
  const char* position;
  LineCounter* counter;
};

/// Follows the parser through the file: keeps the line of every value and refuses keys given twice.
class Tracker {
 public:
  Tracker(std::string fileName, const LineCounter& lineCounter, std::map<std::string, std::size_t>& found)
      : file(std::move(fileName)), counter(lineCounter), lines(found) {}

  void Follow(Json::parse_event_t event, const Json& parsed) {
    using Event = Json::parse_event_t;
    switch (event) {
      case Event::object_start:
      case Event::array_start:
        return Open(event == Event::array_start);
      case Event::key:
        return Key(parsed.get_ref<const std::string&>());
      case Event::value:
        lines.emplace(ValuePath(), counter.line);
        return NextItem();
      case Event::object_end:
      case Event::array_end:
        levels.pop_back();
        return NextItem();
    }
  }

 private:
  struct Level {
    bool isArray;
    std::string path;
    std::set<std::string> keys = {};
    std::string key = {};
    std::size_t index = 0;
  };

  void Open(bool isArray) {
    const std::string path = ValuePath();
    lines.emplace(path, counter.line);
    levels.push_back({isArray, path});
    if (levels.size() > kDeepestNesting)
      throw FlowsheetError({file, counter.line, {}},
                           "more than " + std::to_string(kDeepestNesting) + " objects and arrays are nested");
  }

  void Key(const std::string& key) {
    Level& level = levels.back();
    level.key = key;
    if (!level.keys.insert(key).second)
      throw FlowsheetError({file, counter.line, ValuePath()}, "the key is given twice");
    lines.emplace(ValuePath(), counter.line);
  }

  void NextItem() {
    if (!levels.empty()) ++levels.back().index;
  }

  [[nodiscard]] std::string ValuePath() const {
    if (levels.empty()) return {};
    const Level& level = levels.back();
    return level.isArray ? ItemPath(level.path, level.index) : ChildPath(level.path, level.key);
  }

  std::string file;
  const LineCounter& counter;
  std::map<std::string, std::size_t>& lines;
  std::vector<Level> levels;
};

std::string ReadText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream || std::filesystem::is_directory(file))
    throw FlowsheetError({file.string(), 0, {}}, "the file cannot be read");
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The parser's message without its own name and position.
std::string ReasonOf(const nlohmann::json::exception& error) {
  std::string text = error.what();
  if (const auto end = text.find("] "); end != std::string::npos) text.erase(0, end + 2);
  if (text.rfind("parse error", 0) == 0)
    if (const auto colon = text.find(": "); colon != std::string::npos) text.erase(0, colon + 2);
  return text;
}

[[noreturn]] void FailSyntax(const std::string& file, const std::string& text, std::size_t byte,
                             const std::string& reason) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(byte > 0 ? byte - 1 : 0, text.size()));
  const auto line = static_cast<std::size_t>(std::count(text.begin(), end, '\n')) + 1;
  const auto lineStart = std::find(std::make_reverse_iterator(end), text.rend(), '\n').base();
  const auto column = std::distance(lineStart, end) + 1;
  throw FlowsheetError({file + ':' + std::to_string(line), static_cast<std::size_t>(column), {}}, reason);
}

}  // namespace

JsonFile::JsonFile(const std::filesystem::path& file) : path(file) {
  const std::string text = ReadText(file);
  LineCounter counter;
  Tracker tracker(file.string(), counter, lines);
  const auto follow = [&](int, Json::parse_event_t event, Json& parsed) {
    tracker.Follow(event, parsed);
    return true;
  };
  try {
    root = Json::parse(CountingIterator(text.data(), counter), CountingIterator(text.data() + text.size(), counter),
                       follow);
  } catch (const nlohmann::json::parse_error& error) {
    FailSyntax(file.string(), text, error.byte, ReasonOf(error));
  } catch (const nlohmann::json::exception& error) {
    throw FlowsheetError({file.string(), counter.line, {}}, ReasonOf(error));
  }
}

Place JsonFile::PlaceOf(const std::string& jsonPath) const {
  const auto line = lines.find(jsonPath);
  return {path.string(), line == lines.end() ? 0 : line->second, jsonPath};
}

void JsonNode::Fail(const std::string& what) const { throw FlowsheetError(Where(), what); }

void JsonNode::Expected(const char* what) const {
  Fail(std::string(what) + " is expected, " + Shown(*value) + " found");
}

void JsonNode::AllowKeys(std::initializer_list<const char*> keys) const {
  for (const auto& [key, member] : Members()) {
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) continue;
    std::string allowed;
    for (const char* name : keys) allowed += (allowed.empty() ? "" : ", ") + std::string(name);
    member.Fail("the key is unknown; allowed here are " + allowed);
  }
}

std::optional<JsonNode> JsonNode::Find(const char* key) const {
  if (!value->is_object()) Expected("an object");
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
  if (!value->is_object()) Expected("an object");
  std::vector<std::pair<std::string, JsonNode>> members;
  for (const auto& [key, child] : value->items())
    members.emplace_back(key, JsonNode(*this, child, ChildPath(path, key)));
  return members;
}

std::vector<JsonNode> JsonNode::Items() const {
  if (!value->is_array()) Expected("an array");
  std::vector<JsonNode> items;
  for (std::size_t i = 0; i < value->size(); ++i) items.push_back({*this, (*value)[i], ItemPath(path, i)});
  return items;
}

double JsonNode::Number() const {
  if (!value->is_number()) Expected("a number");
  return value->get<double>();
}

double JsonNode::Positive() const {
  if (!(Number() > 0)) Fail("must be above 0, " + Shown(*value) + " found");
  return Number();
}

double JsonNode::NotNegative() const {
  if (!(Number() >= 0)) Fail("must not be negative, " + Shown(*value) + " found");
  return Number();
}

bool JsonNode::Boolean() const {
  if (!value->is_boolean()) Expected("true or false");
  return value->get<bool>();
}

std::string JsonNode::Text() const {
  if (!value->is_string()) Expected("a text");
  return value->get<std::string>();
}

std::string JsonNode::OneOf(std::initializer_list<const char*> texts) const {
  std::string text = Text();
  if (std::find(texts.begin(), texts.end(), text) != texts.end()) return text;
  std::string allowed;
  for (const char* name : texts) allowed += (allowed.empty() ? "\"" : ", \"") + std::string(name) + '"';
  Fail(Shown(*value) + " is unknown; allowed are " + allowed);
}

std::string Shown(const Json& value) {
  if (value.is_object()) return "an object";
  if (value.is_array()) return "an array";
  return value.dump();
}

}  // namespace morvelan::host
