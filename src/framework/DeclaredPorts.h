#pragma once

#include <deque>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "framework/CUnitPort.h"
#include "framework/PortHandle.h"

namespace morvelan {

/// A port that a row wants.
struct WantedPort {
  std::string name;
  /// Of an information port: the dimensionality of its value. A port keeps its stream only as long as this
  /// stays the same.
  Dimensionality dimensionality = kDimensionless;
};

/// A declared port, or a group of ports of one kind, for what only some need.
class PortRow {
 public:
  /// The unit can do without a stream.
  PortRow& Optional() { return isOptional = true, *this; }
  /// How many there are now; names get a number behind them.
  PortRow& Numbered(std::function<std::size_t()> count);
  /// There is one while `exists` says so.
  PortRow& While(std::function<bool()> exists);
  /// Which there are now, by name, each with one value of its own.
  PortRow& Named(std::function<std::vector<WantedPort>()> names) { return wanted = std::move(names), *this; }

 private:
  friend class DeclaredPorts;
  std::string name;
  std::string description;
  CapePortDirection direction = CAPE_INLET;
  CapePortType type = CAPE_MATERIAL;
  std::span<const InformationItem> items = {};
  PortHandle* handle = nullptr;
  std::function<std::vector<WantedPort>()> wanted;  // one port of the row's name where there is none
  bool isNumbered = false;
  bool isOptional = false;
  std::vector<WantedPort> current;
  std::vector<com::Ref<CUnitPort>> ports;  // one per element of `current`
};

/// A unit's ports: rows that say which there are as options and settings stand, and the ports themselves. A
/// change is prepared, which may fail, and then put in place, which does not.
class DeclaredPorts {
 public:
  using PortList = std::vector<com::Ref<CUnitPort>>;

  explicit DeclaredPorts(UnitOwner& unit) : owner(unit) {}
  ~DeclaredPorts();
  DeclaredPorts(const DeclaredPorts&) = delete;
  DeclaredPorts& operator=(const DeclaredPorts&) = delete;

  PortRow& Add(PortHandle& handle, CapePortDirection direction, CapePortType type, const char* name,
               const char* description, std::span<const InformationItem> items = {});
  [[nodiscard]] bool IsEmpty() const { return rows.empty(); }

  /// Ports as options and settings say now.
  class Prepared {
   public:
    [[nodiscard]] bool IsChange() const { return isChange; }

   private:
    friend class DeclaredPorts;
    struct Renaming {
      com::Ref<CUnitPort> port;
      std::string portName, itemName;
    };
    bool isChange = false;
    std::vector<std::vector<WantedPort>> current;     // of each row
    std::vector<PortList> ports;                      // of each row
    std::vector<std::vector<CUnitPort*>> forHandles;  // the same
    std::vector<Renaming> renamings;
    PortList inlets, outlets;
    PortList gone;  // room for those that go
  };
  [[nodiscard]] Prepared Prepare();
  /// Puts prepared ports in place. Those that stay keep their connections; those that go are returned, to be
  /// detached once the unit is whole.
  [[nodiscard]] PortList Commit(Prepared prepared) noexcept;
  /// Forgets all ports.
  void Clear();

  [[nodiscard]] const PortList& Inlets() const { return inlets; }
  [[nodiscard]] const PortList& Outlets() const { return outlets; }
  /// Inlets, then outlets.
  [[nodiscard]] PortList All() const;
  /// Null when there is none.
  [[nodiscard]] CUnitPort* FirstConnectedMaterialInlet() const;

 private:
  void PrepareRow(PortRow& row, Prepared& prepared);
  [[nodiscard]] com::Ref<CUnitPort> Make(const PortRow& row, const WantedPort& port) const;
  [[nodiscard]] std::string FreeName(const PortRow& row, std::size_t number, const Prepared& prepared) const;

  UnitOwner& owner;
  std::deque<PortRow> rows;
  PortList inlets, outlets;
};

}  // namespace morvelan
