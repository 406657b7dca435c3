#pragma once

#include <string>
#include <vector>

#include "com/Ref.h"
#include "host/objects/StreamParameter.h"

namespace morvelan::host {

/// An energy or information stream: a collection of its values.
class ValueStream final : public com::Implements<HostObject, ICapeCollection> {
 public:
  ValueStream(std::string streamName, std::string streamDescription, std::vector<com::Ref<StreamParameter>> values);

  [[nodiscard]] const std::vector<com::Ref<StreamParameter>>& Values() const { return parameters; }

  // ICapeCollection
  /// By name in any ASCII case, or by index from 1.
  HRESULT Item(VARIANT id, IDispatch** item) override;
  HRESULT Count(LONG* count) override { return ReturnValue(count, parameters.size()); }

 private:
  [[nodiscard]] std::size_t Find(const VARIANT& id) const;

  std::vector<com::Ref<StreamParameter>> parameters;
};

}  // namespace morvelan::host
