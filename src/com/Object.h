#pragma once

#include <atomic>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "com/Dispatch.h"
#include "com/Ref.h"

namespace morvelan::com {

/// The number of objects of this module that are alive, and the locks that hosts hold on it.
[[nodiscard]] std::atomic<long>& ModuleUses();

/// One of an object's dispatch interfaces.
struct Face {
  GUID iid;
  void* object;
};

/// An interface as objects derive from it: dispatch interfaces answer through the type library.
template <class Interface>
using AsBase = std::conditional_t<std::is_base_of_v<IDispatch, Interface>, Dispatched<Interface>, Interface>;

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
  /// Appends the object's dispatch interfaces, the base class's first.
  virtual void AppendFaces(std::vector<Face>&) {}

 private:
  std::atomic<ULONG> references = 1;
};

/// Adds interfaces to an object class: `class X : public Implements<Parent, IFirst, ISecond>`, where Parent
/// is another object class, or ObjectCore. An interface that is not found here is looked for in Parent.
template <class Parent, class... Interfaces>
class Implements : public Parent, public AsBase<Interfaces>... {
 public:
  using Parent::Parent;

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = FindInterface(iid);
    if (!*object) return E_NOINTERFACE;
    this->AddReference();
    return S_OK;
  }
  ULONG AddRef() override { return this->AddReference(); }
  ULONG Release() override { return this->DropReference(); }

 protected:
  void* FindInterface(REFIID iid) override {
    void* found = nullptr;
    ((iid == __uuidof(Interfaces) ? (found = static_cast<Interfaces*>(this)) : nullptr), ...);
    if (!found) found = Parent::FindInterface(iid);
    if constexpr (std::is_same_v<Parent, ObjectCore>) {
      using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;
      if (!found && (iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch))) found = static_cast<First*>(this);
    }
    return found;
  }

  void AppendFaces(std::vector<Face>& faces) override {
    Parent::AppendFaces(faces);
    const auto append = [&]<class Interface>(Interface* face) {
      if constexpr (std::is_base_of_v<IDispatch, Interface>) faces.push_back({__uuidof(Interface), face});
    };
    (append(static_cast<Interfaces*>(this)), ...);
  }
};

/// A new object, held by its first reference.
template <class T, class... Args>
[[nodiscard]] Ref<T> Make(Args&&... args) {
  return Ref<T>::Attach(new T(std::forward<Args>(args)...));
}

}  // namespace morvelan::com
