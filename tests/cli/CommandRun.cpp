#include "tests/cli/CommandRun.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>

namespace morvelan::test {

std::filesystem::path Scratch(const std::string& name) {
  const auto folder = std::filesystem::path(MORVELAN_SCRATCH) / "command";
  std::filesystem::create_directories(folder);
  return folder / name;
}

std::filesystem::path WriteScratch(const std::string& name, const std::string& text) {
  const auto file = Scratch(name);
  std::ofstream(file, std::ios::binary) << text;
  return file;
}

std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

FlowsheetOutcome RunFlowsheet(const std::string& text, const std::string& options) {
  const auto file = WriteScratch("flowsheet.json", text), results = Scratch("results.json");
  std::filesystem::remove(results);
  FlowsheetOutcome outcome{RunCommand("run \"" + file.string() + "\" --json \"" + results.string() + "\" " + options),
                           {}};
  if (std::filesystem::exists(results)) outcome.results = Json::parse(ReadFile(results));
  return outcome;
}

void ExpectSame(const Json& a, const Json& b, double tolerance, const std::string& what) {
  ASSERT_EQ(a.is_number(), b.is_number()) << what;
  if (a.is_number()) {
    const double x = a.get<double>(), y = b.get<double>();
    EXPECT_LE(std::abs(x - y), tolerance * std::max(std::abs(x), std::abs(y))) << what << ": " << a << ", " << b;
  } else if (a.is_object()) {
    ASSERT_EQ(a.size(), b.size()) << what << ": " << a << ", " << b;
    for (const auto& [key, value] : a.items()) {
      ASSERT_TRUE(b.contains(key)) << what << '/' << key;
      ExpectSame(value, b[key], tolerance, what + '/' + key);
    }
  } else {
    EXPECT_EQ(a, b) << what;
  }
}

}  // namespace morvelan::test
