#include "com/Platform.h"
#include "com/Text.h"
#include "tests/support/MessageBoxes.h"

namespace morvelan::test {
namespace {

constexpr int kTextControl = 0xffff;  // of the system's message boxes

std::string shown;  // the hook has no place of its own for it

std::string TextOf(HWND window) {
  wchar_t text[1024] = {};
  const int length = GetWindowTextW(window, text, 1024);
  return com::ToUtf8(text, static_cast<std::size_t>(length));
}

/// Closes a message box as soon as it becomes the active window.
LRESULT CALLBACK Acknowledge(int code, WPARAM window, LPARAM more) {
  const auto box = reinterpret_cast<HWND>(window);
  if (const HWND text = code == HCBT_ACTIVATE ? GetDlgItem(box, kTextControl) : nullptr) {
    shown += TextOf(box) + ' ' + TextOf(text) + '\n';
    PostMessageW(box, WM_COMMAND, IDOK, 0);
  }
  return CallNextHookEx(nullptr, code, window, more);
}

}  // namespace

std::string MessageBoxesOf(const std::function<void()>& body) {
  shown.clear();
  const HHOOK hook = SetWindowsHookExW(WH_CBT, Acknowledge, nullptr, GetCurrentThreadId());
  body();
  UnhookWindowsHookEx(hook);
  return shown;
}

}  // namespace morvelan::test
