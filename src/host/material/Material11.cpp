// The thermo 1.1 face of a material: its values and phases.

#include "com/Text.h"
#include "host/material/MaterialObject.h"

namespace morvelan::host {
namespace {

constexpr const char* kInterface = "ICapeThermoMaterial";

[[noreturn]] void NoTwoPhaseProperties() {
  throw HostError(kECapeThrmPropertyNotAvailable, "properties of two phases are not available");
}

PhaseStatus ReadStatus(std::int32_t number) {
  if (number < 0 || number > 2)
    throw HostError(kECapeInvalidArgument, "phase status " + std::to_string(number) + " is unknown");
  return static_cast<PhaseStatus>(number);
}

}  // namespace

HRESULT MaterialObject::ClearAllProps() {
  return Guard("ClearAllProps", kInterface, [&] { state.Clear(); });
}

HRESULT MaterialObject::CopyFromMaterial(IDispatch** source) {
  if (!source) return E_POINTER;
  return Guard("CopyFromMaterial", kInterface, [&] {
    const auto other = AsMaterialObject(*source);
    if (!other || other->state.SharedPackage() != state.SharedPackage())
      throw HostError(kECapeInvalidArgument, "the source is not a material of the same thermodynamics");
    state = MaterialState(other->state);
  });
}

HRESULT MaterialObject::CreateMaterial(IDispatch** created) {
  return HandOut("CreateMaterial", kInterface, created, false);
}

HRESULT MaterialObject::GetOverallProp(BSTR name, BSTR basis, VARIANT* values) {
  if (!values) return E_POINTER;
  return Guard("GetOverallProp", kInterface, [&] {
    const PropertyId id = PropertyByName(com::ToUtf8(name));
    Replace(values, com::MakeDoubles(state.Overall(id, BasisByName(com::ToUtf8(basis), id))));
  });
}

HRESULT MaterialObject::GetOverallTPFraction(double* temperature, double* pressure, VARIANT* composition) {
  if (!temperature || !pressure || !composition) return E_POINTER;
  return Guard("GetOverallTPFraction", kInterface, [&] {
    const double T = state.OverallScalar(Property::kTemperature);
    const double P = state.OverallScalar(Property::kPressure);
    Replace(composition, com::MakeDoubles(state.OverallComposition()));
    *temperature = T;
    *pressure = P;
  });
}

HRESULT MaterialObject::GetPresentPhases(VARIANT* labels, VARIANT* statuses) {
  if (!labels || !statuses) return E_POINTER;
  return Guard("GetPresentPhases", kInterface, [&] {
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

HRESULT MaterialObject::GetSinglePhaseProp(BSTR name, BSTR phase, BSTR basis, VARIANT* values) {
  if (!values) return E_POINTER;
  return Guard("GetSinglePhaseProp", kInterface, [&] {
    const PropertyId id = PropertyByName(com::ToUtf8(name));
    const Basis wanted = BasisByName(com::ToUtf8(basis), id);
    Replace(values, com::MakeDoubles(state.OfPhase(PhaseByName(phase), id, wanted)));
  });
}

HRESULT MaterialObject::GetTPFraction(BSTR phase, double* temperature, double* pressure, VARIANT* composition) {
  if (!temperature || !pressure || !composition) return E_POINTER;
  return Guard("GetTPFraction", kInterface, [&] {
    const PhaseKind kind = PhaseByName(phase);
    const double T = state.OfPhase(kind, {Property::kTemperature}, Basis::kNone).front();
    const double P = state.OfPhase(kind, {Property::kPressure}, Basis::kNone).front();
    Replace(composition, com::MakeDoubles(state.OfPhase(kind, {Property::kFraction}, Basis::kMole)));
    *temperature = T;
    *pressure = P;
  });
}

HRESULT MaterialObject::GetTwoPhaseProp(BSTR, VARIANT, BSTR, VARIANT* values) {
  if (!values) return E_POINTER;
  return Guard("GetTwoPhaseProp", kInterface, NoTwoPhaseProperties);
}

HRESULT MaterialObject::SetOverallProp(BSTR name, BSTR basis, VARIANT values) {
  return Guard("SetOverallProp", kInterface, [&] {
    const PropertyId id = PropertyByName(com::ToUtf8(name));
    state.SetOverall(id, BasisByName(com::ToUtf8(basis), id), ReadNumbers(values));
  });
}

HRESULT MaterialObject::SetPresentPhases(VARIANT labels, VARIANT statuses) {
  return Guard("SetPresentPhases", kInterface, [&] {
    const std::vector<std::string> names = ReadNames(labels);
    const std::vector<std::int32_t> numbers = com::ReadIntegers(statuses);
    if (names.size() != numbers.size())
      throw HostError(kECapeInvalidArgument, "the arrays of phases and of their statuses differ in size");
    std::vector<PresentPhase> phases;
    for (std::size_t i = 0; i < names.size(); ++i)
      phases.push_back({PhaseByName(com::ToBstr(names[i]).Get()), ReadStatus(numbers[i])});
    state.DeclarePhases(phases);
  });
}

HRESULT MaterialObject::SetSinglePhaseProp(BSTR name, BSTR phase, BSTR basis, VARIANT values) {
  return Guard("SetSinglePhaseProp", kInterface, [&] {
    const PropertyId id = PropertyByName(com::ToUtf8(name));
    const Basis given = BasisByName(com::ToUtf8(basis), id);
    state.SetPhase(PhaseByName(phase), id, given, ReadNumbers(values));
  });
}

HRESULT MaterialObject::SetTwoPhaseProp(BSTR, VARIANT, BSTR, VARIANT) {
  return Guard("SetTwoPhaseProp", kInterface,
               [] { throw HostError(kECapeLimitedImpl, "properties of two phases are not kept by this material"); });
}

HRESULT MaterialObject::GetNumPhases(LONG* count) {
  if (!count) return E_POINTER;
  *count = static_cast<LONG>(state.SupportedPhases().size());
  return S_OK;
}

HRESULT MaterialObject::GetPhaseInfo(BSTR phase, BSTR attribute, VARIANT* value) {
  return Answer("GetPhaseInfo", "ICapeThermoPhases", value, [&] {
    const PhaseKind kind = PhaseByName(phase);
    const std::string name = com::ToUtf8(attribute);
    if (com::EqualNoCase(name, "StateOfAggregation")) return com::MakeString(PhaseName(kind));
    if (com::EqualNoCase(name, "KeyCompoundId") || com::EqualNoCase(name, "ExcludedCompoundId"))
      return com::MakeString("UNDEFINED");
    throw HostError(kECapeInvalidArgument, "phase attribute \"" + name + "\" is unknown");
  });
}

HRESULT MaterialObject::GetPhaseList(VARIANT* labels, VARIANT* states, VARIANT* keyCompounds) {
  if (!labels || !states || !keyCompounds) return E_POINTER;
  return Guard("GetPhaseList", "ICapeThermoPhases", [&] {
    std::vector<std::string> names;
    for (const PhaseKind kind : state.SupportedPhases()) names.emplace_back(PhaseName(kind));
    com::Variant labelArray = com::MakeStrings(names);
    com::Variant stateArray = com::MakeStrings(names);  // each label is the name of its state
    Replace(keyCompounds, com::MakeStrings(std::vector<std::string>(names.size(), "UNDEFINED")));
    Replace(labels, std::move(labelArray));
    Replace(states, std::move(stateArray));
  });
}

}  // namespace morvelan::host
