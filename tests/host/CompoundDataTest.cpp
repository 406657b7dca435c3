#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <tuple>

#include "tests/host/ThermoTestSupport.h"

namespace morvelan::host::test::compound_data {

using nlohmann::json;

JsonNode NodeOf(const json& value) { return JsonNode(std::make_shared<JsonFile>("case.json", value.dump())); }

json MinimalCompound(const std::string& name) {
  return {{"name", name},
          {"molecularWeight", 50.0},
          {"criticalTemperature", 400.0},
          {"criticalPressure", 4e6},
          {"acentricFactor", 0.2},
          {"idealGas",
           {{"model", "nasa7"},
            {"ranges", {{{"Tmin", 200.0}, {"Tmax", 1000.0}, {"a", {8.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}}}}}}}};
}

TEST(CompoundData, FindsCompoundsByNameAliasAndCas) {
  const CompoundData& data = BuiltInData();
  EXPECT_EQ(data.Compounds().size(), 75U);
  for (const char* key : {"n-butane", "N-Butane", "BUTANE", "106-97-8"}) {
    const auto index = data.Find(key);
    ASSERT_TRUE(index) << key;
    EXPECT_EQ(data.Compounds()[*index].name, "n-butane");
  }
  EXPECT_FALSE(data.Find("unobtainium"));
  const std::size_t methane = *data.Find("methane");
  EXPECT_DOUBLE_EQ(data.Kij(methane, *data.Find("carbon dioxide")), 0.0919);  // the file has the other order
  EXPECT_EQ(data.Kij(*data.Find("water"), methane), 0.0);
}

// G_f = H_f - T (S - sum of the elements' S): ties three columns of the data and the polynomials together.
TEST(CompoundData, FormationPropertiesAgreeWithAbsoluteEntropies) {
  const CompoundData& data = BuiltInData();
  const std::map<std::string, std::pair<const char*, double>> elements = {
      {"H", {"hydrogen", 2.0}}, {"He", {"helium", 1.0}},   {"N", {"nitrogen", 2.0}}, {"O", {"oxygen", 2.0}},
      {"Ar", {"argon", 1.0}},   {"Cl", {"chlorine", 2.0}}, {"C", {"carbon", 1.0}},   {"S", {"sulfur", 1.0}}};
  int count = 0;
  for (const Compound& compound : data.Compounds()) {
    if (!compound.formationGas) continue;
    double ofElements = 0.0;
    bool isComplete = true;
    for (const auto& [symbol, atoms] : compound.elements) {
      const auto element = elements.find(symbol);
      isComplete = isComplete && element != elements.end();  // fluorine has no entry of its own
      if (element == elements.end()) continue;
      const Compound& reference = data.Compounds()[*data.Find(element->second.first)];
      ofElements +=
          atoms / element->second.second * reference.entropyGas.value_or(reference.entropySolid.value_or(0.0));
    }
    if (!isComplete) continue;
    ++count;
    const double G = compound.formationGas->enthalpy - kReferenceTemperature * (*compound.entropyGas - ofElements);
    EXPECT_NEAR(G, compound.formationGas->gibbsEnergy, 1.0) << compound.name;  // entropies of four decimals
  }
  EXPECT_GT(count, 65);
}

TEST(CompoundData, TakesCompoundsOfTheUser) {
  CompoundData data = BuiltInData();
  json mine = MinimalCompound("naphtha cut");
  json other = MinimalCompound("Propane");
  other["molecularWeight"] = 44.0;
  data.AddCompounds(NodeOf({{"compounds", {mine, other}}}));
  EXPECT_EQ(data.Compounds().size(), 76U);
  EXPECT_EQ(data.Compounds()[*data.Find("propane")].molecularWeight, 44.0);
  PackageOptions options;
  options.compounds = {"naphtha cut", "methane"};
  options.interactions = {{"CH4 is not a name", "methane", 0.1}};
  EXPECT_THROW((void)MakePropertyPackage(data, options), std::runtime_error);
  options.interactions = {{"methane", "Naphtha Cut", 0.1}};
  const Package package = MakePropertyPackage(data, options);
  const MolarProperties vapor = package->Properties(PhaseKind::kVapor, 298.15, 1e-3, std::vector{1.0, 0.0});
  EXPECT_NEAR(vapor.heatCapacityCp, 8.0 * kGasConstant, 1e-6);  // the constant polynomial above
  EXPECT_FALSE(vapor.enthalpyF);                                // no formation data given
  EXPECT_THROW((void)package->FormationEnthalpy(std::vector{1.0, 0.0}), std::runtime_error);
  EXPECT_NEAR(package->FormationEnthalpy(std::vector{0.0, 1.0}), -74599.6, 1e-9);
}

TEST(CompoundData, NamesThePlaceOfAnError) {
  const std::tuple<std::string, json, const char*> cases[] = {
      {"acentricfactor", 0.1, "acentricfactor: the key is unknown"},
      {"criticalPressure", "high", "criticalPressure: a number is expected, \"high\" found"},
      {"criticalPressure", nullptr, "belong together"},
      {"molecularWeight", -1.0, "molecularWeight: must be above 0"},
      {"molecularWeight", nullptr, "molecularWeight: a number is expected, null found"},
      {"aliases", {"WATER"}, "already belongs to compound \"water\""},
      {"idealGas", {{"model", "shomate"}}, "idealGas/model: must be \"nasa7\""},
      {"idealGas", {{"model", "nasa7"}, {"ranges", {{{"Tmin", 300.0}, {"Tmax", 200.0}, {"a", {1.0}}}}}}, "ranges[0]"},
      {"gibbsOfFormationGas", 1.0, "belong together"},
  };
  for (const auto& [key, value, text] : cases) {
    CompoundData data = BuiltInData();
    json compound = MinimalCompound("mine");
    compound[key] = value;
    for (const char* words : {text, "case.json:1: "})
      ExpectError<FileError>([&] { data.AddCompounds(NodeOf({{"compounds", {compound}}})); }, words);
    EXPECT_EQ(data.Compounds().size(), 75U) << "changed by a refused entry";
  }
  CompoundData data = BuiltInData();
  EXPECT_THROW(data.AddCompounds(std::filesystem::path("no/such/file.json")), std::runtime_error);
  EXPECT_THROW(data.AddInteractions(NodeOf(json::parse(R"({"pairs": [{"a": "water", "b": "x", "kij": 0}]})"))),
               std::runtime_error);
}

TEST(PackageFactory, RefusesWhatItCannotUse) {
  const std::tuple<std::string, std::vector<std::string>, const char*> cases[] = {
      {"srk", {"methane"}, "unknown property model \"srk\""},
      {"peng-robinson", {}, "at least one compound"},
      {"peng-robinson", {"methane", "methan"}, "unknown compound \"methan\""},
      {"peng-robinson", {"butane", "n-butane"}, "listed twice"},
  };
  for (const auto& [model, compounds, text] : cases)
    ExpectError<std::runtime_error>([&, &list = compounds, &name = model] { (void)MakePackage(list, name); }, text);
}

TEST(PackageFactory, UsesInteractionsAsAsked) {
  PackageOptions options;
  options.compounds = {"methane", "carbon dioxide"};
  const std::vector<double> x = {0.5, 0.5};
  const auto lnPhi = [&] {
    return MakePropertyPackage(BuiltInData(), options)->LnPhi(PhaseKind::kVapor, 300.0, 5e6, x)[0];
  };
  const double builtIn = lnPhi();
  options.interactions = {{"124-38-9", "Methane", 0.0919}};  // the built-in value, given again
  options.builtInInteraction = false;
  EXPECT_EQ(lnPhi(), builtIn);
  options.interactions.clear();
  EXPECT_LT(lnPhi(), builtIn - 1e-3);  // less kij is more attraction, hence a lower fugacity
}

}  // namespace morvelan::host::test::compound_data
