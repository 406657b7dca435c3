#pragma once

#include <string>
#include <utility>

#include "com/Ref.h"
#include "errors/ErrorText.h"
#include "errors/Failure.h"

namespace morvelan {

/// Checks the outcome of a call on a host's object. A failed one throws what `explain` makes of the host's
/// error text: a callable that takes the text and returns a Failure, called only then.
template <class Explain>
void CheckHost(HRESULT outcome, IUnknown* object, Explain&& explain) {
  if (FAILED(outcome)) throw std::forward<Explain>(explain)(ErrorText(object, outcome));
}

/// The interface `Interface` of a host's object. One that has none throws what `explain` makes of the host's error
/// text.
template <class Interface, class Object, class Explain>
[[nodiscard]] com::Ref<Interface> InterfaceOf(Object* object, Explain&& explain) {
  HRESULT failure = S_OK;
  com::Ref<Interface> found = com::Query<Interface>(object, &failure);
  if (!found) throw std::forward<Explain>(explain)(ErrorText(object, failure));
  return found;
}

}  // namespace morvelan
