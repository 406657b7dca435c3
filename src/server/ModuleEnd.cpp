// What the C++ runtime would leave behind in a host that unloads the library, and may load it again any
// number of times.

#include <pthread.h>

#include "com/Platform.h"

namespace __gnu_cxx {
/// Frees the memory that is kept for throwing when there is no other, 74 kB.
void __freeres();
}  // namespace __gnu_cxx

/// The thread library's record of a thread.
extern "C" void* __pth_gpointer_locked(pthread_t thread);

namespace {

constexpr DWORD kSlots = TLS_MINIMUM_AVAILABLE + 1024;  // of a process

/// Frees the slot in which the thread library keeps its record of each thread. It would be lost, and the
/// process has no more than `kSlots` for all.
void FreeThreadSlot() {
  const void* record = __pth_gpointer_locked(pthread_self());
  if (!record) return;
  for (DWORD slot = 0; slot < kSlots; ++slot)
    if (TlsGetValue(slot) == record) TlsFree(slot);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_DETACH && !processEnds) {
    FreeThreadSlot();
    __gnu_cxx::__freeres();
  }
  return TRUE;
}
