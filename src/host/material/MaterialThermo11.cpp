#include "host/material/MaterialThermo11.h"

#include "host/objects/Arguments.h"

namespace morvelan::host {
namespace {

constexpr const char* kThermo11 = "ICapeThermoMaterial";

PhaseStatus ReadStatus(std::int32_t number) {
  if (number < 0 || number > 2)
    throw HostError(kECapeInvalidArgument, "phase status " + std::to_string(number) + " is unknown");
  return static_cast<PhaseStatus>(number);
}

}  // namespace

HRESULT MaterialThermo11::ClearAllProps() {
  return Guard("ClearAllProps", kThermo11, [&] { state.Clear(); });
}

HRESULT MaterialThermo11::CopyFromMaterial(IDispatch** source) {
  if (!source) return E_POINTER;
  return Guard("CopyFromMaterial", kThermo11, [&] {
    const auto other = AsHostMaterial(*source);
    if (!other || other->State().SharedPackage() != state.SharedPackage())
      throw HostError(kECapeInvalidArgument, "the source is not a material of the same thermodynamics");
    state = MaterialState(other->State());
  });
}

HRESULT MaterialThermo11::CreateMaterial(IDispatch** created) {
  return HandOut("CreateMaterial", kThermo11, created, false);
}

HRESULT MaterialThermo11::GetOverallProp(BSTR name, BSTR basis, VARIANT* values) {
  return Exchange("GetOverallProp", kThermo11, values, [&] {
    const auto [id, wanted] = ReadProperty(name, basis);
    return com::MakeDoubles(state.Overall(id, wanted));
  });
}

HRESULT MaterialThermo11::GetOverallTPFraction(double* temperature, double* pressure, VARIANT* composition) {
  if (!temperature || !pressure) return E_POINTER;
  return Exchange("GetOverallTPFraction", kThermo11, composition, [&] {
    const double T = state.OverallScalar(Property::kTemperature);
    const double P = state.OverallScalar(Property::kPressure);
    com::Variant x = com::MakeDoubles(state.OverallComposition());
    *temperature = T;
    *pressure = P;
    return x;
  });
}

HRESULT MaterialThermo11::GetPresentPhases(VARIANT* labels, VARIANT* statuses) {
  if (!labels || !statuses) return E_POINTER;
  return Guard("GetPresentPhases", kThermo11, [&] {
    std::vector<std::string> names;
    std::vector<std::int32_t> numbers;
    for (const PresentPhase& phase : state.PresentPhases()) {
      names.emplace_back(PhaseName(phase.kind));
      numbers.push_back(static_cast<std::int32_t>(phase.status));
    }
    com::Variant nameArray = com::MakeStrings(names);
    Replace(statuses, com::MakeIntegers(numbers));
    Replace(labels, std::move(nameArray));
  });
}

HRESULT MaterialThermo11::GetSinglePhaseProp(BSTR name, BSTR phase, BSTR basis, VARIANT* values) {
  return Exchange("GetSinglePhaseProp", kThermo11, values, [&] {
    const auto [id, wanted] = ReadProperty(name, basis);
    return com::MakeDoubles(state.OfPhase(PhaseByName(phase), id, wanted));
  });
}

HRESULT MaterialThermo11::GetTPFraction(BSTR phase, double* temperature, double* pressure, VARIANT* composition) {
  if (!temperature || !pressure) return E_POINTER;
  return Exchange("GetTPFraction", kThermo11, composition, [&] {
    const PhaseKind kind = PhaseByName(phase);
    const double T = state.OfPhase(kind, {Property::kTemperature}, Basis::kNone).front();
    const double P = state.OfPhase(kind, {Property::kPressure}, Basis::kNone).front();
    com::Variant x = com::MakeDoubles(state.OfPhase(kind, {Property::kFraction}, Basis::kMole));
    *temperature = T;
    *pressure = P;
    return x;
  });
}

HRESULT MaterialThermo11::GetTwoPhaseProp(BSTR, VARIANT, BSTR, VARIANT* values) {
  if (!values) return E_POINTER;
  return Refuse("GetTwoPhaseProp", kThermo11, kECapeThrmPropertyNotAvailable,
                "properties of two phases are not available");
}

HRESULT MaterialThermo11::SetOverallProp(BSTR name, BSTR basis, VARIANT values) {
  return Guard("SetOverallProp", kThermo11, [&] {
    const auto [id, given] = ReadProperty(name, basis);
    state.SetOverall(id, given, ReadNumbers(values));
  });
}

HRESULT MaterialThermo11::SetPresentPhases(VARIANT labels, VARIANT statuses) {
  return Guard("SetPresentPhases", kThermo11, [&] {
    const std::vector<std::string> names = ReadNames(labels);
    const std::vector<std::int32_t> numbers = com::ReadIntegers(statuses);
    if (names.size() != numbers.size())
      throw HostError(kECapeInvalidArgument, "the arrays of phases and of their statuses differ in size");
    std::vector<PresentPhase> phases;
    for (std::size_t i = 0; i < names.size(); ++i) phases.push_back({PhaseByName(names[i]), ReadStatus(numbers[i])});
    state.DeclarePhases(phases);
  });
}

HRESULT MaterialThermo11::SetSinglePhaseProp(BSTR name, BSTR phase, BSTR basis, VARIANT values) {
  return Guard("SetSinglePhaseProp", kThermo11, [&] {
    const auto [id, given] = ReadProperty(name, basis);
    state.SetPhase(PhaseByName(phase), id, given, ReadNumbers(values));
  });
}

HRESULT MaterialThermo11::SetTwoPhaseProp(BSTR, VARIANT, BSTR, VARIANT) {
  return Refuse("SetTwoPhaseProp", kThermo11, kECapeLimitedImpl,
                "properties of two phases are not kept by this material");
}

}  // namespace morvelan::host
