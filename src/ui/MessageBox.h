#pragma once

namespace morvelan::ui {

enum class Icon { kInformation, kExclamation, kStop };

/// True where windows can be shown.
[[nodiscard]] bool HasWindows();

/// Shows a text until the user has seen it: a message box, or a line on standard error where no window can be
/// shown. Needs no memory, so that running out of it can be told.
void ShowMessageBox(const char* text, const char* title, Icon icon) noexcept;

}  // namespace morvelan::ui
