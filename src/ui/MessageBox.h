#pragma once

namespace morvelan::ui {

enum class Icon { kInformation, kExclamation, kStop };

/// True where windows can be shown.
[[nodiscard]] bool HasWindows();

/// For hosts whose active window may be hidden: from now on a message box looks for a visible window of the
/// process to belong to.
void SeekOwnerWindow();

/// Shows a text until the user has seen it: a message box, or a line on standard error where no window can be
/// shown. Needs no memory, so that running out of it can be told.
void ShowMessageBox(const char* text, const char* title, Icon icon) noexcept;

}  // namespace morvelan::ui
