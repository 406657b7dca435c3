#pragma once

#include "cape_open.h"
#include "material/Thermo.h"

namespace morvelan::material {

/// Materials used through `ICapeThermoMaterialObject`.
class Thermo10 final : public Thermo {
 public:
  void SetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT& compoundIds,
               const VARIANT& values) const override;
  com::Variant GetProp(const PortMaterial& port, const PropertyRequest& request,
                       const VARIANT& compoundIds) const override;
  com::Variant GetProperty(const PortMaterial& port, const PropertyRequest& request) const override;
  com::Variant GetPropertyNoDup(const PortMaterial& port, const PropertyRequest& request) const override;
  com::Bstr GetVaporName(const PortMaterial& port) const override;
  com::Ref<IDispatch> DuplicateMaterial(const PortMaterial& port) const override;
  com::Variant GetCompoundList(const PortMaterial& port) const override;
  CompoundIdentities GetCompoundIdentities(const PortMaterial& port) const override;
  com::Variant GetCompoundConstant(const PortMaterial& port, Name constant) const override;
  std::vector<PhaseFraction> GetPhaseFractions(IDispatch* material) const override;
  std::vector<std::string> GetPhaseLabels(const PortMaterial& port) const override;
  std::vector<std::string> GetPropertyList(const PortMaterial& port) const override;
  void CalcEquilibrium(const PortMaterial& port, const StreamState& state, Name flashType) const override;
  void SetSinglePhase(const PortMaterial& port, const StreamState& state, Name phase) const override;
  double HFromPSFlash(const PortMaterial& inlet, double pressure, double entropy) const override;
  double CalcNormalEnthalpy(const PortMaterial& port, std::span<const double> composition) const override;
};

/// A property of a thermo 1.0 material, calculated on the material itself; an overall property that the
/// material can't calculate is summed over its phases.
[[nodiscard]] com::Variant Evaluate10(ICapeThermoMaterialObject& material, const PropertyRequest& request,
                                      OverallEmulation& emulation);

/// The label of the vapour phase as a thermo 1.0 material spells it; null when it lists none.
[[nodiscard]] com::Bstr FindVaporLabel(ICapeThermoMaterialObject& material);

}  // namespace morvelan::material
