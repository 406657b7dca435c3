#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "com/Text.h"
#include "host/material/MaterialObject.h"
#include "host/thermo/PackageFactory.h"
#include "tests/support/Door.h"

namespace morvelan::test {

/// A natural gas that is two-phase at 250 K and 4 MPa.
inline const std::vector<std::string> kGasCompounds = {"methane", "propane", "n-pentane", "carbon dioxide"};
inline const std::vector<double> kGas = {0.75, 0.15, 0.07, 0.03};

inline std::shared_ptr<const host::PropertyPackage> MakePackage(const std::vector<std::string>& compounds,
                                                                const std::string& model = "peng-robinson") {
  host::CompoundData data;
  data.AddCompounds(std::filesystem::path(MORVELAN_DATA_DIR) / "compounds.json");
  data.AddInteractions(std::filesystem::path(MORVELAN_DATA_DIR) / "binary-interaction.json");
  host::PackageOptions options;
  options.model = model;
  options.compounds = compounds;
  return host::MakePropertyPackage(data, options);
}

inline const std::shared_ptr<const host::PropertyPackage>& GasPackage() {
  static const auto package = MakePackage(kGasCompounds);
  return package;
}

inline com::Variant Names(const std::vector<std::string>& names) { return com::MakeStrings(names); }
inline com::Variant Numbers(const std::vector<double>& values) { return com::MakeDoubles(values); }

/// A host material with the interfaces that a test calls, both generations on one object.
struct Material {
  explicit Material(std::shared_ptr<const host::PropertyPackage> package = GasPackage(),
                    host::ThermoOffer offer = host::ThermoOffer::kBoth)
      : Material(com::Make<host::MaterialObject>("S-1", host::MaterialState(std::move(package)), offer)) {}
  explicit Material(const com::Ref<host::MaterialObject>& made) : Material(made.As<IUnknown>()) {}
  explicit Material(com::Ref<IUnknown> made)
      : object(std::move(made)),
        thermo10(object.As<ICapeThermoMaterialObject>()),
        thermo11(object.As<ICapeThermoMaterial>()),
        routine(object.As<ICapeThermoPropertyRoutine>()),
        equilibrium(object.As<ICapeThermoEquilibriumRoutine>()) {}

  HRESULT Set(const char* name, const char* basis, const std::vector<double>& values) const {
    return thermo11->SetOverallProp(com::ToBstr(name).Get(), com::ToBstr(basis).Get(), Numbers(values).Get());
  }
  HRESULT Set10(const char* name, const char* phase, const char* basis, const std::vector<double>& values) const {
    return thermo10->SetProp(com::ToBstr(name).Get(), com::ToBstr(phase).Get(), com::kNoValue, nullptr,
                             com::ToBstr(basis).Get(), Numbers(values).Get());
  }
  HRESULT Flash10(const char* type) const { return thermo10->CalcEquilibrium(com::ToBstr(type).Get(), com::kNoValue); }
  HRESULT Flash11(const std::vector<std::string>& first, const std::vector<std::string>& second) const {
    return equilibrium->CalcEquilibrium(Names(first).Get(), Names(second).Get(), nullptr);
  }
  /// Sets a state and brings it to equilibrium.
  void Bring(double T, double P, double flow, const std::vector<double>& z) const {
    ASSERT_EQ(Set("temperature", "", {T}), S_OK);
    ASSERT_EQ(Set("pressure", "", {P}), S_OK);
    ASSERT_EQ(Set("totalFlow", "Mole", {flow}), S_OK);
    ASSERT_EQ(Set("fraction", "Mole", z), S_OK);
    ASSERT_EQ(Flash10("TP"), S_OK) << Text();
  }

