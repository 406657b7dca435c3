#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "framework/DeclaredParameters.h"
#include "framework/Reports.h"
#include "framework/UnitSlots.h"
#include "framework/UnitStream.h"

namespace morvelan {

// A unit in a stream of the host: a header with the version, the parameters, what the unit keeps beyond them, and
// the reports.

void WriteParameters(UnitWriter& writer, const DeclaredParameters::ParameterList& parameters);
void WriteReports(UnitWriter& writer, const Reports& reports);

/// What a stream holds, read as a whole before the unit takes it over.
struct SavedUnit {
  std::vector<ParameterRecord> records;                      // for the unit's own parameters
  std::vector<com::Ref<CParameter>> further;                 // beyond them
  std::function<void()> takeOverUnitData;                    // may be empty
  std::optional<std::vector<Reports::Report>> namedReports;  // absent from old streams
};

/// `reportNames` are those of the reports that the unit writes itself. Throws Failure.
[[nodiscard]] SavedUnit ReadSavedUnit(UnitReader& reader, UnitSlots& unit,
                                      const DeclaredParameters::ParameterList& parameters,
                                      std::span<const char* const> reportNames);

}  // namespace morvelan
