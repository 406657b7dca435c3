// Property evaluation on a thermo 1.1 material.

#include <algorithm>

#include "errors/HostCall.h"
#include "material/Names.h"
#include "material/Reading.h"
#include "material/Thermo11.h"

namespace morvelan::material {
namespace {

com::Ref<ICapeThermoPropertyRoutine> RoutineOf(ICapeThermoMaterial& material) {
  return InterfaceOf<ICapeThermoPropertyRoutine>(&material, [](const std::string& why) {
    return EvaluationFailure("Failed to obtain ICapeThermoPropertyRoutine from material: " + why);
  });
}

HRESULT CalcProp11(ICapeThermoPropertyRoutine& routine, const Property& property, Name phase) {
  return routine.CalcSinglePhaseProp(ListOfOne(property).Get(), phase.text);
}

com::Variant EvaluatePhase(ICapeThermoMaterial& material, const PropertyRequest& request) {
  const auto routine = RoutineOf(material);
  const auto title = [&] { return "Prop (" + request.property.Text() + "/" + DisplayName(request.phase); };
  CheckHost(CalcProp11(*routine, request.property, request.phase), routine.Get(),
            [&](const std::string& why) { return EvaluationFailure("Calc" + title() + ") failed: " + why); });
  com::Variant values;
  CheckHost(material.GetSinglePhaseProp(com::Name(request.property).text, request.phase.text, request.basis.text,
                                        values.Put()),
            &material, [&](const std::string& why) {
              return EvaluationFailure("Get" + title() + "/" + DisplayName(request.basis) + ") failed: " + why);
            });
  return com::Settle(std::move(values));
}

/// The phases present and the status of each.
struct PresentPhases {
  std::vector<com::Variant> labels;
  std::vector<std::int32_t> statuses;
};

/// `opening` begins the messages.
template <class Opening>
PresentPhases GetPresentPhases(ICapeThermoMaterial& material, Opening&& opening) {
  com::Variant labels, statuses;
  CheckHost(material.GetPresentPhases(labels.Put(), statuses.Put()), &material,
            [&](const std::string& why) { return EvaluationFailure(opening() + "; GetPresentPhases failed: " + why); });
  const auto explain = [&](const char* what) {
    return [&opening, what](const std::string& why) {
      return EvaluationFailure(opening() + "; invalid " + what + " from GetPresentPhases: " + why);
    };
  };
  PresentPhases phases;
  phases.labels = ReadOr(
      [&] {
        (void)com::CountStrings(labels.Get());
        return com::ReadVariants(labels.Get());
      },
      explain("list of phases"));
  phases.statuses = ReadOr([&] { return com::ReadIntegers(statuses.Get()); }, explain("phase status list"));
  if (phases.labels.size() != phases.statuses.size())
    throw EvaluationFailure(opening() +
                            "; GetPresentPhases returned different sizes for phase name list and phase status list");
  return phases;
}

/// One value of a phase on mole basis; `what` names it in messages ("enthalpy", "phase fraction").
template <class What>
double PhaseScalar(ICapeThermoMaterial& material, Name property, Name phase, What&& what) {
  const auto where = [&] { return what() + " for phase " + DisplayName(phase) + ", basis \"mole\": "; };
  com::Variant values;
  CheckHost(material.GetSinglePhaseProp(property.text, phase.text, names::kMole.text, values.Put()), &material,
            [&](const std::string& why) { return EvaluationFailure("Failed to get " + where() + why); });
  return ReadScalar(values.Get(),
                    [&](const std::string& why) { return EvaluationFailure("Invalid values for " + where() + why); });
}

double TotalFlow(ICapeThermoMaterial& material) {
  constexpr const char* kWhere = "total flow for overall phase, basis \"mole\": ";
  com::Variant values;
  CheckHost(material.GetOverallProp(names::kTotalFlow.text, names::kMole.text, values.Put()), &material,
            [&](const std::string& why) { return EvaluationFailure(std::string("Failed to get ") + kWhere + why); });
  return ReadScalar(
      values.Get(),
      [&](const std::string& why) { return EvaluationFailure(std::string("Invalid values for ") + kWhere + why); },
      // The total flow is meant; hosts' users know the message in these words.
      [] {
        return EvaluationFailure(
            "Invalid values for phase fraction for overall phase, basis \"mole\": scalar expected");
      });
}

/// Sums an overall property over the phases present; an empty basis multiplies by the total flow.
double SumOverPhases11(ICapeThermoMaterial& material, const Property& property, Name basis) {
  const auto name = [&] { return property.Text(); };
  if (!OverallEmulation::IndexOf(property))
    throw EvaluationFailure("Internal error: unimplemented overall V11 property calculation for property " + name());
  if (!basis.IsEmpty() && basis != names::kMole)
    throw EvaluationFailure("Internal error: unimplemented overall V11 property calculation for basis " +
                            DisplayName(basis));
  const auto opening = [&] { return "Failed to calculate overall " + name(); };
  const PresentPhases phases = GetPresentPhases(material, opening);
  const auto routine = RoutineOf(material);
  // An empty sum would be 0, which looks like a value.
  if (phases.labels.empty())
    throw EvaluationFailure("Failed to get overall " + name() + ": no valid phases are present");
  double sum = 0;
  for (std::size_t i = 0; i < phases.labels.size(); ++i) {
    const Name phase(phases.labels[i].Get().bstrVal);
    if (phases.statuses[i] != CAPE_ATEQUILIBRIUM)
      throw EvaluationFailure(opening() + "; phase " + DisplayName(phase) + " is reported not to be in equilibrium");
    if (phase == names::kOverall) throw EvaluationFailure("Invalid phase name \"overall\" from GetPresentPhases");
    CheckHost(CalcProp11(*routine, property, phase), routine.Get(), [&](const std::string& why) {
      return EvaluationFailure("Failed to calculate " + name() + " for phase " + DisplayName(phase) + ": " + why);
    });
    const double value = PhaseScalar(material, property, phase, name);
    sum += value * PhaseScalar(material, names::kPhaseFraction, phase, [] { return std::string("phase fraction"); });
  }
  return basis.IsEmpty() ? sum * TotalFlow(material) : sum;
}

std::vector<double> MolecularWeights(ICapeThermoMaterial& material) {
  constexpr const char* kFor = "molecular weights for mass/mole conversion: ";
  const auto compounds = InterfaceOf<ICapeThermoCompounds>(&material, [](const std::string& why) {
    return EvaluationFailure("Failed to obtain material's ICapeThermoCompounds interface: " + why);
  });
  com::Variant weights;
  const com::Variant properties = com::MakeStrings(std::span(&names::kMolecularWeight, 1));
  CheckHost(compounds->GetCompoundConstant(properties.Get(), com::kNoValue, weights.Put()), compounds.Get(),
            [&](const std::string& why) { return EvaluationFailure(std::string("Failed to get ") + kFor + why); });
  const auto elements = ReadOr(
      [&] { return com::ReadVariants(weights.Get()); },
      [&](const std::string& why) { return EvaluationFailure(std::string("Invalid values for ") + kFor + why); });
  std::vector<double> result;
  for (const com::Variant& element : elements) {
    if (element.Get().vt != VT_R8 || IsMissing(element.Get().dblVal))
      throw EvaluationFailure(
          "Invalid value for molecular weight of a compound for mass/mole conversion. Expected VARIANT of "
          "type REAL.");
    result.push_back(element.Get().dblVal);
  }
  return result;
}

/// Mean molecular weight [kg/mol].
double MeanMolecularWeight(ICapeThermoMaterial& material) {
  constexpr const char* kFor = "overall composition for mass/mole conversion: ";
  const std::vector<double> weights = MolecularWeights(material);
  com::Variant values;
  CheckHost(material.GetOverallProp(names::kFraction.text, names::kMole.text, values.Put()), &material,
            [&](const std::string& why) { return EvaluationFailure(std::string("Failed to get ") + kFor + why); });
  const auto fractions = ReadOr(
      [&] { return com::ReadDoubles(values.Get()); },
      [&](const std::string& why) { return EvaluationFailure(std::string("Invalid values for ") + kFor + why); });
  if (std::ranges::any_of(fractions, IsMissing))
    throw EvaluationFailure(std::string("Invalid values for ") + kFor + "value is not set");
  if (fractions.size() != weights.size())
    throw EvaluationFailure(
        "Material object returned inconsistent number of values for molecular weights and overall "
        "compositions for "
        "mass/mole conversion");
  double mean = 0;
  for (std::size_t i = 0; i < weights.size(); ++i) mean += fractions[i] * weights[i];
  return mean * 0.001;
}

}  // namespace

Answer Evaluate11(ICapeThermoMaterial& material, const PropertyRequest& request) {
  if (request.calcType != names::kMixture)
    throw EvaluationFailure("Internal error: unimplemented thermo V11 call for calcType other than mixture");
  if (request.phase != names::kOverall) return EvaluatePhase(material, request);
  if (!OverallEmulation::IndexOf(request.property))
    throw EvaluationFailure("Internal error: unimplemented overall thermo V11 call for property " +
                            request.property.Text());
  if (request.basis != names::kMass) return SumOverPhases11(material, request.property, request.basis);
  // A material without compounds divides by zero here: it has no mass to refer to.
  const double molar = SumOverPhases11(material, request.property, names::kMole);
  return molar / MeanMolecularWeight(material);
}

}  // namespace morvelan::material
