// The library as a guest in a host's process: it goes when nobody needs it, and what is the host's it leaves
// as it is.

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <algorithm>
#include <clocale>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <utility>

#include "morvelan.h"
#include "tests/support/Door.h"
#include "tests/support/FakeMaterial.h"
#include "tests/support/Heap.h"
#include "tests/windows/LateBound.h"
#include "tests/windows/LoadedLibrary.h"
// After <windows.h>.
#include <tlhelp32.h>

namespace morvelan::test::module_life {

using com::Ref;

/// A copy of the library, for this process holds the library itself.
std::filesystem::path CopyOfLibrary() {
  const std::filesystem::path folder = std::filesystem::absolute(MORVELAN_SCRATCH);
  const std::filesystem::path copy = (folder / "module-life.dll").make_preferred();
  std::filesystem::create_directories(folder);
  std::filesystem::remove(copy);
  std::filesystem::copy_file(MORVELAN_LIBRARY, copy);
  return copy;
}

Ref<IClassFactory> MakeFactory(const LoadedLibrary& library) {
  Ref<IClassFactory> factory;
  EXPECT_EQ(library.Call("DllGetClassObject", &__uuidof(NoOperation), &__uuidof(IClassFactory),
                         reinterpret_cast<void**>(factory.Put())),
            S_OK);
  return factory;
}

Ref<IUnknown> MakeUnit(const LoadedLibrary& library) {
  Ref<IUnknown> unit;
  void** result = reinterpret_cast<void**>(unit.Put());
  EXPECT_EQ(MakeFactory(library)->CreateInstance(nullptr, __uuidof(IUnknown), result), S_OK);
  EXPECT_EQ(unit.As<ICapeUtilities>()->Initialize(), S_OK);
  return unit;
}

/// Calculates a unit, and asks it for its status by name.
void UseUnit(const LoadedLibrary& library) {
  const Ref<IUnknown> unit = MakeUnit(library);
  const UnitDoor door(unit);
  const auto script = std::make_shared<HostScript>();
  for (const char* port : {"Inlet", "Outlet"}) {
    const auto material = com::Make<FakeMaterial>(script);
    EXPECT_EQ(door.Port(port)->Connect(static_cast<ICapeIdentification*>(material.Get())), S_OK);
  }
  EXPECT_EQ(door.unit->Calculate(), S_OK);
  const Outcome status = CallByName(unit.As<IDispatch>().Get(), "ValStatus", DISPATCH_PROPERTYGET);
  EXPECT_EQ(com::ReadInteger(status.result.Get()), CAPE_VALID);
  EXPECT_EQ(door.utilities->Terminate(), S_OK);
}

/// Takes something of the library, and lets it go.
template <class Take>
void ExpectToStayFor(const char* what, const LoadedLibrary& library, Take take) {
  SCOPED_TRACE(what);
  Ref<IUnknown> held = take();
  EXPECT_TRUE(held);
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_FALSE);
  held.Reset();
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_OK);
}

TEST(ModuleLife, StaysWhileItIsNeeded) {
  const LoadedLibrary library(CopyOfLibrary());
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_OK);
  ExpectToStayFor("factory", library, [&] { return MakeFactory(library); });
  ExpectToStayFor("unit", library, [&] { return MakeUnit(library); });
  // Of a unit that is gone:
  ExpectToStayFor("collection", library, [&] { return UnitDoor(MakeUnit(library)).Ports(); });
  ExpectToStayFor("port", library, [&] { return UnitDoor(MakeUnit(library)).Port("Inlet"); });
  ExpectToStayFor("parameter", library, [&] { return UnitDoor(MakeUnit(library)).Parameter("Thermo Version"); });
  EXPECT_EQ(MakeFactory(library)->LockServer(TRUE), S_OK);
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_FALSE) << "locked";
  EXPECT_EQ(MakeFactory(library)->LockServer(FALSE), S_OK);
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_OK) << "unlocked";
}

/// The growth of this process's memory [bytes] while something is done again and again. What is made once and
/// kept is not counted.
std::size_t GrowthOf(int repetitions, const std::function<void()>& body) {
  for (int i = 0; i < 20; ++i) body();
  const std::size_t before = HeapInUse();
  for (int i = 0; i < repetitions; ++i) body();
  return std::max(HeapInUse(), before) - before;
}

TEST(ModuleLife, LeavesNoMemoryBehindAUnit) {
  const LoadedLibrary library(CopyOfLibrary());
  EXPECT_LT(GrowthOf(300, [&] { UseUnit(library); }), 10'000u);
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_OK);
}

/// The references that are held on the type library in a file, of which the system has one object at a time.
ULONG TypeLibraryReferences(const std::filesystem::path& file) {
  Ref<ITypeLib> types;
  EXPECT_EQ(LoadTypeLibEx(file.c_str(), REGKIND_NONE, types.Put()), S_OK);
  types->AddRef();
  return types->Release() - 1;
}

