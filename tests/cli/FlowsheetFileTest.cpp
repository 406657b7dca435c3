// Files that are wrong: each must be refused before anything is calculated, naming the place.

#include <gtest/gtest.h>

#include "tests/cli/BadFiles.h"

namespace morvelan::test::flowsheet_file {

constexpr const char* kValid = R"({
  "title": "Valid",
  "thermo": {
    "interface": "1.1",
    "model": "peng-robinson",
    "compounds": ["methane", "ethane"],
    "binaryInteraction": [{"a": "methane", "b": "ethane", "kij": -0.0026}],
    "builtInInteraction": true
  },
  "reactions": [],
  "streams": {
    "feed": {"type": "material", "temperature": 300, "pressure": 100000, "flow": 1, "composition": {"methane": 0.9, "ethane": 0.1}},
    "duty": {"type": "energy", "work": 1000, "temperatureLow": 400, "temperatureHigh": 500},
    "signal": {"type": "information", "value": 3.5, "dimensionality": [0, 0, 0, 0, 1, 0, 0, 0]}
  },
  "units": {
    "N-1": {
      "class": "NoOperation",
      "ports": {"Inlet": "feed", "Outlet": "middle"},
      "parameters": {"Thermo Version": "1.1"},
      "configuration": {}
    },
    "N-2": {"class": "NoOperation", "ports": {"Inlet": "middle", "Outlet": "product"}}
  }
})";

