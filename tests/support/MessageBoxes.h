#pragma once

#include <functional>
#include <string>

namespace morvelan::test {

/// Runs `body` and acknowledges every message box that it shows; gives a line "<title> <text>" for each.
[[nodiscard]] std::string MessageBoxesOf(const std::function<void()>& body);

}  // namespace morvelan::test
