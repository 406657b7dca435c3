#include "host/flowsheet/ReactionReader.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "com/Text.h"
#include "host/file/NumberText.h"
#include "host/material/MaterialState.h"

namespace morvelan::host {
namespace {

constexpr double kElementTolerance = 1e-6;  // relative to the atoms that react; coefficients in files are rounded

/// Numbers by compound, in the file's order.
std::vector<CompoundNumber> ReadCompoundNumbers(const JsonNode& object, const FlowsheetCompounds& compounds) {
  std::vector<CompoundNumber> numbers;
  for (const auto& [name, node] : object.Members()) {
    const std::size_t compound = compounds.Find(node, name);
    if (std::ranges::find(numbers, compound, &CompoundNumber::compound) != numbers.end())
      node.Fail("compound \"" + compounds.Package()->CompoundAt(compound).name + "\" is given twice");
    numbers.push_back({compound, node.Number()});
  }
  return numbers;
}

std::vector<CompoundNumber> ReadStoichiometry(const JsonNode& object, const FlowsheetCompounds& compounds) {
  for (const auto& [name, node] : object.Members())
    if (node.Number() == 0) node.Fail("a coefficient must not be 0: leave the compound out");
  std::vector<CompoundNumber> stoichiometry = ReadCompoundNumbers(object, compounds);
  const auto count = [&](bool products) {
    return std::ranges::count_if(stoichiometry,
                                 [&](const CompoundNumber& entry) { return (entry.number > 0) == products; });
  };
  if (count(false) == 0) object.Fail("a reactant is needed, with a coefficient below 0");
  if (count(true) == 0) object.Fail("a product is needed, with a coefficient above 0");
  return stoichiometry;
}

PhaseKind ReadPhase(const JsonNode& phase, const PropertyPackage& package) {
  const std::string name = phase.OneOf({PhaseName(PhaseKind::kVapor), PhaseName(PhaseKind::kLiquid)});
  if (name == PhaseName(PhaseKind::kVapor)) return PhaseKind::kVapor;
  if (!package.HasLiquid()) phase.Fail("the thermodynamic model has no liquid");
  return PhaseKind::kLiquid;
}

ConcentrationBasis ReadBasis(const JsonNode& basis) {
  const auto& [molarity, concentration, moleFraction, massFraction] = kConcentrationBases;
  const std::string name = basis.OneOf({molarity.name, concentration.name, moleFraction.name, massFraction.name});
  return std::ranges::find(kConcentrationBases, name, &NamedBasis::name)->basis;
}

LnKCoefficients ReadLnK(const JsonNode& list) {
  const std::vector<JsonNode> numbers = list.Items();
  LnKCoefficients coefficients;
  if (numbers.size() != coefficients.values.size())
    list.Fail("the four coefficients of ln K = a + b/T + c ln T + d T are expected; " + std::to_string(numbers.size()) +
              " found");
  std::ranges::transform(numbers, coefficients.values.begin(), &JsonNode::Number);
  return coefficients;
}

/// A reaction's Gibbs energy follows from those of formation only when its elements balance.
void CheckElements(const JsonNode& place, const std::vector<CompoundNumber>& stoichiometry,
                   const PropertyPackage& package) {
  struct Atoms {
    double sum = 0;
    double moved = 0;
  };
  std::map<std::string, Atoms> balance;
  for (const auto& [compound, nu] : stoichiometry) {
    const Compound& data = package.CompoundAt(compound);
    if (data.elements.empty()) return;  // optional in a user's own compound
    for (const auto& [symbol, count] : data.elements) {
      balance[symbol].sum += nu * count;
      balance[symbol].moved += std::abs(nu * count);
    }
  }
  for (const auto& [symbol, atoms] : balance)
    if (std::abs(atoms.sum) > kElementTolerance * atoms.moved)
      place.Fail("the reaction does not conserve element " + symbol + ": its atoms change by " + NumberText(atoms.sum));
}

GibbsEquilibrium ReadGibbs(const JsonNode& node, const Reaction& reaction, const PropertyPackage& package) {
  (void)node.OneOf({"gibbs"});
  if (reaction.phase != PhaseKind::kVapor)
    node.Fail("\"gibbs\" is the equilibrium of gases; a reaction in phase \"Liquid\" needs \"lnK\"");
  for (const auto& [compound, nu] : reaction.stoichiometry)
    if (const Compound& data = package.CompoundAt(compound); !data.formationGas)
      node.Fail("no Gibbs energy of formation is known of compound \"" + data.name + '"');
  CheckElements(node, reaction.stoichiometry, package);
  return {};
}

RateLaw ReadRate(const JsonNode& node, const FlowsheetCompounds& compounds) {
  node.AllowKeys({"preExponential", "activationEnergy", "orders"});
  return {.preExponential = node.At("preExponential").NotNegative(),
          .activationEnergy = node.At("activationEnergy").Number(),
          .orders = ReadCompoundNumbers(node.At("orders"), compounds)};
}

void ReadEquilibrium(const JsonNode& node, const FlowsheetCompounds& compounds, Reaction& reaction) {
  node.AllowKeys({"id", "type", "phase", "basis", "stoichiometry", "lnK", "equilibrium", "enthalpyOfReaction"});
  const auto coefficients = node.Find("lnK");
  const auto gibbs = node.Find("equilibrium");
  if (coefficients && gibbs) gibbs->Fail("the equilibrium is given twice: \"lnK\" is there too");
  if (!coefficients && !gibbs) node.Fail("the key \"lnK\" is missing, or \"equilibrium\" with the value \"gibbs\"");
  if (coefficients)
    reaction.law = ReadLnK(*coefficients);
  else
    reaction.law = ReadGibbs(*gibbs, reaction, *compounds.Package());
}

void ReadKinetics(const JsonNode& node, const FlowsheetCompounds& compounds, Reaction& reaction) {
  node.AllowKeys(
      {"id", "type", "phase", "basis", "rateBasis", "stoichiometry", "rate", "reverse", "enthalpyOfReaction"});
  Kinetics kinetics{.isHeterogeneous = node.At("rateBasis").OneOf({"homogeneous", "heterogeneous"}) == "heterogeneous",
                    .forward = ReadRate(node.At("rate"), compounds),
                    .reverse = {}};
  if (const auto reverse = node.Find("reverse")) kinetics.reverse = ReadRate(*reverse, compounds);
  reaction.law = std::move(kinetics);
}

Reaction ReadReaction(const JsonNode& node, const FlowsheetCompounds& compounds) {
  const bool isKinetic = node.At("type").OneOf({"equilibrium", "kinetic"}) == "kinetic";
  Reaction reaction{.id = node.At("id").Text(),
                    .phase = ReadPhase(node.At("phase"), *compounds.Package()),
                    .basis = ReadBasis(node.At("basis")),
                    .stoichiometry = ReadStoichiometry(node.At("stoichiometry"), compounds),
                    .law = {},
                    .enthalpy = {}};
  if (reaction.id.empty()) node.At("id").Fail("a reaction needs a name");
  if (isKinetic)
    ReadKinetics(node, compounds, reaction);
  else
    ReadEquilibrium(node, compounds, reaction);
  if (const auto enthalpy = node.Find("enthalpyOfReaction")) reaction.enthalpy = enthalpy->Number();
  return reaction;
}

}  // namespace

std::vector<Reaction> ReadReactions(const JsonNode& list, const FlowsheetCompounds& compounds) {
  std::vector<Reaction> reactions;
  for (const JsonNode& node : list.Items()) {
    Reaction reaction = ReadReaction(node, compounds);
    const bool isKnown =
        std::ranges::any_of(reactions, [&](const Reaction& other) { return com::EqualNoCase(other.id, reaction.id); });
    if (isKnown) node.At("id").Fail("reaction \"" + reaction.id + "\" is listed twice");
    reactions.push_back(std::move(reaction));
  }
  return reactions;
}

}  // namespace morvelan::host