const BadFile kBadFiles[] = {
    // Keys
    {"/thermo", "", "the key \"thermo\" is missing", {}},
    {"/thermo/compounds", "", ": thermo: ", {"\"compounds\" is missing"}},
    {"/units/N-1/class", "", ": units/N-1: ", {"\"class\" is missing"}},
    {"/streams/feed/type", "", ": streams/feed: ", {"\"type\" is missing"}},
    {"/streams/feed/flow", "", ": streams/feed: ", {"\"flow\" is missing"}},
    {"/streams/duty/work", "", ": streams/duty: ", {"\"work\" is missing"}},
    {"/units/N-1/colour", "1", ": units/N-1/colour: ", {"unknown", "class, ports, parameters"}},
    {"/Units", "{}", ": Units: ", {"unknown", "units"}},
    {"/thermo/Model", "\"ideal-gas\"", ": thermo/Model: ", {"unknown", "model"}},
    {"/thermo/binaryInteraction/0/k", "0", ": thermo/binaryInteraction[0]/k: ", {"unknown", "kij"}},
    {"/streams/feed/enthalpy", "0", ": streams/feed/enthalpy: ", {"unknown", "composition"}},
    {"/streams/duty/flow", "1", ": streams/duty/flow: ", {"unknown", "temperatureLow"}},
    {"/streams/signal/unit", "1", ": streams/signal/unit: ", {"unknown", "dimensionality"}},
    // Types
    {"/title", "5", ": title: ", {"a text is expected, 5 found"}},
    {"/units", "[]", ": units: ", {"an object is expected, an array found"}},
    {"/units/N-1", "\"NoOperation\"", ": units/N-1: ", {"an object is expected"}},
    {"/units/N-1/ports/Inlet", "7", ": units/N-1/ports/Inlet: ", {"a text is expected, 7 found"}},
    {"/streams/feed/temperature", "\"300\"", ": streams/feed/temperature: ", {"a number is expected, \"300\" found"}},
    {"/streams/feed/pressure", "null", ": streams/feed/pressure: ", {"a number is expected, null found"}},
    {"/thermo/builtInInteraction", "1", ": thermo/builtInInteraction: ", {"true or false"}},
    {"/thermo/compounds", "\"methane\"", ": thermo/compounds: ", {"an array is expected"}},
    {"/streams/signal/dimensionality", "[1, 2]", ": streams/signal/dimensionality: ", {"eight", "2 found"}},
    // Names
    {"/thermo/compounds/1", "\"etane\"", ": thermo/compounds[1]: ", {"\"etane\" is unknown", "\"ethane\"?"}},
    {"/thermo/compounds/1", "\"Methane\"", ": thermo/compounds[1]: ", {"listed twice"}},
    {"/thermo/compounds", "[]", ": thermo/compounds: ", {"at least one"}},
    {"/thermo/compounds/2", "\"carbon\"", ": thermo/compounds: ", {"\"carbon\" has no ideal-gas data"}},
    {"/thermo/interface", "\"2.0\"", ": thermo/interface: ", {"\"2.0\"", "\"1.0\", \"1.1\", \"both\""}},
    {"/thermo/model", "\"wilson\"", ": thermo/model: ", {"\"wilson\"", "\"ideal-gas\""}},
    {"/thermo/binaryInteraction/0/a", "\"ethane\"", ": thermo/binaryInteraction[0]: ", {"the same compound"}},
    {"/thermo/binaryInteraction/0/a",
     "\"argon\"",
     ": thermo/binaryInteraction[0]/a: ",
     {"not one of thermo/compounds"}},
    {"/thermo/binaryInteraction/1",
     R"({"a": "ethane", "b": "CH4", "kij": 0})",
     ": thermo/binaryInteraction[1]/b: ",
     {"CH4"}},
    {"/thermo/binaryInteraction/1",
     R"({"a": "ethane", "b": "methane", "kij": 0})",
     ": thermo/binaryInteraction[1]: ",
     {"listed twice"}},
    {"/thermo/compoundData", "\"nowhere.json\"", ": thermo/compoundData: ", {"nowhere.json"}},
    {"/streams/feed/type",
     "\"gas\"",
     ": streams/feed/type: ",
     {"\"gas\"", "\"material\", \"energy\", \"information\""}},
    {"/units/N-1/class", "\"NoOperatoin\"", ": units/N-1/class: ", {"\"NoOperatoin\" is unknown", "\"NoOperation\"?"}},
    {"/units/N-1/ports", R"({"Inlt": "feed"})", ": units/N-1/ports/Inlt: ", {"\"Inlet\", \"Outlet\""}},
    {"/units/N-1/parameters", R"({"Thermo": "1.0"})", ": units/N-1/parameters/Thermo: ", {"\"Thermo Version\""}},
    {"/units/N-1/ports/Inlet", "\"fed\"", ": units/N-1/ports/Inlet: ", {"\"fed\" is not listed", "\"feed\"?"}},
    {"/units/N-1/ports/Inlet", "\"\"", ": units/N-1/ports/Inlet: ", {"name of a stream"}},
    // Amounts
    {"/streams/feed/temperature", "0", ": streams/feed/temperature: ", {"above 0", "0 found"}},
    {"/streams/feed/pressure", "-1e5", ": streams/feed/pressure: ", {"above 0", "-100000.0 found"}},
    {"/streams/feed/flow", "-1", ": streams/feed/flow: ", {"not be negative", "-1 found"}},
    {"/streams/feed/composition/methane", "-0.1", ": streams/feed/composition/methane: ", {"not be negative"}},
    {"/streams/feed/composition/methane",
     "0.900002",
     ": streams/feed/composition: ",
     {"sum to 1 within 1e-6", "1.000002"}},
    {"/streams/feed/composition", "{}", ": streams/feed/composition: ", {"their sum is 0"}},
    {"/streams/feed/composition/metane", "0", ": streams/feed/composition/metane: ", {"\"methane\"?"}},
    {"/streams/feed/composition/METHANE", "0", ": streams/feed/composition/METHANE: ", {"given twice"}},
    {"/streams/duty/temperatureLow", "-3", ": streams/duty/temperatureLow: ", {"above 0"}},
    {"/streams/feed/temperature", "1e-9", ": streams/feed: ", {"cannot be brought to equilibrium"}},
    // Connections
    {"/units/N-1/ports/inlet", "\"feed\"", ": units/N-1/ports/inlet: ", {"\"Inlet\" is connected twice"}},
    {"/units/N-2/ports/Inlet", "\"feed\"", ": units/N-2/ports/Inlet: ", {"\"feed\" feeds", "\"N-1\" already"}},
    {"/units/N-2/ports/Outlet", "\"middle\"", ": units/N-2/ports/Outlet: ", {"comes from", "\"N-1\" already"}},
    {"/units/N-1/ports/Outlet", "\"duty\"", ": units/N-1/ports/Outlet: ", {"a material stream", "an energy stream"}},
    {"/units/N-2/ports/Inlet", "\"signal\"", ": units/N-2/ports/Inlet: ", {"an information stream"}},
    {"/streams/product",
     R"({"type": "material", "temperature": 300, "pressure": 1e5, "flow": 1, "composition": {"methane": 1}})",
     ": streams/product: ",
     {"outlet of unit \"N-2\""}},
    {"/units/N-1/ports/Inlet", "\"product\"", ": units/N-1: ", {"\"N-1\" -> \"N-2\" -> \"N-1\"", "needs a guess"}},
    {"/units/N-2/ports/Inlet", "\"product\"", ": units/N-2: ", {"\"N-2\" -> \"N-2\"", "needs a guess"}},
    // Parameters
    {"/units/N-1/parameters/Thermo Version",
     "\"2.0\"",
     ": units/N-1/parameters/Thermo Version: ",
     {"invalid choice", "\"1.0\", \"1.1\""}},
    {"/units/N-1/parameters/Thermo Version",
     "1.1",
     ": units/N-1/parameters/Thermo Version: ",
     {"a text is expected, 1.1 found"}},
    {"/units/N-1/parameters/thermo version", "\"1.1\"", ": units/N-1/parameters/thermo version: ", {"given twice"}},
    // What the unit does not take
    {"/units/N-1/configuration", R"({"formula": "1"})", ": units/N-1/configuration: ", {"takes no configuration"}},
};

