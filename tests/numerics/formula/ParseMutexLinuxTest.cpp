#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "numerics/formula/NumericEntry.h"

namespace morvelan::test {
namespace {

/// Another folder for temporary files while it lives.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& folder) {
    if (const char* value = std::getenv("TMPDIR")) previous = value;
    setenv("TMPDIR", folder.c_str(), 1);
  }
  ~TemporaryFolder() {
    if (previous.empty())
      unsetenv("TMPDIR");
    else
      setenv("TMPDIR", previous.c_str(), 1);
  }

 private:
  std::string previous;
};

constexpr const char* kCannotCreate =
    "Failed to create a mutex for locking the parser for the current thread";

TEST(ParseMutexFile, NeedsAFolder) {
  const TemporaryFolder folder("/no/such/folder");
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").failure, kCannotCreate);
}

// Whoever may write to the folder must not have this process open a file of their choice.
TEST(ParseMutexFile, FollowsNoLink) {
  const std::filesystem::path folder = std::filesystem::path(MORVELAN_SCRATCH) / "links";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const TemporaryFolder temporary(folder);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").value, 1);
  const auto file = std::filesystem::directory_iterator(folder)->path();
  std::filesystem::remove(file);
  std::filesystem::create_symlink(folder / "target", file);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").failure, kCannotCreate);
  EXPECT_FALSE(std::filesystem::exists(folder / "target"));
}

}  // namespace
}  // namespace morvelan::test
