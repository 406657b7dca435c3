#pragma once

#include <algorithm>
#include <atomic>
#include <tuple>
#include <type_traits>
#include <utility>

#include "com/Ref.h"

namespace morvelan::com {

/// The number of objects of this module that are alive, and the locks that hosts hold on it.
[[nodiscard]] std::atomic<long>& ModuleUses();

/// The reference count of every object; classes derive from it through `Implements`.
class ObjectCore {
 public:
  ObjectCore() { ++ModuleUses(); }
  ObjectCore(const ObjectCore&) = delete;
  ObjectCore& operator=(const ObjectCore&) = delete;
  virtual ~ObjectCore() { --ModuleUses(); }

 protected:
  ULONG AddReference() { return ++references; }
  ULONG DropReference() {
    const ULONG left = --references;
    if (left == 0) delete this;
    return left;
  }
  virtual void* FindInterface(REFIID) { return nullptr; }

 private:
  std::atomic<ULONG> references = 1;
};

/// Adds interfaces to an object class: `class X : public Implements<Base, IFirst, ISecond>`, where Base is
/// another object class, or ObjectCore. An interface that is not found here is looked for in Base.
template <class Base, class... Interfaces>
class Implements : public Base, public Interfaces... {
 public:
  using Base::Base;

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = FindInterface(iid);
    if (!*object) return E_NOINTERFACE;
    this->AddReference();
    return S_OK;
  }
  ULONG AddRef() override { return this->AddReference(); }
  ULONG Release() override { return this->DropReference(); }

  // Callers that bind through the virtual table need no names; late binding needs a type library at run time.
  HRESULT GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (!info) return E_POINTER;
    *info = nullptr;
    return DISP_E_BADINDEX;
  }
  HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT count, LCID, DISPID* ids) override {
    if (!ids) return E_POINTER;
    std::fill_n(ids, count, -1);
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return DISP_E_MEMBERNOTFOUND;
  }

 protected:
  void* FindInterface(REFIID iid) override {
    void* found = nullptr;
    ((iid == __uuidof(Interfaces) ? (found = static_cast<Interfaces*>(this)) : nullptr), ...);
    if (!found) found = Base::FindInterface(iid);
    if constexpr (std::is_same_v<Base, ObjectCore>) {
      using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;
      if (!found && (iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch)))
        found = static_cast<First*>(this);
    }
    return found;
  }
};

/// A new object, held by its first reference.
template <class T, class... Args>
[[nodiscard]] Ref<T> Make(Args&&... args) {
  return Ref<T>::Attach(new T(std::forward<Args>(args)...));
}

}  // namespace morvelan::com
