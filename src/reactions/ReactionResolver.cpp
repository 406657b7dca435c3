#include "reactions/ReactionResolver.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "errors/HostCall.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

/// A failure whose text begins with `opening` and ends with the host's or the package's reason.
auto WithReason(std::string opening) {
  return [opening = std::move(opening)](const std::string& why) { return Failure(opening + why); };
}

std::string Quoted(const std::string& opening, const Reaction& reaction) {
  return opening + " \"" + reaction.name.Text() + "\"";
}

/// What a package answers where one of few codes is expected, in the form in which it may be any number.
template <class Code>
class AnyCode {
 public:
  AnyCode() { std::memset(&code, -1, sizeof code); }
  [[nodiscard]] Code* Put() { return &code; }
  [[nodiscard]] bool Is(Code wanted) const { return std::memcmp(&code, &wanted, sizeof code) == 0; }

 private:
  Code code;
};

/// The compound identifiers of a material as the host gives them.
com::Variant CompoundList10(IDispatch* material) {
  HRESULT failure = S_OK;
  const auto object = com::Query<ICapeThermoMaterialObject>(material, &failure);
  if (!object)
    throw Failure("failed to obtain ICapeThermoMaterialObject from material connected to inlet: " +
                  ErrorText(material, failure));
  com::Variant ids;
  CheckHost(object->get_ComponentIds(ids.Put()), object.Get(),
            WithReason("Failed to get compound IDs from material connected to inlet port: "));
  return ids;
}

com::Variant CompoundList11(IDispatch* material) {
  HRESULT failure = S_OK;
  const auto compounds = com::Query<ICapeThermoCompounds>(material, &failure);
  if (!compounds)
    throw Failure("failed to obtain ICapeThermoCompounds from material connected to inlet: " +
                  ErrorText(material, failure));
  com::Variant ids, formulae, names, boilingTemperatures, molecularWeights, casNumbers;
  CheckHost(compounds->GetCompoundList(ids.Put(), formulae.Put(), names.Put(), boilingTemperatures.Put(),
                                       molecularWeights.Put(), casNumbers.Put()),
            compounds.Get(),
            WithReason("Failed to get compound IDs from material (GetCompoundList()) connected to inlet port: "));
  return ids;
}

}  // namespace

Reaction ReactionResolver::Resolve(const ReactionRequest& request) {
  if (!package) throw Failure(kNoReactionPackage);
  if (request.name.empty()) throw Failure("No reaction selected");
  if (!chemistry) chemistry = package.Chemistry();
  if (!chemistry) throw Failure("failed to obtain ICapeReactionChemistry interface");
  Reaction reaction{.name = com::HostText(request.name)};
  const BSTR id = reaction.name.AsName().text;
  if (request.mustBeKinetic || request.mustBeEquilibrium || request.wantsKind) AskType(request, id, reaction);
  if (request.wantsConcentrationBasis) AskConcentrationBasis(id, reaction);
  AskCompounds(id, reaction);
  if (compounds.empty()) ListCompounds();
  MapCompounds(reaction);
  AskStoichiometry(id, reaction);
  AskPhase(id, reaction);
  return reaction;
}

void ReactionResolver::AskType(const ReactionRequest& request, BSTR id, Reaction& reaction) const {
  AnyCode<CapeReactionType> type;
  CheckHost(chemistry->GetReactionType(id, type.Put()), chemistry.Get(),
            WithReason(Quoted("Failed to obtain reaction type for reaction", reaction) + ": "));
  const bool isKinetic = type.Is(CAPE_KINETIC);
  const bool isEquilibrium = type.Is(CAPE_EQUILIBRIUM);
  if ((request.mustBeKinetic && !isKinetic) || (request.mustBeEquilibrium && !isEquilibrium))
    // The text is the same if a kinetic reaction is required.
    throw Failure(Quoted("Reaction", reaction) + " is not an equilibrium reaction");
  if (isKinetic || isEquilibrium) reaction.type = isKinetic ? ReactionType::kKinetic : ReactionType::kEquilibrium;
  if (!request.wantsKind) return;
  if (isKinetic) AskRateBasis(id, reaction);
  if (!reaction.type)
    throw Failure("Unknown reaction type for reaction " + reaction.name.Text() +
                  "; expected CAPE_KINETIC or CAPE_EQUILIBRIUM");
}

