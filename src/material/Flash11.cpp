// Equilibrium calculations on a thermo 1.1 material.

#include <new>

#include "errors/HostCall.h"
#include "material/FlashSpecification.h"
#include "material/Names.h"
#include "material/Reading.h"
#include "material/Thermo11.h"

namespace morvelan::material {
namespace {

using Material = com::Ref<ICapeThermoMaterial>;

/// What a thermo 1.1 flash is told about one of its two specifications: property, basis and phase.
com::Variant MakeSpecification(Name property, Name basis = {}, Name phase = names::kOverall) {
  return com::MakeStrings(std::array{property, basis, phase});
}

const com::Variant kTemperatureSpec = MakeSpecification(names::kTemperature);
const com::Variant kPressureSpec = MakeSpecification(names::kPressure);
const com::Variant kEnthalpySpec = MakeSpecification(names::kEnthalpy);
const com::Variant kEnthalpyFSpec = MakeSpecification(names::kEnthalpyF);
const com::Variant kEntropySpec = MakeSpecification(names::kEntropy);

/// A flash type's two specifications; a null one is the vapour fraction, whose phase only the material knows.
struct FlashSpecifications {
  Name flashType;
  const com::Variant* first;
  const com::Variant* second;
};

const FlashSpecifications kFlashes[] = {
    {names::kTP, &kTemperatureSpec, &kPressureSpec}, {names::kPH, &kPressureSpec, &kEnthalpySpec},
    {names::kPHF, &kPressureSpec, &kEnthalpyFSpec},  {names::kPVF, &kPressureSpec, nullptr},
    {names::kTH, &kTemperatureSpec, &kEnthalpySpec}, {names::kTHF, &kTemperatureSpec, &kEnthalpyFSpec},
    {names::kTVF, &kTemperatureSpec, nullptr},       {names::kHVF, &kEnthalpySpec, nullptr},
    {names::kHFVF, &kEnthalpyFSpec, nullptr},
};

const FlashSpecifications& SpecificationsOf(Name flashType) {
  for (const FlashSpecifications& flash : kFlashes)
    if (flash.flashType == flashType) return flash;
  throw Failure(UnitError{
      "Internal Error", "Internal error; unimplemented flash type specification " + Shown(flashType), {}, {}});
}

constexpr const char* kNoPresentPhases = "Failed to set present phases on MO before equilibrium calculation";

std::string MaterialName(ICapeThermoMaterial& material) {
  const auto identification = com::Query<ICapeIdentification>(&material);
  com::Bstr name;
  if (!identification || FAILED(identification->get_ComponentName(name.Put())) || SysStringLen(name.Get()) == 0)
    return "<unknown>";
  return com::ToUtf8(name.Get());
}

/// Declares every phase that the material supports as possibly present, so that the host decides which
/// remain.
void SetPresentPhases(ICapeThermoMaterial& material) {
  const auto fail = [&](const char* opening, const std::string& why) {
    return Failure(UnitError{
        kNoPresentPhases, opening + ('"' + MaterialName(material)) + "\" before CalcEquilibrium: " + why, {}, {}});
  };
  HRESULT failure = S_OK;
  const auto phases = com::Query<ICapeThermoPhases>(&material, &failure);
  if (!phases) throw fail("Failed to obtain ICapeThermoPhases from material ", ErrorText(&material, failure));
  com::Variant labels, states, keyCompounds;
  CheckHost(
      phases->GetPhaseList(labels.Put(), states.Put(), keyCompounds.Put()), phases.Get(),
      [&](const std::string& why) { return fail("Failed to obtain list of supported phases from material ", why); });
  const std::size_t count =
      ReadOr([&] { return com::CountStrings(labels.Get()); },
             [&](const std::string& why) { return fail("Invalid list of phases from material ", why); });
  if (count == 0) throw fail("Empty list of supported phases from material ", "no phases");
  com::Variant statuses;  // all zero: CAPE_UNKNOWNPHASESTATUS
  com::Variant strictLabels;
  try {
    statuses = com::MakeArray(count, VT_I4);
    strictLabels = com::CopyStrings(labels.Get());
  } catch (const std::bad_alloc&) {
    throw Failure(UnitError{kNoPresentPhases, "out of memory", {}, {}});
  }
  CheckHost(material.SetPresentPhases(strictLabels.Get(), statuses.Get()), &material,
            [&](const std::string& why) { return fail("Failed to set present phases on material ", why); });
}

void SetOverall(const Material& material, Name property, Name basis, const com::Variant& values) {
  CheckHost(material->SetOverallProp(property.text, basis.text, values.Get()), material.Get(),
            [&](const std::string& why) { return SettingFailure("SetOverallProp failed", property, why); });
}

HRESULT CalcEquilibriumOn(ICapeThermoEquilibriumRoutine& routine, const com::Variant& first,
                          const com::Variant& second) {
  return routine.CalcEquilibrium(first.Get(), second.Get(), names::kUnspecified.text);
}

/// Declares the phases and calculates the equilibrium.
void Flash(const Material& material, const com::Variant& first, const com::Variant& second) {
  SetPresentPhases(*material);
  HRESULT failure = S_OK;
  const auto routine = material.As<ICapeThermoEquilibriumRoutine>(&failure);
  if (!routine)
    throw Failure(
        UnitError{"Failed to get equilibrium server routine",
                  "Failed to get ICapeThermoEquilibriumRoutine from material: " + ErrorText(material.Get(), failure),
                  {},
                  {}});
  CheckHost(CalcEquilibriumOn(*routine, first, second), routine.Get(), EquilibriumFailure);
}

}  // namespace

void Thermo11::CalcEquilibrium(const PortMaterial& port, const StreamState& state, Name flashType) const {
  const StateArrays values = MakeStateArrays(state, flashType);
  HRESULT failure = S_OK;
  const Material material = port.object.As<ICapeThermoMaterial>(&failure);
  if (!material)
    throw Failure(UnitError{"Failed to get material interface",
                            "Failed to get ICapeThermoMaterial from material: " + ErrorText(port.object.Get(), failure),
                            {},
                            {}});
  // An unknown flash type is refused only after these writes, as its caller has come to see.
  if (WritesPressure(flashType)) SetOverall(material, names::kPressure, {}, values.pressure);
  if (WritesTemperature(flashType)) SetOverall(material, names::kTemperature, {}, values.temperature);
  SetOverall(material, names::kTotalFlow, names::kMole, values.totalFlow);
  SetOverall(material, names::kFraction, names::kMole, values.composition);

  const FlashSpecifications& flash = SpecificationsOf(flashType);
  com::Variant vapourFraction;
  if (!flash.second) {
    const com::Bstr vapour = VaporLabel11(*material);
    vapourFraction = MakeSpecification(names::kPhaseFraction, names::kMole, Name(vapour));
  }
  Flash(material, *flash.first, flash.second ? *flash.second : vapourFraction);
}

double Thermo11::HFromPSFlash(const PortMaterial& inlet, double pressure, double entropy) const {
  const Material material = inlet.object.As<ICapeThermoMaterial>();
  if (!material)
    throw Failure(UnitError{"Failed to get ICapeThermoMaterial interface",
                            "Failed to get ICapeThermoMaterial interface to material connected to inlet port",
                            {},
                            {}});
  const Material scratch = Duplicate11(
      *material, inlet.object,
      {"Failed to create material from inlet material: ", "Failed to get ICapeThermoMaterial from duplicate material: ",
       "Failed to copy material from inlet: "});
  SetOverall(scratch, names::kPressure, {}, com::MakeDoubles(std::array{pressure}));
  SetOverall(scratch, names::kEntropy, names::kMole, com::MakeDoubles(std::array{entropy}));
  Flash(scratch, kEntropySpec, kPressureSpec);
  return ReadEnthalpy(Evaluate11(*scratch, kOverallEnthalpy));
}

double Thermo11::CalcNormalEnthalpy(const PortMaterial& port, std::span<const double> composition) const {
  const Material scratch = DuplicateForUnit11(port);
  const auto set = [&](const char* what, Name property, Name basis, std::span<const double> values) {
    CheckHost(scratch->SetOverallProp(property.text, basis.text, com::MakeDoubles(values).Get()), scratch.Get(),
              [&](const std::string& why) { return NormalStateFailure(what, why); });
  };
  set("pressure", names::kPressure, {}, std::array{kNormalPressure});
  set("temperature", names::kTemperature, {}, std::array{kNormalTemperature});
  set("composition", names::kFraction, names::kMole, composition);
  SetPresentPhases(*scratch);
  const auto routine = scratch.As<ICapeThermoEquilibriumRoutine>();
  if (!routine) throw Failure("Failed to get ICapeThermoEquilibriumRoutine from duplicate material");
  CheckHost(CalcEquilibriumOn(*routine, kTemperatureSpec, kPressureSpec), routine.Get(), [](const std::string& why) {
    return Failure("Failed to calculate phase equilibrium on duplicate material: " + why);
  });
  return ReadEnthalpy(Evaluate11(*scratch, kOverallEnthalpy));
}

}  // namespace morvelan::material
