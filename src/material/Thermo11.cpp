#include "material/Thermo11.h"

#include <new>

#include "errors/HostCall.h"
#include "material/FlashSpecification.h"
#include "material/Names.h"
#include "material/PhaseFractions.h"
#include "material/Reading.h"
#include "material/SinglePhase.h"

namespace morvelan::material {
namespace {

using Material11 = com::Ref<ICapeThermoMaterial>;

constexpr const char* kNoMaterial = "Failed to get ICapeThermoMaterial from material: ";

Material11 Material11Of(const PortMaterial& port, std::string_view operation = {}) {
  return InterfaceOf<ICapeThermoMaterial>(port.object.Get(), [&](const std::string& why) {
    return Failure(UnitError{"Failed to get material interface", kNoMaterial + why, operation, {}});
  });
}

/// What `GetCompoundList` gives, unread.
struct CompoundList {
  com::Variant ids, formulae, names, boilingTemperatures, molecularWeights, casNumbers;
};

/// `title` names the failure of the operation that wants the list.
CompoundList ListCompounds(const PortMaterial& port, LazyText title) {
  const auto explain = [&](const char* what) {
    return [&title, what](const std::string& why) { return Failure(UnitError{title(), what + why, {}, {}}); };
  };
  const auto compounds = InterfaceOf<ICapeThermoCompounds>(
      port.object.Get(), explain("Failed to obtain material's ICapeThermoCompounds interface: "));
  CompoundList list;
  CheckHost(
      compounds->GetCompoundList(list.ids.Put(), list.formulae.Put(), list.names.Put(), list.boilingTemperatures.Put(),
                                 list.molecularWeights.Put(), list.casNumbers.Put()),
      compounds.Get(), explain("Failed to obtain compounds IDs: "));
  return list;
}

/// What a thermo 1.1 flash is told about one of its two specifications: property, basis and phase.
com::Variant MakeSpecification(Name property, Name basis = {}, Name phase = names::kOverall) {
  return com::MakeStrings(std::array{property, basis, phase});
}

const com::Variant kTemperatureSpec = MakeSpecification(names::kTemperature);
const com::Variant kPressureSpec = MakeSpecification(names::kPressure);
const com::Variant kEnthalpySpec = MakeSpecification(names::kEnthalpy);
const com::Variant kEnthalpyFSpec = MakeSpecification(names::kEnthalpyF);
const com::Variant kEntropySpec = MakeSpecification(names::kEntropy);

/// A flash type's two specifications; a null one is the vapor fraction, whose phase only the material knows.
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
      "Internal Error", "Internal error; unimplemented flash type specification " + DisplayName(flashType), {}, {}});
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
  const auto phases = InterfaceOf<ICapeThermoPhases>(&material, [&](const std::string& why) {
    return fail("Failed to obtain ICapeThermoPhases from material ", why);
  });
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
    strictLabels = com::StrictStrings(std::move(labels));
  } catch (const std::bad_alloc&) {
    throw Failure(UnitError{kNoPresentPhases, "out of memory", {}, {}});
  }
  CheckHost(material.SetPresentPhases(strictLabels.Get(), statuses.Get()), &material,
            [&](const std::string& why) { return fail("Failed to set present phases on material ", why); });
}

void SetOverall11(const Material11& material, Name property, Name basis, const com::Variant& values) {
  CheckHost(material->SetOverallProp(property.text, basis.text, values.Get()), material.Get(),
            [&](const std::string& why) { return SettingFailure("SetOverallProp failed", property, why); });
}

HRESULT CalcEquilibriumOn(ICapeThermoEquilibriumRoutine& routine, const com::Variant& first,
                          const com::Variant& second) {
  return routine.CalcEquilibrium(first.Get(), second.Get(), names::kUnspecified.text);
}

