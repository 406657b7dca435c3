#include "host/thermo/PackageFactory.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "host/thermo/FluidModel.h"

namespace morvelan::host {
namespace {

/// Positions in the data of the compounds asked for.
std::vector<std::size_t> FindCompounds(const CompoundData& data, const PackageOptions& options, bool isCubic) {
  if (options.compounds.empty()) throw std::runtime_error("a property package needs at least one compound");
  std::vector<std::size_t> found;
  for (const std::string& name : options.compounds) {
    const auto index = data.Find(name);
    if (!index) throw std::runtime_error("unknown compound \"" + name + "\"");
    if (std::find(found.begin(), found.end(), *index) != found.end())
      throw std::runtime_error("compound \"" + name + "\" is listed twice");
    const Compound& compound = data.Compounds()[*index];
    if (compound.idealGas.empty())
      throw std::runtime_error("compound \"" + name + "\" has no ideal-gas data and cannot be part of a fluid");
    if (isCubic && !compound.critical)
      throw std::runtime_error("compound \"" + name + "\" has no critical data, which peng-robinson needs");
    found.push_back(*index);
  }
  return found;
}

Eigen::MatrixXd InteractionMatrix(const CompoundData& data, const PackageOptions& options,
                                  const std::vector<std::size_t>& members) {
  const auto n = static_cast<Eigen::Index>(members.size());
  Eigen::MatrixXd oneLessKij = Eigen::MatrixXd::Ones(n, n);
  if (options.builtInInteraction) {
    for (Eigen::Index i = 0; i < n; ++i) {
      for (Eigen::Index j = 0; j < n; ++j)
        oneLessKij(i, j) -= data.Kij(members[static_cast<std::size_t>(i)], members[static_cast<std::size_t>(j)]);
    }
  }
  const auto position = [&](const std::string& name) {
    const auto index = data.Find(name);
    const auto member = index ? std::find(members.begin(), members.end(), *index) : members.end();
    if (member == members.end())
      throw std::runtime_error("binary interaction: \"" + name + "\" is none of the package's compounds");
    return static_cast<Eigen::Index>(member - members.begin());
  };
  for (const BinaryInteraction& pair : options.interactions) {
    const Eigen::Index i = position(pair.a);
    const Eigen::Index j = position(pair.b);
    const std::string text = "binary interaction of \"" + pair.a + "\" and \"" + pair.b + "\": ";
    if (i == j) throw std::runtime_error(text + "the two compounds are the same");
    if (!(std::abs(pair.kij) < 1.0)) throw std::runtime_error(text + "kij must be between -1 and 1");
    oneLessKij(i, j) = oneLessKij(j, i) = 1.0 - pair.kij;
  }
  return oneLessKij;
}

}  // namespace

std::shared_ptr<const PropertyPackage> MakePropertyPackage(const CompoundData& data, const PackageOptions& options) {
  const bool isCubic = options.model == "peng-robinson";
  if (!isCubic && options.model != "ideal-gas")
    throw std::runtime_error("unknown property model \"" + options.model + "\"; known are peng-robinson and ideal-gas");
  const std::vector<std::size_t> members = FindCompounds(data, options, isCubic);
  Eigen::MatrixXd oneLessKij = InteractionMatrix(data, options, members);
  std::vector<Compound> compounds;
  for (const std::size_t index : members) compounds.push_back(data.Compounds()[index]);
  auto fluid = std::make_shared<const FluidModel>(std::move(compounds),
                                                  isCubic ? std::optional(std::move(oneLessKij)) : std::nullopt);
  return std::make_shared<const PropertyPackage>(std::move(fluid));
}

}  // namespace morvelan::host
