#pragma once

#include <string>
#include <vector>

#include "framework/CInfoParamDesc.h"
#include "framework/CUnitPort.h"
#include "framework/ConnectedCollection.h"

namespace morvelan {

/// An energy or information port. It exposes the values that it carries as a collection of descriptions, and
/// matches them to the parameters of the object that the host connects.
class CUnitInfoPort final : public com::Implements<CUnitPort, ICapeCollection> {
 public:
  CUnitInfoPort(const PortDeclaration& declaration, BaseUnit& owner);

  // ICapeCollection
  HRESULT Item(VARIANT id, IDispatch** item) override;
  HRESULT Count(LONG* count) override;

  void ReleaseConnection() override;
  /// Gives the port and its first item other names; the connection stays.
  void Rename(std::string portName, std::string itemName) noexcept;

  /// True when the connected object has a parameter for the item. Items are counted from 0.
  [[nodiscard]] bool IsMatched(std::size_t item) const;
  /// The value of the connected object's parameter, of whatever type. Throws Failure.
  [[nodiscard]] com::Variant ReadInformation(std::size_t item);
  /// Writes a value to the connected object's parameter; nothing happens while the port is unconnected.
  void WriteInformation(std::size_t item, double value);

 protected:
  void Accept(IDispatch* object) override;

 private:
  /// Identifiers of connected parameters, one per item; empty for an item that is unmatched.
  using Matches = std::vector<com::Variant>;

  [[nodiscard]] Matches Match(ICapeCollection& collection);
  /// The only item and the only parameter: names do not count.
  void MatchOnly(Matches& matches, ConnectedParameter parameter);
  void MatchByName(Matches& matches, ConnectedParameter parameter);
  /// Looks for a parameter that the collection's count leaves out.
  void MatchUncounted(Matches& matches, std::size_t item, ICapeCollection& collection);
  void MatchItem(Matches& matches, std::size_t item, ConnectedParameter parameter);
  /// Says that an item found no parameter; throws when it needs one.
  void JudgeUnmatched(std::size_t item);
  void Log(const std::string& line);
  [[nodiscard]] com::Ref<ICapeParameter> MatchedParameter(std::size_t item);

  std::vector<com::Ref<CInfoParamDesc>> items;
  Matches matched;
};

}  // namespace morvelan
