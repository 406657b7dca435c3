#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "host/file/Place.h"

namespace morvelan::host {

using Json = nlohmann::ordered_json;

/// A parsed file that finds the line of each of its values.
class JsonFile {
 public:
  /// Throws FileError for a file that cannot be read, with line and column for wrong syntax, and for an object in which
  /// a key stands twice.
  explicit JsonFile(const std::filesystem::path& file);
  /// The same for the content of a file; `file` is its name in messages.
  JsonFile(std::string file, std::string content);

  [[nodiscard]] const Json& Root() const { return root; }
  [[nodiscard]] Place PlaceOf(const std::string& path) const;

 private:
  std::size_t Parse(const std::string* wanted, Json& parsed) const;

  std::string name;
  std::string text;
  Json root;
};

}  // namespace morvelan::host
