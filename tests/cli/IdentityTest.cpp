// What is true of every unit, whatever it calculates: balances, and results that do not depend on what they should not
// depend on. A class of units is added by a row in IdentityCases.cpp.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "com/Classes.h"
#include "tests/cli/Balances.h"
#include "tests/cli/IdentityCases.h"
#include "tests/support/Approved.h"

namespace morvelan::test::identity {

using host::RunOptions;
using host::ThermoOffer;

constexpr double kScale = 1e3;
const std::vector<std::string> kNone;
constexpr const char* kScaledWithFlow[] = {"Heat duty", "Reactor volume", "Catalyst mass", "Catalyst volume"};

TEST(Identity, EveryClassHasACase) {
  std::set<std::string> tried;
  for (const Subject& subject : IdentitySubjects())
    for (const Json& unit : subject.flowsheet["units"]) tried.insert(unit["class"].get<std::string>());
  for (const com::PublishedClass& published : com::PublishedClasses())
    EXPECT_TRUE(tried.contains(published.name)) << published.name;
}

/// The lines of a log, without those on connections.
std::string WarningsOf(const Json& results) {
  std::string warnings;
  for (const Json& each : results.at("log")) {
    const std::string line = each.get<std::string>();
    if (!line.starts_with("info: port ") && !line.starts_with("Warning: Optional information item "))
      warnings += line + '\n';
  }
  return warnings;
}

/// Flows, and what belongs to them, by a factor: of a flowsheet or of results.
Json Scaled(Json whole, double factor) {
  const auto scale = [factor](Json& object, const char* key) {
    if (object.contains(key) && object[key].is_number()) object[key] = factor * object[key].get<double>();
  };
  for (Json& stream : whole["streams"])
    for (const char* key : {"flow", "work"}) scale(stream, key);
  for (Json& unit : whole["units"])
    if (unit.contains("parameters"))
      for (const char* key : kScaledWithFlow) scale(unit["parameters"], key);
  return whole;
}

/// Streams and units, without the texts that name the thermodynamic interface.
Json Comparable(const Json& results) {
  Json comparable = {{"streams", results["streams"]}, {"units", results["units"]}};
  for (Json& unit : comparable["units"]) {
    unit["parameters"].erase("Thermo Version");
    unit["reports"].erase("Last run");
  }
  return comparable;
}

Json Unchanged(Json whole) { return whole; }

/// A run that must have the same results: what differs in its options and in its flowsheet, and how its results become
/// comparable.
struct Variation {
  const char* title;
  void (*choose)(RunOptions& options);
  Json (*change)(Json flowsheet) = Unchanged;
  Json (*changeBack)(Json results) = Unchanged;
};

const Variation kRestored = {"saved and restored", [](RunOptions& options) { options.roundtrip = true; }};
const Variation kSimplified = {"simplified models", [](RunOptions& options) { options.simplified = true; }};
const Variation kThermo10 = {"thermo 1.0", [](RunOptions& options) { options.thermoInterface = ThermoOffer::k10; }};
const Variation kPermuted = {"compounds in another order", [](RunOptions&) {},
                             [](Json flowsheet) {
                               std::ranges::reverse(flowsheet["thermo"]["compounds"]);
                               return flowsheet;
                             }};
const Variation kLarger = {"larger flows", [](RunOptions&) {},
                           [](Json flowsheet) { return Scaled(std::move(flowsheet), kScale); },
                           [](Json results) { return Scaled(std::move(results), 1 / kScale); }};

/// Where the results of several variations at once differ from those that are expected.
std::vector<std::string> DifferencesBy(const std::vector<Variation>& variations, const Subject& subject,
                                       const Json& expected, double tolerance) {
  RunOptions options;
  Json flowsheet = subject.flowsheet;
  for (const Variation& variation : variations) {
    variation.choose(options);
    flowsheet = variation.change(std::move(flowsheet));
  }
  Json results = SolvedResults(flowsheet, options);
  const char* version = options.thermoInterface ? "1.0" : "1.1";
  for (const Json& unit : results["units"]) EXPECT_EQ(unit["parameters"].value("Thermo Version", version), version);
  if (options.simplified) EXPECT_EQ(WarningsOf(results), "");
  for (const Variation& variation : variations) results = variation.changeBack(std::move(results));
  return Differences(Comparable(expected), Comparable(results), tolerance);
}

/// All variations at once, for time; each alone if that fails, or if tests are long.
void ExpectSameBy(const std::vector<Variation>& variations, const Subject& subject, const Json& expected,
                  double tolerance) {
  if (!ShortOrLong(false, true) && DifferencesBy(variations, subject, expected, tolerance).empty()) return;
  for (const Variation& variation : variations)
    EXPECT_EQ(DifferencesBy({variation}, subject, expected, tolerance), kNone) << variation.title;
  EXPECT_EQ(DifferencesBy(variations, subject, expected, tolerance), kNone) << "all at once";
}

/// A recycle is not calculated again, because it would start from where it was.
void ExpectIdentities(const Subject& subject, std::string& warnings) {
  SCOPED_TRACE(subject.name);
  Json again;
  const Json results = SolvedResults(subject.flowsheet, {}, subject.isRecycle ? nullptr : &again);
  ExpectBalances(subject, results);
  for (const char* part : {"streams", "units"})
    if (!subject.isRecycle) EXPECT_EQ(Differences(results[part], again[part], 0), kNone) << "calculated again";
  ExpectSameBy({kRestored, kSimplified}, subject, results, subject.isRecycle ? subject.stateTolerance : 0);
  ExpectSameBy({kThermo10, kPermuted, kLarger}, subject, results, subject.stateTolerance);
  warnings += subject.name + '\n' + WarningsOf(results) + '\n';
}

TEST(Identity, HoldsForEveryUnit) {
  std::string warnings;
  for (const Subject& subject : IdentitySubjects()) ExpectIdentities(subject, warnings);
  if (!ShortOrLong(false, true)) ExpectApproved("identity-warnings", warnings);
}

}  // namespace morvelan::test::identity
