#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/file/JsonNode.h"
#include "host/objects/StreamParameter.h"
#include "host/unit/HostedUnit.h"

namespace morvelan::host {

struct MaterialResult {
  struct PhaseResult {
    std::string name;
    double fraction = 0;              // moles of the phase per mole of stream
    std::vector<double> composition;  // mole fractions
  };
  /// Of all phases together; absent when the stream was left without an equilibrium.
  struct Energies {
    double enthalpy = 0;              // [J/mol]
    double entropy = 0;               // [J/(mol K)]
    std::optional<double> enthalpyF;  // [J/mol]
  };

  std::optional<double> temperature;  // [K]
  std::optional<double> pressure;     // [Pa]
  std::optional<double> flow;         // [mol/s]
  std::vector<double> composition;    // mole fractions, one per compound of the results; may be empty
  std::vector<PhaseResult> phases = {};
  std::optional<Energies> energies = {};
};

struct EnergyResult {
  std::optional<double> work;             // [W]
  std::optional<double> temperatureLow;   // [K]
  std::optional<double> temperatureHigh;  // [K]
};

struct InformationResult {
  struct Value {
    std::string name;
    std::optional<double> value;
    Exponents dimensionality{};
  };
  std::vector<Value> values;
};

struct StreamResult {
  std::string name;
  std::variant<MaterialResult, EnergyResult, InformationResult> state;
};

struct UnitResult {
  struct Parameter {
    std::string name;
    Json value;          // null when it is not set
    std::string symbol;  // its SI unit
    bool isResult = false;
  };

  std::string name;
  std::string className;
  bool solved = false;
  std::string status = {};
  std::optional<ReportedError> error = {};
  std::vector<Parameter> parameters = {};
  std::vector<UnitReport> reports = {};
};

/// The results of a flowsheet. Streams from a unit that is not solved are left out.
struct Results {
  std::string title;
  bool solved = false;
  std::vector<std::string> compounds = {};
  std::vector<StreamResult> streams = {};
  std::vector<std::string> missingStreams = {};
  std::vector<UnitResult> units = {};  // in the file's order
  std::vector<std::string> log = {};
  std::string problem = {};  // the reason when all units are solved, but not the flowsheet
};

}  // namespace morvelan::host
