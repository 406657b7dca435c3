#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/material/MaterialCompounds11.h"

namespace morvelan::host {

/// Which generations of the thermodynamic interfaces a material offers.
enum class ThermoOffer { k10, k11, kBoth };

/// By "1.0", "1.1" or "both"; nothing for another text.
[[nodiscard]] std::optional<ThermoOffer> ThermoOfferByName(std::string_view name);

/// A material as units see it: thermo 1.0, thermo 1.1, or both, on one state.
class MaterialObject final : public MaterialCompounds11 {
 public:
  MaterialObject(std::string objectName, MaterialState initial, ThermoOffer offered);

 protected:
  void* FindInterface(REFIID iid) override;
  [[nodiscard]] com::Ref<IDispatch> MakeSibling(MaterialState initial) const override;

 private:
  ThermoOffer offer;
};

}  // namespace morvelan::host
