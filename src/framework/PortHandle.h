#pragma once

#include <span>

namespace morvelan {

class CUnitPort;

/// A unit's way to ports of its own: a member of the unit, which its constructor declares. It leads to the
/// ports once the unit is initialized or loaded.
class PortHandle {
 public:
  PortHandle() = default;
  PortHandle(const PortHandle&) = default;
  PortHandle& operator=(const PortHandle&) = default;
  virtual ~PortHandle() = default;

 protected:
  friend class DeclaredPorts;
  /// Makes room, which may fail, for what `Attach` then takes without failing.
  virtual void Prepare(std::size_t) {}
  virtual void Attach(std::span<CUnitPort* const> ports) noexcept = 0;
};

}  // namespace morvelan
