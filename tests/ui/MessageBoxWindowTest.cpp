// Message boxes of the system: to which window they belong, and what they show.

#include <gtest/gtest.h>

#include "tests/ui/WatchedBox.h"
#include "ui/MessageBox.h"

namespace morvelan::test::message_box_window {

constexpr int kTextCapacity = 2047;

WatchedBox Show(const std::string& text, const std::string& title, ui::Icon icon) {
  return BoxShownBy([&] { ui::ShowMessageBox(text.c_str(), title.c_str(), icon); }).value();
}

enum class Belongs { kToNone, kToActive, kToOther };

struct OwnerCase {
  const char* title;
  bool hasActive;
  bool activeIsVisible;
  bool hasOther;  // another visible window
  Belongs plain;
  Belongs sought;  // once a visible owner is sought
};

constexpr OwnerCase kOwnerCases[] = {
    {"a visible active window", true, true, true, Belongs::kToActive, Belongs::kToActive},
    {"a hidden active window and a visible one", true, false, true, Belongs::kToActive, Belongs::kToOther},
    {"a hidden active window alone", true, false, false, Belongs::kToActive, Belongs::kToActive},
    {"a visible window that is not active", false, false, true, Belongs::kToNone, Belongs::kToOther},
    {"no visible window", false, false, false, Belongs::kToNone, Belongs::kToNone},
};

void Check(const OwnerCase& c, Belongs wanted) {
  SCOPED_TRACE(c.title);
  std::optional<TestWindow> active, other, owned;
  if (c.hasActive) active.emplace(c.activeIsVisible);
  if (c.hasOther) other.emplace(true);
  // Above the others, but no owner: as it belongs to a window itself it may go at any time.
  if (c.hasOther || c.hasActive) owned.emplace(true, c.hasOther ? other->handle : active->handle);
  // Nor may a hidden one that is above all others own a box.
  const TestWindow hidden(false);
  SetWindowPos(hidden.handle, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOACTIVATE | SWP_NOMOVE | SWP_NOSIZE);
  if (c.hasActive) SetActiveWindow(active->handle);
  ASSERT_EQ(GetActiveWindow(), c.hasActive ? active->handle : nullptr);
  const HWND owner = wanted == Belongs::kToNone     ? nullptr
                     : wanted == Belongs::kToActive ? active->handle
                                                    : other->handle;
  EXPECT_EQ(Show("text", "title", ui::Icon::kStop).owner, owner);
}

// Seeking can't be taken back: both in one test, in this order.
TEST(MessageBoxes, BelongToAVisibleWindowWhereOneIsSought) {
  for (const OwnerCase& c : kOwnerCases) Check(c, c.plain);
  ui::SeekOwnerWindow();
  for (const OwnerCase& c : kOwnerCases) Check(c, c.sought);
}

TEST(MessageBoxes, ShowTextsAndIcon) {
  struct Case {
    ui::Icon icon;
    LPCSTR systemIcon;
    const char* text;
    const char* title;
  };
  const Case cases[] = {
      {ui::Icon::kInformation, IDI_INFORMATION, "W/m²/K, π ≈ 3, 流程, \xF0\x9F\x98\x80", "Größe:"},
      {ui::Icon::kExclamation, IDI_EXCLAMATION, "two\nlines", "N-1 & N-2"},
      {ui::Icon::kStop, IDI_HAND, "", ""},
  };
  for (const Case& c : cases) {
    const WatchedBox box = Show(c.text, c.title, c.icon);
    EXPECT_EQ(box.text, c.text);
    EXPECT_EQ(box.title, c.title);
    EXPECT_EQ(box.icon, LoadIconA(nullptr, c.systemIcon)) << c.text;
  }
}

TEST(MessageBoxes, CutATextThatDoesNotFit) {
  std::string longest;
  for (int i = 0; i < kTextCapacity; ++i) longest += i % 10 == 0 ? "é" : "x";
  for (const char* more : {"", "y", "ü and much more"})
    EXPECT_EQ(Show(longest + more, "title", ui::Icon::kStop).text, longest) << more;
}

}  // namespace morvelan::test::message_box_window
