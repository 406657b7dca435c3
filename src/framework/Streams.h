#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "framework/CUnitPort.h"
#include "framework/PortHandle.h"
#include "material/TrialMaterial.h"

namespace morvelan {

// A unit's ways to its material ports. Operations on materials throw Failure of "Calculate".

/// The stream of a material port, which may be absent.
class MaterialStream : public PortHandle {
 public:
  [[nodiscard]] bool Exists() const { return port; }
  [[nodiscard]] bool IsConnected() const { return port && port->IsConnected(); }
  /// The connected material, to be compared only; null when there is none.
  [[nodiscard]] const void* Identity() const { return port ? port->ConnectedObject().Get() : nullptr; }
  [[nodiscard]] const std::string& Name() const { return port->ComponentName(); }
  /// An inlet's as it was when the calculation began, an outlet's as the unit decided.
  [[nodiscard]] const StreamState& State() const { return port->State(); }

  /// The phases that there are, by moles; those of which there is nothing are left out.
  [[nodiscard]] std::vector<PhaseFraction> Phases() const;
  /// The identifiers of its compounds.
  [[nodiscard]] std::vector<std::string> Compounds() const;
  /// The labels of the phases that its material may have.
  [[nodiscard]] std::vector<std::string> PhaseLabels() const { return port->GetPhaseLabels(); }
  /// A numeric constant, one value per compound.
  [[nodiscard]] std::vector<double> Constants(const char* name) const;
  /// A constant that is a text, such as a formula; one per compound.
  [[nodiscard]] std::vector<std::string> Texts(const char* name) const;

 protected:
  MaterialStream() = default;
  explicit MaterialStream(CUnitPort* streamPort) : port(streamPort) {}
  void Attach(std::span<CUnitPort* const> ports) noexcept override { port = ports.empty() ? nullptr : ports.front(); }

  CUnitPort* port = nullptr;
};

/// The stream at an inlet. Properties are calculated on a copy of its material.
class InletStream final : public MaterialStream {
 public:
  InletStream() = default;

  [[nodiscard]] double EnthalpyFlow() const;  // [W]
  [[nodiscard]] double MolarProperty(const Property& which = property::kEnthalpy) const;
  /// A copy of its material, to be brought to states.
  [[nodiscard]] TrialMaterial Copy() const;

  /// The connected object, for the chemistry of a reactor, which asks it for compounds by itself.
  [[nodiscard]] const com::Ref<IDispatch>& Object() const { return port->ConnectedObject(); }

 private:
  friend class InletStreams;
  using MaterialStream::MaterialStream;
};

/// The stream at an outlet. A state that it is left in reaches its material after the unit's calculation; one
/// that it is flashed in does so at once.
class OutletStream final : public MaterialStream, public Flashable {
 public:
  OutletStream() = default;

  /// At the state's temperature and pressure.
  void Leave(StreamState state);
  /// At the state's pressure and a molar enthalpy [J/mol].
  void LeaveAtEnthalpy(StreamState state, double enthalpy);

  void FlashAtTemperature(const StreamState& state) override;
  void FlashAtEnthalpy(const StreamState& state, double enthalpy, const Property& which = property::kEnthalpy) override;
  void FlashAtVaporFraction(const StreamState& state, double fraction) override;

  // As it was flashed.

  [[nodiscard]] double Temperature() override { return TakeOverTemperature(""); }
  /// The temperature [K], which becomes that of the state. A failure's text begins with `opening`.
  double TakeOverTemperature(LazyText opening);
  [[nodiscard]] double EnthalpyFlow() const;  // [W]
  [[nodiscard]] double MolarProperty(const Property& which = property::kEnthalpy) override;
  [[nodiscard]] std::vector<PhaseFraction> Phases() override { return MaterialStream::Phases(); }

 private:
  friend class OutletStreams;
  using MaterialStream::MaterialStream;
  void Flash(com::Name flashType);
};

/// The streams of ports of which the configuration says how many there are.
template <class Stream>
class StreamList : public PortHandle {
 public:
  [[nodiscard]] std::size_t size() const { return streams.size(); }
  [[nodiscard]] Stream& operator[](std::size_t i) { return streams.at(i); }
  [[nodiscard]] const Stream& operator[](std::size_t i) const { return streams.at(i); }
  [[nodiscard]] auto begin() { return streams.begin(); }
  [[nodiscard]] auto end() { return streams.end(); }

 protected:
  void Prepare(std::size_t count) override { streams.reserve(count); }
  std::vector<Stream> streams;
};

class InletStreams final : public StreamList<InletStream> {
  void Attach(std::span<CUnitPort* const> ports) noexcept override {
    streams.clear();
    for (CUnitPort* port : ports) streams.push_back(InletStream(port));
  }
};

class OutletStreams final : public StreamList<OutletStream> {
  void Attach(std::span<CUnitPort* const> ports) noexcept override {
    streams.clear();
    for (CUnitPort* port : ports) streams.push_back(OutletStream(port));
  }
};

}  // namespace morvelan
