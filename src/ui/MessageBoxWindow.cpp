// Message boxes of the system, owned by the window in which the user works.

#include "com/Platform.h"
#include "ui/MessageBox.h"

namespace morvelan::ui {
namespace {

bool ownerIsSought = false;

/// Windows' text of a UTF-8 text, cut to what fits: a message box must not fail for lack of memory.
struct Wide {
  explicit Wide(const char* utf8) {
    const int written = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, text, kCapacity);
    if (written == 0) text[kCapacity - 1] = L'\0';
  }

  static constexpr int kCapacity = 2048;
  wchar_t text[kCapacity] = {};
};

BOOL CALLBACK TakeVisibleWindow(HWND window, LPARAM found) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window) || GetWindow(window, GW_OWNER)) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

HWND Owner() {
  HWND owner = GetActiveWindow();
  if (!ownerIsSought || (owner && IsWindowVisible(owner))) return owner;
  HWND found = nullptr;
  EnumWindows(TakeVisibleWindow, reinterpret_cast<LPARAM>(&found));
  return found ? found : owner;
}

UINT StyleOf(Icon icon) {
  switch (icon) {
    case Icon::kInformation:
      return MB_ICONINFORMATION;
    case Icon::kExclamation:
      return MB_ICONEXCLAMATION;
    case Icon::kStop:
      return MB_ICONSTOP;
  }
  return 0;
}

}  // namespace

bool HasWindows() { return true; }

void SeekOwnerWindow() { ownerIsSought = true; }

void ShowMessageBox(const char* text, const char* title, Icon icon) noexcept {
  const Wide wideText(text);
  const Wide wideTitle(title);
  MessageBoxW(Owner(), wideText.text, wideTitle.text, MB_OK | StyleOf(icon));
}

}  // namespace morvelan::ui
