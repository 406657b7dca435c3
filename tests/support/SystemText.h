#pragma once

#include <string>

#include "com/SystemMessage.h"
#include "com/Text.h"

namespace morvelan::test {

/// A failure code as tests write it; systems explain it in words of their own.
struct SystemPhrase {
  const char* words;
  HRESULT code;
  const char* withoutWords;

  [[nodiscard]] std::string OfThisSystem() const { return com::SystemMessage(code).value_or(withoutWords); }
};

inline constexpr SystemPhrase kSystemPhrases[] = {
    {"Unspecified error", E_FAIL, "error code 0x80004005"},
    {"No such interface supported", E_NOINTERFACE, "error code 0x80004002"},
    {"Invalid pointer", E_POINTER, "error code 0x80004003"},
    {"Catastrophic failure", E_UNEXPECTED, "error code 0x8000FFFF"},
    {"The parameter is incorrect.", E_INVALIDARG, "error code 0x80070057"},
    {"Not implemented", E_NOTIMPL, "error code 0x80004001"},
};

inline void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
}

/// An expected text in the words of this system.
inline std::string InThisSystemsWords(std::string text) {
  for (const SystemPhrase& phrase : kSystemPhrases) ReplaceAll(text, phrase.words, phrase.OfThisSystem());
  return text;
}

/// A text of this system in the words of the tests.
inline std::string InCommonWords(std::string text) {
  for (const SystemPhrase& phrase : kSystemPhrases) ReplaceAll(text, phrase.OfThisSystem(), phrase.words);
  return text;
}

}  // namespace morvelan::test
