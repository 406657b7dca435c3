#pragma once

#include <memory>

namespace morvelan::numerics {

/// A mutex that all threads of several processes share: on Linux those of a user with the same folder for
/// temporary files, on Windows those of a session. Its owner's end, however sudden, gives it free.
class NamedMutex {
 public:
  NamedMutex() = default;
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;
  virtual ~NamedMutex() = default;  // closes it

  /// Waits without limit until it is obtained; false when that fails.
  [[nodiscard]] virtual bool Wait() = 0;

  /// To be called once after each Wait that succeeded.
  virtual void Release() = 0;
};

/// Makes or opens, not yet obtained, the mutex under which numeric entries are parsed; null when that fails.
[[nodiscard]] std::unique_ptr<NamedMutex> OpenParseMutex();

}  // namespace morvelan::numerics