TEST(FlowsheetFile, IsRunWhenItIsRight) {
  const auto outcome = RunFlowsheet(kValid);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
}

TEST(FlowsheetFile, IsRefusedWithThePlaceWhenItIsWrong) {
  for (const BadFile& bad : kBadFiles)
    ExpectRefused(RunFlowsheet(Changed(kValid, bad)), bad.place, bad.words, std::string(bad.pointer) + ": ");
}

struct BadText {
  const char* what;
  std::string text;
  const char* place;
  std::vector<const char*> words;
};

TEST(FlowsheetFile, IsRefusedWithTheLineWhenItsTextIsWrong) {
  const std::string valid = kValid;
  const auto replaced = [&](const std::string& from, const std::string& to) {
    std::string text = valid;
    return text.replace(text.find(from), from.size(), to);
  };
  const BadText cases[] = {
      {"a comma too many",
       replaced("\"builtInInteraction\": true", "\"builtInInteraction\": true,"),
       "flowsheet.json:9:3: ",
       {"syntax error"}},
      {"cut off", valid.substr(0, valid.find("\"reactions\"")), "flowsheet.json:10:3: ", {"unexpected end of input"}},
      {"empty", "", "flowsheet.json:1:1: ", {"unexpected end of input"}},
      {"not a number of JSON",
       replaced("\"pressure\": 100000", "\"pressure\": NaN"),
       "flowsheet.json:12:",
       {"syntax error"}},
      {"a number that is not finite",
       replaced("\"pressure\": 100000", "\"pressure\": 1e999"),
       "flowsheet.json:12: ",
       {"1e999"}},
      {"a key given twice",
       replaced("\"title\": \"Valid\",", "\"title\": \"Valid\",\n\"title\": \"Twice\","),
       "flowsheet.json:3: title: ",
       {"given twice"}},
      {"a unit given twice", replaced("\"N-2\"", "\"N-1\""), "flowsheet.json:23: units/N-1: ", {"given twice"}},
      {"the line of a key",
       replaced("\"Inlet\": \"feed\"", "\"Inlt\": \"feed\""),
       "flowsheet.json:19: units/N-1/ports/Inlt: ",
       {}},
      {"the line of an element",
       replaced("[\"methane\", \"ethane\"]", "[\"methane\",\n\"etane\"\n]"),
       "flowsheet.json:7: thermo/compounds[1]: ",
       {}},
      {"the line of a number",
       replaced("[\"methane\", \"ethane\"]", "[\"methane\",\n5\n]"),
       "flowsheet.json:7: thermo/compounds[1]: ",
       {"5 found"}},
      {"nested too deeply", std::string(100, '[') + std::string(100, ']'), "flowsheet.json:1: ", {"nested"}},
      {"an array", "[1, 2]", "flowsheet.json:1: ", {"an object is expected"}},
  };
  for (const BadText& bad : cases) ExpectRefused(RunFlowsheet(bad.text), bad.place, bad.words, bad.what);
}

TEST(FlowsheetFile, MustBeReadable) {
  for (const std::string& name : {std::string("missing.json"), std::string(".")}) {
    const auto outcome = RunCommand("run \"" + Scratch(name).string() + '"');
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.errors.find("the file cannot be read"), std::string::npos) << outcome.errors;
  }
}

// A compound of the user's own, beside the flowsheet file and within it.
TEST(FlowsheetFile, MayBringCompounds) {
  const std::string argonLike =
      R"({"compounds": [{"name": "fermium-x", "formula": "X", "molecularWeight": 40, "criticalTemperature": 150,
          "criticalPressure": 5e6, "acentricFactor": 0, "idealGas": {"model": "nasa7", "ranges":
          [{"Tmin": 200, "Tmax": 6000, "a": [2.5, 0, 0, 0, 0, -745.375, 4.4]}]}}]})";
  (void)WriteScratch("own.json", argonLike);
  for (const std::string& data : {std::string("\"own.json\""), argonLike}) {
    const auto outcome =
        RunFlowsheet(R"({"thermo": {"model": "ideal-gas", "compounds": ["fermium-x"], "compoundData": )" + data +
                     R"(}, "streams": {"gas": {"type": "material", "temperature": 398.15, "pressure": 1e5, "flow": 1,
            "composition": {"fermium-x": 1}}}})");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    // H = 5/2 R (T - 298.15 K) of an ideal gas of atoms
    EXPECT_NEAR(outcome.results["streams"]["gas"]["enthalpy"].get<double>(), 2.5 * 8.314462618 * 100, 1e-6);
    EXPECT_TRUE(outcome.results["streams"]["gas"]["enthalpyF"].is_null()) << "no formation data";
  }
}

}  // namespace morvelan::test::flowsheet_file