DWORD NextThreadSlot() {
  const DWORD slot = TlsAlloc();
  TlsFree(slot);
  return slot;
}

TEST(ModuleLife, LoadsAndUnloadsAnyNumberOfTimes) {
  const std::filesystem::path file = CopyOfLibrary();
  const auto loadAndUnload = [&] {
    {
      const LoadedLibrary library(file);
      UseUnit(library);
      ASSERT_EQ(library.Call("DllCanUnloadNow"), S_OK);
    }
    ASSERT_EQ(GetModuleHandleW(file.c_str()), nullptr) << "still loaded";
  };
  loadAndUnload();
  const DWORD slot = NextThreadSlot();
  // The C++ runtime's thread library never frees its record of the thread.
  constexpr std::size_t kRecord = 1000;
  EXPECT_LT(GrowthOf(300, loadAndUnload), 300 * kRecord);
  EXPECT_EQ(NextThreadSlot(), slot);
  EXPECT_EQ(TypeLibraryReferences(file), 0u);
}

int CountThreads() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 thread{};
  thread.dwSize = sizeof thread;
  int count = 0;
  for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread))
    if (thread.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  CloseHandle(snapshot);
  return count;
}

int CountWindows() {
  int count = 0;
  const auto add = [](HWND, LPARAM counter) -> BOOL { return ++*reinterpret_cast<int*>(counter); };
  EnumThreadWindows(GetCurrentThreadId(), add, reinterpret_cast<LPARAM>(&count));
  return count;
}

std::string FloatingPointControl() {
  constexpr unsigned kStatusFlags = 0x3f;
  unsigned short x87 = 0;
  __asm__ volatile("fnstcw %0" : "=m"(x87));
  return std::to_string(_mm_getcsr() & ~kStatusFlags) + ' ' + std::to_string(x87);
}

std::string Folder(DWORD(WINAPI* get)(DWORD, LPWSTR)) {
  wchar_t path[MAX_PATH] = {};
  return com::ToUtf8(path, get(MAX_PATH, path));
}

/// All that a host may have arranged for itself.
std::string HostState() {
  const LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(nullptr);
  SetUnhandledExceptionFilter(filter);
  std::ostringstream state;
  state << "locale " << std::setlocale(LC_ALL, nullptr) << ", of the thread " << GetThreadLocale()
        << "\nfloating point " << FloatingPointControl() << "\ncurrent folder " << Folder(GetCurrentDirectoryW)
        << "\nfolder of libraries " << Folder(GetDllDirectoryW) << "\nstandard handles "
        << GetStdHandle(STD_INPUT_HANDLE) << ' ' << GetStdHandle(STD_OUTPUT_HANDLE) << ' '
        << GetStdHandle(STD_ERROR_HANDLE) << "\nerror mode " << GetErrorMode() << "\nexception filter "
        << reinterpret_cast<void*>(filter) << "\nthreads " << CountThreads() << "\nwindows " << CountWindows();
  return state.str();
}

/// A host that has arranged everything in another way than usual.
class PeculiarHost {
 public:
  PeculiarHost() {
    std::setlocale(LC_ALL, "German");
    _mm_setcsr(_mm_getcsr() | _MM_FLUSH_ZERO_ON | _MM_ROUND_TOWARD_ZERO);
    SetX87(0x27f);  // doubles, where C has more digits
    SetCurrentDirectoryW(std::filesystem::temp_directory_path().c_str());
    SetDllDirectoryW(L"C:\\windows\\help");
    SetErrorMode(SEM_NOOPENFILEERRORBOX);
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { return EXCEPTION_CONTINUE_SEARCH; });
  }
  PeculiarHost(const PeculiarHost&) = delete;
  PeculiarHost& operator=(const PeculiarHost&) = delete;
  ~PeculiarHost() {
    std::setlocale(LC_ALL, "C");
    _mm_setcsr(0x1f80);
    SetX87(0x37f);
    std::filesystem::current_path(folder);
    SetDllDirectoryW(nullptr);
    SetErrorMode(0);
    SetUnhandledExceptionFilter(nullptr);
  }

 private:
  static void SetX87(unsigned short control) { __asm__ volatile("fldcw %0" : : "m"(control)); }

  const std::filesystem::path folder = std::filesystem::current_path();
};

TEST(ModuleLife, LeavesTheHostsProcessAsItIs) {
  const std::filesystem::path file = CopyOfLibrary();
  const PeculiarHost host;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const std::string before = HostState();
  {
    const LoadedLibrary library(file);
    EXPECT_EQ(HostState(), before) << "when it is loaded";
    UseUnit(library);
    EXPECT_EQ(HostState(), before) << "when it is used";
    EXPECT_EQ(library.Call("DllCanUnloadNow"), S_OK);
  }
  EXPECT_EQ(HostState(), before) << "when it is gone";
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace morvelan::test::module_life
