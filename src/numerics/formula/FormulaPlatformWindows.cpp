#include <windows.h>

#include "numerics/formula/FloatingPointScope.h"
#include "numerics/formula/NumericEntry.h"

namespace morvelan::numerics {
namespace {

class KernelMutex : public NamedMutex {
 public:
  ~KernelMutex() override {
    if (handle) CloseHandle(handle);
  }

  /// Returns false if that fails.
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

// Several functions of mingw-w64 calculate in the older unit.
const bool kLibraryUsesOlderUnit = true;

}  // namespace morvelan::numerics
