#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/cli/CommandRun.h"

namespace morvelan::test {

/// One place of a valid file changed: the member at `pointer` becomes `value`, or goes when that is empty.
struct BadFile {
  const char* pointer;
  const char* value;
  const char* place;  // as the message begins with it, after the file's name
  std::vector<const char*> words;
};

inline std::string Changed(const char* valid, const BadFile& bad) {
  auto document = nlohmann::ordered_json::parse(valid);
  const nlohmann::ordered_json::json_pointer pointer(bad.pointer);
  if (*bad.value)
    document[pointer] = nlohmann::ordered_json::parse(bad.value);
  else
    document[pointer.parent_pointer()].erase(pointer.back());
  return document.dump(1);
}

/// Expects that nothing was calculated, and a message with the place and the words.
inline void ExpectRefused(const FlowsheetOutcome& outcome, const std::string& start,
                          const std::vector<const char*>& words, const std::string& what) {
  EXPECT_EQ(outcome.status, 2) << what << outcome.output;
  EXPECT_EQ(outcome.output, "") << what;
  EXPECT_TRUE(outcome.results.is_null()) << what;
  EXPECT_TRUE(outcome.errors.starts_with("morvelan: ")) << what << outcome.errors;
  EXPECT_NE(outcome.errors.find("flowsheet.json:"), std::string::npos) << what << outcome.errors;
  EXPECT_NE(outcome.errors.find(start), std::string::npos) << what << outcome.errors;
  for (const char* word : words) EXPECT_NE(outcome.errors.find(word), std::string::npos) << what << outcome.errors;
}

}  // namespace morvelan::test
