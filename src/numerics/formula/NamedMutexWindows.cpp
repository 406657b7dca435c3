#include <windows.h>

#include "numerics/formula/NamedMutex.h"

namespace morvelan::numerics {
namespace {

class KernelMutex : public NamedMutex {
 public:
  ~KernelMutex() override {
    if (handle) CloseHandle(handle);
  }

  /// False when that fails.
  [[nodiscard]] bool Open() {
    handle = CreateMutexW(nullptr, FALSE, L"VELTParseMutex");
    return handle != nullptr;
  }

  bool Wait() override {
    const DWORD outcome = WaitForSingleObject(handle, INFINITE);
    return outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
  }
  void Release() override { ReleaseMutex(handle); }

 private:
  HANDLE handle = nullptr;
};

}  // namespace

std::unique_ptr<NamedMutex> OpenParseMutex() {
  auto mutex = std::make_unique<KernelMutex>();
  if (!mutex->Open()) return nullptr;
  return mutex;
}

}  // namespace morvelan::numerics
