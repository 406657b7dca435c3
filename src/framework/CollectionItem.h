#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "com/Ref.h"
#include "com/Values.h"
#include "errors/Failure.h"

namespace morvelan {

/// A failure's name and description.
struct ErrorPair {
  const char* name;
  const char* description;
};

/// How a collection words its refusals.
struct CollectionTexts {
  ErrorPair invalidId;
  ErrorPair outOfRange;
  ErrorPair emptyName;
  ErrorPair unknownName;
  ErrorPair noInterface;
};

[[nodiscard]] inline Failure CollectionFailure(const ErrorPair& pair, std::string_view scope = "Item") {
  return Failure(UnitError{pair.name, pair.description, scope, "ICapeCollection"});
}

/// The position in a collection of `count` items that a host's identifier means: a name, compared without
/// regard to case, or a 1-based index of any numeric type. `nameOf(i)` gives the name of item i. Throws
/// Failure.
template <class NameOf>
std::size_t FindItem(const VARIANT& id, std::size_t count, NameOf&& nameOf, const CollectionTexts& texts) {
  const VARIANT v = com::Borrow(id);
  if (v.vt == VT_BSTR) {
    const std::string wanted = com::ToUtf8(v.bstrVal);
    if (wanted.empty()) throw CollectionFailure(texts.emptyName);
    for (std::size_t i = 0; i < count; ++i)
      if (com::EqualNoCase(nameOf(i), wanted)) return i;
    throw CollectionFailure(texts.unknownName);
  }
  std::int32_t index = 0;
  try {
    index = com::ReadInteger(v);
  } catch (const com::ValueError&) {
    throw CollectionFailure(texts.invalidId);
  }
  if (index < 1 || static_cast<std::size_t>(index) > count) throw CollectionFailure(texts.outOfRange);
  return static_cast<std::size_t>(index) - 1;
}

/// An object's dispatch interface as a collection hands it out.
template <class Object>
IDispatch* HandOut(const com::Ref<Object>& object, const CollectionTexts& texts) {
  com::Ref<IDispatch> dispatch = object.template As<IDispatch>();
  if (!dispatch) throw CollectionFailure(texts.noInterface);
  return dispatch.Detach();
}

}  // namespace morvelan
