#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/file/JsonNode.h"
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
  double work = 0;                             // [W]
  std::optional<double> temperatureLow = {};   // [K]
  std::optional<double> temperatureHigh = {};  // [K]
};

struct InformationFeed {
  double value = 0;
  Exponents dimensionality{};
};

struct StreamSpecification {
  std::string name;
  std::variant<MaterialFeed, EnergyFeed, InformationFeed> state;
  JsonNode node;
};

struct UnitSpecification {
  struct Connection {
    std::string port;
    std::string stream;
    JsonNode node;
  };
  struct Setting {
    std::string parameter;
    JsonNode value;
  };

  std::string name;
  std::string className;
  JsonNode node;
  std::vector<Connection> connections = {};
  std::vector<Setting> settings = {};
  std::optional<JsonNode> configuration = {};
};

/// A flowsheet file that was read and checked. The checks that need its units come when it is run.
struct Flowsheet {
  std::string title;
  std::optional<ThermoOffer> thermoInterface;
  std::shared_ptr<const PropertyPackage> package;
  std::vector<Reaction> reactions;
  std::vector<StreamSpecification> streams;
  std::vector<UnitSpecification> units;
};

}  // namespace morvelan::host
