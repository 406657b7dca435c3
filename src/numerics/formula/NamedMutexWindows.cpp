#include <windows.h>

#include "numerics/formula/NamedMutex.h"

namespace morvelan::numerics {
namespace {

class KernelMutex : public NamedMutex {
 public:
  explicit KernelMutex(HANDLE openHandle) : handle(openHandle) {}
  ~KernelMutex() override { CloseHandle(handle); }

  bool Wait() override {
    const DWORD outcome = WaitForSingleObject(handle, INFINITE);
    return outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
  }
  void Release() override { ReleaseMutex(handle); }

 private:
  HANDLE handle;
};

}  // namespace

std::unique_ptr<NamedMutex> OpenParseMutex() {
  const HANDLE handle = CreateMutexW(nullptr, FALSE, L"VELTParseMutex");
  if (!handle) return nullptr;
  return std::make_unique<KernelMutex>(handle);
}

}  // namespace morvelan::numerics
