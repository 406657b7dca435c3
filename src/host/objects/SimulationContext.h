#pragma once

#include <map>
#include <string>
#include <vector>

#include "com/Values.h"
#include "host/objects/HostObject.h"

namespace morvelan::host {

/// The simulation context of units: named values, and a log.
class SimulationContext final
    : public com::Implements<HostObject, ICapeSimulationContext, ICapeDiagnostic, ICapeCOSEUtilities> {
 public:
  /// `thermoVersion` is the answer to "DefaultThermoVersion"; when it is empty the name is not listed.
  SimulationContext(bool simplified, const std::string& thermoVersion);

  /// Logged lines and pop-up messages, in order.
  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines; }
  /// Drops the lines so far, before units calculate again.
  void ForgetLines() { lines.clear(); }

  // ICapeDiagnostic
  HRESULT PopUpMessage(BSTR message) override;
  HRESULT LogMessage(BSTR message) override;
  // ICapeCOSEUtilities
  HRESULT get_NamedValueList(VARIANT* names) override;
  HRESULT get_NamedValue(BSTR name, VARIANT* value) override;

 private:
  std::vector<std::string> lines;
  std::map<std::string, com::Variant> namedValues;
};

}  // namespace morvelan::host
