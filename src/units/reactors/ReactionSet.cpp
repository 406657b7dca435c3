#include "units/reactors/ReactionSet.h"

#include <algorithm>
#include <utility>

#include "framework/CalculationFailure.h"
#include "units/EnergyStream.h"
#include "units/reactors/Stoichiometry.h"

namespace morvelan {
namespace {

constexpr const char* kInfeasible =
    "Infeasible system: Infeasible system. Given the current feed, a linear combination of the reactions may "
    "take place with a rank less than the total number of the reactions; an insufficient number of "
    "individual "
    "reactions can be eliminated";

}  // namespace

SettingRow ReactionSet::Declare(UnitDeclarations& declare) {
  return declare.Setting(selected, "reactionNames").Group("Reactions").Label("Reactions").From([this] {
    std::vector<Available> available;
    if (package)
      for (std::string& name : package.ListReactions()) available.push_back({std::move(name), {}});
    return available;
  });
}

void ReactionSet::Take(std::vector<Reaction> reactions, std::vector<std::string> feedCompounds) {
  resolved = std::move(reactions);
  compounds = std::move(feedCompounds);
}

Eigen::VectorXd ReactionSet::FeedFlows() const {
  const StreamState& in = feed.State();
  return in.totalFlow *
         Eigen::Map<const Eigen::VectorXd>(in.composition.data(), static_cast<Eigen::Index>(in.composition.size()));
}

void ReactionSet::LeaveOutInactive(std::vector<Reaction>& reactions) const {
  for (bool changed = true; changed;) {
    auto [out, degenerate, direction] = FindFeasibility(StoichiometricMatrix(reactions, compounds.size()), FeedFlows());
    // A kinetic reaction through a compound that is never present has no rate.
    const auto stays =
        std::ranges::partition(degenerate, [&](std::size_t r) { return reactions[r].Is(ReactionType::kKinetic); });
    out.insert(out.end(), degenerate.begin(), stays.begin());
    if (out.empty() && !degenerate.empty()) throw CalculationFailure(kInfeasible);
    std::ranges::sort(out);
    for (const std::size_t r : out)
      journal.Note("Reaction \"" + reactions[r].name.Text() + "\" is ignored: it can't take place with this feed");
    for (auto r = out.rbegin(); r != out.rend(); ++r)
      reactions.erase(reactions.begin() + static_cast<std::ptrdiff_t>(*r));
    changed = !out.empty();
  }
  if (reactions.empty()) journal.Note("No reactions are possible");
}

std::vector<double> ReactionSet::HeatsAtFeed(const std::vector<Reaction>& reactions) const {
  return HeatsOfReaction(
      package, [&] { return feed.Copy(); }, reactions);
}

}  // namespace morvelan
