#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <map>

#include "com/Text.h"
#include "host/material/MaterialObject.h"
#include "tests/host/ThermoTestSupport.h"
#include "tests/support/Door.h"

namespace morvelan::test {

using host::MakePackage;
using Strings = std::vector<std::string>;

/// A natural gas that is two-phase at 250 K and 4 MPa.
inline const Strings kGasCompounds = {"methane", "propane", "n-pentane", "carbon dioxide"};
inline const std::vector<double> kGas = {0.75, 0.15, 0.07, 0.03};

inline const host::Package& GasPackage() {
  static const auto package = MakePackage(kGasCompounds);
  return package;
}

inline com::Bstr B(const std::string& text) { return com::ToBstr(text); }
inline com::Variant Names(const Strings& names) { return com::MakeStrings(names); }
inline com::Variant Numbers(const std::vector<double>& values) { return com::MakeDoubles(values); }

/// A host material with the interfaces that a test calls, both generations on one object.
struct Material {
  explicit Material(host::Package package = GasPackage(), host::ThermoOffer offer = host::ThermoOffer::kBoth)
      : Material(com::Make<host::MaterialObject>("S-1", host::MaterialState(std::move(package)), offer)) {}
  explicit Material(const com::Ref<host::MaterialObject>& made) : Material(made.As<IUnknown>()) {}
  explicit Material(com::Ref<IUnknown> made)
      : object(std::move(made)),
        thermo10(object.As<ICapeThermoMaterialObject>()),
        thermo11(object.As<ICapeThermoMaterial>()),
        routine(object.As<ICapeThermoPropertyRoutine>()),
        equilibrium(object.As<ICapeThermoEquilibriumRoutine>()) {}

  HRESULT Set(const std::string& name, const std::string& basis, const std::vector<double>& values) const {
    return thermo11->SetOverallProp(B(name).Get(), B(basis).Get(), Numbers(values).Get());
  }
  HRESULT Set10(const std::string& name, const std::string& phase, const std::string& basis,
                const std::vector<double>& values) const {
    return thermo10->SetProp(B(name).Get(), B(phase).Get(), com::kNoValue, nullptr, B(basis).Get(),
                             Numbers(values).Get());
  }
  HRESULT Flash10(const std::string& type) const { return thermo10->CalcEquilibrium(B(type).Get(), com::kNoValue); }
  HRESULT Flash11(const Strings& first, const Strings& second, const std::string& solution = {}) const {
    return equilibrium->CalcEquilibrium(Names(first).Get(), Names(second).Get(), B(solution).Get());
  }
  /// Sets a state and brings it to equilibrium.
  void Bring(double T, double P, double flow, const std::vector<double>& z) const {
    ASSERT_EQ(Set("temperature", "", {T}), S_OK);
    ASSERT_EQ(Set("pressure", "", {P}), S_OK);
    ASSERT_EQ(Set("totalFlow", "Mole", {flow}), S_OK);
    ASSERT_EQ(Set("fraction", "Mole", z), S_OK);
    ASSERT_EQ(Flash10("TP"), S_OK) << Text();
  }

  /// Stored values by either generation.
  HRESULT Read10(const std::string& name, const std::string& phase, const std::string& calculation,
                 const std::string& basis, com::Variant& values) const {
    return thermo10->GetProp(B(name).Get(), B(phase).Get(), com::kNoValue, B(calculation).Get(), B(basis).Get(),
                             values.Put());
  }
  HRESULT Read11(const std::string& name, const std::string& phase, const std::string& basis,
                 com::Variant& values) const {
    return thermo11->GetSinglePhaseProp(B(name).Get(), B(phase).Get(), B(basis).Get(), values.Put());
  }
  HRESULT ReadOverall11(const std::string& name, const std::string& basis, com::Variant& values) const {
    return thermo11->GetOverallProp(B(name).Get(), B(basis).Get(), values.Put());
  }
  HRESULT Calculate10(const std::string& name, const std::string& phase, const std::string& type = "mixture") const {
    return thermo10->CalcProp(Names({name}).Get(), Names({phase}).Get(), B(type).Get());
  }

  /// Stored values, or calculated first; empty on failure.
  [[nodiscard]] std::vector<double> Get10(const std::string& name, const std::string& phase,
                                          const std::string& basis) const {
    com::Variant values;
    return SUCCEEDED(Read10(name, phase, "", basis, values)) ? com::ReadDoubles(values.Get()) : std::vector<double>();
  }
  [[nodiscard]] std::vector<double> Get11(const std::string& name, const std::string& phase,
                                          const std::string& basis) const {
    com::Variant values;
    const HRESULT got = phase == "Overall" ? ReadOverall11(name, basis, values) : Read11(name, phase, basis, values);
    return SUCCEEDED(got) ? com::ReadDoubles(values.Get()) : std::vector<double>();
  }
  [[nodiscard]] std::vector<double> Calc10(const std::string& name, const std::string& phase,
                                           const std::string& basis) const {
    return SUCCEEDED(Calculate10(name, phase)) ? Get10(name, phase, basis) : std::vector<double>();
  }
  [[nodiscard]] std::vector<double> Calc11(const std::string& name, const std::string& phase,
                                           const std::string& basis) const {
    const HRESULT done = routine->CalcSinglePhaseProp(Names({name}).Get(), B(phase).Get());
    return SUCCEEDED(done) ? Get11(name, phase, basis) : std::vector<double>();
  }
  [[nodiscard]] Strings PresentPhases() const {
    com::Variant labels, statuses;
    return FAILED(thermo11->GetPresentPhases(labels.Put(), statuses.Put())) ? Strings{"<failed>"}
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

/// A material with the two-phase gas.
inline Material AtEquilibrium() {
  Material material;
  material.Bring(250, 4e6, 1, kGas);
  return material;
}

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

/// The parts of a text between separators, which stand for empty parts too.
inline Strings Split(const std::string& text, char separator) {
  Strings parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

/// Operations on a host's object by the names that tables give them. They take the words after the name.
template <class Object>
using Operations = std::map<std::string, std::function<HRESULT(const Object&, const Strings&)>>;

/// Carries out operations such as "set10 totalFlow Overall Mole -1; flash10 TP": a name, then words, of which "-" is an
/// empty text and those that are not given are empty. All operations but the last must succeed. Returns the code of the
/// last.
template <class Object>
HRESULT Perform(const Operations<Object>& operations, const Object& object, const std::string& script) {
  HRESULT outcome = S_OK;
  for (const std::string& step : Split(script, ';')) {
    EXPECT_EQ(outcome, S_OK) << "before \"" << step << "\" of \"" << script << '"';
    Strings words;
    std::istringstream stream(step);
    for (std::string word; stream >> word;) words.push_back(word == "-" ? "" : word);
    const std::string name = words.front();
    words.erase(words.begin());
    if (words.size() < 4) words.resize(4);
    outcome = operations.at(name)(object, words);
  }
  return outcome;
}

}  // namespace morvelan::test
