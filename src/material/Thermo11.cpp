#include "material/Thermo11.h"

#include "material/Names.h"
#include "material/PhaseFractions.h"

namespace morvelan::material {
namespace {

using Material = com::Ref<ICapeThermoMaterial>;

constexpr const char* kNoMaterial = "Failed to get ICapeThermoMaterial from material: ";

/// An interface of a material; `explain` makes the failure from the host's text.
template <class Interface, class Explain>
com::Ref<Interface> InterfaceOf(IDispatch* object, Explain&& explain) {
  HRESULT failure = S_OK;
  com::Ref<Interface> found = com::Query<Interface>(object, &failure);
  if (!found) throw explain(ErrorText(object, failure));
  return found;
}

Material MaterialOf(const PortMaterial& port, std::string_view operation = {}) {
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

}  // namespace

void Thermo11::SetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT&,
                       const VARIANT& values) const {
  // Failing to get at the material names another operation than failing to set the property.
  const Material material = MaterialOf(port, "SetProperty");
  const HRESULT set = request.phase == names::kOverall
                          ? material->SetOverallProp(com::Name(request.property).text, request.basis.text, values)
                          : material->SetSinglePhaseProp(com::Name(request.property).text, request.phase.text,
                                                         request.basis.text, values);
  CheckHost(set, material.Get(), [](const std::string& why) { return Failure(why); });
}

com::Variant Thermo11::GetProp(const PortMaterial& port, const PropertyRequest& request, const VARIANT&) const {
  const Material material = MaterialOf(port);
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
  const Material duplicate =
      Duplicate11(*MaterialOf(port), port.object,
                  {failed, "Failed to get ICapeThermoMaterial from duplicate material", "Failed to copy material: "});
  return Evaluate11(*duplicate, request);
}

Answer Thermo11::GetPropertyNoDup(const PortMaterial& port, const PropertyRequest& request) const {
  return Evaluate11(*MaterialOf(port), request);
}

com::Bstr Thermo11::GetVaporName(const PortMaterial& port) const { return VaporLabel11(*MaterialOf(port)); }

com::Ref<ICapeThermoMaterial> Duplicate11(ICapeThermoMaterial& material, const com::Ref<IDispatch>& source,
                                          const DuplicationTexts& texts) {
  com::Ref<IDispatch> created;
  CheckHost(material.CreateMaterial(created.Put()), &material,
            [&](const std::string& why) { return Failure(Explained(texts.create(), why)); });
  Material copy = InterfaceOf<ICapeThermoMaterial>(
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
  return Duplicate11(*MaterialOf(port), port.object,
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
  const std::string title = "Could not get " + Shown(constant) + " from port " + port.portName;
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
  const Material material = InterfaceOf<ICapeThermoMaterial>(object, [](const std::string& why) {
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
  HRESULT failure = S_OK;
  const auto phases = com::Query<ICapeThermoPhases>(&material, &failure);
  if (!phases) throw fail("Failed to get ICapeThermoPhases from material: " + ErrorText(&material, failure));
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

}  // namespace morvelan::material
