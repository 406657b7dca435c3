#include "host/reactions/MaterialReader.h"

#include "com/Text.h"
#include "com/Values.h"
#include "host/objects/HostError.h"
#include "host/objects/ReportedError.h"

namespace morvelan::host {
namespace {

com::Variant NameArray(const char* name) { return com::MakeStrings(std::vector<std::string>{name}); }

/// The molar basis, for the properties that have one.
const char* BasisOf(const std::string& property) {
  return property == "temperature" || property == "pressure" ? "" : "Mole";
}

void RequireAnswer(HRESULT outcome, IUnknown* material, const std::string& what) {
  if (FAILED(outcome))
    throw HostError(kECapeThrmPropertyNotAvailable,
                    "the material does not give " + what + ": " + ReportedErrorOf(material, outcome).Text());
}

std::string PropertyOfPhase(const char* property, const char* phase) {
  return std::string("property ") + property + " of phase \"" + phase + '"';
}

class Reader10 final : public MaterialReader {
 public:
  explicit Reader10(com::Ref<ICapeThermoMaterialObject> source) : material(std::move(source)) {}

  [[nodiscard]] std::vector<std::string> Compounds() const override {
    com::Variant ids;
    RequireAnswer(material->get_ComponentIds(ids.Put()), material.Get(), "its compounds");
    return com::ReadStrings(ids.Get());
  }

  [[nodiscard]] std::vector<double> Values(const char* property, const char* phase) const override {
    com::Variant values;
    RequireAnswer(material->GetProp(com::ToBstr(property).Get(), com::ToBstr(phase).Get(), com::kNoValue, nullptr,
                                    com::ToBstr(BasisOf(property)).Get(), values.Put()),
                  material.Get(), PropertyOfPhase(property, phase));
    return com::ReadDoubles(values.Get());
  }

  void Calculate(const char* property, const char* phase) const override {
    RequireAnswer(material->CalcProp(NameArray(property).Get(), NameArray(phase).Get(), com::ToBstr("mixture").Get()),
                  material.Get(), PropertyOfPhase(property, phase));
  }

 private:
  com::Ref<ICapeThermoMaterialObject> material;
};

class Reader11 final : public MaterialReader {
 public:
  explicit Reader11(com::Ref<ICapeThermoMaterial> source) : material(std::move(source)) {}

  [[nodiscard]] std::vector<std::string> Compounds() const override {
    const auto compounds = Offered<ICapeThermoCompounds>("ICapeThermoCompounds");
    com::Variant ids, formulae, names, boilingPoints, weights, casNumbers;
    RequireAnswer(compounds->GetCompoundList(ids.Put(), formulae.Put(), names.Put(), boilingPoints.Put(), weights.Put(),
                                             casNumbers.Put()),
                  compounds.Get(), "its compounds");
    return com::ReadStrings(ids.Get());
  }

  [[nodiscard]] std::vector<double> Values(const char* property, const char* phase) const override {
    com::Variant values;
    const auto name = com::ToBstr(property), basis = com::ToBstr(BasisOf(property));
    const HRESULT outcome =
        com::EqualNoCase(phase, "Overall")
            ? material->GetOverallProp(name.Get(), basis.Get(), values.Put())
            : material->GetSinglePhaseProp(name.Get(), com::ToBstr(phase).Get(), basis.Get(), values.Put());
    RequireAnswer(outcome, material.Get(), PropertyOfPhase(property, phase));
    return com::ReadDoubles(values.Get());
  }

  void Calculate(const char* property, const char* phase) const override {
    const auto routine = Offered<ICapeThermoPropertyRoutine>("ICapeThermoPropertyRoutine");
    RequireAnswer(routine->CalcSinglePhaseProp(NameArray(property).Get(), com::ToBstr(phase).Get()), routine.Get(),
                  PropertyOfPhase(property, phase));
  }

 private:
  template <class Interface>
  [[nodiscard]] com::Ref<Interface> Offered(const char* name) const {
    auto found = material.As<Interface>();
    if (!found) throw HostError(kECapeInvalidArgument, std::string("the material does not offer ") + name);
    return found;
  }

  com::Ref<ICapeThermoMaterial> material;
};

}  // namespace

std::unique_ptr<MaterialReader> MakeMaterialReader(IDispatch* material) {
  if (auto newer = com::Query<ICapeThermoMaterial>(material)) return std::make_unique<Reader11>(std::move(newer));
  if (auto older = com::Query<ICapeThermoMaterialObject>(material)) return std::make_unique<Reader10>(std::move(older));
  throw HostError(kECapeInvalidArgument,
                  "the object is no material: it offers neither ICapeThermoMaterial nor "
                  "ICapeThermoMaterialObject");
}

}  // namespace morvelan::host
