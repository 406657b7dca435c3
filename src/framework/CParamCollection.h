#pragma once

#include "framework/BaseObject.h"

namespace morvelan {

class BaseUnit;

/// A unit's parameters as the host walks them: the unit's list, followed by those that the unit keeps apart
/// from it.
class CParamCollection final : public com::Implements<BaseObject, ICapeCollection> {
 public:
  /// A collection without a unit fails in every call.
  explicit CParamCollection(BaseUnit* owner);

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
