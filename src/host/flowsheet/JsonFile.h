#pragma once

#include <filesystem>
#include <initializer_list>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/flowsheet/Place.h"

namespace morvelan::host {

using Json = nlohmann::ordered_json;

/// A parsed file that knows on which line each of its values stands.
class JsonFile {
 public:
  /// Throws FlowsheetError for a file that cannot be read, with line and column for bad syntax, and for an
  /// object with two keys alike.
  explicit JsonFile(const std::filesystem::path& file);

  [[nodiscard]] const Json& Root() const { return root; }
  [[nodiscard]] const std::filesystem::path& Path() const { return path; }
  [[nodiscard]] Place PlaceOf(const std::string& jsonPath) const;

 private:
  std::filesystem::path path;
  Json root;
  std::map<std::string, std::size_t> lines;
};

/// A value in a JSON file and its place. Reading throws FlowsheetError with the place, with what was read and
/// with what is allowed.
class JsonNode {
 public:
  explicit JsonNode(std::shared_ptr<const JsonFile> source) : file(std::move(source)), value(&file->Root()) {}

  [[nodiscard]] const Json& Value() const { return *value; }
  [[nodiscard]] Place Where() const { return file->PlaceOf(path); }
  [[noreturn]] void Fail(const std::string& what) const;

  /// Checks that this is an object with no other keys than these.
  void AllowKeys(std::initializer_list<const char*> keys) const;
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
  [[nodiscard]] std::string OneOf(std::initializer_list<const char*> texts) const;

 private:
  JsonNode(const JsonNode& parent, const Json& child, std::string childPath)
      : file(parent.file), value(&child), path(std::move(childPath)) {}
  [[noreturn]] void Expected(const char* what) const;

  std::shared_ptr<const JsonFile> file;
  const Json* value;
  std::string path;
};

/// A value as messages show it: the text of a number or string, else the kind of value.
[[nodiscard]] std::string Shown(const Json& value);

}  // namespace morvelan::host