/// Declares the phases and calculates the equilibrium.
void Flash(const Material11& material, const com::Variant& first, const com::Variant& second) {
  SetPresentPhases(*material);
  const auto routine = InterfaceOf<ICapeThermoEquilibriumRoutine>(material.Get(), [](const std::string& why) {
    return Failure(UnitError{"Failed to get equilibrium server routine",
                             "Failed to get ICapeThermoEquilibriumRoutine from material: " + why,
                             {},
                             {}});
  });
  CheckHost(CalcEquilibriumOn(*routine, first, second), routine.Get(), EquilibriumFailure);
}

}  // namespace

void Thermo11::SetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT&,
                       const VARIANT& values) const {
  // Failing to get at the material names another operation than failing to set the property.
  const Material11 material = Material11Of(port, "SetProperty");
  const HRESULT set = request.phase == names::kOverall
                          ? material->SetOverallProp(com::Name(request.property).text, request.basis.text, values)
                          : material->SetSinglePhaseProp(com::Name(request.property).text, request.phase.text,
                                                         request.basis.text, values);
  CheckHost(set, material.Get(), [](const std::string& why) { return Failure(why); });
}

com::Variant Thermo11::GetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT&) const {
  const Material11 material = Material11Of(port);
  com::Variant values;
  const HRESULT got = request.phase == names::kOverall
                          ? material->GetOverallProp(com::Name(request.property).text, request.basis.text, values.Put())
                          : material->GetSinglePhaseProp(com::Name(request.property).text, request.phase.text,
                                                         request.basis.text, values.Put());
  CheckHost(got, material.Get(), [&](const std::string& why) {
    return Failure("failed to get property " + request.property.Text() + " from material connected to port " +
                   port.portName + ": " + why);
  });
  return values;
}

Answer Thermo11::GetProperty(const PortMaterial& port, const PropertyRequest& request) const {
  const auto failed = [&] {
    return "Failed to duplicate material for calculating " + request.property.Text() + " in CPort::GetProperty(): ";
  };
  const Material11 duplicate =
      Duplicate11(*Material11Of(port), port.object,
                  {failed, "Failed to get ICapeThermoMaterial from duplicate material", "Failed to copy material: "});
  return Evaluate11(*duplicate, request);
}

Answer Thermo11::GetPropertyNoDup(const PortMaterial& port, const PropertyRequest& request) const {
  return Evaluate11(*Material11Of(port), request);
}

com::Bstr Thermo11::GetVaporName(const PortMaterial& port) const { return VaporLabel11(*Material11Of(port)); }

com::Ref<ICapeThermoMaterial> Duplicate11(ICapeThermoMaterial& material, const com::Ref<IDispatch>& source,
                                          const DuplicationTexts& texts) {
  com::Ref<IDispatch> created;
  CheckHost(material.CreateMaterial(created.Put()), &material,
            [&](const std::string& why) { return Failure(Explained(texts.create(), why)); });
  Material11 copy = InterfaceOf<ICapeThermoMaterial>(
      created.Get(), [&](const std::string& why) { return Failure(Explained(texts.noMaterial, why)); });
  // The source is passed by reference: whatever the host leaves there is released with it.
  com::Ref<IDispatch> passed = source;
  IDispatch* original = passed.Detach();
  const HRESULT copied = copy->CopyFromMaterial(&original);
  passed = com::Ref<IDispatch>::Attach(original);
  CheckHost(copied, copy.Get(), [&](const std::string& why) { return Failure(Explained(texts.copy, why)); });
  return copy;
}

com::Ref<ICapeThermoMaterial> DuplicateForUnit11(const PortMaterial& port) {
  return Duplicate11(*Material11Of(port), port.object,
                     {"Failed to duplicate material: ",
                      "Failed to get ICapeThermoMaterial from duplicate material object", "Failed to copy material: "});
}

com::Ref<IDispatch> Thermo11::DuplicateMaterial(const PortMaterial& port) const { return DuplicateForUnit11(port); }

com::Variant Thermo11::GetCompoundList(const PortMaterial& port) const {
  const auto title = [&] { return "could not get compound IDs from port " + port.portName; };
  return std::move(ListCompounds(port, title).ids);
}

