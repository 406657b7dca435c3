// Registration: hosts find what it writes, and it leaves no trace when it is undone or fails. All that it writes is
// compared with the table of units by registration.sh.

#include <gtest/gtest.h>

#include <cwchar>
#include <set>
#include <sstream>
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

namespace morvelan::test::registry {

struct Category {
  const char* id;
  bool ofThermodynamics;
};

constexpr Category kCategories[] = {{"{678C09A1-7D66-11D2-A67D-00105A42887F}", false},
                                    {"{678C09A5-7D66-11D2-A67D-00105A42887F}", false},
                                    {"{4150C28A-EE06-403F-A871-87AFEC38A249}", true},
                                    {"{0D562DC8-EA8E-4210-AB39-B66513C0CD09}", true},
                                    {"{4667023A-5A8E-4CCA-AB6D-9D78C5112FED}", true}};

constexpr const char* kClassesFolder = "Software\\Classes";
constexpr HRESULT kRegistrationFailed = static_cast<HRESULT>(0x80040201u);

/// For whom the library registers, and how it is told so: by the entry points that tell nothing, or by a
/// target.
struct Scope {
  const char* name;
  HKEY root;
  const wchar_t* target;
};

const Scope kScopes[] = {{"machine", HKEY_LOCAL_MACHINE, nullptr}, {"user", HKEY_CURRENT_USER, L"user"}};

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

TEST_F(RegistryTest, TakesBackAllThatItWritesAndNothingElse) {
  const RegistrySnapshot before = TakeSnapshot();
  for (const Scope& scope : kScopes) {
    SCOPED_TRACE(scope.name);
    for (const char* time : {"first", "second"}) EXPECT_EQ(Install(true, scope), S_OK) << time;
    std::istringstream written(Difference(before, TakeSnapshot()));
    int count = 0;
    for (std::string line; std::getline(written, line); ++count)
      EXPECT_TRUE(line.starts_with(std::string("+ ") + scope.name + '\\')) << line;
    EXPECT_GT(count, 100);
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
  const std::string clsid = com::ToText(server::UnitClasses().back().clsid);
  const com::Bstr last = com::ToBstr(std::string(kClassesFolder) + "\\CLSID\\" + clsid);
  const com::Bstr earlier = com::ToBstr(std::string(kClassesFolder) + '\\' + server::UnitClasses()[0].progId);
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
    for (const server::UnitClass& row : server::UnitClasses()) {
      SCOPED_TRACE(row.progId);
      for (const char* version : {"", ".1"}) {
        EXPECT_EQ(CLSIDFromProgID(com::ToBstr(std::string(row.progId) + version).Get(), &clsid), S_OK);
        EXPECT_TRUE(clsid == row.clsid) << com::ToText(clsid);
      }
      LPOLESTR progId = nullptr;
      EXPECT_EQ(ProgIDFromCLSID(clsid, &progId), S_OK);
      EXPECT_EQ(com::ToUtf8(progId, progId ? std::wcslen(progId) : 0), std::string(row.progId) + ".1");
      CoTaskMemFree(progId);
    }
    EXPECT_EQ(Install(false, target), S_OK);
    for (const server::UnitClass& row : server::UnitClasses())
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
      for (const server::UnitClass& row : server::UnitClasses())
        if (registered && (row.consumesThermodynamics || !category.ofThermodynamics))
          wanted.insert(com::ToText(row.clsid));
      EXPECT_EQ(found, wanted);
    }
  }
}

}  // namespace morvelan::test::registry
