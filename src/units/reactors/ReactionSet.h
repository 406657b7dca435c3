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
  /// Feed and journal are the reactor's.
  ReactionSet(InletStream& reactorFeed, Journal& reactorJournal) : feed(reactorFeed), journal(reactorJournal) {}

  /// Declares the selection.
  SettingRow Declare(UnitDeclarations& declare);

  /// Takes the package that a host assigns; null takes it back. Throws Failure.
  void Assign(IDispatch* object);
  /// Gives the package back, whatever the host does meanwhile.
  void Release() noexcept;
  [[nodiscard]] const ReactionPackage& Package() const { return package; }
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
  Journal& journal;

  Names selected;
  ReactionPackage package;
  std::vector<Reaction> resolved;
  std::vector<std::string> compounds;
};

}  // namespace morvelan