CompoundIdentities Thermo11::GetCompoundIdentities(const PortMaterial& port) const {
  const std::string title = "Could not get compound names and/or CAS numbers from port " + port.portName;
  const CompoundList list = ListCompounds(port, [&] { return title; });
  return ReadOr(
      [&] {
        return CompoundIdentities{com::ReadStrings(list.names.Get()), com::ReadStrings(list.casNumbers.Get())};
      },
      [&](const std::string& why) {
        return Failure(UnitError{title, "Invalid compound names from material object: " + why, {}, {}});
      });
}

com::Variant Thermo11::GetCompoundConstant(const PortMaterial& port, Name constant) const {
  const std::string title = "Could not get " + DisplayName(constant) + " from port " + port.portName;
  const auto explain = [&](const char* what) {
    return [&title, what](const std::string& why) { return Failure(UnitError{title, what + why, {}, {}}); };
  };
  const auto compounds = InterfaceOf<ICapeThermoCompounds>(
      port.object.Get(), explain("Failed to obtain material's ICapeThermoCompounds interface: "));
  com::Variant values;
  const com::Variant properties = com::MakeStrings(std::span(&constant, 1));
  CheckHost(compounds->GetCompoundConstant(properties.Get(), com::kNoValue, values.Put()), compounds.Get(),
            explain("GetCompoundConstant failed: "));
  return values;
}

std::vector<PhaseFraction> Thermo11::GetPhaseFractions(IDispatch* object) const {
  const Material11 material = InterfaceOf<ICapeThermoMaterial>(object, [](const std::string& why) {
    return Failure("Failed to get ICapeThermoMaterial interface from material: " + why);
  });
  com::Variant labels;
  com::Variant statuses;
  CheckHost(material->GetPresentPhases(labels.Put(), statuses.Put()), material.Get(),
            [](const std::string& why) { return Failure("Failed to get present phase IDs in material: " + why); });
  return ReadPhaseFractions(material.Get(), labels.Get(), [&](Name phase, VARIANT* fraction) {
    return material->GetSinglePhaseProp(names::kPhaseFraction.text, phase.text, names::kMole.text, fraction);
  });
}

std::vector<std::string> Thermo11::GetPropertyList(const PortMaterial& port) const {
  const auto explain = [&](const std::string& why) {
    return Failure("Failed to get list of properties from port " + port.portName + ": " + why);
  };
  const auto routine = InterfaceOf<ICapeThermoPropertyRoutine>(port.object.Get(), explain);
  com::Variant properties;
  CheckHost(routine->GetSinglePhasePropList(properties.Put()), routine.Get(), explain);
  return ReadOr([&] { return com::ReadStrings(properties.Get()); }, explain);
}

com::Bstr VaporLabel11(ICapeThermoMaterial& material) {
  const auto fail = [](const std::string& text) { return Failure(text, "GetVaporName", "CPort"); };
  const auto phases = InterfaceOf<ICapeThermoPhases>(
      &material, [&](const std::string& why) { return fail("Failed to get ICapeThermoPhases from material: " + why); });
  com::Variant labels, states, keyCompounds;
  CheckHost(phases->GetPhaseList(labels.Put(), states.Put(), keyCompounds.Put()), phases.Get(),
            [&](const std::string& why) { return fail("Failed to get list of phases from material: " + why); });
  const auto read = [&](const com::Variant& array, const char* what) {
    return ReadOr([&] { return com::ReadStrings(array.Get()); },
                  [&](const std::string& why) { return fail(what + why); });
  };
  const auto phaseNames = read(labels, "invalid phase name array from GetPhaseList: ");
  const auto aggregation = read(states, "invalid aggregation state array from GetPhaseList: ");
  if (phaseNames.size() != aggregation.size())
    throw fail(
        "number of elements in aggregation state array does not match number of elements in names array "
        "returned "
        "from GetPhaseList");
  const std::string* vapor = nullptr;
  for (std::size_t i = 0; i < phaseNames.size(); ++i) {
    if (!com::EqualNoCase(aggregation[i], "vapor")) continue;
    if (vapor) throw fail("More than one vapor phase reported by GetPhaseList");
    vapor = &phaseNames[i];
  }
  if (!vapor) throw fail("unable to get vapor phase ID: no vapor phase reported by GetPhaseList");
  return com::ToBstr(*vapor);
}

