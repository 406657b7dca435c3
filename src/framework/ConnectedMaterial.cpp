#include "framework/ConnectedMaterial.h"

#include <algorithm>

#include "framework/UnitOwner.h"
#include "material/Names.h"
#include "material/Reading.h"

namespace morvelan {

using com::Name;
using material::PortMaterial;
using material::PropertyRequest;
using material::Thermo;

namespace {

/// Numbers; an empty element is a missing value.
std::vector<double> ReadConstants(const com::Variant& array) {
  std::vector<double> values;
  for (const com::Variant& element : com::ReadVariants(array.Get()))
    values.push_back(element.Get().vt == VT_EMPTY ? kMissingValue : com::ReadDouble(element.Get()));
  return values;
}

}  // namespace

template <class Body>
auto ConnectedMaterial::OnMaterial(std::string_view operation, Body&& body, std::string_view interfaceName) {
  return Recorded(operation, interfaceName, [&] {
    if (!IsConnected()) throw Failure("port is not connected");
    UnitOwner& owner = Unit();
    const PortMaterial port{connected, ComponentName(), owner.Emulation()};
    return body(material::ThermoInForce(owner.UsesThermo11()), port);
  });
}

UnitOwner& ConnectedMaterial::Unit() const {
  if (!unit) throw Failure("The unit operation of port " + ComponentName() + " no longer exists");
  return *unit;
}

void ConnectedMaterial::ResizeCompoundBuffer(std::size_t count) { state.composition.resize(count); }

void ConnectedMaterial::ReadState(std::size_t count) {
  OnMaterial("GetProp", [&](const Thermo& thermo, const PortMaterial& port) {
    const auto explain = [&](Name property) {
      return [&port, property](const std::string& why) {
        return Failure("failed to get property " + material::DisplayName(property) +
                       " from material connected to port " + port.portName + ": " + why);
      };
    };
    const auto read = [&](Name property, Name basis) {
      return thermo.GetProp(port, {property, names::kOverall, {}, basis}, com::kNoValue);
    };
    const auto scalar = [&](Name property, Name basis) {
      const auto fail = explain(property);
      return material::ReadScalar(read(property, basis).Get(), fail, [&] { return fail("1 values expected"); });
    };
    state.temperature = scalar(names::kTemperature, {});
    state.pressure = scalar(names::kPressure, {});
    state.totalFlow = scalar(names::kTotalFlow, names::kMole);

    const auto fail = explain(names::kFraction);
    const com::Variant fractions = read(names::kFraction, names::kMole);
    material::ReadOr([&] { com::ReadDoubles(fractions.Get(), state.composition); }, fail);
    if (state.composition.size() != count) {
      ResizeCompoundBuffer(count);
      throw fail(std::to_string(count) + " values expected");
    }
    if (std::ranges::any_of(state.composition, IsMissing)) throw fail("value is not set");
  });
}

void ConnectedMaterial::SetProp(Name property, Name phase, const VARIANT& compoundIds, Name calcType, Name basis,
                                const VARIANT& values) {
  OnMaterial("SetProp", [&](const Thermo& thermo, const PortMaterial& port) {
    thermo.SetProp(port, {property, phase, calcType, basis}, compoundIds, values);
  });
}

com::Variant ConnectedMaterial::GetProp(Name property, Name phase, const VARIANT& compoundIds, Name calcType,
                                        Name basis) {
  return OnMaterial("GetProp", [&](const Thermo& thermo, const PortMaterial& port) {
    return thermo.GetProp(port, {property, phase, calcType, basis}, compoundIds);
  });
}

material::Answer ConnectedMaterial::GetProperty(const Property& property, Name phase, Name calcType, Name basis) {
  return OnMaterial("GetProperty", [&](const Thermo& thermo, const PortMaterial& port) {
    return thermo.GetProperty(port, {property, phase, calcType, basis});
  });
}

material::Answer ConnectedMaterial::GetPropertyNoDup(const Property& property, Name phase, Name calcType, Name basis) {
  return OnMaterial("GetPropertyNoDup", [&](const Thermo& thermo, const PortMaterial& port) {
    return thermo.GetPropertyNoDup(port, {property, phase, calcType, basis});
  });
}

com::Bstr ConnectedMaterial::GetVaporName() {
  return OnMaterial(
      "GetVaporName", [](const Thermo& thermo, const PortMaterial& port) { return thermo.GetVaporName(port); },
      "CPort");
}

com::Ref<IDispatch> ConnectedMaterial::DuplicateMaterial() {
  return OnMaterial("DuplicateMaterial",
                    [](const Thermo& thermo, const PortMaterial& port) { return thermo.DuplicateMaterial(port); });
}

TrialMaterial ConnectedMaterial::CopyMaterial() {
  return OnMaterial("DuplicateMaterial", [&](const Thermo& thermo, const PortMaterial& port) {
    return TrialMaterial(thermo.DuplicateMaterial(port), port.portName, port.emulation, thermo,
                         state.composition.size());
  });
}

com::Variant ConnectedMaterial::GetCompoundList() {
  return Recorded("GetCompoundIds", "UnitPort", [&] {
    if (!IsConnected()) throw Failure(ComponentName() + ": port is not connected");
    return OnMaterial("GetCompoundIds",
                      [](const Thermo& thermo, const PortMaterial& port) { return thermo.GetCompoundList(port); });
  });
}

std::vector<std::string> ConnectedMaterial::GetCompoundIds() {
  return Recorded("GetCompoundIds", "UnitPort", [&] {
    const com::Variant list = GetCompoundList();
    std::vector<std::string> ids = material::ReadOr(
        [&] { return com::ReadStrings(list.Get()); },
        [&](const std::string&) { return Failure("Invalid list of compounds from " + ComponentName()); });
    if (ids.empty()) throw Failure("No chemical compounds on port " + ComponentName());
    return ids;
  });
}

std::size_t ConnectedMaterial::GetCompoundCount() {
  return Recorded("GetCompoundIds", "UnitPort", [&] {
    const com::Variant list = GetCompoundList();
    const std::size_t count = material::ReadOr(
        [&] { return com::CountStrings(list.Get()); },
        [&](const std::string&) { return Failure("Invalid list of compounds from " + ComponentName()); });
    if (count == 0) throw Failure("No chemical compounds on port " + ComponentName());
    return count;
  });
}

material::CompoundIdentities ConnectedMaterial::GetCompoundIdentities() {
  return OnMaterial("GetCompoundIdentities", [&](const Thermo& thermo, const PortMaterial& port) {
    const std::string title = "Could not get compound names and/or CAS numbers from port " + port.portName;
    material::CompoundIdentities identities = thermo.GetCompoundIdentities(port);
    for (std::size_t i = 0; i < identities.names.size(); ++i)
      if (identities.names[i].empty())
        throw Failure(UnitError{title,
                                "One or more empty compound names from material object: compound " +
                                    std::to_string(i + 1) + " of port " + port.portName,
                                {},
                                {}});
    if (identities.casNumbers.size() != identities.names.size())
      throw Failure(
          UnitError{title,
                    "Invalid compound names from material object: " + std::to_string(identities.names.size()) +
                        " names but " + std::to_string(identities.casNumbers.size()) + " CAS numbers",
                    {},
                    {}});
    return identities;
  });
}

std::vector<double> ConnectedMaterial::GetCompoundConstant(Name constant) {
  return OnMaterial("GetCompoundConstant", [&](const Thermo& thermo, const PortMaterial& port) {
    const std::string name = material::DisplayName(constant);
    const auto invalid = [&](const std::string&) {
      return Failure(
          UnitError{"Could not get " + name + " from port " + port.portName, "Invalid values for " + name, {}, {}});
    };
    const com::Variant raw = thermo.GetCompoundConstant(port, constant);
    const std::vector<double> values = material::ReadOr([&] { return ReadConstants(raw); }, invalid);
    if (std::ranges::any_of(values, IsMissing))
      throw Failure("One or more missing values for " + name + " from port " + port.portName);
    if (values.size() != GetCompoundCount()) throw invalid({});
    return values;
  });
}

std::vector<std::string> ConnectedMaterial::GetCompoundText(Name constant) {
  return OnMaterial("GetCompoundConstant", [&](const Thermo& thermo, const PortMaterial& port) {
    const auto fail = [&](const std::string& why) {
      return Failure(
          UnitError{"Could not get " + material::DisplayName(constant) + " from port " + port.portName, why, {}, {}});
    };
    const com::Variant raw = thermo.GetCompoundConstant(port, constant);
    const auto elements = material::ReadOr([&] { return com::ReadVariants(raw.Get()); },
                                           [&](const std::string& why) { return fail("Invalid data: " + why); });
    if (elements.empty()) throw fail("No data");
    std::vector<std::string> texts;
    for (const com::Variant& element : elements)
      texts.push_back(material::ReadOr([&] { return com::ReadString(element.Get()); },
                                       [&](const std::string&) { return fail("Unexpected data type"); }));
    if (texts.size() != GetCompoundCount()) throw fail("Unexpected number of data elements");
    return texts;
  });
}

std::vector<material::PhaseFraction> ConnectedMaterial::GetPhaseFractions() {
  return OnMaterial(
      "Calculate",
      [](const Thermo& thermo, const PortMaterial& port) { return thermo.GetPhaseFractions(port.object.Get()); },
      "ICapeUnit");
}

std::vector<std::string> ConnectedMaterial::GetPhaseLabels() {
  return OnMaterial("GetPhaseLabels",
                    [](const Thermo& thermo, const PortMaterial& port) { return thermo.GetPhaseLabels(port); });
}

std::vector<std::string> ConnectedMaterial::GetPropertyList() {
  return OnMaterial("GetPropertyList",
                    [](const Thermo& thermo, const PortMaterial& port) { return thermo.GetPropertyList(port); });
}

void ConnectedMaterial::CalcEquilibrium(Name flashType) {
  Recorded("CalcEquilibrium", "UnitPort", [&] {
    if (!IsConnected())
      throw Failure(UnitError{"not connected", "port " + ComponentName() + " is not connected", {}, {}});
    OnMaterial("CalcEquilibrium",
               [&](const Thermo& thermo, const PortMaterial& port) { thermo.CalcEquilibrium(port, state, flashType); });
  });
}

double ConnectedMaterial::CalcNormalEnthalpy(std::span<const double> composition) {
  return OnMaterial("CalcNormalEnthalpy", [&](const Thermo& thermo, const PortMaterial& port) {
    return thermo.CalcNormalEnthalpy(port, composition);
  });
}

void ConnectedMaterial::CheckCompoundLists(std::span<const std::string> list, const BaseObject& referencePort) {
  Recorded("CheckCompoundLists", "UnitPort", [&] {
    const std::string& own = ComponentName();
    const std::string both = own + " does not match ";
    const std::string advice = "; please make sure to connect materials of the same type to these ports";
    const auto invalid = [&](const std::string& why) {
      return Failure("Invalid format for compound list at port " + own + ": " + why);
    };
    com::Variant raw;
    try {
      raw = GetCompoundList();
    } catch (const Failure& failure) {
      throw invalid(failure.error.description);
    }
    const std::vector<std::string> ids = material::ReadOr([&] { return com::ReadStrings(raw.Get()); }, invalid);
    if (ids.empty()) throw Failure("No compounds present on port " + own);
    if (ids.size() != list.size())
      throw Failure("Compounds count present on port " + both + "number of compounds on port " +
                    referencePort.ComponentName() + advice);
    if (!std::ranges::equal(ids, list, com::EqualNoCase))
      throw Failure("Compounds list on port " + both + "compound list on port " + referencePort.ComponentName() +
                    advice);
  });
}

}  // namespace morvelan
