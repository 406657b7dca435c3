#pragma once

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/HostScript.h"
#include "tests/support/SystemText.h"

namespace morvelan::test {

/// A way in which a host call fails, and the text that explains it.
struct FaultMode {
  const char* title;
  HRESULT code;
  bool offersErrors;
  const char* errorDescription;
  const char* errorName;
  const char* why;
};

inline constexpr FaultMode kFaultModes[] = {
    {"system code", E_FAIL, true, "not asked", "not asked", "Unspecified error"},
    {"unknown system code", static_cast<HRESULT>(0x80041234u), false, "", "", "error code 0x80041234"},
    {"standard code alone", static_cast<HRESULT>(0x80040507u), false, "", "", "index out of bounds"},
    {"standard code, description", static_cast<HRESULT>(0x80040507u), true, "host says no", "name", "host says no"},
    {"standard code, name only", static_cast<HRESULT>(0x80040507u), true, "", "host's name", "host's name"},
    {"standard code without text", static_cast<HRESULT>(0x80040501u), true, "", "",
     "Failed to get error name for ECapeUnknown"},
};

/// An answer that no careful host gives.
struct OddAnswer {
  const char* title;
  com::Variant (*answer)();
};

inline com::Variant Numbers(auto... values) { return com::MakeDoubles(std::array{values...}); }
inline com::Variant TextAndNumber() {
  return com::MakeVariants(std::array{com::MakeString("Vapor"), com::MakeDouble(1)});
}

inline constexpr OddAnswer kOddAnswers[] = {
    {"nothing", [] { return com::Variant(); }},
    {"texts",
     [] {
       return com::MakeStrings(std::array<std::string, 2>({"one", "two"}));
     }},
    {"a number", [] { return com::MakeDouble(1e5); }},
    {"no numbers", [] { return com::MakeDoubles({}); }},
    {"no texts", [] { return com::MakeStrings(std::vector<std::string>{}); }},
    {"three numbers", [] { return Numbers(1.0, 2.0, 3.0); }},
    {"NaN", [] { return Numbers(std::numeric_limits<double>::quiet_NaN()); }},
    {"minus infinity", [] { return Numbers(-std::numeric_limits<double>::infinity()); }},
    {"a missing value", [] { return Numbers(1.0, std::numeric_limits<double>::lowest()); }},
    {"a text and a number", TextAndNumber},
    {"empty elements", [] { return com::MakeVariants(std::vector<com::Variant>(2)); }},
};

inline void Provoke(HostScript& script, const FaultMode& mode, int failAt) {
  script.Restart();
  script.failAt = failAt;
  script.failure = mode.code;
  script.offersErrors = mode.offersErrors;
  script.errorDescription = mode.errorDescription;
  script.errorName = mode.errorName;
}

/// A text with "<why>" in place of the host's explanation of a failed call: it does not depend on the system, which
/// always explains a refused interface itself.
inline std::string WithoutReason(std::string text, const std::string& call, const FaultMode& mode) {
  const std::string why = call.starts_with("QueryInterface") ? "No such interface supported" : mode.why;
  ReplaceAll(text, InThisSystemsWords(why), "<why>");
  return InCommonWords(text);
}

}  // namespace morvelan::test
