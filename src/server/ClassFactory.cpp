#include "server/ClassFactory.h"

#include <atomic>
#include <new>

#include "ui/MessageBox.h"

namespace morvelan::server {

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IClassFactory);
  *object = known ? static_cast<IClassFactory*>(this) : nullptr;
  if (!known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (outer) return CLASS_E_NOAGGREGATION;
  try {
    const com::Ref<BaseUnit> unit = unitClass.create();
    unit->SetClassId(unitClass.clsid);
    return unit->QueryInterface(iid, object);
  } catch (const std::bad_alloc&) {
    ui::ShowMessageBox("out of memory", "MORVELAN critical:", ui::Icon::kStop);
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

HRESULT ClassFactory::LockServer(BOOL lock) {
  static std::atomic<long> locks = 0;
  if (lock) {
    ++locks;
    ++com::ModuleUses();
    return S_OK;
  }
  // A host that unlocks once too often must not take away what keeps its objects' code loaded.
  if (--locks < 0) {
    ++locks;
    return E_UNEXPECTED;
  }
  --com::ModuleUses();
  return S_OK;
}

}  // namespace morvelan::server
