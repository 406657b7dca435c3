#pragma once

#include <optional>
#include <string>
#include <vector>

#include "framework/CUnitInfoPort.h"
#include "framework/PortHandle.h"

namespace morvelan {

/// Information ports of a unit that carry one value each.
class InformationPorts final : public PortHandle {
 public:
  [[nodiscard]] std::size_t size() const { return ports.size(); }
  [[nodiscard]] const std::string& Name(std::size_t i) const { return ports.at(i)->ComponentName(); }
  [[nodiscard]] bool IsConnected(std::size_t i) const { return ports.at(i)->IsConnected(); }

  /// The real value of a stream, in SI units; the text of a failure begins with `opening`. Throws Failure of
  /// "Calculate".
  [[nodiscard]] double Read(std::size_t i, const std::string& opening) const;
  /// Writes the value of a stream; nothing happens while the port is unconnected. Throws Failure of
  /// "Calculate".
  void Write(std::size_t i, double value);

 private:
  void Prepare(std::size_t count) override { ports.reserve(count); }
  void Attach(std::span<CUnitPort* const> attached) noexcept override {
    ports.clear();
    for (CUnitPort* port : attached) ports.push_back(static_cast<CUnitInfoPort*>(port));
  }

  std::vector<CUnitInfoPort*> ports;
};

}  // namespace morvelan
