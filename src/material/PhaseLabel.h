#pragma once

#include <string>
#include <utility>

#include "com/HostText.h"

namespace morvelan {

/// The label of a phase. Comparisons ignore the case of the letters A to Z.
class PhaseLabel {
 public:
  PhaseLabel() = default;
  explicit PhaseLabel(std::string text) : label(std::move(text)) {}

  [[nodiscard]] const std::string& Text() const { return label.Text(); }
  [[nodiscard]] com::Name HostName() const { return label.AsName(); }
  [[nodiscard]] bool IsOverall() const { return Is("Overall"); }
  [[nodiscard]] bool Is(const std::string& text) const { return com::EqualNoCase(Text(), text); }
  friend bool operator==(const PhaseLabel& a, const PhaseLabel& b) { return a.Is(b.Text()); }

 private:
  com::HostText label;
};

}  // namespace morvelan
