#include "units/StreamUnit.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "framework/UnitMaterials.h"

namespace morvelan {
namespace {

constexpr const char* kLastRun[] = {"Last run"};

constexpr double kLowestPressure = 1;              // [Pa]
constexpr double kLowestSimplifiedPressure = 100;  // [Pa]
constexpr double kSimplifiedDropFraction = 0.1;

}  // namespace

StreamUnit::StreamUnit(UnitDeclaration identity) : Implements((identity.reports = kLastRun, identity)) {}

// ---- The configuration

void* StreamUnit::FindInterface(REFIID iid) {
  if (iid == __uuidof(IUnitConfiguration) && !declare.IsConfigurable()) return nullptr;
  return Implements::FindInterface(iid);
}

void StreamUnit::AppendFaces(std::vector<com::Face>& faces) {
  Implements::AppendFaces(faces);
  if (!declare.IsConfigurable()) faces.pop_back();
}

GUID StreamUnit::AutomationType() const {
  return declare.IsConfigurable() ? __uuidof(DConfigurableUnit) : BaseUnit::AutomationType();
}

HRESULT StreamUnit::GetConfiguration(BSTR* json) {
  if (!json) return E_POINTER;
  *json = nullptr;
  return Guard("GetConfiguration", "IUnitConfiguration", [&] {
    RequireInitialized();
    *json = com::ToBstr(declare.Configuration().dump()).Detach();
  });
}

/// A bad object changes nothing.
HRESULT StreamUnit::SetConfiguration(BSTR json) {
  return Guard("SetConfiguration", "IUnitConfiguration", [&] {
    RequireInitialized();
    RequireIdle();
    const Activity busy(*this, "configured");
    CommitSettings(declare.Stage(ParseConfiguration(com::ToUtf8(json), declare.Configuration())), SettingsFrom::kHost);
    ParameterChanged();
  });
}

// ---- Validation

bool StreamUnit::ValidateUnit(std::string& message) { return HasMaterials(message) && HasNumbers(message); }

bool StreamUnit::HasMaterials(std::string& message) const {
  for (const auto* ports : {&declare.inlets, &declare.outlets})
    for (const auto& port : *ports)
      if (port->Type() == CAPE_MATERIAL && !port->IsConnected()) {
        message = "not all material ports are connected";
        return false;
      }
  return true;
}

bool StreamUnit::HasNumbers(std::string& message) const {
  if (const CParameter* unset = declare.FindUnset()) message = "parameter " + unset->ComponentName() + " has no value";
  return message.empty();
}

// ---- Calculation

void StreamUnit::CalculateUnit(int, std::optional<com::Name>& outletFlashSpec) {
  outletFlashSpec.reset();  // each outlet is left in a state of its own
  journal.Start();
  Solve();
  UnitMaterials(declare, checkCompounds).FlashLeftOutlets();
}

double StreamUnit::PressureAfterDrop(double inletPressure, double pressureDrop) const {
  const double pressure = inletPressure - pressureDrop;
  if (journal.IsQuiet()) return std::max({kSimplifiedDropFraction * pressureDrop, kLowestSimplifiedPressure, pressure});
  if (pressure > kLowestPressure) return pressure;
  journal.Warn(ComponentName() + " warning: limiting outlet pressure to 1 Pa");
  return kLowestPressure;
}

}  // namespace morvelan
