#pragma once

#include <Eigen/Core>
#include <string>
#include <vector>

#include "framework/Journal.h"
#include "framework/UnitDeclarations.h"
#include "reactions/ReactionProperties.h"
#include "reactions/ReactionResolver.h"

namespace morvelan {

/// The reactions of a reactor: which ones are selected, and what the reaction package says of them.
class ReactionSet {
 public:
  /// Feed, package and journal are the reactor's.
  ReactionSet(InletStream& reactorFeed, const ReactionPackage& reactionPackage, Journal& reactorJournal)
      : feed(reactorFeed), package(reactionPackage), journal(reactorJournal) {}

  /// Declares the selection.
  SettingRow Declare(UnitDeclarations& declare);

  [[nodiscard]] const Names& Selected() const { return selected; }
  /// Forgets what was resolved.
  void Forget() { resolved.clear(); }

  // Of the last validation or calculation.

  /// The resolved reactions, in the order of the selection.
  [[nodiscard]] const std::vector<Reaction>& Resolved() const { return resolved; }
  void Take(std::vector<Reaction> reactions, std::vector<std::string> feedCompounds);
  /// The compounds of the feed.
  [[nodiscard]] const std::vector<std::string>& Compounds() const { return compounds; }

  // In a calculation. All throw Failure.

  /// Leaves out the reactions that can't take place with the feed.
  void LeaveOutInactive(std::vector<Reaction>& reactions) const;
  /// Compound flows [mol/s] of the feed.
  [[nodiscard]] Eigen::VectorXd FeedFlows() const;
  /// Heats of reaction [J/mol] at the feed's state, one per reaction.
  [[nodiscard]] std::vector<double> HeatsAtFeed(const std::vector<Reaction>& reactions) const;

 private:
  InletStream& feed;
  const ReactionPackage& package;
  Journal& journal;

  Names selected;
  std::vector<Reaction> resolved;
  std::vector<std::string> compounds;
};

}  // namespace morvelan
