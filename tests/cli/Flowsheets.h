#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "host/flowsheet/FlowsheetRun.h"
#include "tests/cli/IdealGases.h"
#include "tests/support/LongTests.h"

namespace morvelan::test {

using Json = nlohmann::json;

/// What the reference host makes of a flowsheet in this process. It creates the units as the command does: from the
/// shared library, through the class registry.
struct FlowsheetOutcome {
  std::string refusal;  // the message for a file that is wrong, without the folder of scratch files
  std::string report;   // for people
  Json results;         // null for a file that is wrong
  Json again;           // the results of a second calculation, if there was one
};

/// Calculates a flowsheet file once, or twice by the same units.
[[nodiscard]] FlowsheetOutcome RunFlowsheet(const std::filesystem::path& file, const host::RunOptions& options = {},
                                            bool twice = false,
                                            const std::filesystem::path& dataFolder = MORVELAN_DATA_DIR);
/// The same for the text of a file, which is named flowsheet.json.
[[nodiscard]] FlowsheetOutcome RunFlowsheet(const std::string& text, const host::RunOptions& options = {},
                                            bool twice = false,
                                            const std::filesystem::path& dataFolder = MORVELAN_DATA_DIR);

/// Results in which every unit is solved, as it is expected. Units that are not solved are left out. If `again` is
/// given it gets the results of a second calculation.
[[nodiscard]] Json SolvedResults(const Json& flowsheet, const host::RunOptions& options = {}, Json* again = nullptr);

/// Where two values differ: numbers by more than a relative tolerance, all else at all. One line for each place, the
/// first few.
[[nodiscard]] std::vector<std::string> Differences(const Json& a, const Json& b, double tolerance);

/// A text of parts, for the name of a unit that stands for a case.
template <class... Parts>
[[nodiscard]] std::string Named(const Parts&... parts) {
  std::ostringstream text;
  (text << ... << parts);
  return text.str();
}

/// A flowsheet of ideal gases without units.
[[nodiscard]] Json GasFlowsheet(Json compounds, Json reactions);

/// An entry of compound data: a gas of constant heat capacity. Its Gibbs energy of formation equals its enthalpy of
/// formation.
[[nodiscard]] Json SimpleGas(const char* name, double molecularWeight /* [g/mol] */,
                             double heatCapacity /* [J/(mol K)] */, double formationEnthalpy /* [J/mol] */);

/// The state of a feed: temperature [K], pressure [Pa], flow [mol/s], mole fractions.
[[nodiscard]] Json Material(double T, double P, double flow, Json composition);

/// Adds a unit with ports "Inlet" and "Outlet", with a feed and a product of its own.
void AddUnit(Json& flowsheet, const std::string& name, Json unit, Json feed);
/// The state of this feed and product in results.
[[nodiscard]] const Json& FeedOf(const Json& results, const std::string& unit);
[[nodiscard]] const Json& ProductOf(const Json& results, const std::string& unit);

/// Flows of the compounds of a stream [mol/s].
[[nodiscard]] Amounts FlowsOf(const Json& stream);

/// The phases of a stream, in the alphabet's order.
[[nodiscard]] std::vector<std::string> PhasesOf(const Json& stream);

}  // namespace morvelan::test
