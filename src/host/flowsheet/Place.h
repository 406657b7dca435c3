#pragma once

#include <stdexcept>
#include <string>

namespace morvelan::host {

/// A place in a flowsheet file: the path is that of the JSON value, such as "units/E-101/ports/Inlet".
struct Place {
  std::string file;
  std::size_t line = 0;  // from 1; 0 when not known
  std::string path;

  /// "file:12: units/E-101/ports/Inlet", without the parts that are not known.
  [[nodiscard]] std::string Text() const {
    std::string text = file;
    if (line > 0) text += ':' + std::to_string(line);
    if (!path.empty()) text += ": " + path;
    return text;
  }
};

/// Something is wrong in a flowsheet file.
class FlowsheetError : public std::runtime_error {
 public:
  FlowsheetError(const Place& place, const std::string& what) : std::runtime_error(place.Text() + ": " + what) {}
};

}  // namespace morvelan::host
