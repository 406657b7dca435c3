#pragma once

#include <string>

namespace morvelan::ui {

enum class Icon { kInformation, kExclamation, kStop };

/// True where windows can be shown.
[[nodiscard]] bool HasWindows();

/// Shows a text until the user has seen it: a message box, or lines on standard error where no window can be
/// shown.
void ShowMessageBox(const std::string& text, const std::string& title, Icon icon) noexcept;

}  // namespace morvelan::ui
