// A unit's calculation: inlets are read, the unit calculates, outlets are flashed.

#include <algorithm>

#include "com/ScopeExit.h"
#include "framework/BaseUnit.h"
#include "material/Names.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr const char* kCalculated = "calculated";

}  // namespace

HRESULT BaseUnit::Calculate() {
  return Guard(kScope, kInterface, [&] {
    RequireInitialized();
    if (activity) throw Failure(std::string("The unit can't be calculated while it is being ") + activity);
    const Activity busy(*this, kCalculated);
    const com::ScopeExit done([&] { simplifiedModelRequested = false; });
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
  changesBefore = changes;
  compoundCount = PreparePorts();
  RequireUnchanged();
  simplifiedModelRequested = context.SimplifiedModelRequested();
  auto formerResults = Results();
  const com::ScopeExit takeBack([&] {
    for (auto& [parameter, value] : formerResults) parameter->SetResult(std::move(value));
  });
  std::optional<com::Name> outletFlashSpec = names::kTP;
  CalculateUnit(compoundCount, outletFlashSpec);
  if (outletFlashSpec) FlashOutlets(*outletFlashSpec);
  if (!initialized) throw Failure("The unit was terminated while it was calculated");
  formerResults.clear();
}

std::vector<std::pair<com::Ref<CParameter>, ParameterValue>> BaseUnit::Results() const {
  std::vector<std::pair<com::Ref<CParameter>, ParameterValue>> results;
  for (const auto& parameter : parameters)
    if (parameter->IsResult()) results.emplace_back(parameter, parameter->Value());
  return results;
}

void BaseUnit::FinishCalculation(int compoundCount, bool success) {
  const Failure outcome(LastError());
  const std::string& reason = outcome.error.description;
  if (!success)
    calcStatusText = "Calculation failed:\r\n" + (reason.empty() ? "Unknown" : reason) + "\r\n";
  else if (valStatus == CAPE_VALID)  // unless the host changed the unit meanwhile
    calcStatusText = "unit is solved";
  // What the unit does at the end changes nothing about the outcome.
  (void)Guard(kScope, kInterface, [&] { OnCalculateDone(compoundCount, success); });
  SetError(outcome.error);
  if (!success) throw outcome;
}

int BaseUnit::PreparePorts() {
  if (checkCompounds && !FirstConnectedMaterialInlet()) {
    for (const auto& outlet : outlets)
      if (outlet->IsConnectedMaterial())
        throw Failure(UnitError{"internal error", "unit has material outlets but no material inlets", {}, {}});
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

bool BaseUnit::IsCalculating() const { return activity == kCalculated; }

double BaseUnit::HFromPSFlash(double pressure, double entropy) {
  const bool calculating = IsCalculating();
  const std::string_view scope = calculating ? kScope : "HFromPSFlash";
  const std::string_view interfaceName = calculating ? kInterface : "BaseUnit";
  try {
    const auto first = std::ranges::find_if(inlets, [](const auto& port) { return port->Type() == CAPE_MATERIAL; });
    if (first == inlets.end() || !(*first)->IsConnected())
      throw Failure(UnitError{"Failed to get material", "Failed to get material connected to inlet port", {}, {}});
    const com::Ref<CUnitPort> inlet = *first;
    return material::ThermoInForce(useThermo11)
        .HFromPSFlash({inlet->ConnectedObject(), inlet->ComponentName(), emulation}, pressure, entropy);
  } catch (Failure& failure) {
    failure.error.scope = scope;
    failure.error.interfaceName = interfaceName;
    throw;
  }
}

}  // namespace morvelan
