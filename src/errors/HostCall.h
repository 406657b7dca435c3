#pragma once

#include <string>
#include <utility>

#include "errors/ErrorText.h"
#include "errors/Failure.h"

namespace morvelan {

/// Checks the outcome of a call on a host's object. A failed one throws what `explain` makes of the host's
/// error text: a callable that takes the text and returns a Failure, called only then.
template <class Explain>
void CheckHost(HRESULT outcome, IUnknown* object, Explain&& explain) {
  if (FAILED(outcome)) throw std::forward<Explain>(explain)(ErrorText(object, outcome));
}

}  // namespace morvelan
