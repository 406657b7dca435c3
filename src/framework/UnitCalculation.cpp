// A unit's calculation: inlets are read, the unit calculates, outlets are flashed.

#include "com/ScopeExit.h"
#include "framework/BaseUnit.h"
#include "material/Names.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";

}  // namespace

HRESULT BaseUnit::Calculate() {
  return Guard(kScope, kInterface, [&] {
    RequireInitialized();
    if (calculating) throw Failure("The unit is being calculated already");
    calculating = true;
    const com::ScopeExit done([&] {
      simplifiedModelRequested = false;
      calculating = false;
    });
    int compoundCount = 0;
    const HRESULT outcome = Guard(kScope, kInterface, [&] { RunCalculation(compoundCount); });
    FinishCalculation(compoundCount, SUCCEEDED(outcome));
  });
}

void BaseUnit::RunCalculation(int& compoundCount) {
  RefreshThermoVersion();
  validatedCompoundCount.reset();
  if (valStatus != CAPE_VALID) {
    const Verdict verdict = ValidateAll();
    if (!verdict.fault.empty()) throw Failure(verdict.fault, kScope, kInterface);
  }
  compoundCount = PreparePorts();
  simplifiedModelRequested = context.SimplifiedModelRequested();
  std::optional<com::Name> outletFlashSpec = names::kTP;
  CalculateUnit(compoundCount, outletFlashSpec);
  if (outletFlashSpec) FlashOutlets(*outletFlashSpec);
}

void BaseUnit::FinishCalculation(int compoundCount, bool success) {
  if (success) {
    calcStatusText = "unit is solved";
    OnCalculateDone(compoundCount, true);
    return;
  }
  const Failure failure(LastError());
  const std::string& reason = failure.error.description;
  calcStatusText = "Calculation failed:\r\n" + (reason.empty() ? "Unknown" : reason) + "\r\n";
  OnCalculateDone(compoundCount, false);
  throw failure;
}

int BaseUnit::PreparePorts() {
  if (checkCompounds && !FirstConnectedMaterialInlet()) {
    for (const auto& outlet : outlets)
      if (outlet->IsConnectedMaterial())
        throw Failure(
            UnitError{"internal error", "unit has material outlets but no material inlets", {}, {}});
    return 0;
  }
  return ForwardError(kScope, kInterface, [&] {
    if (checkCompounds) return PrepareWithCommonCompounds();
    PrepareWithOwnCompounds();
    return -1;
  });
}

void BaseUnit::PrepareWithOwnCompounds() {
  for (const auto& port : AllPorts()) {
    if (!port->IsConnectedMaterial()) continue;
    const std::size_t count = port->GetCompoundCount();
    port->ResizeCompoundBuffer(count);
    if (port->Direction() == CAPE_INLET) port->ReadState(count);
  }
}

int BaseUnit::PrepareWithCommonCompounds() {
  const auto ports = AllPorts();
  const std::size_t count =
      validatedCompoundCount ? *validatedCompoundCount : FirstConnectedMaterialInlet()->GetCompoundCount();
  for (const auto& port : ports)
    if (port->IsConnectedMaterial()) port->ResizeCompoundBuffer(count);
  for (const auto& port : ports)
    if (port->IsConnectedMaterial() && port->Direction() == CAPE_INLET) port->ReadState(count);
  return static_cast<int>(count);
}

CUnitPort* BaseUnit::FirstConnectedMaterialInlet() const {
  for (const auto& inlet : inlets)
    if (inlet->IsConnectedMaterial()) return inlet.Get();
  return nullptr;
}

void BaseUnit::FlashOutlets(com::Name flashType) {
  ForwardError(kScope, kInterface, [&] {
    for (const auto& port : AllPorts())
      if (port->IsConnectedMaterial() && port->Direction() == CAPE_OUTLET) port->CalcEquilibrium(flashType);
  });
}

double BaseUnit::HFromPSFlash(double pressure, double entropy) {
  const std::string_view scope = calculating ? kScope : "HFromPSFlash";
  const std::string_view interfaceName = calculating ? kInterface : "BaseUnit";
  try {
    const CUnitPort* inlet = FirstConnectedMaterialInlet();
    if (!inlet)
      throw Failure(
          UnitError{"Failed to get material", "Failed to get material connected to inlet port", {}, {}});
    const std::string portName = inlet->ComponentName();
    return material::ThermoInForce(useThermo11)
        .HFromPSFlash({inlet->ConnectedObject(), portName, emulation}, pressure, entropy);
  } catch (Failure& failure) {
    failure.error.scope = scope;
    failure.error.interfaceName = interfaceName;
    throw;
  }
}

}  // namespace morvelan
