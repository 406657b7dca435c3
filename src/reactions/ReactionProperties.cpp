#include "reactions/ReactionProperties.h"

#include <cmath>

#include "errors/HostCall.h"
#include "material/Names.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

// ICapeThermoContext, which is not in the standard's type library: its only use here is by name.
constexpr GUID kThermoContext = {0x678c0b5f, 0x0100, 0x11d2, {0xa6, 0x7d, 0x00, 0x10, 0x5a, 0x42, 0x88, 0x7f}};

com::Ref<IDispatch> ThermoContextOf(IUnknown* package) {
  void* found = nullptr;
  if (FAILED(package->QueryInterface(kThermoContext, &found)) || !found) return nullptr;
  return com::Ref<IDispatch>::Attach(static_cast<IDispatch*>(found));
}

HRESULT SetMaterialByName(IDispatch& context, IDispatch* material) {
  com::Bstr name = com::ToBstr("SetMaterial");
  LPOLESTR names[] = {name.Get()};
  DISPID member = 0;
  const HRESULT known = context.GetIDsOfNames(GUID{}, names, 1, LOCALE_INVARIANT, &member);
  if (FAILED(known)) return known;
  VARIANT argument = com::kNoValue;  // the material stays its owner's
  argument.vt = VT_DISPATCH;
  argument.pdispVal = material;
  DISPPARAMS parameters{};
  parameters.rgvarg = &argument;
  parameters.cArgs = 1;
  return context.Invoke(member, GUID{}, LOCALE_INVARIANT, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
}

/// A host may have taken the package back while it was asked for something else.
const com::Ref<ICapeReactionProperties>& Required(const ReactionPackage& package) {
  if (!package) throw Failure(kNoReactionPackage);
  return package.Properties();
}

}  // namespace

ReactionProperties::ReactionProperties(const ReactionPackage& reactionPackage, const TrialMaterial& material,
                                       LazyText failed)
    : package(Required(reactionPackage)),
      routine(package.As<ICapeReactionsRoutine>()),
      context(package.As<ICapeThermoMaterialContext>()),
      handedOver(material.Object()) {
  HandOver(failed);
}

ReactionProperties::~ReactionProperties() {
  if (context) context->UnsetMaterial();  // there is nobody left to tell of a failure
}

void ReactionProperties::HandOver(LazyText failed) {
  const auto explain = [&](const std::string& why) { return Failure(failed() + why); };
  if (context)
    CheckHost(context->SetMaterial(handedOver.Get()), context.Get(), explain);
  else if (const auto older = ThermoContextOf(package.Get()))
    CheckHost(SetMaterialByName(*older, handedOver.Get()), older.Get(), explain);
}

double ReactionProperties::Read(const Property& which, const Reaction& reaction, LazyText failed, LazyText invalid) {
  const auto explain = [&](const std::string& why) { return Failure(failed() + why); };
  const auto refuse = [&](const std::string& why) { return Failure(invalid() + why); };
  const BSTR phase = reaction.phase.HostName().text;
  const VARIANT& reactions = reaction.name.AsList();
  if (routine)
    CheckHost(routine->CalcReactionProp(ListOfOne(which).Get(), phase, reactions, names::kMole.text), routine.Get(),
              explain);
  com::Variant values;
  CheckHost(package->GetReactionProp(com::Name(which).text, phase, reactions, names::kMole.text, values.Put()),
            package.Get(), explain);
  const double value = material::ReadScalar(values.Get(), refuse);
  const bool isTooLarge = std::isinf(value) && value > 0 && which == property::kChemicalEquilibriumConstant;
  if (!std::isfinite(value) && !isTooLarge) throw refuse("value is infinite");
  return value;
}

std::vector<double> HeatsOfReaction(const ReactionPackage& package, const std::function<TrialMaterial()>& copyMaterial,
                                    std::span<const Reaction> reactions) try {
  std::vector<double> heats;
  if (reactions.empty()) return heats;
  constexpr const char* kFailed = "failed to get property enthalpyOfReaction: ";
  const TrialMaterial copy = [&] {
    try {
      return copyMaterial();
    } catch (const Failure& failure) {
      throw Failure(kFailed + failure.error.description);
    }
  }();
  ReactionProperties properties(package, copy, kFailed);
  for (const Reaction& reaction : reactions) {
    const auto failed = [&] {
      return "failed to get property enthalpyOfReaction for reaction " + reaction.name.Text() + ": ";
    };
    heats.push_back(properties.Read(property::kEnthalpyOfReaction, reaction, failed, failed));
  }
  return heats;
} catch (const Failure& failure) {
  throw Failure(UnitError{"GetReactionProperty failed", failure.error.description, "Calculate", "BaseReactor"});
}

}  // namespace morvelan
