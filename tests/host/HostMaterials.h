#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <functional>
#include <map>

#include "com/Text.h"
#include "host/material/MaterialObject.h"
#include "tests/host/ThermoTestSupport.h"
#include "tests/support/Approved.h"
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

/// A word of a call.
using Word = const std::string&;

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

  HRESULT Set(Word name, Word basis, const std::vector<double>& values) const {
    return thermo11->SetOverallProp(B(name).Get(), B(basis).Get(), Numbers(values).Get());
  }
  HRESULT Set10(Word name, Word phase, Word basis, const std::vector<double>& values) const {
    return thermo10->SetProp(B(name).Get(), B(phase).Get(), com::kNoValue, nullptr, B(basis).Get(),
                             Numbers(values).Get());
  }
  HRESULT Flash10(Word type) const { return thermo10->CalcEquilibrium(B(type).Get(), com::kNoValue); }
  HRESULT Flash11(const Strings& first, const Strings& second, Word solution = {}) const {
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
  HRESULT Read10(Word name, Word phase, Word calculation, Word basis, VARIANT* values = com::Variant().Put()) const {
    return thermo10->GetProp(B(name).Get(), B(phase).Get(), com::kNoValue, B(calculation).Get(), B(basis).Get(),
                             values);
  }
  HRESULT Read11(Word name, Word phase, Word basis, VARIANT* values = com::Variant().Put()) const {
    return thermo11->GetSinglePhaseProp(B(name).Get(), B(phase).Get(), B(basis).Get(), values);
  }
  HRESULT ReadOverall11(Word name, Word basis, VARIANT* values = com::Variant().Put()) const {
    return thermo11->GetOverallProp(B(name).Get(), B(basis).Get(), values);
  }
  HRESULT Calculate10(Word name, Word phase, Word type = "mixture") const {
    return thermo10->CalcProp(Names({name}).Get(), Names({phase}).Get(), B(type).Get());
  }
  HRESULT Calculate11(Word name, Word phase) const {
    return routine->CalcSinglePhaseProp(Names({name}).Get(), B(phase).Get());
  }

  using Values = std::vector<double>;
  /// Stored values, or calculated first; empty on failure.
  [[nodiscard]] Values Get10(Word name, Word phase, Word basis) const {
    com::Variant values;
    return SUCCEEDED(Read10(name, phase, "", basis, values.Put())) ? com::ReadDoubles(values.Get()) : Values();
  }
  [[nodiscard]] Values Get11(Word name, Word phase, Word basis) const {
    com::Variant values;
    const HRESULT got =
        phase == "Overall" ? ReadOverall11(name, basis, values.Put()) : Read11(name, phase, basis, values.Put());
    return SUCCEEDED(got) ? com::ReadDoubles(values.Get()) : Values();
  }
  [[nodiscard]] Values Calc10(Word name, Word phase, Word basis) const {
    return SUCCEEDED(Calculate10(name, phase)) ? Get10(name, phase, basis) : Values();
  }
  [[nodiscard]] Values Calc11(Word name, Word phase, Word basis) const {
    return SUCCEEDED(Calculate11(name, phase)) ? Get11(name, phase, basis) : Values();
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

inline const auto kInvalidArgument = static_cast<HRESULT>(0x80040506u);
inline const auto kNotAvailable = static_cast<HRESULT>(0x8004051Au);

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

/// Carries out each script of an approved text on an object that make() gives. The last operation must fail. The text's
/// lines are "script: code name (interface, operation): description".
template <class Object, class Make>
void ExpectRefusals(const std::string& approved, const Operations<Object>& operations, Make make) {
  std::ifstream file(ApprovedFile(approved));
  std::ostringstream text;
  for (std::string line; std::getline(file, line);) {
    const std::string script = line.substr(0, line.find(':'));
    const Object object = make();
    const HRESULT outcome = Perform(operations, object, script);
    EXPECT_LT(outcome, 0) << script;
    LONG code = 0;
    ASSERT_EQ(com::Query<ECapeUser>(object.object.Get())->get_code(&code), S_OK);
    EXPECT_EQ(code, outcome) << script;
    const Texts error = ErrorOf(object.object.Get());
    text << script << ": " << std::hex << static_cast<std::uint32_t>(outcome) << ' ' << error.name << " ("
         << error.interfaceName << ", " << error.scope << "): " << error.description << '\n';
  }
  ASSERT_FALSE(text.str().empty()) << "no scripts";
  ExpectApproved(approved, text.str());
}

}  // namespace morvelan::test
