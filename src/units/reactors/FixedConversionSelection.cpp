// Which reactions a FixedConversionReactor performs: its configuration, and the conversions as parameters.

#include <algorithm>

#include "units/reactors/CFixedConversionReactor.h"

namespace morvelan {
namespace {

constexpr const char* kNamesKey = "reactionNames";
constexpr const char* kCompoundsKey = "reactionCompounds";
constexpr const char* kConversionsKey = "reactionConversions";
constexpr const char* kSerialKey = "serialReactions";

// A conversion out of range is for the validation to explain.
constexpr double kLargestConversion = 1e20;
constexpr const char* kNotValidated = "unit not validated";

}  // namespace

Json CFixedConversionReactor::Configuration() const {
  Json names = Json::array(), keys = Json::array(), conversions = Json::array();
  for (const SelectedReaction& reaction : selection) {
    names.push_back(reaction.name);
    keys.push_back(reaction.keyCompound);
    conversions.push_back(reaction.Conversion());
  }
  return {{kNamesKey, std::move(names)},
          {kCompoundsKey, std::move(keys)},
          {kConversionsKey, std::move(conversions)},
          {kSerialKey, serialReactions}};
}

std::function<void()> CFixedConversionReactor::PlanConfiguration(const Json& configuration) {
  const Json current = Configuration();
  const auto given = [&](const char* key) -> const Json& {
    return configuration.contains(key) ? configuration : current;
  };
  const auto names = ReadConfiguredTexts(given(kNamesKey), kNamesKey, {});
  const auto keys = ReadConfiguredTexts(given(kCompoundsKey), kCompoundsKey, {});
  auto conversions = ReadConfiguredNumbers(given(kConversionsKey), kConversionsKey, {});
  const bool inSeries = ReadConfiguredFlag(given(kSerialKey), kSerialKey, false);
  if (keys.size() != names.size() || conversions.size() != names.size()) throw Failure("array size mismatch");
  if (std::ranges::any_of(names, &std::string::empty)) throw Failure("empty strings");

  Selection planned;
  std::vector<com::Ref<CParameter>> parameters;
  for (std::size_t i = 0; i < names.size(); ++i) {
    // A host's parameter stays that of its reaction and compound, wherever they stand now.
    const auto former = std::ranges::find_if(selection, [&](const SelectedReaction& reaction) {
      return reaction.name == names[i] && reaction.keyCompound == keys[i] &&
             std::ranges::none_of(parameters,
                                  [&](const auto& taken) { return taken.Get() == reaction.conversion.Get(); });
    });
    parameters.push_back(former != selection.end() ? former->conversion : ConversionParameter(names[i], keys[i]));
    planned.push_back({names[i], keys[i], parameters.back()});
  }
  return [this, planned = std::move(planned), parameters = std::move(parameters), conversions = std::move(conversions),
          inSeries]() mutable { Select(planned, conversions, parameters, inSeries); };
}

/// The reactions of a loaded selection are still to be found, also where the unit had them before.
std::function<void()> CFixedConversionReactor::LoadUnit(UnitReader& reader, int version,
                                                        const std::vector<ParameterRecord>& parameterRecords) {
  return [this, takeOver = BaseReactor::LoadUnit(reader, version, parameterRecords)] {
    takeOver();
    for (const SelectedReaction& reaction : selection) reaction.conversion->SetUnavailable(kNotValidated);
  };
}

com::Ref<CParameter> CFixedConversionReactor::ConversionParameter(const std::string& name, const std::string& key) {
  const std::string label = "Conversion " + key + " reaction " + name;
  const std::string description = "Conversion of " + key + " in reaction " + name;
  auto parameter = com::Make<CParameter>(ParameterDeclaration{.name = label.c_str(),
                                                              .description = description.c_str(),
                                                              .defaultValue = 0.0,
                                                              .lowerBound = -kLargestConversion,
                                                              .upperBound = kLargestConversion},
                                         this);
  parameter->SetUnavailable(kNotValidated);
  return parameter;
}

void CFixedConversionReactor::Select(Selection& planned, const std::vector<double>& conversions,
                                     std::vector<com::Ref<CParameter>>& parameters, bool inSeries) noexcept {
  std::swap(selection, planned);
  std::swap(extraParameters, parameters);
  serialReactions = inSeries;
  records.clear();
  for (std::size_t i = 0; i < selection.size(); ++i) selection[i].conversion->SetResult(conversions[i]);
  for (const auto& former : parameters)
    if (std::ranges::none_of(extraParameters, [&](const auto& p) { return p.Get() == former.Get(); })) former->Orphan();
}

}  // namespace morvelan
