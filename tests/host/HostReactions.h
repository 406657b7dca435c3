#pragma once

#include <nlohmann/json.hpp>
#include <optional>

#include "host/flowsheet/FlowsheetReader.h"
#include "host/reactions/ReactionPackage.h"
#include "tests/host/HostMaterials.h"

namespace morvelan::test {

/// Reads a flowsheet of nothing but compounds and reactions.
inline host::Flowsheet ReadReactionFile(const std::string& model, const Strings& compounds,
                                        const std::string& reactions, const std::string& ownData = "") {
  const auto file = std::filesystem::path(MORVELAN_SCRATCH) / "reactions.json";
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << R"({"thermo": {"model": ")" << model << R"(", "compounds": )"
                                        << nlohmann::json(compounds) << R"(, "compoundData": {"compounds": [)"
                                        << ownData << R"(]}}, "reactions": [)" << reactions << "]}";
  return host::ReadFlowsheet(file, MORVELAN_DATA_DIR);
}

/// A reaction package with the interfaces that a unit calls.
struct Reactions {
  Reactions(const std::string& model, const Strings& compounds, const std::string& list,
            const std::string& ownData = "")
      : Reactions(ReadReactionFile(model, compounds, list, ownData)) {}
  explicit Reactions(const host::Flowsheet& flowsheet)
      : package(flowsheet.package),
        object(com::Make<host::ReactionPackage>(flowsheet.reactions, flowsheet.package)),
        chemistry(object.As<ICapeReactionChemistry>()),
        properties(object.As<ICapeReactionProperties>()),
        routine(object.As<ICapeReactionsRoutine>()),
        context(object.As<ICapeThermoMaterialContext>()) {}

  /// A material at equilibrium.
  [[nodiscard]] com::Ref<host::MaterialObject> MakeMaterial(host::ThermoOffer offer, double T, double P,
                                                            const std::vector<double>& z) const {
    using host::Basis, host::Property;
    host::MaterialState state(package);
    state.SetOverall({Property::kTemperature}, Basis::kNone, {T});
    state.SetOverall({Property::kPressure}, Basis::kNone, {P});
    state.SetOverall({Property::kTotalFlow}, Basis::kMole, {1});
    state.SetOverall({Property::kFraction}, Basis::kMole, z);
    state.Flash({Property::kTemperature}, {Property::kPressure});
    return com::Make<host::MaterialObject>("S-1", std::move(state), offer);
  }
  template <class Object>
  void SetMaterial(const com::Ref<Object>& material) const {
    ASSERT_EQ(context->SetMaterial(material.template As<IDispatch>().Get()), S_OK) << Text();
  }

  HRESULT Calculate(const Strings& names, const std::string& phase, const Strings& ids,
                    const std::string& basis) const {
    return routine->CalcReactionProp(Names(names).Get(), B(phase).Get(), Names(ids).Get(), B(basis).Get());
  }
  HRESULT GetProp(const std::string& name, const std::string& phase, const Strings& ids, const std::string& basis,
                  VARIANT* values = com::Variant().Put()) const {
    return properties->GetReactionProp(B(name).Get(), B(phase).Get(), Names(ids).Get(), B(basis).Get(), values);
  }
  /// Empty on failure.
  [[nodiscard]] std::vector<double> Read(const std::string& name, const std::string& phase, const Strings& ids,
                                         const std::string& basis) const {
    com::Variant values;
    const HRESULT read = GetProp(name, phase, ids, basis, values.Put());
    return SUCCEEDED(read) ? com::ReadDoubles(values.Get()) : std::vector<double>();
  }
  /// One property of one reaction, in its own phase; NaN with a failed expectation when there is none.
  [[nodiscard]] double Value(const std::string& name, const std::string& id) const {
    com::Bstr phase;
    EXPECT_EQ(chemistry->GetReactionPhase(B(id).Get(), phase.Put()), S_OK) << Text();
    const std::string inPhase = com::ToUtf8(phase.Get());
    EXPECT_EQ(Calculate({name}, inPhase, {id}, "Mole"), S_OK) << id << ": " << Text();
    const std::vector<double> values = Read(name, inPhase, {id}, "Mole");
    EXPECT_EQ(values.size(), 1u) << id << ": " << Text();
    return values.size() == 1 ? values[0] : std::numeric_limits<double>::quiet_NaN();
  }
  /// The text of the last failure.
  [[nodiscard]] std::string Text() const { return ErrorOf(object.Get()).description; }

  std::shared_ptr<const host::PropertyPackage> package;
  com::Ref<host::ReactionPackage> object;
  com::Ref<ICapeReactionChemistry> chemistry;
  com::Ref<ICapeReactionProperties> properties;
  com::Ref<ICapeReactionsRoutine> routine;
  com::Ref<ICapeThermoMaterialContext> context;
};

}  // namespace morvelan::test
