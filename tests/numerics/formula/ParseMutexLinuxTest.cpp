#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "numerics/formula/NumericEntry.h"
#include "tests/numerics/formula/OpenHandles.h"

namespace morvelan::test::parse_mutex_linux {

/// Sets another folder for temporary files while it lives.
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

std::filesystem::path FreshFolder(const char* name) {
  const std::filesystem::path folder = std::filesystem::path(MORVELAN_SCRATCH) / name;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder;
}

constexpr const char* kCannotCreate = "Failed to create a mutex for locking the parser for the current thread";

TEST(ParseMutexFile, NeedsAFolder) {
  const TemporaryFolder folder("/no/such/folder");
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").failure, kCannotCreate);
}

// Other users of the folder must not make this process open a file of their choice or wait for one that they hold.
TEST(ParseMutexFile, IsTheUsersOwn) {
  const std::filesystem::path folder = FreshFolder("mutex-file");
  const TemporaryFolder temporary(folder);
  const std::size_t handles = OpenHandles();
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").value, 1);
  const auto file = folder / ("VELTParseMutex-" + std::to_string(geteuid()));
  struct stat status {};
  ASSERT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, S_IFREG | 0600u);
  if (chown(file.c_str(), geteuid() + 1, getegid()) == 0)  // only the superuser can
    EXPECT_EQ(numerics::EvaluateNumericEntry("1").failure, kCannotCreate);

  std::filesystem::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").failure, kCannotCreate);
  std::filesystem::remove(file);
  std::filesystem::create_symlink(folder / "target", file);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1").failure, kCannotCreate);
  EXPECT_FALSE(std::filesystem::exists(folder / "target"));
  EXPECT_EQ(OpenHandles(), handles);
}

/// The descriptor of an open file.
int DescriptorOf(const std::filesystem::path& file) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
    if (std::error_code error; std::filesystem::read_symlink(entry, error) == file)
      return std::stoi(entry.path().filename());
  return -1;
}

TEST(ParseMutexFile, IsClosedAfterEveryEntry) {
  const std::filesystem::path folder = std::filesystem::canonical(FreshFolder("mutex-file"));
  const TemporaryFolder temporary(folder);
  const std::size_t handles = OpenHandles();
  for (const char* text : {"1", "1/0", "(", "2 $"}) {
    (void)numerics::EvaluateNumericEntry(text);
    EXPECT_EQ(OpenHandles(), handles) << text;
  }
  auto mutex = numerics::OpenParseMutex();
  EXPECT_EQ(OpenHandles(), handles + 1);
  // A descriptor that cannot be locked takes the place of the file.
  const int place = DescriptorOf(folder / ("VELTParseMutex-" + std::to_string(geteuid())));
  const int other = open("/", O_PATH | O_CLOEXEC);
  ASSERT_TRUE(mutex && place >= 0 && other >= 0);
  ASSERT_EQ(dup2(other, place), place);
  close(other);
  EXPECT_EQ(numerics::EvaluateNumericEntry("1", std::move(mutex)).failure,
            "Failed to wait for a mutex for locking the parser for the current thread");
  EXPECT_EQ(OpenHandles(), handles);
}

// If the path of the folder has two parts, the standard library rounds a number when it adds a third one.
TEST(ParseMutexFile, LeavesTheHostsEnvironmentAsItWas) {
  std::string folder = "/tmp/morvelan-XXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  const TemporaryFolder temporary(folder);
  const unsigned before = _mm_getcsr();
  constexpr unsigned kNothingNoted = 0x1F80;
  _mm_setcsr(kNothingNoted);
  const numerics::Evaluation evaluation = numerics::EvaluateNumericEntry("1");
  const unsigned after = _mm_getcsr();
  _mm_setcsr(before);
  EXPECT_EQ(evaluation.value, 1);
  EXPECT_EQ(after, kNothingNoted);
  std::filesystem::remove_all(folder);
}

}  // namespace morvelan::test::parse_mutex_linux
