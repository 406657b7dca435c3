#pragma once

#include <sstream>

#include "tests/cli/CommandRun.h"
#include "tests/cli/IdealGases.h"

namespace morvelan::test {

/// A text of parts, for the name of a unit that stands for a case.
template <class... Parts>
[[nodiscard]] std::string Named(const Parts&... parts) {
  std::ostringstream text;
  (text << ... << parts);
  return text.str();
}

/// A flowsheet of ideal gases that has no units yet.
[[nodiscard]] Json GasFlowsheet(Json compounds, Json reactions);

/// An entry of compound data: a gas of constant heat capacity. Its Gibbs energy of formation equals its
/// enthalpy of formation.
[[nodiscard]] Json SimpleGas(const char* name, double molecularWeight /* [g/mol] */,
                             double heatCapacity /* [J/(mol K)] */, double formationEnthalpy /* [J/mol] */);

[[nodiscard]] Json Material(double T, double P, double flow, Json composition);

/// Adds a unit with a feed and a product of its own.
void AddReactor(Json& flowsheet, const std::string& name, Json unit, Json feed);

/// Results in which every unit is solved, as it is expected; those that are not are left out.
[[nodiscard]] Json SolvedResults(const Json& flowsheet, const std::string& options);

/// The same under thermo 1.1, which are expected to equal those under thermo 1.0 to 1e-9.
[[nodiscard]] Json ResultsOfBoth(const Json& flowsheet);

/// Flows of the compounds of a stream [mol/s].
[[nodiscard]] Amounts FlowsOf(const Json& stream);
[[nodiscard]] const Json& FeedOf(const Json& results, const std::string& unit);
[[nodiscard]] const Json& ProductOf(const Json& results, const std::string& unit);

/// Whether a line of the log has a text in it.
[[nodiscard]] bool IsLogged(const Json& results, const std::string& text);

}  // namespace morvelan::test
