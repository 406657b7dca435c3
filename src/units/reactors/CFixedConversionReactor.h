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
  [[nodiscard]] std::function<void()> LoadUnit(UnitReader& reader, int version,
                                               const std::vector<ParameterRecord>& records) override;

 protected:
  [[nodiscard]] Json Configuration() const override;
  [[nodiscard]] std::function<void()> PlanConfiguration(const Json& configuration) override;
  void ResolveAll() override;
  void React() override;

 private:
  struct SelectedReaction {
    std::string name;
    std::string keyCompound;
    com::Ref<CParameter> conversion;

    [[nodiscard]] double Conversion() const { return std::get<double>(conversion->Value()); }
  };
  using Selection = std::vector<SelectedReaction>;

  [[nodiscard]] com::Ref<CParameter> ConversionParameter(const std::string& name, const std::string& key);
  void Select(Selection& planned, const std::vector<double>& conversions, std::vector<com::Ref<CParameter>>& parameters,
              bool inSeries) noexcept;

  /// What is wrong with the key compound or conversion of a resolved reaction; empty for nothing.
  [[nodiscard]] static std::string FindFault(const SelectedReaction& selected, const ReactionRecord& record);

  [[nodiscard]] Converted Convert() const;
  void ReportReactions(const Converted& converted);
  [[nodiscard]] double TotalHeatOfReaction(const std::vector<double>& extents);
  void NotePhases();

  Selection selection;
  bool serialReactions = false;
};

}  // namespace morvelan
