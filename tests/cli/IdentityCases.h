#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/cli/Flowsheets.h"

namespace morvelan::test {

/// A unit of a flowsheet: its material streams, and what its balances need to know.
struct BalancedUnit {
  std::string name;
  std::vector<std::string> inlets = {}, outlets = {};
  std::string heatInlet = {};     // the energy stream at its inlet, if any
  std::string heatOutlet = {};    // the same at its outlet
  double heatSign = 1;            // what that receives: the heat that the unit consumes (1) or gives off (-1)
  bool keepsState = false;        // its products have the temperature, pressure and composition of its feed
  bool keepsTemperature = false;  // a mixture keeps its temperature and not its enthalpy
};

/// A flowsheet for which the identities hold.
struct Subject {
  std::string name;
  Json flowsheet = {};
  std::vector<BalancedUnit> units = {};
  std::map<std::string, std::vector<std::string>> phases = {};  // of feeds, whose states were chosen to have them
  bool isRecycle = false;                                       // one that returns the stream "return"
  double energyTolerance = 1e-9;                                // relative, as the others
  double flowTolerance = 1e-12;  // of compounds, or of elements where there are reactions
  double stateTolerance = 1e-9;  // between two ways to the same state
  double heatOfReactionAt = 0;   // temperature of given heats of reaction [K]; 0: the feed's
};

/// The flowsheets that have every class of units in them.
[[nodiscard]] const std::vector<Subject>& IdentitySubjects();

}  // namespace morvelan::test
