// Flowsheet files: those that are wrong are refused before anything is calculated, with the place.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>
#include <stdexcept>

#include "tests/cli/CommandRun.h"
#include "tests/cli/Flowsheets.h"
#include "tests/support/Approved.h"

namespace morvelan::test::flowsheet_file {

/// A text with a part of it changed: "OLD -> NEW", in which "\n" stands for the end of a line.
std::string Replaced(std::string text, const std::string& change) {
  const std::size_t arrow = change.find(" -> ");
  const std::string from = change.substr(0, arrow);
  std::string to = change.substr(arrow + 4);
  for (std::size_t at = to.find("\\n"); at != std::string::npos; at = to.find("\\n")) to.replace(at, 2, "\n");
  const std::size_t at = text.find(from);
  if (at == std::string::npos) throw std::runtime_error("the flowsheet does not have " + from);
  return text.replace(at, from.size(), to);
}

std::string Without(const std::string& text, const std::string& pointer) {
  auto document = host::Json::parse(text);
  const host::Json::json_pointer place(pointer);
  document.at(place.parent_pointer()).erase(place.back());
  return document.dump(1);
}

/// "POINTER = VALUE"
std::string With(const std::string& text, const std::string& change) {
  const std::size_t sign = change.find(" = ");
  auto document = host::Json::parse(text);
  document[host::Json::json_pointer(change.substr(0, sign))] = host::Json::parse(change.substr(sign + 3));
  return document.dump(1);
}

using Change = std::function<std::string(const std::string& text, const std::string& how)>;

const std::map<std::string, Change> kChanges = {
    {"replace", Replaced},
    {"remove", Without},
    {"set", With},
    {"cut", [](const std::string& text, const std::string& end) { return text.substr(0, text.find(end)); }},
    {"text", [](const std::string&, const std::string& text) { return text; }}};

/// Compound data of few compounds, which is read in a tenth of the time.
std::filesystem::path SmallDataFolder() {
  const std::filesystem::path data = MORVELAN_DATA_DIR, folder = Scratch("data");
  const std::set<std::string> names = {"methane", "ethane", "hydrogen", "argon", "carbon"};
  Json compounds = Json::parse(ReadFile(data / "compounds.json"));
  std::erase_if(compounds["compounds"].get_ref<Json::array_t&>(),
                [&](const Json& each) { return !names.contains(each["name"].get<std::string>()); });
  std::filesystem::create_directories(folder);
  (void)WriteScratch("data/compounds.json", compounds.dump());
  (void)WriteScratch("data/binary-interaction.json", R"({"pairs": []})");
  return folder;
}

/// A message with its list of known classes in alphabetical order: systems list them in orders of their own.
std::string WithSortedClasses(const std::string& message) {
  const std::string opening = "; known are ";
  const std::size_t at = message.find(opening);
  if (message.find("/class: ") == std::string::npos || at == std::string::npos) return message;
  std::set<std::string> classes;
  std::istringstream list(message.substr(at + opening.size()));
  for (std::string name; std::getline(list >> std::ws, name, ',');) classes.insert(name);
  std::string sorted;
  for (const std::string& name : classes) sorted += (sorted.empty() ? "" : ", ") + name;
  return message.substr(0, at + opening.size()) + sorted;
}

/// Answers the changes that a file of bad flowsheets lists: the same file with the messages of today.
std::string Answered(const std::string& file) {
  const std::filesystem::path data = SmallDataFolder();
  std::string answered, flowsheet;
  bool isFlowsheet = false;
  std::istringstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    if (line == "end of flowsheet") isFlowsheet = false;
    const bool isAnswer = !isFlowsheet && line.starts_with("  ");
    if (isAnswer) continue;
    answered += line + '\n';
    const std::size_t space = std::min(line.find(' '), line.size());
    const auto change = kChanges.find(line.substr(0, space));
    if (isFlowsheet)
      flowsheet += line + '\n';
    else if (change != kChanges.end()) {
      const std::string changed = change->second(flowsheet, line.substr(std::min(space + 1, line.size())));
      answered += "  " + WithSortedClasses(RunFlowsheet(changed, {}, false, data).refusal) + '\n';
    }
    if (line == "flowsheet:") isFlowsheet = true;
  }
  EXPECT_EQ(RunFlowsheet(flowsheet).refusal, "") << "before it is changed";
  return answered;
}

TEST(FlowsheetFile, IsRefusedWithThePlaceWhenItIsWrong) {
  const std::string answered = Answered(ReadFile(ApprovedFile("bad-flowsheets")));
  EXPECT_EQ(answered.find("\n  \n"), std::string::npos) << "all are refused";
  ExpectApproved("bad-flowsheets", answered);
}

TEST(FlowsheetFile, MustBeReadable) {
  for (const char* name : {"missing.json", "."}) {
    const std::string refusal = RunFlowsheet(Scratch(name)).refusal;
    EXPECT_NE(refusal.find("the file cannot be read"), std::string::npos) << refusal;
  }
}

// A compound of the user's own, in the flowsheet file and in one beside it.
TEST(FlowsheetFile, MayBringCompounds) {
  const Json argonLike = {{"name", "fermium-x"},
                          {"formula", "X"},
                          {"molecularWeight", 40},
                          {"criticalTemperature", 150},
                          {"criticalPressure", 5e6},
                          {"acentricFactor", 0},
                          {"idealGas", SimpleGas("", 0, 2.5 * kGasConstant, 0)["idealGas"]}};
  const Json data = {{"compounds", Json::array({argonLike})}};
  (void)WriteScratch("own.json", data.dump());
  for (const Json& given : {Json("own.json"), data}) {
    Json flowsheet = GasFlowsheet(Json::array({"fermium-x"}), Json::array());
    flowsheet["thermo"]["compoundData"] = given;
    flowsheet["streams"]["gas"] = Material(398.15, 1e5, 1, {{"fermium-x", 1}});
    const Json gas = SolvedResults(flowsheet)["streams"]["gas"];
    // H = 5/2 R (T - 298.15 K) of an ideal gas of atoms
    EXPECT_NEAR(gas["enthalpy"].get<double>(), 2.5 * kGasConstant * 100, 1e-6);
    EXPECT_TRUE(gas["enthalpyF"].is_null()) << "no formation data";
  }
}

}  // namespace morvelan::test::flowsheet_file