  /// Stored values by either generation; empty on failure.
  [[nodiscard]] std::vector<double> Get10(const std::string& name, const char* phase, const char* basis) const {
    com::Variant values;
    const HRESULT got = thermo10->GetProp(com::ToBstr(name).Get(), com::ToBstr(phase).Get(), com::kNoValue, nullptr,
                                          com::ToBstr(basis).Get(), values.Put());
    return SUCCEEDED(got) ? com::ReadDoubles(values.Get()) : std::vector<double>();
  }
  [[nodiscard]] std::vector<double> Get11(const std::string& name, const char* phase, const char* basis) const {
    com::Variant values;
    const auto property = com::ToBstr(name);
    const HRESULT got = com::EqualNoCase(phase, "Overall")
                            ? thermo11->GetOverallProp(property.Get(), com::ToBstr(basis).Get(), values.Put())
                            : thermo11->GetSinglePhaseProp(property.Get(), com::ToBstr(phase).Get(),
                                                           com::ToBstr(basis).Get(), values.Put());
    return SUCCEEDED(got) ? com::ReadDoubles(values.Get()) : std::vector<double>();
  }
  [[nodiscard]] std::vector<double> Calc10(const std::string& name, const char* phase, const char* basis) const {
    if (FAILED(thermo10->CalcProp(Names({name}).Get(), Names({phase}).Get(), com::ToBstr("mixture").Get()))) return {};
    return Get10(name, phase, basis);
  }
  [[nodiscard]] std::vector<double> Calc11(const std::string& name, const char* phase, const char* basis) const {
    if (FAILED(routine->CalcSinglePhaseProp(Names({name}).Get(), com::ToBstr(phase).Get()))) return {};
    return Get11(name, phase, basis);
  }
  [[nodiscard]] std::vector<std::string> PresentPhases() const {
    com::Variant labels, statuses;
    return FAILED(thermo11->GetPresentPhases(labels.Put(), statuses.Put())) ? std::vector<std::string>{"<failed>"}
                                                                            : com::ReadStrings(labels.Get());
  }
  /// The text of the last failure.
  [[nodiscard]] std::string Text() const { return ErrorOf(object.Get()).description; }

  com::Ref<IUnknown> object;
  com::Ref<ICapeThermoMaterialObject> thermo10;
  com::Ref<ICapeThermoMaterial> thermo11;
  com::Ref<ICapeThermoPropertyRoutine> routine;
  com::Ref<ICapeThermoEquilibriumRoutine> equilibrium;
};

/// Mean molecular weight [kg/mol], summed here.
inline double MassOf(const host::PropertyPackage& package, const std::vector<double>& x) {
  double mass = 0;
  for (std::size_t i = 0; i < x.size(); ++i) mass += x[i] * package.CompoundAt(i).molecularWeight / 1000;
  return mass;
}

inline HRESULT Code(std::uint32_t code) { return static_cast<HRESULT>(code); }
inline const HRESULT kInvalidArgument = Code(0x80040506), kOutOfBounds = Code(0x80040507), kNoImpl = Code(0x80040509),
                     kLimitedImpl = Code(0x8004050A), kSolvingError = Code(0x80040510), kBadInvOrder = Code(0x80040511),
                     kNotAvailable = Code(0x8004051A);

inline com::Bstr B(const char* text) { return com::ToBstr(text); }

/// A material with the two-phase gas.
inline Material AtEquilibrium() {
  Material material;
  material.Bring(250, 4e6, 1, kGas);
  return material;
}

inline HRESULT Read10(const Material& m, const char* name, const char* phase, const char* calcType, const char* basis) {
  com::Variant values;
  return m.thermo10->GetProp(B(name).Get(), B(phase).Get(), com::kNoValue, B(calcType).Get(), B(basis).Get(),
                             values.Put());
}

inline HRESULT Calculate10(const Material& m, const char* name, const char* phase, const char* calcType = "mixture") {
  return m.thermo10->CalcProp(Names({name}).Get(), Names({phase}).Get(), B(calcType).Get());
}

inline HRESULT Read11(const Material& m, const char* name, const char* phase, const char* basis) {
  com::Variant values;
  return m.thermo11->GetSinglePhaseProp(B(name).Get(), B(phase).Get(), B(basis).Get(), values.Put());
}

}  // namespace morvelan::test
