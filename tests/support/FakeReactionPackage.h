#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/support/FakeMaterial.h"

namespace morvelan::test {

/// A reaction of a fake package. Its properties are linear in the temperature of the material that the
/// package was handed, so that answers follow on paper and show at which state they were asked for; or a
/// formula of the state in the reaction's phase.
struct FakeReaction {
  struct Line {
    double constant = 0;
    double slope = 0;  // [1/K]
  };

  std::string id;
  std::vector<std::string> compounds;
  std::vector<double> coefficients;
  std::int32_t type = CAPE_EQUILIBRIUM;  // or any other code
  std::int32_t rateBasis = CAPE_HOMOGENEOUS;
  std::string phase = "Overall";
  std::string concentrationBasis = "Molarity";
  std::map<std::string, Line> properties = {};
  std::map<std::string, std::function<double(const FakeConditions&)>> formulas = {};
};

/// What a fake package holds and offers.
struct FakePackageState {
  std::vector<FakeReaction> reactions;
  bool offersProperties = true;
  bool offersChemistry = true;
  bool offersRoutine = true;
  bool offersMaterialContext = true;
  bool offersThermoContext = false;  // the older interface, called by name
};

/// A reaction package that answers at once from its state. A property that it has a routine for must be
/// calculated before it is asked for.
class FakeReactionPackage final : public com::Implements<FakeObject, ICapeReactionProperties, ICapeReactionChemistry,
                                                         ICapeReactionsRoutine, ICapeThermoMaterialContext> {
 public:
  FakeReactionPackage(std::shared_ptr<HostScript> hostScript, FakePackageState initial)
      : Implements(std::move(hostScript), "package"), state(std::move(initial)) {}

  // ICapeReactionChemistry
  HRESULT GetNumberOfReactions(LONG*) override { return E_NOTIMPL; }
  HRESULT GetReactionsIds(VARIANT* ids) override {
    const HRESULT hr = script->Call("GetReactionsIds");
    if (FAILED(hr)) return hr;
    std::vector<std::string> names;
    for (const FakeReaction& reaction : state.reactions) names.push_back(reaction.id);
    return script->Answer(com::MakeStrings(names), ids);
  }
  HRESULT GetReactionType(BSTR id, CapeReactionType* type) override {
    return Tell("GetReactionType", id,
                [&](const FakeReaction& reaction) { std::memcpy(type, &reaction.type, sizeof *type); });
  }
  HRESULT GetReactionRateBasis(BSTR id, CapeReactionRateBasis* basis) override {
    return Tell("GetReactionRateBasis", id,
                [&](const FakeReaction& reaction) { std::memcpy(basis, &reaction.rateBasis, sizeof *basis); });
  }
  HRESULT GetNumberOfReactionCompounds(BSTR, LONG*) override { return E_NOTIMPL; }
  HRESULT GetReactionCompoundIds(BSTR id, VARIANT* ids, VARIANT*, VARIANT*) override {
    return Tell("GetReactionCompoundIds", id,
                [&](const FakeReaction& reaction) { script->Answer(com::MakeStrings(reaction.compounds), ids); });
  }
  HRESULT GetStoichiometricCoefficients(BSTR id, VARIANT* coefficients) override {
    return Tell("GetStoichiometricCoefficients", id, [&](const FakeReaction& reaction) {
      script->Answer(com::MakeDoubles(reaction.coefficients), coefficients);
    });
  }
  HRESULT GetReactionPhase(BSTR id, BSTR* phase) override {
    return Tell("GetReactionPhase", id, [&](const FakeReaction& reaction) { Give(reaction.phase, phase); });
  }
  HRESULT GetReactionConcBasis(BSTR id, BSTR* basis) override {
    return Tell("GetReactionConcBasis", id,
                [&](const FakeReaction& reaction) { Give(reaction.concentrationBasis, basis); });
  }
  HRESULT GetBaseReactant(BSTR, BSTR*) override { return E_NOTIMPL; }
  HRESULT GetPhaseCompounds(BSTR, LONG*, VARIANT*) override { return E_NOTIMPL; }
  HRESULT GetReactionParameters(BSTR, IDispatch**) override { return E_NOTIMPL; }
  // ICapeReactionProperties
  HRESULT GetReactionProp(BSTR property, BSTR phase, VARIANT ids, BSTR basis, VARIANT* values) override {
    const HRESULT hr = script->Call("GetReactionProp", com::Name(property), {phase, ids, basis});
    if (FAILED(hr)) return hr;
    if (state.offersRoutine && !calculated.contains(com::ToUtf8(property))) return E_UNEXPECTED;
    std::vector<double> answers;
    for (const std::string& id : com::ReadStrings(ids)) {
      const FakeReaction* reaction = Find(id);
      const auto value = reaction ? ValueOf(*reaction, com::ToUtf8(property)) : std::nullopt;
      if (!value) return E_INVALIDARG;
      answers.push_back(*value);
    }
    return script->Answer(com::MakeDoubles(answers), values);
  }
  HRESULT SetReactionProp(BSTR, BSTR, VARIANT, BSTR, VARIANT) override { return E_NOTIMPL; }
  // ICapeReactionsRoutine
  HRESULT CalcReactionProp(VARIANT properties, BSTR phase, VARIANT ids, BSTR basis) override {
    const std::string property = com::ReadStrings(properties).at(0);
    const HRESULT hr = script->Call("CalcReactionProp", com::Name(com::ToBstr(property)), {phase, ids, basis});
    if (SUCCEEDED(hr)) calculated.insert(property);
    return hr;
  }
  // ICapeThermoMaterialContext
  HRESULT SetMaterial(IDispatch* handedOver) override { return Take("SetMaterial", handedOver); }
  HRESULT UnsetMaterial() override {
    const HRESULT hr = script->Call("UnsetMaterial");
    material = nullptr;
    return hr;
  }

  FakePackageState state;
  com::Ref<IDispatch> material;

 protected:
  void* FindInterface(REFIID iid) override {
    if (Refuses<ICapeReactionProperties>(iid, "QueryInterface ICapeReactionProperties", state.offersProperties) ||
        Refuses<ICapeReactionChemistry>(iid, "QueryInterface ICapeReactionChemistry", state.offersChemistry) ||
        Refuses<ICapeReactionsRoutine>(iid, "QueryInterface ICapeReactionsRoutine", state.offersRoutine) ||
        Refuses<ICapeThermoMaterialContext>(iid, "QueryInterface ICapeThermoMaterialContext",
                                            state.offersMaterialContext))
      return nullptr;
    constexpr GUID kThermoContext = {0x678c0b5f, 0x0100, 0x11d2, {0xa6, 0x7d, 0x00, 0x10, 0x5a, 0x42, 0x88, 0x7f}};
    if (iid == kThermoContext) return state.offersThermoContext ? static_cast<IDispatch*>(&older) : nullptr;
    return Implements::FindInterface(iid);
  }

 private:
  /// The older material context, of which callers know no more than its name's name.
  struct ThermoContext final : IDispatch {
    explicit ThermoContext(FakeReactionPackage& package) : owner(package) {}
    virtual ~ThermoContext() = default;
    HRESULT QueryInterface(REFIID iid, void** object) override { return owner.QueryInterface(iid, object); }
    ULONG AddRef() override { return owner.AddRef(); }
    ULONG Release() override { return owner.Release(); }
    HRESULT GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
      const HRESULT hr = owner.script->Call("GetIDsOfNames");
      if (FAILED(hr)) return hr;
      const com::Bstr name = com::Bstr(SysAllocString(names[0]));
      if (count != 1 || com::ToUtf8(name.Get()) != "SetMaterial") return E_INVALIDARG;
      ids[0] = kMember;
      return S_OK;
    }
    HRESULT Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                   UINT*) override {
      if (member != kMember || flags != DISPATCH_METHOD || parameters->cArgs != 1 ||
          parameters->rgvarg[0].vt != VT_DISPATCH)
        return E_INVALIDARG;
      return owner.Take("Invoke SetMaterial", parameters->rgvarg[0].pdispVal);
    }

