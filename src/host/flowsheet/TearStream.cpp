#include "host/flowsheet/TearStream.h"

#include <algorithm>
#include <cmath>

namespace morvelan::host {
namespace {

constexpr double kEnthalpyScale = 1e4;  // [J/mol], the size of a heat of vaporization

double RelativeDifference(double a, double b) {
  const double size = std::max(std::abs(a), std::abs(b));
  return size == 0 ? 0 : std::abs(a - b) / size;
}

Eigen::VectorXd Fractions(const Eigen::VectorXd& flows) {
  const double total = flows.sum();
  return total == 0 ? Eigen::VectorXd(Eigen::VectorXd::Zero(flows.size())) : Eigen::VectorXd(flows / total);
}

}  // namespace

TearState TearState::Of(const MaterialState& material) {
  const std::vector<double> composition = material.OverallComposition();
  const double total = material.OverallScalar(Property::kTotalFlow, Basis::kMole);
  const auto equilibrium = material.CurrentEquilibrium();
  if (!equilibrium) throw std::runtime_error("the stream is not at equilibrium");
  return {.flows = total *
                   Eigen::Map<const Eigen::VectorXd>(composition.data(), static_cast<Eigen::Index>(composition.size())),
          .pressure = material.OverallScalar(Property::kPressure),
          .enthalpy = material.Package().Overall(*equilibrium).enthalpy,
          .temperature = material.OverallScalar(Property::kTemperature)};
}

void TearState::Impose(MaterialState& material) const {
  const Eigen::VectorXd fractions = Fractions(flows);
  material.SetOverall({Property::kFraction}, Basis::kMole, {fractions.begin(), fractions.end()});
  material.SetOverall({Property::kTotalFlow}, Basis::kMole, {flows.sum()});
  material.SetOverall({Property::kPressure}, Basis::kNone, {pressure});
  material.SetOverall({Property::kEnthalpy}, Basis::kMole, {enthalpy});
  material.Flash({Property::kPressure}, {Property::kEnthalpy});
}

Eigen::VectorXd TearState::Scaled(const TearState& scale) const {
  Eigen::VectorXd variables(flows.size() + 2);
  variables << flows / scale.flows.sum(), pressure / scale.pressure, enthalpy / kEnthalpyScale;
  return variables;
}

TearState TearState::FromScaled(const Eigen::VectorXd& variables, const TearState& scale) {
  const Eigen::Index compounds = scale.flows.size();
  return {.flows = variables.head(compounds).cwiseMax(0.0) * scale.flows.sum(),
          .pressure = variables[compounds] * scale.pressure,
          .enthalpy = variables[compounds + 1] * kEnthalpyScale};
}

double TearState::DistanceFrom(const TearState& other) const {
  return std::max({RelativeDifference(flows.sum(), other.flows.sum()),
                   RelativeDifference(temperature, other.temperature), RelativeDifference(pressure, other.pressure),
                   (Fractions(flows) - Fractions(other.flows)).cwiseAbs().maxCoeff()});
}

}  // namespace morvelan::host
