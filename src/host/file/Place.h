#pragma once

#include <stdexcept>
#include <string>

namespace morvelan::host {

/// A place in a JSON file: the path is that of the value, such as "units/E-101/ports/Inlet" or "thermo/compounds[1]".
struct Place {
  std::string file;
  std::size_t line = 0;  // from 1; 0 when it is not known
  std::string path = {};

  /// "file:12: units/E-101/ports/Inlet", without the parts that are not known.
  [[nodiscard]] std::string Text() const {
    std::string text = file;
    if (line > 0) text += ':' + std::to_string(line);
    if (!path.empty()) text += ": " + path;
    return text;
  }
};

/// The path of a member of an object.
[[nodiscard]] inline std::string ChildPath(const std::string& parent, const std::string& key) {
  return parent.empty() ? key : parent + '/' + key;
}

/// The path of an element of an array.
[[nodiscard]] inline std::string ChildPath(const std::string& parent, std::size_t index) {
  return parent + '[' + std::to_string(index) + ']';
}

/// Something is wrong in a file that the user wrote.
class FileError : public std::runtime_error {
 public:
  FileError(const Place& place, const std::string& what) : std::runtime_error(place.Text() + ": " + what) {}
};

}  // namespace morvelan::host
