#pragma once

#include <string>

#include "com/SystemMessage.h"
#include "com/Text.h"

namespace morvelan::test {

/// An expected text in the words of this system: systems explain their failure codes in words of their own.
inline std::string InThisSystemsWords(std::string text) {
  struct Phrase {
    const char* words;
    HRESULT code;
    const char* withoutWords;
  };
  constexpr Phrase kPhrases[] = {
      {"Unspecified error", E_FAIL, "error code 0x80004005"},
      {"No such interface supported", E_NOINTERFACE, "error code 0x80004002"},
      {"Invalid pointer", E_POINTER, "error code 0x80004003"},
      {"Not implemented", E_NOTIMPL, "error code 0x80004001"},
  };
  for (const Phrase& phrase : kPhrases)
    if (const auto at = text.find(phrase.words); at != std::string::npos)
      text.replace(at, std::char_traits<char>::length(phrase.words),
                   com::SystemMessage(phrase.code).value_or(phrase.withoutWords));
  return text;
}

}  // namespace morvelan::test
