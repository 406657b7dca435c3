#include "host/file/JsonFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ranges>
#include <set>
#include <vector>

namespace morvelan::host {
namespace {

constexpr std::size_t kDeepestNesting = 64;

/// The line of the character that was read last. The parser reads one character beyond a number, so that a line end
/// counts only with the character after it.
struct LineCounter {
  std::size_t line = 1;
  bool atLineEnd = false;

  char Read(char c) {
    if (atLineEnd) ++line;
    atLineEnd = c == '\n';
    return c;
  }
};

/// Follows the parser through the file. Knows the path of the present value and refuses keys that are given twice.
class ParserFollower {
 public:
  /// `wanted` is the path of a value whose line is looked for, or null.
  ParserFollower(std::string fileName, const LineCounter& lineCounter, const std::string* wanted)
      : file(std::move(fileName)), counter(lineCounter), wantedPath(wanted) {}

  /// The line of the wanted value; 0 when it was not met.
  [[nodiscard]] std::size_t LineOfWanted() const { return wantedLine; }

  void Follow(Json::parse_event_t event, const Json& parsed) {
    using Event = Json::parse_event_t;
    switch (event) {
      case Event::object_start:
      case Event::array_start:
        return Open(event == Event::array_start);
      case Event::key:
        return Key(parsed.get_ref<const std::string&>());
      case Event::value:
        Meet();
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
    std::set<std::string> keys = {};
    std::string key = {};
    std::size_t index = 0;
  };

  void Open(bool isArray) {
    Meet();
    levels.push_back({isArray});
    if (levels.size() > kDeepestNesting)
      throw FileError({file, counter.line},
                      "more than " + std::to_string(kDeepestNesting) + " objects and arrays are nested");
  }

  void Key(const std::string& key) {
    Level& level = levels.back();
    level.key = key;
    if (!level.keys.insert(key).second) throw FileError({file, counter.line, Path()}, "the key is given twice");
    Meet();
  }

  void NextItem() {
    if (!levels.empty()) ++levels.back().index;
  }

  /// A member's key counts as its place, also when the value stands on the next line.
  void Meet() {
    if (wantedPath && wantedLine == 0 && Path() == *wantedPath) wantedLine = counter.line;
  }

  [[nodiscard]] std::string Path() const {
    std::string path;
    for (const Level& level : levels) path = level.isArray ? ChildPath(path, level.index) : ChildPath(path, level.key);
    return path;
  }

  std::string file;
  const LineCounter& counter;
  const std::string* wantedPath;
  std::size_t wantedLine = 0;
  std::vector<Level> levels;
};

std::string ReadText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream || std::filesystem::is_directory(file)) throw FileError({file.string()}, "the file cannot be read");
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The parser's message without its own name and position.
std::string ReasonOf(const nlohmann::json::exception& error) {
  std::string text = error.what();
  if (const auto end = text.find("] "); end != std::string::npos) text.erase(0, end + 2);
  if (text.starts_with("parse error"))
    if (const auto colon = text.find(": "); colon != std::string::npos) text.erase(0, colon + 2);
  return text;
}

[[noreturn]] void FailSyntax(const std::string& file, const std::string& text, std::size_t byte,
                             const std::string& reason) {
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(byte > 0 ? byte - 1 : 0, text.size()));
  const auto line = std::count(text.begin(), end, '\n') + 1;
  const auto lineStart = std::find(std::make_reverse_iterator(end), text.rend(), '\n').base();
  const auto column = static_cast<std::size_t>(std::distance(lineStart, end) + 1);
  throw FileError({file + ':' + std::to_string(line), column}, reason);
}

}  // namespace

JsonFile::JsonFile(const std::filesystem::path& file) : JsonFile(file.string(), ReadText(file)) {}

JsonFile::JsonFile(std::string file, std::string content) : name(std::move(file)), text(std::move(content)) {
  (void)Parse(nullptr, root);
}

/// Returns the line of the value at the path `wanted`; 0 when there is none.
std::size_t JsonFile::Parse(const std::string* wanted, Json& parsed) const {
  LineCounter counter;
  ParserFollower follower(name, counter, wanted);
  const auto follow = [&](int, Json::parse_event_t event, Json& value) {
    follower.Follow(event, value);
    return true;
  };
  const auto characters = text | std::views::transform([&](char c) { return counter.Read(c); });
  try {
    parsed = Json::parse(characters.begin(), characters.end(), follow);
  } catch (const nlohmann::json::parse_error& error) {
    FailSyntax(name, text, error.byte, ReasonOf(error));
  } catch (const nlohmann::json::exception& error) {
    throw FileError({name, counter.line}, ReasonOf(error));
  }
  return follower.LineOfWanted();
}

Place JsonFile::PlaceOf(const std::string& path) const {
  Json again;  // lines are rarely needed, so that they are not kept
  return {name, Parse(&path, again), path};
}

}  // namespace morvelan::host
