#include "com/Name.h"

#include <deque>

namespace morvelan::com {
bool operator==(Name a, Name b) {
  if (a.text == b.text) return true;
  const UINT length = SysStringLen(a.text);
  if (length != SysStringLen(b.text)) return false;
  for (UINT i = 0; i < length; ++i)
    if (AsciiLower(a.text[i]) != AsciiLower(b.text[i])) return false;
  return true;
}

std::string ToUtf8(Name name) { return ToUtf8(name.text); }

Name KeepName(const char* utf8) {
  static std::deque<Bstr> kept;
  return Name(kept.emplace_back(ToBstr(utf8)));
}

}  // namespace morvelan::com
