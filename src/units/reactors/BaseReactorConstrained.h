#pragma once

#include "units/reactors/ActivityBasis.h"
#include "units/reactors/BaseReactor.h"
#include "units/reactors/ExtentSolver.h"
#include "units/reactors/ReactingMixture.h"

namespace morvelan {

/// The numbers that a solution stops by, which stand at the end of a reactor's own parameters.
[[nodiscard]] std::vector<ParameterDeclaration> SolutionParameters();

/// What a trial's flows are evaluated as.
struct ClippedFlows {
  material::StreamState state;  // of flows that are not negative
  double penalty = 0;           // for those that were
};

/// Negative flows [mol/s] are set to zero, at a price: 1000 times the sum of their squares. Throws Failure
/// for a trial that is not finite.
[[nodiscard]] ClippedFlows ClipNegativeFlows(const ExtentTrial& trial, double pressure);

/// Runs `evaluate`, which fills the residuals of a trial; false with the text of a Failure.
template <class Evaluate>
[[nodiscard]] bool Evaluated(std::string& why, Evaluate&& evaluate) {
  try {
    evaluate();
    return true;
  } catch (const Failure& failure) {
    why = failure.error.description;
    return false;
  }
}

/// Base of the reactors whose outlet solves equations in the extents of the selected reactions, constrained
/// to flows that are not negative. The configuration names the reactions.
class BaseReactorConstrained : public BaseReactor {
 public:
  using BaseReactor::BaseReactor;

 protected:
  [[nodiscard]] Json Configuration() const override;
  [[nodiscard]] std::function<void()> PlanConfiguration(const Json& configuration) override;

  [[nodiscard]] const std::vector<std::string>& SelectedReactions() const { return selected; }
  /// Resolves the selected reactions, each as `request` says, and warns of unknown concentration bases.
  /// `quote` encloses the names in what is wrong.
  void ResolveSelected(ReactionRequest request, const std::string& quote);
  /// As `reaction`'s activities are calculated: by molarity where the package names no known basis.
  [[nodiscard]] static ActivityBasis BasisOf(const ReactionRecord& reaction);
  /// As reports call it.
  [[nodiscard]] static const char* BasisWord(const ReactionRecord& reaction);

  // ---- Calculation. All throw Failure of "Calculate".

  /// Whether there is a feed to react; one without flow passes.
  [[nodiscard]] bool HasFeed(HeatDutyType type, const HeatSource& source);
  /// Leaves out reactions that can't take place with the feed.
  void LeaveOutIdle(std::vector<ReactionRecord>& reactions);
  /// The equations of reactions, but for the residual.
  [[nodiscard]] ExtentEquations EquationsOf(const std::vector<ReactionRecord>& reactions) const;
  /// A copy of the feed's material with the reaction package.
  [[nodiscard]] ReactingMixture MixtureOfFeed();
  /// Solves equations to the parameters' tolerance and within their number of iterations.
  [[nodiscard]] ExtentSolution Solve(const ExtentEquations& equations);
  /// Puts flows [mol/s] into the outlet's state.
  void SetProductFlows(const Eigen::VectorXd& flows);
  /// Logs what a user may want to know of a calculation, and reports it.
  void Note(const std::string& text);

 private:
  [[nodiscard]] Eigen::VectorXd InletFlows() const;

  std::vector<std::string> selected;
};

}  // namespace morvelan
