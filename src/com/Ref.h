#pragma once

#include <utility>

#include "com/Platform.h"

namespace morvelan::com {

/// A counted reference to a COM object.
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  Ref(const Ref& other) : Ref(Share(other.object)) {}
  Ref(Ref&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
  template <class Derived>
  Ref(const Ref<Derived>& other) : Ref(Share(other.Get())) {}
  ~Ref() { Reset(); }

  Ref& operator=(Ref other) noexcept {
    std::swap(object, other.object);
    return *this;
  }

  /// Takes over a reference that the caller owns.
  [[nodiscard]] static Ref Attach(T* owned) {
    Ref result;
    result.object = owned;
    return result;
  }

  /// Adds a reference of its own.
  [[nodiscard]] static Ref Share(T* shared) {
    if (shared) shared->AddRef();
    return Attach(shared);
  }

  void Reset() {
    if (T* released = std::exchange(object, nullptr)) released->Release();
  }

  /// Gives the reference up to the caller, as an out-parameter of type T** or of a base of T takes it.
  [[nodiscard]] T* Detach() { return std::exchange(object, nullptr); }

  /// For a call that hands out a reference through an out-parameter; what was held is released first.
  [[nodiscard]] T** Put() {
    Reset();
    return &object;
  }

  /// The object's interface `U`, or null when it has none. A failing query's code goes to `failure`.
  template <class U>
  [[nodiscard]] Ref<U> As(HRESULT* failure = nullptr) const {
    Ref<U> result;
    if (!object) {
      if (failure) *failure = E_POINTER;
      return result;
    }
    void* found = nullptr;
    const HRESULT hr = object->QueryInterface(__uuidof(U), &found);
    if (SUCCEEDED(hr) && found) return Ref<U>::Attach(static_cast<U*>(found));
    if (failure) *failure = FAILED(hr) ? hr : E_NOINTERFACE;
    return result;
  }

  T* Get() const { return object; }
  T* operator->() const { return object; }
  T& operator*() const { return *object; }
  explicit operator bool() const { return object != nullptr; }

 private:
  T* object = nullptr;
};

/// The interface `U` of an object that is not owned here; see Ref::As.
template <class U, class T>
[[nodiscard]] Ref<U> Query(T* object, HRESULT* failure = nullptr) {
  return Ref<T>::Share(object).template As<U>(failure);
}

}  // namespace morvelan::com
