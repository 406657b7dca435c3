#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/thermo/PackageFactory.h"
#include "tests/support/LongTests.h"

namespace morvelan::host {

using Package = std::shared_ptr<const PropertyPackage>;

/// A mixture with a composition.
struct Blend {
  std::vector<std::string> compounds;
  std::vector<double> z;
};

inline const Blend kLightGas{{"methane", "ethane", "propane", "n-butane", "carbon dioxide", "nitrogen"},
                             {0.7, 0.1, 0.08, 0.05, 0.04, 0.03}};
inline const Blend kAromatics{{"benzene", "toluene"}, {0.4, 0.6}};
inline const Blend kAqueous{{"water", "methanol"}, {0.55, 0.45}};

inline const CompoundData& BuiltInData() {
  static const CompoundData data = [] {
    CompoundData loaded;
    loaded.AddCompounds(std::filesystem::path(MORVELAN_DATA_DIR) / "compounds.json");
    loaded.AddInteractions(std::filesystem::path(MORVELAN_DATA_DIR) / "binary-interaction.json");
    return loaded;
  }();
  return data;
}

inline Package MakePackage(const std::vector<std::string>& compounds, const std::string& model = "peng-robinson") {
  PackageOptions options;
  options.model = model;
  options.compounds = compounds;
  return MakePropertyPackage(BuiltInData(), options);
}

/// A sweep takes one in `part` of its states, or all of them when long tests are wanted.
inline int OneIn(int part) { return morvelan::test::ShortOrLong(part, 1); }

/// Expects an exception with these words in its text.
template <class Error, class Call>
void ExpectError(Call call, const std::string& words) {
  try {
    call();
    ADD_FAILURE() << "no error: " << words;
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find(words), std::string::npos) << error.what();
  }
}

/// The inputs of a case for the messages of failures.
inline std::string Inputs(const std::vector<std::string>& compounds, double T, double P, const std::vector<double>& x) {
  std::ostringstream text;
  text.precision(17);
  text << "T = " << T << " K, P = " << P << " Pa";
  for (std::size_t i = 0; i < x.size(); ++i) text << ", " << compounds[i] << " " << x[i];
  return text.str();
}

/// Largest |ln of the fugacity ratio| over the compounds present in two-phase equilibrium; zero for one phase.
inline double FugacityMismatch(const PropertyPackage& package, const Equilibrium& state) {
  if (state.phases.size() < 2) return 0.0;
  const Phase& vapor = state.phases[0];
  const Phase& liquid = state.phases[1];
  const std::vector<double> ofVapor = package.LnPhi(PhaseKind::kVapor, state.T, state.P, vapor.x);
  const std::vector<double> ofLiquid = package.LnPhi(PhaseKind::kLiquid, state.T, state.P, liquid.x);
  double worst = 0.0;
  for (std::size_t i = 0; i < vapor.x.size(); ++i) {
    if (vapor.x[i] == 0.0 && liquid.x[i] == 0.0) continue;
    worst = std::max(worst, std::abs(std::log(vapor.x[i] / liquid.x[i]) + ofVapor[i] - ofLiquid[i]));
  }
  return worst;
}

/// Expects equal fugacities and the composition z. 1e-9 relative in fugacities is what the flashes converge to, 1e-12
/// some hundred roundings of a sum of one.
inline void ExpectEquilibrium(const PropertyPackage& package, const Equilibrium& state, const std::vector<double>& z) {
  EXPECT_LT(FugacityMismatch(package, state), 1e-9);
  for (std::size_t i = 0; i < z.size(); ++i) {
    double sum = 0.0;
    for (const Phase& phase : state.phases) sum += phase.fraction * phase.x[i];
    EXPECT_NEAR(sum, z[i], 1e-12) << "compound " << i;
  }
}

}  // namespace morvelan::host
