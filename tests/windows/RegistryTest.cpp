// Registration: what it writes where, that hosts find it, and that it leaves no trace when it is undone or
// fails.

#include <gtest/gtest.h>

#include <cwchar>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "com/Ref.h"
#include "com/ScopeExit.h"
#include "com/Text.h"
#include "server/ClassTable.h"
#include "tests/support/MessageBoxes.h"
#include "tests/windows/LoadedLibrary.h"
#include "tests/windows/RegistrySnapshot.h"
// After <windows.h>.
#include <comcat.h>
#include <winver.h>

namespace morvelan::test::registry {

struct ExpectedClass {
  const char* clsid;
  const char* progId;
  const char* className;
  const char* name;
  const char* description;
  bool thermodynamics;
};

/// What hosts and users know the classes by; it never changes.
constexpr ExpectedClass kClasses[] = {
    {"{A158F66A-9B33-489F-A4D1-DCFE3BFD26B0}", "VELT_MORV.NoOperation", "NoOperation Class", "NoOperation",
     "NoOperation - Debug unit operation, copies inlet to outlet", true},
    {"{AA319ABB-5BEE-451D-AC4B-C346DBBCBE0D}", "VELT_MORV.CSTR", "CSTR Class", "CSTR",
     "Continuously stirred tank reactor for equilibrium and kinetic reactions", true},
    {"{0BDFAD49-7338-43FC-B62B-9EA5E61F5285}", "VELT_MORV.EquilibriumReactor", "EquilibriumReactor Class",
     "EquilibriumReactor", "Reactor to perform one or more equilibrium reactions", true},
    {"{2FD8C58C-BC6C-49E4-8D07-A498E08B26BE}", "VELT_MORV.FixedConversionReactor", "FixedConversionReactor Class",
     "FixedConversionReactor", "Reactor for reactions with specified conversions", true},
    {"{06C53883-13C3-49B7-A55F-039286EA0119}", "VELT_MORV.HeaterCooler", "HeaterCooler Class", "HeaterCooler",
     "Heater or cooler using heat duty or outlet temperature", true},
    {"{9225C5F7-9D3C-4E12-AAD1-04EF5976F49E}", "VELT_MORV.InformationCalculator", "InformationCalculator Class",
     "InformationCalculator", "Unit operation for calculating information from other information", false},
    {"{840B2531-CC47-447D-9118-D5AAFC9945F6}", "VELT_MORV.Mixer", "Mixer Class", "Mixer",
     "Mixer - unit operation to adiabatically mix 2 or more inlet streams into a single outlet", true},
    {"{D814E188-6E48-4B6F-925B-CDDD70C1120F}", "VELT_MORV.Splitter", "Splitter Class", "Splitter",
     "Splitter - unit operation to split input stream into 2 or more output streams using split fractions", true},
    {"{F297F178-F798-4713-A70A-EB3A548B7727}", "VELT_MORV.Valve", "Valve Class", "Valve",
     "Valve. Model using pressure difference and pH flash.", true},
};

struct Category {
  const char* id;
  bool ofThermodynamics;
};

constexpr Category kCategories[] = {{"{678C09A1-7D66-11D2-A67D-00105A42887F}", false},
                                    {"{678C09A5-7D66-11D2-A67D-00105A42887F}", false},
                                    {"{4150C28A-EE06-403F-A871-87AFEC38A249}", true},
                                    {"{0D562DC8-EA8E-4210-AB39-B66513C0CD09}", true},
                                    {"{4667023A-5A8E-4CCA-AB6D-9D78C5112FED}", true}};

constexpr const char* kTypeLibrary = "{EC39714A-2F1E-42C4-8DC6-FEC9C07E73D6}";
constexpr const char* kClassesFolder = "Software\\Classes";
constexpr const char* kAnyText = "<any text>";
constexpr HRESULT kRegistrationFailed = static_cast<HRESULT>(0x80040201u);

/// For whom the library registers, and how it is told so: by the entry points that tell nothing, or by a
/// target.
struct Scope {
  const char* name;
  HKEY root;
  const wchar_t* target;
};

const Scope kScopes[] = {{"machine", HKEY_LOCAL_MACHINE, nullptr}, {"user", HKEY_CURRENT_USER, L"user"}};

std::string LibraryFile() {
  wchar_t path[1024] = {};
  return com::ToUtf8(path, GetFullPathNameW(com::ToBstr(MORVELAN_LIBRARY).Get(), 1024, path, nullptr));
}

/// The version of the library's file: "1.0.0", as its numbers and its text have it.
std::string FileVersion() {
  const com::Bstr file = com::ToBstr(LibraryFile());
  std::vector<char> resource(GetFileVersionInfoSizeW(file.Get(), nullptr));
  VS_FIXEDFILEINFO* numbers = nullptr;
  wchar_t* text = nullptr;
  UINT length = 0;
  if (!GetFileVersionInfoW(file.Get(), 0, static_cast<DWORD>(resource.size()), resource.data()) ||
      !VerQueryValueW(resource.data(), L"\\", reinterpret_cast<void**>(&numbers), &length) ||
      !VerQueryValueW(resource.data(), L"\\StringFileInfo\\040904b0\\FileVersion", reinterpret_cast<void**>(&text),
                      &length))
    return "no version";
  const std::string version = std::to_string(HIWORD(numbers->dwFileVersionMS)) + '.' +
                              std::to_string(LOWORD(numbers->dwFileVersionMS)) + '.' +
                              std::to_string(HIWORD(numbers->dwFileVersionLS));
  EXPECT_EQ(com::ToUtf8(text, length - 1), version);
  return version;
}

/// Adds a value with the keys that lead to it; a value without a name is the key's own.
void Expect(RegistrySnapshot& wanted, const std::string& key, const std::string& name, const std::string& text) {
  for (std::size_t end = key.find('\\'); end != std::string::npos; end = key.find('\\', end + 1))
    wanted.emplace(PlaceOf(key.substr(0, end), ""), "");
  wanted.emplace(PlaceOf(key, ""), "");
  wanted[PlaceOf(key, name)] = text;
}

void ExpectClass(RegistrySnapshot& wanted, const std::string& root, const ExpectedClass& row) {
  const std::string versioned = std::string(row.progId) + ".1";
  for (const std::string& progId : {versioned, std::string(row.progId)}) {
    Expect(wanted, root + progId, "", row.className);
    Expect(wanted, root + progId + "\\CLSID", "", row.clsid);
  }
  Expect(wanted, root + row.progId + "\\CurVer", "", versioned);
  const std::string key = root + "CLSID\\" + row.clsid;
  Expect(wanted, key, "", row.className);
  Expect(wanted, key + "\\ProgID", "", versioned);
  Expect(wanted, key + "\\VersionIndependentProgID", "", row.progId);
  Expect(wanted, key + "\\InprocServer32", "", LibraryFile());
  Expect(wanted, key + "\\InprocServer32", "ThreadingModel", "Apartment");
  Expect(wanted, key + "\\TypeLib", "", kTypeLibrary);
  Expect(wanted, key + "\\Version", "", "1.0");
  Expect(wanted, key + "\\Programmable", "", "");
  for (const Category& category : kCategories)
    if (row.thermodynamics || !category.ofThermodynamics)
      Expect(wanted, key + "\\Implemented Categories\\" + category.id, "", "");
  const std::pair<const char*, std::string> description[] = {
      {"Name", row.name},      {"Description", row.description},
      {"CapeVersion", "1.0"},  {"ComponentVersion", FileVersion()},
      {"VendorURL", kAnyText}, {"HelpURL", kAnyText},
      {"About", kAnyText}};
  for (const auto& [name, text] : description) Expect(wanted, key + "\\CapeDescription", name, text);
}

/// A registry with all that registration adds to it, below "machine" or "user".
RegistrySnapshot Registered(const RegistrySnapshot& before, const std::string& where) {
  RegistrySnapshot wanted = before;
  const std::string root = where + '\\';
  for (const ExpectedClass& row : kClasses) ExpectClass(wanted, root, row);
  const std::string file = LibraryFile();
  const std::string version = root + "TypeLib\\" + kTypeLibrary + "\\1.0";
  Expect(wanted, version, "", "VELT MORVELAN 1.0 Type Library");
  Expect(wanted, version + "\\0\\win64", "", file);
  Expect(wanted, version + "\\FLAGS", "", "0");
  Expect(wanted, version + "\\HELPDIR", "", file.substr(0, file.rfind('\\')));
  return wanted;
}

/// Puts "<any text>" for the texts of which it is expected alone that there is one.
RegistrySnapshot WithAnyTexts(RegistrySnapshot written, const RegistrySnapshot& wanted) {
  for (const auto& [place, text] : wanted)
    if (const auto found = written.find(place); text == kAnyText && found != written.end() && !found->second.empty())
      found->second = kAnyText;
  return written;
}

/// A registry where the library is not registered, but somebody else is, with names like the library's.
class RegistryTest : public testing::Test {
 protected:
  RegistryTest() {
    // For the user, too: a run may have been interrupted.
    for (const Scope& scope : kScopes) EXPECT_EQ(Install(false, scope), S_OK);
    for (const auto& [root, key] : Strangers())
      EXPECT_EQ(RegSetKeyValueW(root, com::ToBstr(key).Get(), L"theirs", REG_SZ, L"text", 10), ERROR_SUCCESS);
  }
  ~RegistryTest() override {
    for (const auto& [root, key] : Strangers()) RegDeleteTreeW(root, com::ToBstr(key).Get());
    EXPECT_EQ(library.Call("DllRegisterServer"), S_OK) << "for the other tests";
  }

