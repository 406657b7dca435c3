#include "framework/DeclaredPorts.h"

#include <algorithm>
#include <optional>

#include "framework/CUnitInfoPort.h"

namespace morvelan {
namespace {

constexpr const char* kItemDescription = "Value";

bool IsAmong(const DeclaredPorts::PortList& ports, const com::Ref<CUnitPort>& port) {
  return std::ranges::any_of(ports, [&](const auto& other) { return other.Get() == port.Get(); });
}

/// Which of the former ports each of the wanted ones continues: the one of its name, at its own place if it can
/// be; otherwise the one of its place, unless another wanted port continues that one.
std::vector<std::optional<std::size_t>> FindContinued(const std::vector<WantedPort>& wanted,
                                                      const std::vector<WantedPort>& former) {
  std::vector<std::optional<std::size_t>> found(wanted.size());
  std::vector<bool> isTaken(former.size());
  const auto take = [&](std::size_t i, std::size_t place) {
    if (found[i] || place >= former.size() || isTaken[place]) return;
    found[i] = place;
    isTaken[place] = true;
  };
  const auto hasItsName = [&](std::size_t i, std::size_t place) {
    return place < former.size() && com::EqualNoCase(wanted[i].name, former[place].name);
  };
  for (std::size_t i = 0; i < wanted.size(); ++i)
    if (hasItsName(i, i)) take(i, i);
  for (std::size_t i = 0; i < wanted.size(); ++i)
    for (std::size_t place = 0; place < former.size(); ++place)
      if (hasItsName(i, place)) take(i, place);
  for (std::size_t i = 0; i < wanted.size(); ++i) take(i, i);
  return found;
}

}  // namespace

PortRow& PortRow::Numbered(std::function<std::size_t()> count) {
  isNumbered = true;
  wanted = [count = std::move(count)] { return std::vector<WantedPort>(count()); };
  return *this;
}

PortRow& PortRow::While(std::function<bool()> exists) {
  wanted = [exists = std::move(exists)] { return std::vector<WantedPort>(exists() ? 1 : 0); };
  return *this;
}

DeclaredPorts::~DeclaredPorts() {
  for (const auto& port : All()) port->DetachFromUnit();
}

PortRow& DeclaredPorts::Add(PortHandle& handle, CapePortDirection direction, CapePortType type, const char* name,
                            const char* description, std::span<const InformationItem> items) {
  PortRow& row = rows.emplace_back();
  row.name = name;
  row.description = description;
  row.direction = direction;
  row.type = type;
  row.items = items;
  row.handle = &handle;
  return row;
}

DeclaredPorts::Prepared DeclaredPorts::Prepare() {
  Prepared prepared;
  prepared.gone.reserve(inlets.size() + outlets.size());
  for (PortRow& row : rows) PrepareRow(row, prepared);
  return prepared;
}

void DeclaredPorts::PrepareRow(PortRow& row, Prepared& prepared) {
  std::vector<WantedPort> wanted = row.wanted ? row.wanted() : std::vector<WantedPort>(1);
  const auto continued = FindContinued(wanted, row.current);
  PortList& ports = prepared.ports.emplace_back();
  PortList& all = row.direction == CAPE_INLET ? prepared.inlets : prepared.outlets;
  auto& pointers = prepared.forHandles.emplace_back();
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    // The stream of a value with another unit of measure does not fit it any more.
    const bool stays = continued[i] && row.current[*continued[i]].dimensionality == wanted[i].dimensionality;
    if (!stays) {
      WantedPort named = wanted[i];
      if (row.isNumbered) named.name = FreeName(row, i + 1, prepared);
      ports.push_back(Make(row, named));
    } else {
      ports.push_back(row.ports[*continued[i]]);
      // A host may have given a port a name of its own, which it keeps as long as it is not to be renamed.
      if (wanted[i].name != row.current[*continued[i]].name)
        prepared.renamings.push_back({ports.back(), wanted[i].name, wanted[i].name});
    }
    all.push_back(ports.back());
    pointers.push_back(ports.back().Get());
    prepared.isChange = prepared.isChange || i >= row.ports.size() || row.ports[i].Get() != ports[i].Get();
  }
  prepared.isChange = prepared.isChange || wanted.size() != row.ports.size() || !prepared.renamings.empty();
  prepared.current.push_back(std::move(wanted));
  row.handle->Prepare(ports.size());
}

DeclaredPorts::PortList DeclaredPorts::Commit(Prepared prepared) noexcept {
  inlets.swap(prepared.inlets);
  outlets.swap(prepared.outlets);
  for (std::size_t r = 0; r < rows.size(); ++r) {
    rows[r].current.swap(prepared.current[r]);
    rows[r].ports.swap(prepared.ports[r]);
    rows[r].handle->Attach({});
  }
  // A port that is either an inlet or an outlet has two rows with one handle: the row without a port must not
  // take it away.
  for (std::size_t r = 0; r < rows.size(); ++r)
    if (!prepared.forHandles[r].empty()) rows[r].handle->Attach(prepared.forHandles[r]);
  for (Prepared::Renaming& renaming : prepared.renamings)
    renaming.port->Rename(std::move(renaming.portName), std::move(renaming.itemName));
  for (const PortList* former : {&prepared.inlets, &prepared.outlets})
    for (const auto& port : *former)
      if (!IsAmong(inlets, port) && !IsAmong(outlets, port)) prepared.gone.push_back(port);
  return std::move(prepared.gone);
}

void DeclaredPorts::Clear() {
  for (PortRow& row : rows) {
    row.ports.clear();
    row.current.clear();
  }
  inlets.clear();
  outlets.clear();
}

com::Ref<CUnitPort> DeclaredPorts::Make(const PortRow& row, const WantedPort& port) const {
  const std::string& name = port.name.empty() ? row.name : port.name;
  const InformationItem only = {name.c_str(), kItemDescription, port.dimensionality};
  const bool hasOwnItem = row.type == CAPE_INFORMATION && row.items.empty();
  const PortDeclaration declaration = {name.c_str(), row.description.c_str(), row.direction, row.type,
                                       hasOwnItem ? std::span(&only, 1) : row.items};
  if (row.type == CAPE_MATERIAL) return com::Make<CUnitPort>(declaration, owner);
  return com::Make<CUnitInfoPort>(declaration, owner);
}

std::string DeclaredPorts::FreeName(const PortRow& row, std::size_t number, const Prepared& prepared) const {
  const auto isTaken = [&](const std::string& name) {
    const auto hasName = [&](const auto& port) { return com::EqualNoCase(port->ComponentName(), name); };
    for (const PortList* list : {&inlets, &outlets, &prepared.inlets, &prepared.outlets})
      if (std::ranges::any_of(*list, hasName)) return true;
    return false;
  };
  while (isTaken(row.name + std::to_string(number))) ++number;  // a host may have renamed a port
  return row.name + std::to_string(number);
}

DeclaredPorts::PortList DeclaredPorts::All() const {
  PortList ports = inlets;
  ports.insert(ports.end(), outlets.begin(), outlets.end());
  return ports;
}

CUnitPort* DeclaredPorts::FirstConnectedMaterialInlet() const {
  for (const auto& inlet : inlets)
    if (inlet->IsConnectedMaterial()) return inlet.Get();
  return nullptr;
}

}  // namespace morvelan
