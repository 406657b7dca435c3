#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/file/JsonFile.h"

namespace morvelan::host {

/// A value in a JSON file and its place. Reading throws FileError with the place, with what was read and with what is
/// allowed.
class JsonNode {
 public:
  /// The outermost value of a file.
  explicit JsonNode(std::shared_ptr<const JsonFile> source) : file(std::move(source)), value(&file->Root()) {}

  [[nodiscard]] const Json& Value() const { return *value; }
  [[nodiscard]] Place Where() const { return file->PlaceOf(path); }
  [[noreturn]] void Fail(const std::string& what) const;

  /// Checks that this is an object with no other keys than these.
  void AllowKeys(const std::vector<std::string>& keys) const;
  /// A member of this object; fails when it is missing.
  [[nodiscard]] JsonNode At(const char* key) const;
  [[nodiscard]] std::optional<JsonNode> Find(const char* key) const;
  /// The members of this object in the file's order.
  [[nodiscard]] std::vector<std::pair<std::string, JsonNode>> Members() const;
  /// The elements of this array.
  [[nodiscard]] std::vector<JsonNode> Items() const;

  [[nodiscard]] double Number() const;
  [[nodiscard]] double Positive() const;
  [[nodiscard]] double NotNegative() const;
  [[nodiscard]] bool Boolean() const;
  [[nodiscard]] std::string Text() const;
  /// A text that is one of these, exactly.
  [[nodiscard]] std::string OneOf(const std::vector<std::string>& texts) const;

 private:
  JsonNode(const JsonNode& parent, const Json& child, std::string childPath)
      : file(parent.file), value(&child), path(std::move(childPath)) {}
  void Expect(bool isKind, const char* kind) const;

  std::shared_ptr<const JsonFile> file;
  const Json* value;
  std::string path;
};

/// A value as messages name it: the text of a number or string, else the kind of value.
[[nodiscard]] std::string Describe(const Json& value);

}  // namespace morvelan::host
