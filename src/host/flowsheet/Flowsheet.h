#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/flowsheet/JsonFile.h"
#include "host/material/MaterialObject.h"
#include "host/objects/StreamParameter.h"
#include "host/reactions/Reaction.h"
#include "host/thermo/PropertyPackage.h"

namespace morvelan::host {

/// The state of a material stream as the file gives it.
struct MaterialFeed {
  double temperature = 0;           // [K]
  double pressure = 0;              // [Pa]
  double flow = 0;                  // [mol/s]
  std::vector<double> composition;  // mole fractions, one per compound of the package, sum 1
};

struct EnergyFeed {
  double work = 0;                        // [W]
  std::optional<double> temperatureLow;   // [K]
  std::optional<double> temperatureHigh;  // [K]
};

struct InformationFeed {
  double value = 0;
  Exponents dimensionality{};
};

struct StreamSpecification {
  std::string name;
  std::variant<MaterialFeed, EnergyFeed, InformationFeed> state;
  Place place;
};

struct UnitSpecification {
  struct Connection {
    std::string port;
    std::string stream;
    Place place;
  };
  struct Setting {
    std::string parameter;
    JsonNode value;
  };

  std::string name;
  std::string className;
  Place classPlace;
  Place place;
  std::vector<Connection> connections;
  std::vector<Setting> settings;
  std::optional<JsonNode> configuration;
};

/// A flowsheet file, read and checked as far as that goes without its units.
struct Flowsheet {
  std::string title;
  std::optional<ThermoOffer> thermoInterface;
  std::shared_ptr<const PropertyPackage> package;
  std::vector<Reaction> reactions;
  std::vector<StreamSpecification> streams;
  std::vector<UnitSpecification> units;
};

/// Reads a flowsheet file. `dataFolder` holds compounds.json and binary-interaction.json. Throws
/// FlowsheetError, and std::runtime_error when the folder's files cannot be read.
[[nodiscard]] Flowsheet ReadFlowsheet(const std::filesystem::path& file, const std::filesystem::path& dataFolder);

/// "1.0", "1.1" or "both".
[[nodiscard]] std::optional<ThermoOffer> ThermoOfferByName(std::string_view name);

}  // namespace morvelan::host