  static std::vector<std::pair<HKEY, std::string>> Strangers() {
    std::vector<std::pair<HKEY, std::string>> keys;
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
      for (const char* key :
           {"VELT_MORV.Stranger", "VELT_MORV.NoOperation.10", "CLSID\\{A158F66A-9B33-489F-A4D1-DCFE3BFD26B1}",
            "TypeLib\\{EC39714A-2F1E-42C4-8DC6-FEC9C07E73D7}"})
        keys.emplace_back(root, std::string(kClassesFolder) + '\\' + key);
    return keys;
  }
  HRESULT Install(bool install, const wchar_t* target) const {
    return library.Call("DllInstall", BOOL{install}, LPCWSTR{target});
  }
  HRESULT Install(bool install, const Scope& scope) const {
    return scope.target ? Install(install, scope.target)
                        : library.Call(install ? "DllRegisterServer" : "DllUnregisterServer");
  }

  const LoadedLibrary library{MORVELAN_LIBRARY};
};

TEST_F(RegistryTest, KnowsEveryClass) {
  std::set<std::string> known;
  for (const ExpectedClass& row : kClasses) known.insert(row.progId);
  for (const server::UnitClass& unitClass : server::UnitClasses())
    EXPECT_TRUE(known.contains(unitClass.progId)) << unitClass.progId << " has no row";
}

TEST_F(RegistryTest, TakesBackAllThatItWritesAndNothingElse) {
  const RegistrySnapshot before = TakeSnapshot();
  const std::set<std::string> kShared = {"machine|", "machine\\clsid|", "machine\\typelib|",
                                         "user|",    "user\\clsid|",    "user\\typelib|"};
  for (const Scope& scope : kScopes) {
    SCOPED_TRACE(scope.name);
    for (const auto& [place, text] : Registered({}, scope.name))
      EXPECT_TRUE(kShared.contains(place) || !before.contains(place)) << place << " was left by an unregistration";
    const RegistrySnapshot wanted = Registered(before, scope.name);
    for (const char* time : {"first", "second"}) EXPECT_EQ(Install(true, scope), S_OK) << time;
    EXPECT_EQ(Difference(wanted, WithAnyTexts(TakeSnapshot(), wanted)), "") << "registered";
    for (const char* time : {"first", "second"}) EXPECT_EQ(Install(false, scope), S_OK) << time;
    EXPECT_EQ(Difference(before, TakeSnapshot()), "") << "unregistered";
  }
}

TEST_F(RegistryTest, RefusesUnknownTargets) {
  const RegistrySnapshot before = TakeSnapshot();
  for (const wchar_t* target : {L"everybody", L"user ", L"users"})
    for (const bool install : {true, false}) EXPECT_EQ(Install(install, target), E_INVALIDARG);
  EXPECT_EQ(Difference(before, TakeSnapshot()), "");
}

// A volatile key takes values, but no keys that last.
TEST_F(RegistryTest, LeavesNothingHalfDone) {
  const std::string clsid = std::end(kClasses)[-1].clsid;
  const com::Bstr last = com::ToBstr(std::string(kClassesFolder) + "\\CLSID\\" + clsid);
  const com::Bstr earlier = com::ToBstr(std::string(kClassesFolder) + '\\' + kClasses[0].progId);
  for (const Scope& scope : kScopes) {
    SCOPED_TRACE(scope.name);
    HKEY key = nullptr;
    ASSERT_EQ(
        RegCreateKeyExW(scope.root, last.Get(), 0, nullptr, REG_OPTION_VOLATILE, KEY_READ, nullptr, &key, nullptr),
        ERROR_SUCCESS);
    RegCloseKey(key);
    const com::ScopeExit restore([&] {
      for (const com::Bstr* path : {&last, &earlier}) RegDeleteTreeW(scope.root, path->Get());
    });
    EXPECT_EQ(RegSetKeyValueW(scope.root, earlier.Get(), nullptr, REG_SZ, L"old", 8), ERROR_SUCCESS);
    const RegistrySnapshot before = TakeSnapshot();
    HRESULT outcome = S_OK;
    const std::string shown = MessageBoxesOf([&] { outcome = Install(true, scope); });
    EXPECT_EQ(outcome, kRegistrationFailed);
    EXPECT_TRUE(shown.starts_with("MORVELAN registration: ")) << shown;
    EXPECT_NE(shown.find("\\CLSID\\" + clsid + "\\ProgID"), std::string::npos) << shown;
    EXPECT_EQ(Difference(before, TakeSnapshot()), "");
  }
}

TEST_F(RegistryTest, LetsHostsFindItsClassesByName) {
  for (const wchar_t* target : {static_cast<const wchar_t*>(nullptr), L"", L"machine"}) {
    EXPECT_EQ(Install(true, target), S_OK);
    CLSID clsid{};
    for (const ExpectedClass& row : kClasses) {
      SCOPED_TRACE(row.progId);
      for (const char* version : {"", ".1"}) {
        EXPECT_EQ(CLSIDFromProgID(com::ToBstr(std::string(row.progId) + version).Get(), &clsid), S_OK);
        EXPECT_EQ(com::ToText(clsid), row.clsid);
      }
      LPOLESTR progId = nullptr;
      EXPECT_EQ(ProgIDFromCLSID(clsid, &progId), S_OK);
      EXPECT_EQ(com::ToUtf8(progId, progId ? std::wcslen(progId) : 0), std::string(row.progId) + ".1");
      CoTaskMemFree(progId);
    }
    EXPECT_EQ(Install(false, target), S_OK);
    for (const ExpectedClass& row : kClasses)
      EXPECT_NE(CLSIDFromProgID(com::ToBstr(row.progId).Get(), &clsid), S_OK) << row.progId;
  }
}

TEST_F(RegistryTest, LetsHostsFindItsClassesByCategory) {
  com::Ref<ICatInformation> manager;
  ASSERT_EQ(CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER, __uuidof(ICatInformation),
                             reinterpret_cast<void**>(manager.Put())),
            S_OK);
  for (const bool registered : {true, false}) {
    EXPECT_EQ(library.Call(registered ? "DllRegisterServer" : "DllUnregisterServer"), S_OK);
    for (const Category& category : kCategories) {
      SCOPED_TRACE(category.id);
      GUID id{};
      EXPECT_EQ(CLSIDFromString(com::ToBstr(category.id).Get(), &id), S_OK);
      com::Ref<IEnumGUID> classIds;
      ASSERT_EQ(manager->EnumClassesOfCategories(1, &id, 0, nullptr, classIds.Put()), S_OK);
      std::set<std::string> found, wanted;
      for (CLSID clsid; classIds->Next(1, &clsid, nullptr) == S_OK;) found.insert(com::ToText(clsid));
      for (const ExpectedClass& row : kClasses)
        if (registered && (row.thermodynamics || !category.ofThermodynamics)) wanted.insert(row.clsid);
      EXPECT_EQ(found, wanted);
    }
  }
}

}  // namespace morvelan::test::registry
