#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "numerics/formula/NamedMutex.h"

namespace morvelan::numerics {
namespace {

/// A lock on an open file: every opening has its own, so that threads exclude each other too, and the system
/// gives it free with the last descriptor.
class FileLock : public NamedMutex {
 public:
  explicit FileLock(int openDescriptor) : descriptor(openDescriptor) {}
  ~FileLock() override { close(descriptor); }

  bool Wait() override {
    int outcome = 0;
    do outcome = flock(descriptor, LOCK_EX);
    while (outcome != 0 && errno == EINTR);
    return outcome == 0;
  }
  void Release() override { flock(descriptor, LOCK_UN); }

 private:
  int descriptor;
};

}  // namespace

std::unique_ptr<NamedMutex> OpenParseMutex() {
  std::error_code error;
  const auto folder = std::filesystem::temp_directory_path(error);
  if (error) return nullptr;
  // A file per user: one of another's could be held for ever. Nobody's link is followed from a folder that
  // all share.
  const auto file = folder / ("VELTParseMutex-" + std::to_string(geteuid()));
  const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor < 0) return nullptr;
  return std::make_unique<FileLock>(descriptor);
}

}  // namespace morvelan::numerics
