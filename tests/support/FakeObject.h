#pragma once

#include <memory>
#include <utility>

#include "cape_open.h"
#include "com/Object.h"
#include "com/Values.h"
#include "tests/support/HostScript.h"

namespace morvelan::test {

/// Root of the fake host's objects: they share a script, are counted, and explain failures if the script says so.
class FakeObject : public com::Implements<com::ObjectCore, ICapeIdentification, ECapeRoot, ECapeUser> {
 public:
  FakeObject(std::shared_ptr<HostScript> hostScript, std::string objectName)
      : script(std::move(hostScript)), name(std::move(objectName)) {
    ++script->liveObjects;
  }
  ~FakeObject() override { --script->liveObjects; }

  HRESULT get_ComponentName(BSTR* value) override { return Give(name, value); }
  HRESULT put_ComponentName(BSTR) override { return E_NOTIMPL; }
  HRESULT get_ComponentDescription(BSTR*) override { return E_NOTIMPL; }
  HRESULT put_ComponentDescription(BSTR) override { return E_NOTIMPL; }
  HRESULT get_name(BSTR* value) override { return Give(script->errorName, value); }
  HRESULT get_code(LONG*) override { return E_NOTIMPL; }
  HRESULT get_description(BSTR* value) override { return Give(script->errorDescription, value); }
  HRESULT get_scope(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_interfaceName(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_operation(BSTR*) override { return E_NOTIMPL; }
  HRESULT get_moreInfo(BSTR*) override { return E_NOTIMPL; }

  /// The references held on this object, the caller's included.
  ULONG References() {
    AddRef();
    return Release();
  }

  std::shared_ptr<HostScript> script;
  std::string name;

 protected:
  void* FindInterface(REFIID iid) override {
    const bool isError = iid == __uuidof(ECapeRoot) || iid == __uuidof(ECapeUser);
    if (isError && !script->offersErrors) return nullptr;
    return Implements::FindInterface(iid);
  }

  /// Asking for an offered interface is a call of its own, which may fail.
  template <class Interface>
  bool Refuses(REFIID iid, const char* label, bool offers = true) {
    return iid == __uuidof(Interface) && (!offers || FAILED(script->Call(label)));
  }

  static HRESULT Give(const std::string& text, BSTR* value) {
    if (!value) return E_POINTER;
    *value = com::ToBstr(text).Detach();
    return S_OK;
  }
};

}  // namespace morvelan::test
