#pragma once

#include "framework/BaseObject.h"

namespace morvelan {

class BaseUnit;

/// A unit's ports as the host walks them: inlets, then outlets.
class CPortCollection final : public com::Implements<BaseObject, ICapeCollection> {
 public:
  explicit CPortCollection(BaseUnit* owner);

  // ICapeCollection
  HRESULT Item(VARIANT id, IDispatch** item) override;
  HRESULT Count(LONG* count) override;

  /// The unit is going; the collection may stay with the host.
  void DetachFromUnit() { unit = nullptr; }

 private:
  BaseUnit& Unit() const;

  BaseUnit* unit;
};

}  // namespace morvelan
