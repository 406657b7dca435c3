#include "host/flowsheet/Recycle.h"

#include <Eigen/Core>
#include <Eigen/QR>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "host/file/NumberText.h"

namespace morvelan::host {
namespace {

constexpr int kMostRounds = 100;
constexpr double kRecycleTolerance = 1e-6;
constexpr double kRecycleGoal = 1e-9;
constexpr double kEnthalpyScale = 1e4;  // [J/mol], the size of a heat of vaporization

double RelativeDifference(double a, double b) {
  const double size = std::max(std::abs(a), std::abs(b));
  return size == 0 ? 0 : std::abs(a - b) / size;
}

Eigen::VectorXd Fractions(const Eigen::VectorXd& flows) {
  const double total = flows.sum();
  return total == 0 ? Eigen::VectorXd(Eigen::VectorXd::Zero(flows.size())) : Eigen::VectorXd(flows / total);
}

/// The state of a torn stream, in the variables in which the recycle is solved.
struct TearState {
  Eigen::VectorXd flows;   // [mol/s], one per compound
  double pressure = 0;     // [Pa]
  double enthalpy = 0;     // [J/mol]
  double temperature = 0;  // [K]; follows from the others

  static TearState Of(const MaterialState& material) {
    const std::vector<double> composition = material.OverallComposition();
    const double total = material.OverallScalar(Property::kTotalFlow, Basis::kMole);
    const auto equilibrium = material.CurrentEquilibrium();
    if (!equilibrium) throw std::runtime_error("the stream is not at equilibrium");
    const auto compounds = static_cast<Eigen::Index>(composition.size());
    return {.flows = total * Eigen::Map<const Eigen::VectorXd>(composition.data(), compounds),
            .pressure = material.OverallScalar(Property::kPressure),
            .enthalpy = material.Package().Overall(*equilibrium).enthalpy,
            .temperature = material.OverallScalar(Property::kTemperature)};
  }

  /// Brings a material to this state. Throws std::exception when there is no equilibrium; the material is unusable
  /// then.
  void Impose(MaterialState& material) const {
    const Eigen::VectorXd fractions = Fractions(flows);
    material.SetOverall({Property::kFraction}, Basis::kMole, {fractions.begin(), fractions.end()});
    material.SetOverall({Property::kTotalFlow}, Basis::kMole, {flows.sum()});
    material.SetOverall({Property::kPressure}, Basis::kNone, {pressure});
    material.SetOverall({Property::kEnthalpy}, Basis::kMole, {enthalpy});
    material.Flash({Property::kPressure}, {Property::kEnthalpy});
  }

  /// All variables but the temperature, each of the order of one for a state like `scale`.
  [[nodiscard]] Eigen::VectorXd Scaled(const TearState& scale) const {
    Eigen::VectorXd variables(flows.size() + 2);
    variables << flows / scale.flows.sum(), pressure / scale.pressure, enthalpy / kEnthalpyScale;
    return variables;
  }

  static TearState FromScaled(const Eigen::VectorXd& variables, const TearState& scale) {
    const Eigen::Index compounds = scale.flows.size();
    return {.flows = variables.head(compounds).cwiseMax(0.0) * scale.flows.sum(),
            .pressure = variables[compounds] * scale.pressure,
            .enthalpy = variables[compounds + 1] * kEnthalpyScale};
  }

  /// The largest relative difference in flow, temperature and pressure, and of the mole fractions.
  [[nodiscard]] double DistanceFrom(const TearState& other) const {
    return std::max({RelativeDifference(flows.sum(), other.flows.sum()),
                     RelativeDifference(temperature, other.temperature), RelativeDifference(pressure, other.pressure),
                     (Fractions(flows) - Fractions(other.flows)).cwiseAbs().maxCoeff()});
  }
};

/// Accelerates a fixed-point iteration x <- g(x). Of the last steps it takes the combination with the smallest residual
/// g(x) - x (D. G. Anderson, J. ACM 12 (1965) 547).
class AndersonMixing {
 public:
  /// The next x, from the last x and g(x).
  [[nodiscard]] Eigen::VectorXd Next(const Eigen::VectorXd& x, const Eigen::VectorXd& g) {
    steps.push_back({g, g - x});
    if (steps.size() > kDepth) steps.erase(steps.begin());
    const auto differences = static_cast<Eigen::Index>(steps.size()) - 1;
    if (differences == 0) return g;
    // Minimize |f - dF c| over c, where dF holds the residuals' differences to the newest, f.
    Eigen::MatrixXd dF(x.size(), differences), dG(x.size(), differences);
    for (Eigen::Index i = 0; i < differences; ++i) {
      dF.col(i) = steps.back().residual - steps[static_cast<std::size_t>(i)].residual;
      dG.col(i) = steps.back().g - steps[static_cast<std::size_t>(i)].g;
    }
    const Eigen::VectorXd c = dF.completeOrthogonalDecomposition().solve(steps.back().residual);
    return g - dG * c;
  }

  /// Forgets the steps so far.
  void Restart() { steps.clear(); }

 private:
  static constexpr std::size_t kDepth = 6;

  struct Step {
    Eigen::VectorXd g;
    Eigen::VectorXd residual;
  };

  std::vector<Step> steps;
};

/// A torn stream from one round to the next.
class TornStream {
 public:
  explicit TornStream(MaterialState& torn) : material(torn), assumed(TearState::Of(torn)), scale(assumed) {}

  /// The distance of the state after the round from the state that was assumed.
  [[nodiscard]] double Change() {
    found = TearState::Of(material);
    return found.DistanceFrom(assumed);
  }

  /// Assumes a state for the next round: the accelerated one, or the last result where that is no equilibrium.
  void Advance() {
    if (found.flows.sum() <= 0 || scale.flows.sum() <= 0) {
      assumed = scale = found;
      mixing.Restart();
      return;
    }
    try {
      const TearState next = TearState::FromScaled(mixing.Next(assumed.Scaled(scale), found.Scaled(scale)), scale);
      next.Impose(material);
    } catch (const std::exception&) {
      mixing.Restart();
      found.Impose(material);
    }
    assumed = TearState::Of(material);
  }

 private:
  MaterialState& material;
  TearState assumed;
  TearState scale;
  TearState found;
  AndersonMixing mixing;
};

}  // namespace

std::string CloseRecycles(const std::vector<MaterialState*>& tornStreams, const std::function<bool()>& calculate,
                          const RecycleProgress& progress) {
  std::vector<TornStream> streams;
  for (MaterialState* material : tornStreams) streams.emplace_back(*material);
  double change = std::numeric_limits<double>::infinity();
  for (int round = 1; round <= kMostRounds; ++round) {
    if (!calculate()) return {};
    const double previous = std::exchange(change, 0);
    for (TornStream& stream : streams) change = std::max(change, stream.Change());
    if (progress) progress(round, change);
    if (change <= kRecycleGoal || (change <= kRecycleTolerance && change > previous / 2)) return {};
    for (TornStream& stream : streams) stream.Advance();
  }
  if (change <= kRecycleTolerance) return {};
  return "the recycle does not converge: after " + std::to_string(kMostRounds) +
         " rounds its streams still change by " + NumberText(change) +
         " relative; give another guess, or look for a loop without an outlet";
}

}  // namespace morvelan::host
