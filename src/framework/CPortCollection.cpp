#include "framework/CPortCollection.h"

#include "framework/BaseUnit.h"
#include "framework/CollectionItem.h"
#include "morvelan.h"

namespace morvelan {
namespace {

constexpr ErrorPair kNotFound = {"invalid index or id", "could not find port, invalid index or id"};
constexpr CollectionTexts kPortTexts = {
    kNotFound,
    kNotFound,
    kNotFound,
    kNotFound,
    {"failed to get interface", "failed to get ICapeUnitPort port interface: No such interface supported"}};

}  // namespace

CPortCollection::CPortCollection(BaseUnit* owner)
    : Implements("Port Collection", "Ports of the unit", __uuidof(DCollection)), unit(owner) {}

BaseUnit& CPortCollection::Unit() const {
  if (!unit) throw Failure(UnitError{"internal error", "internal error: unit not set for port collection", {}, {}});
  unit->RequireInitialized();
  return *unit;
}

HRESULT CPortCollection::Count(LONG* count) {
  if (!count) return E_POINTER;
  *count = 0;
  return Guard("Count", "ICapeCollection",
               [&] { *count = static_cast<LONG>(Unit().Declarations().ports.All().size()); });
}

HRESULT CPortCollection::Item(VARIANT id, IDispatch** item) {
  if (!item) return E_POINTER;
  *item = nullptr;
  return Guard("Item", "ICapeCollection", [&] {
    const auto ports = Unit().Declarations().ports.All();
    const auto nameOf = [&](std::size_t i) {
      const std::string& name = ports[i]->ComponentName();
      return name.empty() ? "<unknown>" : name;
    };
    *item = HandOut(ports[FindItem(id, ports.size(), nameOf, kPortTexts)], kPortTexts);
  });
}

}  // namespace morvelan
