#include "host/flowsheet/StreamObjects.h"

namespace morvelan::host {
namespace {

constexpr const char* kWork = "work";
constexpr const char* kLow = "temperatureLow";
constexpr const char* kHigh = "temperatureHigh";

using Parameters = std::vector<com::Ref<StreamParameter>>;

com::Ref<StreamParameter> MakeParameter(const std::string& name, const Exponents& dimensions,
                                        std::optional<double> value = {}) {
  return com::Make<StreamParameter>(name, dimensions, value);
}

Parameters MakeEnergy(const StreamSpecification* listed) {
  if (!listed)  // a unit may write any of them
    return {MakeParameter(kWork, kPowerExponents), MakeParameter(kLow, kTemperatureExponents),
            MakeParameter(kHigh, kTemperatureExponents)};
  const auto& feed = std::get<EnergyFeed>(listed->state);
  Parameters parameters = {MakeParameter(kWork, kPowerExponents, feed.work)};
  if (feed.temperatureLow) parameters.push_back(MakeParameter(kLow, kTemperatureExponents, feed.temperatureLow));
  if (feed.temperatureHigh) parameters.push_back(MakeParameter(kHigh, kTemperatureExponents, feed.temperatureHigh));
  return parameters;
}

/// A single value is always named "value". Units find it by its dimensionality.
Parameters MakeInformation(const NetworkStream& stream) {
  if (stream.listed) {
    const auto& feed = std::get<InformationFeed>(stream.listed->state);
    return {MakeParameter("value", feed.dimensionality, feed.value)};
  }
  Parameters parameters;
  for (const PortItem& item : stream.items)
    parameters.push_back(MakeParameter(stream.items.size() == 1 ? "value" : item.name, item.dimensions));
  if (parameters.empty()) parameters.push_back(MakeParameter("value", {}));
  return parameters;
}

MaterialState MakeState(const NetworkStream& stream, const std::shared_ptr<const PropertyPackage>& package) {
  MaterialState state(package);
  if (!stream.listed) return state;
  const auto& feed = std::get<MaterialFeed>(stream.listed->state);
  state.SetOverall({Property::kTemperature}, Basis::kNone, {feed.temperature});
  state.SetOverall({Property::kPressure}, Basis::kNone, {feed.pressure});
  state.SetOverall({Property::kTotalFlow}, Basis::kMole, {feed.flow});
  state.SetOverall({Property::kFraction}, Basis::kMole, feed.composition);
  return state;
}

/// A value of the material, or nothing when it is not set.
template <class Get>
auto IfAvailable(Get get) -> std::optional<decltype(get())> {
  try {
    return get();
  } catch (const HostError& error) {
    if (error.code != kECapeThrmPropertyNotAvailable) throw;
    return std::nullopt;
  }
}

MaterialResult MaterialResultOf(const MaterialState& state) {
  const auto scalar = [&](Property property, Basis basis) {
    return IfAvailable([&] { return state.OverallScalar(property, basis); });
  };
  MaterialResult result{
      .temperature = scalar(Property::kTemperature, Basis::kNone),
      .pressure = scalar(Property::kPressure, Basis::kNone),
      .flow = scalar(Property::kTotalFlow, Basis::kMole),
      .composition = IfAvailable([&] { return state.OverallComposition(); }).value_or(std::vector<double>())};
  const auto equilibrium = state.CurrentEquilibrium();
  if (!equilibrium) return result;
  for (const Phase& phase : equilibrium->phases)
    result.phases.push_back({PhaseName(phase.kind), phase.fraction, phase.x});
  const MolarProperties molar = state.Package().Overall(*equilibrium);
  result.energies = {molar.enthalpy, molar.entropy, molar.enthalpyF};
  return result;
}

EnergyResult EnergyResultOf(const ValueStream& stream) {
  EnergyResult result;
  for (const auto& parameter : stream.Values()) {
    if (parameter->Name() == kWork) result.work = parameter->Value();
    if (parameter->Name() == kLow) result.temperatureLow = parameter->Value();
    if (parameter->Name() == kHigh) result.temperatureHigh = parameter->Value();
  }
  return result;
}

InformationResult InformationResultOf(const ValueStream& stream) {
  InformationResult result;
  for (const auto& parameter : stream.Values())
    result.values.push_back({parameter->Name(), parameter->Value(), parameter->Dimensions()});
  return result;
}

}  // namespace

StreamObject::StreamObject(const NetworkStream& stream, const std::shared_ptr<const PropertyPackage>& package,
                           ThermoOffer offer)
    : name(stream.name), type(stream.type) {
  if (type == CAPE_ENERGY)
    values = com::Make<ValueStream>(name, "Energy stream", MakeEnergy(stream.listed));
  else if (type == CAPE_INFORMATION)
    values = com::Make<ValueStream>(name, "Information stream", MakeInformation(stream));
  else
    material = com::Make<MaterialObject>(name, MakeState(stream, package), offer);
}

com::Ref<IDispatch> StreamObject::Dispatch() const {
  return material ? material.As<IDispatch>() : values.As<IDispatch>();
}

void StreamObject::Flash() {
  if (material) material->State().Flash({Property::kTemperature}, {Property::kPressure});
}

StreamResult StreamObject::Read() const {
  if (material) return {name, MaterialResultOf(material->State())};
  if (type == CAPE_ENERGY) return {name, EnergyResultOf(*values)};
  return {name, InformationResultOf(*values)};
}

}  // namespace morvelan::host
