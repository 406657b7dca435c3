// A unit's validation and calculation, as the door leads to them.

#include <algorithm>

#include "com/ScopeExit.h"
#include "framework/BaseUnit.h"
#include "framework/UnitMaterials.h"
#include "framework/UnitValidation.h"
#include "material/Names.h"

namespace morvelan {
namespace {

constexpr std::string_view kScope = "Calculate";
constexpr std::string_view kInterface = "ICapeUnit";
constexpr std::string_view kValidate = "Validate";
constexpr std::string_view kUnitInterface = "ICapeUnit";
constexpr const char* kCalculated = "calculated";

}  // namespace

HRESULT BaseUnit::Validate(BSTR* message, VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = VARIANT_FALSE;
  return Guard(kValidate, kUnitInterface, [&] {
    RequireInitialized();
    // A unit that a host validates while it calls back would lose what it is working with.
    if (activity) throw Failure(std::string("The unit can't be validated while it is being ") + activity);
    ReplaceText(message, {});
    const Verdict verdict = ValidateAll();
    ReplaceText(message, verdict.fault);
    if (verdict.failure) throw Failure(*verdict.failure);
    *isValid = com::ToVariantBool(verdict.fault.empty());
  });
}

BaseUnit::Verdict BaseUnit::ValidateAll() {
  const Activity busy(*this, "validated");
  valStatus = CAPE_INVALID;
  thermo.Refresh();
  UnitValidation validation(*this, declare, {checkConnections, checkCompounds}, ComponentName());
  Verdict verdict;
  try {
    verdict.fault = ForwardError(kValidate, kUnitInterface, [&] {
      return Recorded(kValidate, kUnitInterface, [&] { return validation.FindFault(); });
    });
    validatedCompoundCount = validation.CompoundCount();
    // A host that calls back while it answers may change what has been checked already.
    if (verdict.fault.empty() && valStatus != CAPE_INVALID)
      verdict.fault = "the unit was changed while it was validated";
  } catch (const Failure& failure) {
    verdict.failure = failure;
    verdict.fault = failure.error.description.empty() ? "the validation failed" : failure.error.description;
  }
  valStatus = verdict.fault.empty() ? CAPE_VALID : CAPE_INVALID;
  calcStatusText = verdict.fault.empty() ? "unit specification complete" : verdict.fault;
  return verdict;
}

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
  thermo.Refresh();
  validatedCompoundCount.reset();
  if (valStatus != CAPE_VALID) {
    const Verdict verdict = ValidateAll();
    if (!verdict.fault.empty()) throw Failure(verdict.fault, kScope, kInterface);
  }
  changesBefore = changes;
  compoundCount = UnitMaterials(declare, checkCompounds).ReadInlets(validatedCompoundCount);
  RequireUnchanged();
  simplifiedModelRequested = context.SimplifiedModelRequested();
  auto formerResults = Results();
  const com::ScopeExit takeBack([&] {
    for (auto& [parameter, value] : formerResults) parameter->SetResult(std::move(value));
  });
  for (const auto& outlet : outlets) outlet->LeaveFor({});
  std::optional<com::Name> outletFlashSpec = names::kTP;
  CalculateUnit(compoundCount, outletFlashSpec);
  if (outletFlashSpec) UnitMaterials(declare, checkCompounds).FlashOutlets(*outletFlashSpec);
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
    return material::ThermoInForce(thermo.Uses11())
        .HFromPSFlash({inlet->ConnectedObject(), inlet->ComponentName(), emulation}, pressure, entropy);
  } catch (Failure& failure) {
    failure.error.scope = scope;
    failure.error.interfaceName = interfaceName;
    throw;
  }
}

}  // namespace morvelan
