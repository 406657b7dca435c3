#include "framework/UnitMaterials.h"

#include "framework/CalculationFailure.h"

namespace morvelan {

int UnitMaterials::ReadInlets(const std::optional<std::size_t>& known) const {
  if (common && !ports.FirstConnectedMaterialInlet()) {
    for (const auto& outlet : ports.Outlets())
      if (outlet->IsConnectedMaterial())
        throw Failure(UnitError{"internal error", "unit has material outlets but no material inlets", {}, {}});
    return 0;
  }
  return InCalculation([&] {
    if (common) return static_cast<int>(ReadCommon(known));
    ReadOwn();
    return -1;
  });
}

void UnitMaterials::ReadOwn() const {
  for (const auto& port : ports.All()) {
    if (!port->IsConnectedMaterial()) continue;
    const std::size_t count = port->GetCompoundCount();
    port->ResizeCompoundBuffer(count);
    if (port->Direction() == CAPE_INLET) port->ReadState(count);
  }
}

std::size_t UnitMaterials::ReadCommon(const std::optional<std::size_t>& known) const {
  const auto all = ports.All();
  const std::size_t count = known ? *known : ports.FirstConnectedMaterialInlet()->GetCompoundCount();
  for (const auto& port : all)
    if (port->IsConnectedMaterial()) port->ResizeCompoundBuffer(count);
  for (const auto& port : all)
    if (port->IsConnectedMaterial() && port->Direction() == CAPE_INLET) port->ReadState(count);
  return count;
}

void UnitMaterials::FlashOutlets(com::Name flashType) const {
  InCalculation([&] {
    for (const auto& outlet : ports.Outlets())
      if (outlet->IsConnectedMaterial()) outlet->CalcEquilibrium(flashType);
  });
}

void UnitMaterials::FlashLeftOutlets() const {
  InCalculation([&] {
    for (const auto& outlet : ports.Outlets())
      if (outlet->LeftFor()) outlet->CalcEquilibrium(*outlet->LeftFor());
  });
}

}  // namespace morvelan