void ReactionResolver::AskRateBasis(BSTR id, Reaction& reaction) const {
  AnyCode<CapeReactionRateBasis> basis;
  CheckHost(chemistry->GetReactionRateBasis(id, basis.Put()), chemistry.Get(),
            WithReason(Quoted("Failed to obtain reaction rate basis for reaction", reaction) + ": "));
  const bool isHomogeneous = basis.Is(CAPE_HOMOGENEOUS);
  if (!isHomogeneous && !basis.Is(CAPE_HETEROGENEOUS))
    throw Failure("Unknown reaction rate basis for reaction " + reaction.name.Text() +
                  "; expected CAPE_HOMOGENEOUS or CAPE_HETEROGENEOUS");
  reaction.rateBasis = isHomogeneous ? RateBasis::kHomogeneous : RateBasis::kHeterogeneous;
}

void ReactionResolver::AskConcentrationBasis(BSTR id, Reaction& reaction) const {
  com::Bstr basis;
  if (SUCCEEDED(chemistry->GetReactionConcBasis(id, basis.Put())))
    reaction.concentrationBasis = com::ToUtf8(basis.Get());
}

void ReactionResolver::AskCompounds(BSTR id, Reaction& reaction) const {
  com::Variant ids, charges, casNumbers;
  CheckHost(chemistry->GetReactionCompoundIds(id, ids.Put(), charges.Put(), casNumbers.Put()), chemistry.Get(),
            WithReason(Quoted("Failed to obtain list of reaction compounds for reaction", reaction) + ": "));
  reaction.compoundIds = material::ReadOr([&] { return com::ReadStrings(ids.Get()); },
                                          WithReason("Invalid format for reaction compounds IDs: "));
  if (reaction.compoundIds.empty()) throw Failure(Quoted("Zero compounds in selected reaction", reaction));
}

void ReactionResolver::ListCompounds() {
  if (!inlet) throw Failure("failed to obtain material from the (first) inlet port");
  const com::Variant ids = thermo11 ? CompoundList11(inlet.Get()) : CompoundList10(inlet.Get());
  compounds = material::ReadOr([&] { return com::ReadStrings(ids.Get()); },
                               WithReason("Invalid format for compounds IDs from inlet material: "));
  if (compounds.empty()) throw Failure("Zero compounds exposed by inlet material");
}

void ReactionResolver::MapCompounds(Reaction& reaction) const {
  for (const std::string& id : reaction.compoundIds) {
    const auto found =
        std::ranges::find_if(compounds, [&](const std::string& compound) { return com::EqualNoCase(compound, id); });
    if (found == compounds.end())
      throw Failure("reaction compound \"" + (id.empty() ? "<NULL>" : id) +
                    "\" is not present in (inlet-) material; unable to resolve compound");
    reaction.compoundIndices.push_back(static_cast<std::int32_t>(found - compounds.begin()));
  }
}

void ReactionResolver::AskStoichiometry(BSTR id, Reaction& reaction) const {
  com::Variant coefficients;
  CheckHost(chemistry->GetStoichiometricCoefficients(id, coefficients.Put()), chemistry.Get(),
            WithReason("Failed to obtain reaction stoichiometry data for reaction " + reaction.name.Text() + ": "));
  const auto invalid = WithReason("Invalid format for reaction stoichiometry: ");
  reaction.coefficients = material::ReadOr([&] { return com::ReadDoubles(coefficients.Get()); }, invalid);
  if (reaction.coefficients.size() != reaction.compoundIds.size())
    throw Failure("Stoichiometry data does not match number of compounds from reaction");
  if (std::ranges::any_of(reaction.coefficients, IsMissing)) throw invalid("value is not set");
  if (!std::ranges::all_of(reaction.coefficients, [](double nu) { return std::isfinite(nu); }))
    throw invalid("value is infinite");
}

void ReactionResolver::AskPhase(BSTR id, Reaction& reaction) const {
  com::Bstr phase;
  CheckHost(chemistry->GetReactionPhase(id, phase.Put()), chemistry.Get(),
            WithReason("Failed to get reaction phase for reaction " + reaction.name.Text() + ": "));
  reaction.phase = PhaseLabel(com::ToUtf8(phase.Get()));
}

}  // namespace morvelan
