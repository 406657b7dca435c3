#include "benchmarks/DirectCalls.h"

#include <array>

#include "material/Names.h"

namespace morvelan::benchmarks {
namespace {

template <class Interface>
com::Ref<Interface> Ask(const MaterialRef& material) {
  return com::Query<Interface>(static_cast<ICapeIdentification*>(material.Get()));
}

/// The numbers of an array, in an array of one's own.
com::Variant Copied(const com::Variant& numbers) { return com::MakeDoubles(com::ReadDoubles(numbers.Get())); }

/// The numbers that a thermo 1.0 material gives for a property of the overall phase.
com::Variant Get10(ICapeThermoMaterialObject& material, com::Name property, com::Name basis, com::Name calcType = {}) {
  com::Variant values;
  material.GetProp(property.text, names::kOverall.text, com::kNoValue, calcType.text, basis.text, values.Put());
  return values;
}

void Set10(ICapeThermoMaterialObject& material, com::Name property, com::Name basis, const com::Variant& values,
           com::Name calcType = {}) {
  material.SetProp(property.text, names::kOverall.text, com::kNoValue, calcType.text, basis.text, Copied(values).Get());
}

com::Variant OneNumber() { return com::MakeDoubles(std::array{15000.0}); }

class DirectCalls10 final : public DirectCalls {
 public:
  void CountCompounds(const MaterialRef& material) const override {
    com::Variant ids;
    Ask<ICapeThermoMaterialObject>(material)->get_ComponentIds(ids.Put());
  }
  Overall Read(const MaterialRef& material) const override {
    const auto asked = Ask<ICapeThermoMaterialObject>(material);
    return {Get10(*asked, names::kTemperature, {}), Get10(*asked, names::kPressure, {}),
            Get10(*asked, names::kTotalFlow, names::kMole), Get10(*asked, names::kFraction, names::kMole)};
  }
  void Write(const MaterialRef& material, const Overall& overall) const override {
    const auto asked = Ask<ICapeThermoMaterialObject>(material);
    Set10(*asked, names::kPressure, {}, overall.pressure);
    Set10(*asked, names::kTemperature, {}, overall.temperature);
    Set10(*asked, names::kTotalFlow, names::kMole, overall.flow);
    Set10(*asked, names::kFraction, names::kMole, overall.fractions);
  }
  void Flash(const MaterialRef& material, bool givenTemperature) const override {
    Ask<ICapeThermoMaterialObject>(material)->CalcEquilibrium((givenTemperature ? names::kTP : names::kPH).text,
                                                              com::kNoValue);
  }
  void Enthalpy(const MaterialRef& material, bool ofCopy) const override {
    com::Ref<ICapeThermoMaterialObject> asked = Ask<ICapeThermoMaterialObject>(material);
    if (ofCopy) {
      com::Ref<IDispatch> copy;
      asked->Duplicate(copy.Put());
      asked = copy.As<ICapeThermoMaterialObject>();
    }
    asked->CalcProp(com::MakeStrings(std::array{names::kEnthalpy}).Get(),
                    com::MakeStrings(std::array{names::kOverall}).Get(), names::kMixture.text);
    (void)Get10(*asked, names::kEnthalpy, {}, names::kMixture);
  }
  void SetEnthalpy(const MaterialRef& material) const override {
    Set10(*Ask<ICapeThermoMaterialObject>(material), names::kEnthalpy, names::kMole, OneNumber(), names::kMixture);
  }
  void Temperature(const MaterialRef& material) const override {
    (void)Get10(*Ask<ICapeThermoMaterialObject>(material), names::kTemperature, {});
  }
};

com::Variant Get11(ICapeThermoMaterial& material, com::Name property, com::Name basis) {
  com::Variant values;
  material.GetOverallProp(property.text, basis.text, values.Put());
  return values;
}

void Set11(ICapeThermoMaterial& material, com::Name property, com::Name basis, const com::Variant& values) {
  material.SetOverallProp(property.text, basis.text, Copied(values).Get());
}

com::Variant Specification(com::Name property) {
  return com::MakeStrings(std::array{property, com::Name(), names::kOverall});
}

class DirectCalls11 final : public DirectCalls {
 public:
  void CountCompounds(const MaterialRef& material) const override {
    com::Variant ids, formulae, compoundNames, boiling, weights, cas;
    Ask<ICapeThermoCompounds>(material)->GetCompoundList(ids.Put(), formulae.Put(), compoundNames.Put(), boiling.Put(),
                                                         weights.Put(), cas.Put());
  }
  Overall Read(const MaterialRef& material) const override {
    const auto asked = Ask<ICapeThermoMaterial>(material);
    return {Get11(*asked, names::kTemperature, {}), Get11(*asked, names::kPressure, {}),
            Get11(*asked, names::kTotalFlow, names::kMole), Get11(*asked, names::kFraction, names::kMole)};
  }
  void Write(const MaterialRef& material, const Overall& overall) const override {
    const auto asked = Ask<ICapeThermoMaterial>(material);
    Set11(*asked, names::kPressure, {}, overall.pressure);
    Set11(*asked, names::kTemperature, {}, overall.temperature);
    Set11(*asked, names::kTotalFlow, names::kMole, overall.flow);
    Set11(*asked, names::kFraction, names::kMole, overall.fractions);
  }
  void Flash(const MaterialRef& material, bool givenTemperature) const override {
    const auto asked = Ask<ICapeThermoMaterial>(material);
    com::Variant labels, states, keyCompounds;
    asked.As<ICapeThermoPhases>()->GetPhaseList(labels.Put(), states.Put(), keyCompounds.Put());
    asked->SetPresentPhases(labels.Get(), com::MakeArray(com::CountStrings(labels.Get()), VT_I4).Get());
    asked.As<ICapeThermoEquilibriumRoutine>()->CalcEquilibrium(
        Specification(givenTemperature ? names::kTemperature : names::kPressure).Get(),
        Specification(givenTemperature ? names::kPressure : names::kEnthalpy).Get(), names::kUnspecified.text);
  }
  void Enthalpy(const MaterialRef& material, bool ofCopy) const override {
    auto asked = Ask<ICapeThermoMaterial>(material);
    if (ofCopy) {
      com::Ref<IDispatch> copy;
      asked->CreateMaterial(copy.Put());
      auto copied = copy.As<ICapeThermoMaterial>();
      IDispatch* source = static_cast<ICapeIdentification*>(material.Get());
      copied->CopyFromMaterial(&source);
      asked = copied;
    }
    com::Variant labels, statuses;
    asked->GetPresentPhases(labels.Put(), statuses.Put());
    const auto routine = asked.As<ICapeThermoPropertyRoutine>();
    for (const com::Variant& label : com::ReadVariants(labels.Get())) {
      BSTR phase = label.Get().bstrVal;
      routine->CalcSinglePhaseProp(com::MakeStrings(std::array{names::kEnthalpy}).Get(), phase);
      for (const com::Name property : {names::kEnthalpy, names::kPhaseFraction}) {
        com::Variant values;
        asked->GetSinglePhaseProp(property.text, phase, names::kMole.text, values.Put());
      }
    }
    (void)Get11(*asked, names::kTotalFlow, names::kMole);
  }
  void SetEnthalpy(const MaterialRef& material) const override {
    Set11(*Ask<ICapeThermoMaterial>(material), names::kEnthalpy, names::kMole, OneNumber());
  }
  void Temperature(const MaterialRef& material) const override {
    (void)Get11(*Ask<ICapeThermoMaterial>(material), names::kTemperature, {});
  }
};

}  // namespace

std::unique_ptr<DirectCalls> DirectCalls::Make(bool thermo11) {
  if (thermo11) return std::make_unique<DirectCalls11>();
  return std::make_unique<DirectCalls10>();
}

}  // namespace morvelan::benchmarks
