#pragma once

#include <functional>
#include <optional>
#include <string>

#include "com/Platform.h"
#include "com/Text.h"

namespace morvelan::test {

/// What a message box was like while it was shown.
struct WatchedBox {
  HWND owner;
  std::string title;
  std::string text;
  HICON icon;
};

inline std::optional<WatchedBox> watchedBox;  // the hook has no place of its own for it

inline std::string TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
  return com::ToUtf8(text.data(), static_cast<std::size_t>(length));
}

inline BOOL CALLBACK TakeIcon(HWND control, LPARAM found) {
  const auto icon = reinterpret_cast<HICON>(SendMessageW(control, STM_GETICON, 0, 0));
  if (icon) *reinterpret_cast<HICON*>(found) = icon;
  return TRUE;
}

/// Looks at a message box as soon as it becomes the active window, and closes it.
inline LRESULT CALLBACK Watch(int code, WPARAM window, LPARAM more) {
  constexpr int kTextControl = 0xffff;  // of the system's message boxes
  const auto box = reinterpret_cast<HWND>(window);
  if (const HWND text = code == HCBT_ACTIVATE ? GetDlgItem(box, kTextControl) : nullptr) {
    HICON icon = nullptr;
    EnumChildWindows(box, TakeIcon, reinterpret_cast<LPARAM>(&icon));
    watchedBox = {GetWindow(box, GW_OWNER), TextOf(box), TextOf(text), icon};
    PostMessageW(box, WM_COMMAND, IDOK, 0);
  }
  return CallNextHookEx(nullptr, code, window, more);
}

/// The message box that `body` shows last, closed as soon as it is there.
inline std::optional<WatchedBox> BoxShownBy(const std::function<void()>& body) {
  watchedBox.reset();
  const HHOOK hook = SetWindowsHookExW(WH_CBT, Watch, nullptr, GetCurrentThreadId());
  body();
  UnhookWindowsHookEx(hook);
  return watchedBox;
}

/// A top-level window for the life of this object, not active.
class TestWindow {
 public:
  explicit TestWindow(bool visible, HWND owner = nullptr)
      : handle(CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 9, 9, owner, nullptr, nullptr, nullptr)) {
    if (visible) ShowWindow(handle, SW_SHOWNA);
  }
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;
  ~TestWindow() { DestroyWindow(handle); }

  const HWND handle;
};

}  // namespace morvelan::test
