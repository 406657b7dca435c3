#include "units/reactors/ReactionResolver.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "errors/HostCall.h"
#include "material/Reading.h"

namespace morvelan {
namespace {

/// A failure whose text begins with `opening` and ends with the host's or the package's reason.
auto Because(std::string opening) {
  return [opening = std::move(opening)](const std::string& why) { return Failure(opening + why); };
}

std::string Quoted(const std::string& opening, const ReactionRecord& record) {
  return opening + " \"" + record.name + "\"";
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
            Because("Failed to get compound IDs from material connected to inlet port: "));
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
            Because("Failed to get compound IDs from material (GetCompoundList()) connected to inlet port: "));
  return ids;
}

}  // namespace

ReactionRecord ReactionResolver::Resolve(const ReactionRequest& request) {
  if (!properties) throw Failure(kNoReactionPackage);
  if (request.name.empty()) throw Failure("No reaction selected");
  if (!chemistry) chemistry = properties.As<ICapeReactionChemistry>();
  if (!chemistry) throw Failure("failed to obtain ICapeReactionChemistry interface");
  ReactionRecord record{.name = request.name};
  const com::Bstr id = com::ToBstr(request.name);
  if (request.mustBeKinetic || request.mustBeEquilibrium || request.wantsKind) AskType(request, id.Get(), record);
  if (request.wantsConcentrationBasis) AskConcentrationBasis(id.Get(), record);
  AskCompounds(id.Get(), record);
  if (inletCompounds.empty()) ListInletCompounds();
  MapCompounds(record);
  AskStoichiometry(id.Get(), record);
  AskPhase(id.Get(), record);
  return record;
}

void ReactionResolver::AskType(const ReactionRequest& request, BSTR id, ReactionRecord& record) const {
  AnyCode<CapeReactionType> type;
  CheckHost(chemistry->GetReactionType(id, type.Put()), chemistry.Get(),
            Because(Quoted("Failed to obtain reaction type for reaction", record) + ": "));
  const bool isKinetic = type.Is(CAPE_KINETIC);
  const bool isEquilibrium = type.Is(CAPE_EQUILIBRIUM);
  if ((request.mustBeKinetic && !isKinetic) || (request.mustBeEquilibrium && !isEquilibrium))
    // (Also where a kinetic one was required: users know this sentence.)
    throw Failure(Quoted("Reaction", record) + " is not an equilibrium reaction");
  if (isKinetic || isEquilibrium) record.type = isKinetic ? CAPE_KINETIC : CAPE_EQUILIBRIUM;
  if (!request.wantsKind) return;
  if (isKinetic) AskRateBasis(id, record);
  if (!record.type)
    throw Failure("Unknown reaction type for reaction " + record.name + "; expected CAPE_KINETIC or CAPE_EQUILIBRIUM");
}

void ReactionResolver::AskRateBasis(BSTR id, ReactionRecord& record) const {
  AnyCode<CapeReactionRateBasis> basis;
  CheckHost(chemistry->GetReactionRateBasis(id, basis.Put()), chemistry.Get(),
            Because(Quoted("Failed to obtain reaction rate basis for reaction", record) + ": "));
  const bool isHomogeneous = basis.Is(CAPE_HOMOGENEOUS);
  if (!isHomogeneous && !basis.Is(CAPE_HETEROGENEOUS))
    throw Failure("Unknown reaction rate basis for reaction " + record.name +
                  "; expected CAPE_HOMOGENEOUS or CAPE_HETEROGENEOUS");
  record.rateBasis = isHomogeneous ? CAPE_HOMOGENEOUS : CAPE_HETEROGENEOUS;
}

void ReactionResolver::AskConcentrationBasis(BSTR id, ReactionRecord& record) const {
  com::Bstr basis;
  if (SUCCEEDED(chemistry->GetReactionConcBasis(id, basis.Put()))) record.concentrationBasis = com::ToUtf8(basis.Get());
}

void ReactionResolver::AskCompounds(BSTR id, ReactionRecord& record) const {
  com::Variant ids, charges, casNumbers;
  CheckHost(chemistry->GetReactionCompoundIds(id, ids.Put(), charges.Put(), casNumbers.Put()), chemistry.Get(),
            Because(Quoted("Failed to obtain list of reaction compounds for reaction", record) + ": "));
  record.compoundIds = material::ReadOr([&] { return com::ReadStrings(ids.Get()); },
                                        Because("Invalid format for reaction compounds IDs: "));
  if (record.compoundIds.empty()) throw Failure(Quoted("Zero compounds in selected reaction", record));
}

void ReactionResolver::ListInletCompounds() {
  const auto first = std::ranges::find_if(inlets, [](const auto& port) { return port->Type() == CAPE_MATERIAL; });
  if (first == inlets.end()) throw Failure("internal error: no material inlet ports");
  const com::Ref<IDispatch> material = (*first)->ConnectedObject();
  if (!material) throw Failure("failed to obtain material from the (first) inlet port");
  const com::Variant ids = thermo11 ? CompoundList11(material.Get()) : CompoundList10(material.Get());
  inletCompounds = material::ReadOr([&] { return com::ReadStrings(ids.Get()); },
                                    Because("Invalid format for compounds IDs from inlet material: "));
  if (inletCompounds.empty()) throw Failure("Zero compounds exposed by inlet material");
}

void ReactionResolver::MapCompounds(ReactionRecord& record) const {
  for (const std::string& id : record.compoundIds) {
    const auto found = std::ranges::find_if(
        inletCompounds, [&](const std::string& compound) { return com::EqualNoCase(compound, id); });
    if (found == inletCompounds.end())
      throw Failure("reaction compound \"" + (id.empty() ? "<NULL>" : id) +
                    "\" is not present in (inlet-) material; unable to resolve compound");
    record.compoundIndices.push_back(static_cast<std::int32_t>(found - inletCompounds.begin()));
  }
}

void ReactionResolver::AskStoichiometry(BSTR id, ReactionRecord& record) const {
  com::Variant coefficients;
  CheckHost(chemistry->GetStoichiometricCoefficients(id, coefficients.Put()), chemistry.Get(),
            Because("Failed to obtain reaction stoichiometry data for reaction " + record.name + ": "));
  const auto invalid = Because("Invalid format for reaction stoichiometry: ");
  record.coefficients = material::ReadOr([&] { return com::ReadDoubles(coefficients.Get()); }, invalid);
  if (record.coefficients.size() != record.compoundIds.size())
    throw Failure("Stoichiometry data does not match number of compounds from reaction");
  if (std::ranges::any_of(record.coefficients, IsMissing)) throw invalid("value is not set");
  if (!std::ranges::all_of(record.coefficients, [](double nu) { return std::isfinite(nu); }))
    throw invalid("value is infinite");
}

void ReactionResolver::AskPhase(BSTR id, ReactionRecord& record) const {
  com::Bstr phase;
  CheckHost(chemistry->GetReactionPhase(id, phase.Put()), chemistry.Get(),
            Because("Failed to get reaction phase for reaction " + record.name + ": "));
  record.phase = com::ToUtf8(phase.Get());
}

}  // namespace morvelan
