// Published classes and object creation through the registry and the COM loader.

#include "com/Classes.h"

#include <stdexcept>

#include <comcat.h>

#include "com/SystemMessage.h"
#include "com/Text.h"

namespace morvelan::com {
namespace {

/// The category under which libraries publish unit operations.
constexpr GUID kUnitOperations = {0x678c09a5, 0x7d66, 0x11d2, {0xa6, 0x7d, 0x00, 0x10, 0x5a, 0x42, 0x88, 0x7f}};

/// The text of a value below the class's key, or empty. A null name is the key's own value.
std::string ReadClassText(const std::string& key, const wchar_t* name) {
  const Bstr path = ToBstr("CLSID\\" + key);
  DWORD bytes = 0;
  if (RegGetValueW(HKEY_CLASSES_ROOT, path.Get(), name, RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
    return {};
  std::wstring text(bytes / sizeof(wchar_t), L'\0');
  if (RegGetValueW(HKEY_CLASSES_ROOT, path.Get(), name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes) != ERROR_SUCCESS)
    return {};
  return ToUtf8(text.data(), std::wstring(text.c_str()).size());
}

PublishedClass Describe(const CLSID& clsid) {
  const std::string key = ToText(clsid);
  return {.clsid = clsid,
          .progId = ReadClassText(key + "\\VersionIndependentProgID", nullptr),
          .name = ReadClassText(key + "\\CapeDescription", L"Name"),
          .description = ReadClassText(key + "\\CapeDescription", L"Description")};
}

[[noreturn]] void Fail(const std::string& what, HRESULT hr) {
  throw std::runtime_error(what + ": " + SystemMessage(hr).value_or("error code " + std::to_string(hr)));
}

}  // namespace

std::vector<PublishedClass> PublishedClasses() {
  Ref<ICatInformation> categories;
  HRESULT hr = CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(ICatInformation), reinterpret_cast<void**>(categories.Put()));
  if (FAILED(hr)) Fail("The registered classes can't be listed", hr);
  GUID category = kUnitOperations;
  Ref<IEnumGUID> classIds;
  hr = categories->EnumClassesOfCategories(1, &category, 0, nullptr, classIds.Put());
  if (FAILED(hr)) Fail("The registered unit operations can't be listed", hr);
  std::vector<PublishedClass> classes;
  CLSID clsid;
  while (classIds->Next(1, &clsid, nullptr) == S_OK) classes.push_back(Describe(clsid));
  return classes;
}

Ref<IUnknown> CreateObject(const CLSID& clsid) {
  Ref<IUnknown> object;
  const HRESULT hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown),
                                      reinterpret_cast<void**>(object.Put()));
  if (FAILED(hr)) Fail("Class " + ToText(clsid) + " can't be created", hr);
  return object;
}

}  // namespace morvelan::com
