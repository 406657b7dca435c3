#pragma once

#include <string>
#include <utility>

#include "framework/BaseObject.h"
#include "framework/Declarations.h"

namespace morvelan {

/// Describes one value that an energy or information port carries, so that a host sees what the port expects
/// before it connects a stream.
class CInfoParamDesc final : public com::Implements<BaseObject, ICapeParameterSpec> {
 public:
  explicit CInfoParamDesc(const InformationItem& item);

  // ICapeParameterSpec
  HRESULT get_Type(CapeParamType* type) override;
  HRESULT get_Dimensionality(VARIANT* exponents) override;

  [[nodiscard]] const Dimensionality& Dimensions() const { return dimensionality; }
  [[nodiscard]] bool IsOptional() const { return optional; }
  void Rename(std::string newName) noexcept { SetName(std::move(newName)); }

 private:
  Dimensionality dimensionality;
  bool optional;
};

}  // namespace morvelan
