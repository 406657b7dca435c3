// The entry points through which hosts and installers use the library.

#include <exception>
#include <new>

#include "com/Dispatch.h"
#include "server/ClassFactory.h"
#include "server/HostDetection.h"
#include "server/Installation.h"
#include "server/Registration.h"
#include "ui/MessageBox.h"

using namespace morvelan;

namespace {

// The host that may have no visible active window when it calls a unit.
constexpr int kHostWithHiddenWindow = 1;

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  try {
    if (server::DetectHost() == kHostWithHiddenWindow) ui::SeekOwnerWindow();
    for (const server::UnitClass& unitClass : server::UnitClasses())
      if (unitClass.clsid == clsid) return com::Make<server::ClassFactory>(unitClass)->QueryInterface(iid, object);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  if (com::ModuleUses() != 0) return S_FALSE;
  com::ReleaseTypeLibrary();
  return S_OK;
}

STDAPI DllRegisterServer() { return server::Install(server::RegisterClasses); }

STDAPI DllUnregisterServer() { return server::Install(server::UnregisterClasses); }