std::vector<std::string> Thermo11::GetPhaseLabels(const PortMaterial& port) const {
  const auto phases = InterfaceOf<ICapeThermoPhases>(port.object.Get(), PhaseListFailure);
  com::Variant labels, states, keyCompounds;
  CheckHost(phases->GetPhaseList(labels.Put(), states.Put(), keyCompounds.Put()), phases.Get(), PhaseListFailure);
  return SinglePhases(labels);
}

void Thermo11::CalcEquilibrium(const PortMaterial& port, const StreamState& state, Name flashType) const {
  const StateArrays values = MakeStateArrays(state, flashType);
  const Material11 material = Material11Of(port);
  // An unknown flash type is refused only after these writes, as its caller has come to see.
  if (WritesPressure(flashType)) SetOverall11(material, names::kPressure, {}, values.pressure);
  if (WritesTemperature(flashType)) SetOverall11(material, names::kTemperature, {}, values.temperature);
  SetOverall11(material, names::kTotalFlow, names::kMole, values.totalFlow);
  SetOverall11(material, names::kFraction, names::kMole, values.composition);

  const FlashSpecifications& flash = SpecificationsOf(flashType);
  com::Variant vaporFraction;
  if (!flash.second) {
    const com::Bstr vapor = VaporLabel11(*material);
    vaporFraction = MakeSpecification(names::kPhaseFraction, names::kMole, Name(vapor));
  }
  Flash(material, *flash.first, flash.second ? *flash.second : vaporFraction);
}

double Thermo11::HFromPSFlash(const PortMaterial& inlet, double pressure, double entropy) const {
  const Material11 material = inlet.object.As<ICapeThermoMaterial>();
  if (!material)
    throw Failure(UnitError{"Failed to get ICapeThermoMaterial interface",
                            "Failed to get ICapeThermoMaterial interface to material connected to inlet port",
                            {},
                            {}});
  const Material11 scratch = Duplicate11(
      *material, inlet.object,
      {"Failed to create material from inlet material: ", "Failed to get ICapeThermoMaterial from duplicate material: ",
       "Failed to copy material from inlet: "});
  SetOverall11(scratch, names::kPressure, {}, com::MakeDoubles(std::array{pressure}));
  SetOverall11(scratch, names::kEntropy, names::kMole, com::MakeDoubles(std::array{entropy}));
  Flash(scratch, kEntropySpec, kPressureSpec);
  return ReadEnthalpy(Evaluate11(*scratch, kOverallEnthalpy));
}

double Thermo11::CalcNormalEnthalpy(const PortMaterial& port, std::span<const double> composition) const {
  const Material11 scratch = DuplicateForUnit11(port);
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

void Thermo11::SetSinglePhase(const PortMaterial& port, const StreamState& state, Name phase) const {
  const auto material = InterfaceOf<ICapeThermoMaterial>(port.object.Get(), NoMaterialFailure);
  const SinglePhaseArrays values(state);
  const auto check = [&](HRESULT set, LazyText what) { CheckSinglePhase(set, material.Get(), what); };
  const com::Variant labels = com::MakeStrings(std::span(&phase, 1));
  const com::Variant statuses = com::MakeIntegers(std::array{std::int32_t{CAPE_ATEQUILIBRIUM}});
  check(material->SetPresentPhases(labels.Get(), statuses.Get()), "present phase");
  const auto set = [&](Name property, Name basis, const com::Variant& value, LazyText ofWhole, LazyText ofPhase) {
    check(material->SetOverallProp(property.text, basis.text, value.Get()), ofWhole);
    check(material->SetSinglePhaseProp(property.text, phase.text, basis.text, value.Get()), ofPhase);
  };
  set(names::kTemperature, {}, values.temperature, "temperature", "temperature");
  set(names::kPressure, {}, values.pressure, "pressure", "pressure");
  set(names::kFraction, names::kMole, values.composition, "Overall mole fraction",
      [&] { return DisplayName(phase) + " mole fraction"; });
}

}  // namespace morvelan::material
