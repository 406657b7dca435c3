// Property evaluation on a thermo 1.0 material.

#include "errors/HostCall.h"
#include "material/Names.h"
#include "material/Reading.h"
#include "material/Thermo10.h"

namespace morvelan::material {
namespace {

/// `title` says what was asked for, once that has failed.
template <class Title>
com::Variant GetProp(ICapeThermoMaterialObject& material, Name property, Name phase, Name calcType, Name basis,
                     Title&& title) {
  com::Variant values;
  CheckHost(material.GetProp(property.text, phase.text, com::kNoValue, calcType.text, basis.text, values.Put()),
            &material, [&](const std::string& why) { return EvaluationFailure(title() + " failed: " + why); });
  return values;
}

HRESULT CalcProp10(ICapeThermoMaterialObject& material, const Property& property, Name phase, Name calcType) {
  static const VARIANT& overall = com::KeepList(names::kOverall);
  if (phase.text == names::kOverall.text) return material.CalcProp(ListOfOne(property).Get(), overall, calcType.text);
  return material.CalcProp(ListOfOne(property).Get(), com::MakeStrings(std::span(&phase, 1)).Get(), calcType.text);
}

/// One phase's contribution to an overall property: phase fraction times molar value; nothing for a phase
/// whose fraction is exactly zero.
std::optional<double> PhaseContribution(ICapeThermoMaterialObject& material, Name label,
                                        const PropertyRequest& request) {
  const auto which = [&] { return request.property.Text() + "/" + DisplayName(label); };
  const com::Variant fractions = GetProp(material, names::kPhaseFraction, label, {}, names::kMole,
                                         [&] { return "GetProp (phaseFraction/" + DisplayName(label) + ")"; });
  const double fraction = ReadScalar(fractions.Get(), [&](const std::string&) {
    return EvaluationFailure("Unexpected value for phase fraction for " + DisplayName(label));
  });
  if (fraction == 0) return std::nullopt;
  CheckHost(CalcProp10(material, request.property, label, request.calcType), &material, [&](const std::string& why) {
    return EvaluationFailure("CalcProp (" + which() + "/mixture) failed: " + why);
  });
  const com::Variant values = GetProp(material, request.property, label, request.calcType, names::kMole,
                                      [&] { return "GetProp (" + which() + "/mixture/mole)"; });
  return fraction * ReadScalar(values.Get(), [&](const std::string& why) {
           return EvaluationFailure("Unexpected value for " + request.property.Text() + " for " + DisplayName(label) +
                                    " phase: " + why);
         });
}

std::vector<com::Variant> PhaseLabels(ICapeThermoMaterialObject& material, const Property& property) {
  const auto opening = [&] { return "Failed to obtain overall " + property.Text(); };
  com::Variant labels;
  CheckHost(material.get_PhaseIds(labels.Put()), &material, [&](const std::string& why) {
    return EvaluationFailure(opening() + "; unable to get a list of phases, " + why);
  });
  const auto invalid = [&](const std::string& why) {
    return EvaluationFailure(opening() + "; invalid list of phases from material: " + why);
  };
  // A single element of another type has a message of its own.
  const VARIANT array = com::Borrow(labels.Get());
  if (array.vt != (VT_ARRAY | VT_BSTR) && array.vt != (VT_ARRAY | VT_VARIANT))
    throw invalid("an array of texts expected, " + com::Describe(array) + " found");
  return ReadOr([&] { return com::ReadVariants(array); }, invalid);
}

/// Sums an overall property over the phases. A basis other than empty leaves the molar value as it is,
/// whatever the basis: units ask for molar values or totals only.
double SumOverPhases10(ICapeThermoMaterialObject& material, const PropertyRequest& request) {
  double sum = 0;
  bool contributed = false;
  for (const com::Variant& label : PhaseLabels(material, request.property)) {
    if (label.Get().vt != VT_BSTR) throw EvaluationFailure("unable to get phase name from array");
    const Name phase(label.Get().bstrVal);
    if (phase.IsEmpty() || phase == names::kOverall) continue;
    if (const auto contribution = PhaseContribution(material, phase, request)) {
      sum += *contribution;
      contributed = true;
    }
  }
  if (request.basis.IsEmpty()) {
    const com::Variant flow = GetProp(material, names::kTotalFlow, names::kOverall, {}, names::kMole,
                                      [] { return std::string("GetProp (totalFlow/overall)"); });
    sum *= ReadScalar(flow.Get(), [](const std::string& why) {
      return EvaluationFailure("Unexpected value for total flow for overall phase: " + why);
    });
  }
  if (!contributed)
    throw EvaluationFailure("Failed to get overall " + request.property.Text() + ": no valid phases are present");
  return sum;
}

/// Molar value times total flow.
double TotalOf(ICapeThermoMaterialObject& material, const PropertyRequest& request) {
  const auto scalar = [](const com::Variant& values, auto&& what, auto&& shortName) {
    return ReadScalar(
        values.Get(),
        [&](const std::string& why) {
          return EvaluationFailure("Failed to convert " + what() + " values from GetProp: " + why);
        },
        [&] { return EvaluationFailure("Unexpected number of values for " + shortName() + ": scalar expected"); });
  };
  const auto property = [&] { return request.property.Text(); };
  const com::Variant molar = GetProp(material, request.property, request.phase, request.calcType, names::kMole, [&] {
    return "GetProp (" + property() + "/" + DisplayName(request.phase) + "/" + DisplayName(request.calcType) + "/Mole)";
  });
  const com::Variant flow = GetProp(material, names::kTotalFlow, request.phase, {}, names::kMole,
                                    [&] { return "GetProp (totalFlow/" + DisplayName(request.phase) + "/base mole)"; });
  const double molarValue = scalar(molar, property, property);
  return molarValue * scalar(
                          flow, [] { return std::string("total flow"); }, [] { return std::string("totalFlow"); });
}

}  // namespace

Answer Evaluate10(ICapeThermoMaterialObject& material, const PropertyRequest& request, OverallEmulation& emulation) {
  const auto index = OverallEmulation::IndexOf(request.property);
  const bool canBeSummed = index && request.phase == names::kOverall && request.calcType == names::kMixture;
  if (canBeSummed && emulation.needed[*index]) return SumOverPhases10(material, request);

  const HRESULT calculated = CalcProp10(material, request.property, request.phase, request.calcType);
  if (FAILED(calculated) && canBeSummed) {
    const double sum = SumOverPhases10(material, request);
    emulation.needed[*index] = true;
    return sum;
  }
  const auto title = [&] {
    return "(" + request.property.Text() + "/" + DisplayName(request.phase) + "/" + DisplayName(request.calcType);
  };
  CheckHost(calculated, &material,
            [&](const std::string& why) { return EvaluationFailure("CalcProp " + title() + ") failed: " + why); });
  if (canBeSummed && request.basis.IsEmpty()) return TotalOf(material, request);
  return com::Settle(GetProp(material, request.property, request.phase, request.calcType, request.basis, [&] {
    return "GetProp " + title() + (request.basis.IsEmpty() ? "" : "/" + DisplayName(request.basis)) + ")";
  }));
}

}  // namespace morvelan::material
