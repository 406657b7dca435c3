#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "com/Name.h"
#include "com/Platform.h"

namespace morvelan::test {

/// What a fake host does: it remembers the calls made to it, lets one of them fail, and answers oddly where
/// told to. All objects of one fake host share a script.
class HostScript {
 public:
  /// Counts a call and returns its outcome. A label is what the call is and what it is about: "GetProp
  /// Temperature".
  HRESULT Call(const char* what, com::Name about = {}) {
    ++count;
    if (!recording) return S_OK;
    std::string label = what;
    if (!about.IsEmpty()) label += " " + com::ToUtf8(about);
    calls.push_back(std::move(label));
    return count == failAt ? failure : S_OK;
  }

  /// Gives `answer`, or what the test put in its place for the call made last.
  HRESULT Answer(com::Variant answer, VARIANT* result) {
    if (recording)
      if (const auto odd = oddAnswers.find(calls.back()); odd != oddAnswers.end()) answer = odd->second();
    VariantClear(result);
    *result = answer.Detach();
    return S_OK;
  }

  void Restart() {
    count = 0;
    calls.clear();
    failAt = 0;
  }

  bool recording = true;
  int count = 0;
  std::vector<std::string> calls;
  int failAt = 0;  // the call that fails, from 1; 0 for none
  HRESULT failure = E_FAIL;
  // What the host's error interfaces say; those that are empty are offered but say nothing.
  bool offersErrors = false;
  std::string errorDescription;
  std::string errorName;
  std::map<std::string, std::function<com::Variant()>> oddAnswers;
  int liveObjects = 0;
};

}  // namespace morvelan::test
