#pragma once

#include "units/reactors/BaseReactor.h"
#include "units/reactors/ReactionExtents.h"

namespace morvelan {

/// Performs reactions of the reaction package, each to a given conversion of one of its compounds, in series
/// or in parallel; at a temperature, with a heat duty or with the heat of an energy stream. The heat balance
/// is that of BaseReactor; extents are in ReactionExtents.
///
/// The configuration names the reactions, for each its key compound and its conversion, and whether they are
/// performed in series. Each conversion is a parameter too, after those of the unit's list.
class CFixedConversionReactor final : public BaseReactor {
 public:
  CFixedConversionReactor();

  [[nodiscard]] bool ValidateUnit(std::string& message) override;
  void CalculateUnit(int compoundCount, std::optional<com::Name>& outletFlashSpec) override;
  void OnCalculateDone(int compoundCount, bool success) override;
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;

 protected:
  [[nodiscard]] Json Configuration() const override;
  [[nodiscard]] std::function<void()> PlanConfiguration(const Json& configuration) override;

 private:
  struct SelectedReaction {
    std::string name;
    std::string keyCompound;
    com::Ref<CParameter> conversion;

    [[nodiscard]] double Conversion() const { return std::get<double>(conversion->Value()); }
  };
  using Selection = std::vector<SelectedReaction>;

  [[nodiscard]] com::Ref<CParameter> ConversionParameter(const std::string& name, const std::string& key);
  void Select(Selection& planned, const std::vector<double>& conversions,
              std::vector<com::Ref<CParameter>>& parameters, bool inSeries) noexcept;

  void ResolveAll();
  /// What is wrong with the key compound or conversion of a resolved reaction; empty for nothing.
  [[nodiscard]] static std::string FindFault(const SelectedReaction& selected, const ReactionRecord& record);

  void React(int compoundCount);
  void BypassFeed(HeatDutyType type, const HeatSource& source);
  [[nodiscard]] Converted Convert() const;
  void ReportReactions(const Converted& converted);
  [[nodiscard]] double TotalHeatOfReaction(const std::vector<double>& extents);
  /// Flashes the outlet, and returns the duty [W] if it is known.
  [[nodiscard]] std::optional<double> CloseHeatBalance(HeatDutyType type, const HeatSource& source,
                                                       double feedEnthalpyFlow, double heatOfReaction);
  void NotePhases();

  Selection selection;
  bool serialReactions = false;
  // Of the last validation or calculation, one per selected reaction.
  std::vector<ReactionRecord> records;
  std::vector<std::string> compounds;
  bool recordsAreFresh = false;  // resolved by the validation that began this calculation
};

}  // namespace morvelan
