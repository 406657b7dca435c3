#pragma once

#include <charconv>
#include <functional>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "com/Name.h"
#include "com/Platform.h"
#include "com/Values.h"

namespace morvelan::test {

/// An argument of a host call: a text, or a list of texts or numbers.
class Argument {
 public:
  Argument(BSTR argument) : text(argument), list(nullptr) {}             // NOLINT: made in passing
  Argument(const VARIANT& argument) : text(nullptr), list(&argument) {}  // NOLINT

  [[nodiscard]] std::string Text() const {
    if (!list) return com::ToUtf8(text);
    if (list->vt == VT_EMPTY) return {};
    std::string joined = "[";
    for (const com::Variant& element : com::ReadVariants(*list)) {
      const VARIANT& value = element.Get();
      if (joined.size() > 1) joined += ",";
      joined += value.vt == VT_BSTR ? com::ToUtf8(value.bstrVal) : Shortest(com::ReadDouble(value));
    }
    return joined + "]";
  }

 private:
  static std::string Shortest(double number) {
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed).ptr};
  }

  BSTR text;
  const VARIANT* list;
};

/// What a fake host does: it remembers the calls made to it, lets one of them fail, and answers oddly where
/// told to. All objects of one fake host share a script.
class HostScript {
 public:
  /// Counts a call and returns its outcome. Its label is what it is and what it is about: "GetProp
  /// Temperature". The further arguments are kept as texts; those that are null, empty or not given show as
  /// nothing.
  HRESULT Call(const char* what, com::Name about = {}, std::initializer_list<Argument> further = {}) {
    ++count;
    if (!recording) return S_OK;
    std::string label = what;
    if (!about.IsEmpty()) label += " " + com::ToUtf8(about);
    lastLabel = label;
    for (const Argument& argument : further) label += "/" + argument.Text();
    calls.push_back(std::move(label));
    const bool fails = count == failAt || failing.contains(lastLabel);
    if (interfere && (count == interfereAt || lastLabel == interferesAt)) std::exchange(interfere, nullptr)();
    return fails ? failure : S_OK;
  }

  /// Gives `answer`, or what the test put in its place for the call made last.
  HRESULT Answer(com::Variant answer, VARIANT* result) {
    if (recording && count == oddAt)
      answer = oddAnswer();
    else if (const auto odd = oddAnswers.find(lastLabel); recording && odd != oddAnswers.end())
      answer = odd->second();
    VariantClear(result);
    *result = answer.Detach();
    return S_OK;
  }

  void Restart() {
    count = 0;
    calls.clear();
    failAt = oddAt = 0;
  }

  bool recording = true;
  int count = 0;
  std::vector<std::string> calls;  // labels, each with its further arguments
  std::string lastLabel;
  int failAt = 0;                      // the call that fails, from 1; 0 for none
  std::set<std::string> failing = {};  // labels of calls that fail each time
  HRESULT failure = E_FAIL;
  int oddAt = 0;  // the call that is answered by `oddAnswer`, from 1; 0 for none
  std::function<com::Variant()> oddAnswer = {};
  int interfereAt = 0;                   // the call in which the host does something else, from 1
  std::string interferesAt = {};         // or the label of the call
  std::function<void()> interfere = {};  // once
  // What the host's error interfaces say; those that are empty are offered but say nothing.
  bool offersErrors = false;
  std::string errorDescription;
  std::string errorName;
  std::map<std::string, std::function<com::Variant()>> oddAnswers;
  int liveObjects = 0;
};

}  // namespace morvelan::test
