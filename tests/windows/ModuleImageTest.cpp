// The library's file: what it needs from the system to be loaded, and what it offers.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "com/Text.h"
#include "tests/windows/LoadedLibrary.h"
// After <windows.h>.
#include <winver.h>

namespace morvelan::test::module_image {

/// The image of a module in memory.
class Image {
 public:
  explicit Image(HMODULE module) : base(reinterpret_cast<const char*>(module)) {}

  template <class T>
  [[nodiscard]] const T* At(std::size_t offset) const {
    return reinterpret_cast<const T*>(base + offset);
  }
  [[nodiscard]] const IMAGE_DATA_DIRECTORY& Directory(int entry) const {
    const auto* header = At<IMAGE_NT_HEADERS64>(static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
    return header->OptionalHeader.DataDirectory[entry];
  }
  [[nodiscard]] std::set<std::string> Imports() const {
    std::set<std::string> names;
    const auto* import = At<IMAGE_IMPORT_DESCRIPTOR>(Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
    for (; import->Name; ++import) names.insert(At<char>(import->Name));
    return names;
  }
  [[nodiscard]] std::set<std::string> Exports() const {
    std::set<std::string> names;
    const auto* exports = At<IMAGE_EXPORT_DIRECTORY>(Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
    EXPECT_EQ(exports->NumberOfFunctions, exports->NumberOfNames) << "some have no name";
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) names.insert(At<char>(At<DWORD>(exports->AddressOfNames)[i]));
    return names;
  }

 private:
  const char* base;
};

TEST(ModuleImage, NeedsTheSystemAndNothingElse) {
  const LoadedLibrary library(MORVELAN_LIBRARY);
  const Image image(library.Handle());
  constexpr const char* kSystem[] = {"ADVAPI32.dll", "COMDLG32.dll", "GDI32.dll",   "KERNEL32.dll", "msvcrt.dll",
                                     "ole32.dll",    "OLEAUT32.dll", "SHELL32.dll", "USER32.dll"};
  for (const std::string& name : image.Imports())
    EXPECT_TRUE(std::ranges::any_of(kSystem, [&](const char* own) { return com::EqualNoCase(own, name); })) << name;
  EXPECT_EQ(image.Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT).VirtualAddress, 0u);
}

TEST(ModuleImage, OffersItsEntryPointsAndNothingElse) {
  const LoadedLibrary library(MORVELAN_LIBRARY);
  const std::set<std::string> wanted = {"DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer",
                                        "DllUnregisterServer"};
  EXPECT_EQ(Image(library.Handle()).Exports(), wanted);
}

TEST(ModuleImage, HasOneVersionAsNumbersAndAsText) {
  const com::Bstr file = com::ToBstr(MORVELAN_LIBRARY);
  std::vector<char> resource(GetFileVersionInfoSizeW(file.Get(), nullptr));
  VS_FIXEDFILEINFO* numbers = nullptr;
  wchar_t* text = nullptr;
  UINT length = 0;
  ASSERT_TRUE(GetFileVersionInfoW(file.Get(), 0, static_cast<DWORD>(resource.size()), resource.data()));
  ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\", reinterpret_cast<void**>(&numbers), &length));
  ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\StringFileInfo\\040904b0\\FileVersion",
                             reinterpret_cast<void**>(&text), &length));
  EXPECT_EQ(com::ToUtf8(text, length - 1), std::to_string(HIWORD(numbers->dwFileVersionMS)) + '.' +
                                               std::to_string(LOWORD(numbers->dwFileVersionMS)) + '.' +
                                               std::to_string(HIWORD(numbers->dwFileVersionLS)));
}

}  // namespace morvelan::test::module_image
