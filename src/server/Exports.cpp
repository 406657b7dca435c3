// The entry points through which hosts and installers use the library.

#include <exception>
#include <new>

#include "server/ClassFactory.h"
#include "server/Registration.h"
#include "ui/MessageBox.h"

using namespace morvelan;

namespace {

constexpr HRESULT kRegistrationFailed = static_cast<HRESULT>(0x80040201u);  // SELFREG_E_CLASS

template <class Action>
HRESULT RunRegistration(Action action) {
  try {
    action();
    return S_OK;
  } catch (const std::exception& error) {
    ui::ShowMessageBox(error.what(), "MORVELAN registration:", ui::Icon::kStop);
    return kRegistrationFailed;
  }
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  for (const server::UnitClass& unitClass : server::UnitClasses()) {
    if (!(unitClass.clsid == clsid)) continue;
    try {
      return com::Make<server::ClassFactory>(unitClass)->QueryInterface(iid, object);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return com::ModuleUses() == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() { return RunRegistration(server::RegisterClasses); }

STDAPI DllUnregisterServer() { return RunRegistration(server::UnregisterClasses); }