    static constexpr DISPID kMember = 7;
    FakeReactionPackage& owner;
  };

  HRESULT Take(const char* what, IDispatch* handedOver) {
    const HRESULT hr = script->Call(what);
    if (FAILED(hr)) return hr;
    calculated.clear();
    material = com::Ref<IDispatch>::Share(handedOver);
    return S_OK;
  }

  [[nodiscard]] const FakeReaction* Find(const std::string& id) const {
    const auto found = std::ranges::find(state.reactions, id, &FakeReaction::id);
    return found == state.reactions.end() ? nullptr : &*found;
  }

  [[nodiscard]] std::optional<double> ValueOf(const FakeReaction& reaction, const std::string& property) const {
    const FakeConditions conditions = MaterialConditions(reaction.phase);
    if (const auto formula = reaction.formulas.find(property); formula != reaction.formulas.end())
      return material ? std::optional(formula->second(conditions)) : std::nullopt;
    const auto line = reaction.properties.find(property);
    if (line == reaction.properties.end()) return std::nullopt;
    return line->second.constant + line->second.slope * conditions.temperature;
  }

  template <class Give>
  HRESULT Tell(const char* what, BSTR id, Give&& give) {
    const HRESULT hr = script->Call(what, com::Name(id));
    if (FAILED(hr)) return hr;
    const FakeReaction* reaction = Find(com::ToUtf8(id));
    if (!reaction) return E_INVALIDARG;
    give(*reaction);
    return S_OK;
  }

  [[nodiscard]] FakeConditions MaterialConditions(const std::string& phase) const {
    // (No call: what a package asks of a material is its own affair.)
    const auto object = material.As<ICapeIdentification>();
    const auto* fake = dynamic_cast<const FakeMaterial*>(object.Get());
    return fake ? fake->ConditionsIn(phase) : FakeConditions{};
  }

  std::set<std::string> calculated;
  ThermoContext older{*this};
};

}  // namespace morvelan::test
