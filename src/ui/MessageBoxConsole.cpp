// Where there is no windowing system of the library's own, what must be seen at once goes to standard error.

#include <cstdio>

#include "ui/MessageBox.h"

namespace morvelan::ui {

bool HasWindows() { return false; }

void SeekOwnerWindow() {}

void ShowMessageBox(const char* text, const char* title, Icon) noexcept {
  std::fprintf(stderr, "%s %s\n", title, text);
}

}  // namespace morvelan::ui
