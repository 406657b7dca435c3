#pragma once

#include "cape_open.h"
#include "material/Thermo.h"

namespace morvelan::material {

/// Materials used through `ICapeThermoMaterial` and its companions.
class Thermo11 final : public Thermo {
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

/// The texts of the steps of duplicating a material; see Explained.
struct DuplicationTexts {
  std::string create;
  const char* noMaterial;
  const char* copy;
};

/// A copy of `source`, made by its material interface.
[[nodiscard]] com::Ref<ICapeThermoMaterial> Duplicate11(ICapeThermoMaterial& material,
                                                        const com::Ref<IDispatch>& source,
                                                        const DuplicationTexts& texts);

/// A copy of a port's material, for a unit to work on.
[[nodiscard]] com::Ref<ICapeThermoMaterial> DuplicateForUnit11(const PortMaterial& port);

/// A property of a thermo 1.1 material, calculated on the material itself; overall properties are summed over
/// phases.
[[nodiscard]] com::Variant Evaluate11(ICapeThermoMaterial& material, const PropertyRequest& request);

/// The host's label of the vapour phase of a thermo 1.1 material.
[[nodiscard]] com::Bstr VaporLabel11(ICapeThermoMaterial& material);

}  // namespace morvelan::material
