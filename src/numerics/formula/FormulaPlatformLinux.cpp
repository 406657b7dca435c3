#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "numerics/formula/FloatingPointScope.h"
#include "numerics/formula/NumericEntry.h"

namespace morvelan::numerics {
namespace {

/// A lock on an open file: every opening has its own, so that threads exclude each other too, and the system releases
/// it with the last descriptor.
class FileLock : public NamedMutex {
 public:
  ~FileLock() override {
    if (descriptor >= 0) close(descriptor);
  }

  /// Opens the file, and makes it if there is none. Returns false if that fails, or if the file is another user's, who
  /// could hold it for ever. A link in the folder, which all users share, is not followed.
  [[nodiscard]] bool Open(const char* file) {
    descriptor = open(file, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    struct stat status {};
    return descriptor >= 0 && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
  }

  bool Wait() override {
    int outcome = 0;
    do outcome = flock(descriptor, LOCK_EX);
    while (outcome != 0 && errno == EINTR);
    return outcome == 0;
  }
  void Release() override { flock(descriptor, LOCK_UN); }

 private:
  int descriptor = -1;
};

}  // namespace

std::unique_ptr<NamedMutex> OpenParseMutex() {
  std::error_code error;
  const auto folder = std::filesystem::temp_directory_path(error);
  if (error) return nullptr;
  const auto file = folder / ("VELTParseMutex-" + std::to_string(geteuid()));
  auto mutex = std::make_unique<FileLock>();
  if (!mutex->Open(file.c_str())) return nullptr;
  return mutex;
}

// The functions use the same unit as arithmetic.
const bool kLibraryUsesOlderUnit = false;

}  // namespace morvelan::numerics
