// Property evaluation on a thermo 1.0 material.

#include "errors/HostCall.h"
#include "material/Names.h"
#include "material/Reading.h"
#include "material/Thermo10.h"

namespace morvelan::material {
namespace {

com::Variant GetProp(ICapeThermoMaterialObject& material, Name property, Name phase, Name calcType, Name basis,
                     const std::string& title) {
  com::Variant values;
  CheckHost(material.GetProp(property.text, phase.text, com::kNoValue, calcType.text, basis.text, values.Put()),
            &material, [&](const std::string& why) { return EvaluationFailure(title + " failed: " + why); });
  return values;
}

HRESULT CalcProp(ICapeThermoMaterialObject& material, Name property, Name phase, Name calcType) {
  const com::Variant properties = com::MakeStrings(std::span(&property, 1));
  const com::Variant phases = com::MakeStrings(std::span(&phase, 1));
  return material.CalcProp(properties.Get(), phases.Get(), calcType.text);
}

/// One phase's contribution to an overall property: phase fraction times molar value; nothing for a phase
/// whose fraction is exactly zero.
std::optional<double> PhaseContribution(ICapeThermoMaterialObject& material, Name label,
                                        const PropertyRequest& request) {
  const std::string property = Shown(request.property);
  const std::string phase = Shown(label);
  const std::string fractionTitle = "GetProp (phaseFraction/" + phase + ")";
  const com::Variant fractions = GetProp(material, names::kPhaseFraction, label, {}, names::kMole, fractionTitle);
  const double fraction = ReadScalar(fractions.Get(), [&](const std::string&) {
    return EvaluationFailure("Unexpected value for phase fraction for " + phase);
  });
  if (fraction == 0) return std::nullopt;
  CheckHost(CalcProp(material, request.property, label, request.calcType), &material, [&](const std::string& why) {
    return EvaluationFailure("CalcProp (" + property + "/" + phase + "/mixture) failed: " + why);
  });
  const com::Variant values = GetProp(material, request.property, label, request.calcType, names::kMole,
                                      "GetProp (" + property + "/" + phase + "/mixture/mole)");
  return fraction * ReadScalar(values.Get(), [&](const std::string& why) {
           return EvaluationFailure("Unexpected value for " + property + " for " + phase + " phase: " + why);
         });
}

std::vector<com::Variant> PhaseLabels(ICapeThermoMaterialObject& material, const std::string& property) {
  const std::string opening = "Failed to obtain overall " + property;
  com::Variant labels;
  CheckHost(material.get_PhaseIds(labels.Put()), &material, [&](const std::string& why) {
    return EvaluationFailure(opening + "; unable to get a list of phases, " + why);
  });
  const auto invalid = [&](const std::string& why) {
    return EvaluationFailure(opening + "; invalid list of phases from material: " + why);
  };
  // A single element of another type has a message of its own.
  const VARIANT array = com::Borrow(labels.Get());
  if (array.vt != (VT_ARRAY | VT_BSTR) && array.vt != (VT_ARRAY | VT_VARIANT))
    throw invalid("an array of texts expected, " + com::Describe(array) + " found");
  return ReadOr([&] { return com::ReadVariants(array); }, invalid);
}

/// Sums an overall property over the phases. A basis other than empty leaves the molar value as it is,
/// whatever the basis: units ask for molar values or totals only.
double SumOverPhases(ICapeThermoMaterialObject& material, const PropertyRequest& request) {
  const std::string property = Shown(request.property);
  double sum = 0;
  bool contributed = false;
  for (const com::Variant& label : PhaseLabels(material, property)) {
    if (label.Get().vt != VT_BSTR) throw EvaluationFailure("unable to get phase name from array");
    const Name phase(label.Get().bstrVal);
    if (phase.IsEmpty() || phase == names::kOverall) continue;
    if (const auto contribution = PhaseContribution(material, phase, request)) {
      sum += *contribution;
      contributed = true;
    }
  }
  if (request.basis.IsEmpty()) {
    const com::Variant flow =
        GetProp(material, names::kTotalFlow, names::kOverall, {}, names::kMole, "GetProp (totalFlow/overall)");
    sum *= ReadScalar(flow.Get(), [](const std::string& why) {
      return EvaluationFailure("Unexpected value for total flow for overall phase: " + why);
    });
  }
  if (!contributed) throw EvaluationFailure("Failed to get overall " + property + ": no valid phases are present");
  return sum;
}

/// Molar value times total flow.
double TotalOf(ICapeThermoMaterialObject& material, const PropertyRequest& request) {
  const std::string property = Shown(request.property);
  const std::string phase = Shown(request.phase);
  const auto scalar = [](const com::Variant& values, const std::string& what, const std::string& shortName) {
    return ReadScalar(
        values.Get(),
        [&](const std::string& why) {
          return EvaluationFailure("Failed to convert " + what + " from GetProp: " + why);
        },
        [&] { return EvaluationFailure("Unexpected number of values for " + shortName + ": scalar expected"); });
  };
  const com::Variant molar = GetProp(material, request.property, request.phase, request.calcType, names::kMole,
                                     "GetProp (" + property + "/" + phase + "/" + Shown(request.calcType) + "/Mole)");
  const com::Variant flow = GetProp(material, names::kTotalFlow, request.phase, {}, names::kMole,
                                    "GetProp (totalFlow/" + phase + "/base mole)");
  const double molarValue = scalar(molar, property + " values", property);
  return molarValue * scalar(flow, "total flow values", "totalFlow");
}

}  // namespace

com::Variant Evaluate10(ICapeThermoMaterialObject& material, const PropertyRequest& request,
                        OverallEmulation& emulation) {
  const auto index = OverallEmulation::IndexOf(request.property);
  const bool canBeSummed = index && request.phase == names::kOverall && request.calcType == names::kMixture;
  const auto sum = [&] { return com::MakeDoubles(std::array{SumOverPhases(material, request)}); };
  if (canBeSummed && emulation.needed[*index]) return sum();

  const HRESULT calculated = CalcProp(material, request.property, request.phase, request.calcType);
  if (FAILED(calculated) && canBeSummed) {
    com::Variant result = sum();
    emulation.needed[*index] = true;
    return result;
  }
  const std::string title = "(" + Shown(request.property) + "/" + Shown(request.phase) + "/" + Shown(request.calcType);
  CheckHost(calculated, &material,
            [&](const std::string& why) { return EvaluationFailure("CalcProp " + title + ") failed: " + why); });
  if (canBeSummed && request.basis.IsEmpty()) return com::MakeDoubles(std::array{TotalOf(material, request)});
  const std::string basis = request.basis.IsEmpty() ? "" : "/" + Shown(request.basis);
  return com::Settle(GetProp(material, request.property, request.phase, request.calcType, request.basis,
                             "GetProp " + title + basis + ")"));
}

}  // namespace morvelan::material
