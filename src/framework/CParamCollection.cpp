#include "framework/CParamCollection.h"

#include "framework/BaseUnit.h"
#include "framework/CollectionItem.h"
#include "morvelan.h"

namespace morvelan {
namespace {

constexpr CollectionTexts kParameterTexts = {
    {"invalid parameter specification", "expected a name or an integer for a parameter identifier"},
    {"parameter index out of range", "parameter index out of range"},
    {"empty string", "empty string"},
    {"invalid parameter name", "parameter name not found"},
    {"failed to obtain interface", "failed to obtain IDispatch interface from parameter"},
};

}  // namespace

CParamCollection::CParamCollection(BaseUnit* owner)
    : Implements("Parameter Collection", "Parameters of the unit", __uuidof(DCollection)), unit(owner) {}

BaseUnit& CParamCollection::Unit() const {
  if (!unit) throw Failure(UnitError{"internal error", "internal error: unit not set for param collection", {}, {}});
  unit->RequireInitialized();
  return *unit;
}

HRESULT CParamCollection::Count(LONG* count) {
  if (!count) return E_POINTER;
  *count = 0;
  return Guard("Count", "ICapeCollection",
               [&] { *count = static_cast<LONG>(Unit().Declarations().parameters.All().size()); });
}

HRESULT CParamCollection::Item(VARIANT id, IDispatch** item) {
  if (!item) return E_POINTER;
  *item = nullptr;
  return Guard("Item", "ICapeCollection", [&] {
    const auto parameters = Unit().Declarations().parameters.All();
    const auto nameOf = [&](std::size_t i) { return parameters[i]->ComponentName(); };
    const std::size_t index = FindItem(id, parameters.size(), nameOf, kParameterTexts);
    // The unit may have a value to bring up to date before the host reads it.
    if (index < Unit().Declarations().parameters.List().size()) Unit().ParameterRequested(index);
    *item = HandOut(parameters[index], kParameterTexts);
  });
}

}  // namespace morvelan
