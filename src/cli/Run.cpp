#include <fstream>
#include <iomanip>
#include <iostream>

#include "cli/Commands.h"
#include "com/Program.h"
#include "com/Text.h"
#include "host/flowsheet/FlowsheetReader.h"
#include "host/flowsheet/ResultJson.h"
#include "host/flowsheet/ResultTable.h"

namespace morvelan::cli {
namespace {

constexpr int kIndent = 2;

std::string JsonText(const host::Results& results) {
  return host::ToJson(results).dump(kIndent, ' ', false, host::Json::error_handler_t::replace) + '\n';
}

/// Prints the errors of units. The table has them too, but a quiet run prints no table.
void PrintErrors(const host::Results& results) {
  for (const host::UnitResult& unit : results.units)
    if (unit.error) std::cerr << "morvelan: unit \"" << unit.name << "\": " << unit.error->Text() << '\n';
  if (!results.problem.empty()) std::cerr << "morvelan: " << results.problem << '\n';
}

/// A line that is overwritten in each round of a recycle.
void ShowProgress(int round, double change) {
  std::cerr << "\rRecycle, round " << round << ": largest change " << std::setprecision(2) << std::scientific << change
            << "  " << std::flush;
}

constexpr const char* kClearLine = "\r\x1b[K";

}  // namespace

int Run(const RunArguments& arguments, const std::filesystem::path& dataFolder) {
  const host::Flowsheet flowsheet = host::ReadFlowsheet(arguments.file, dataFolder);
  host::RunOptions options = arguments.options;
  const bool shows = !arguments.quiet && com::Program::HasTerminal();
  if (shows) options.progress = ShowProgress;
  host::FlowsheetRun run(flowsheet, options);
  const bool toScreen = arguments.json == "-";
  std::ofstream json;
  if (!arguments.json.empty() && !toScreen) {
    json.open(com::ToPath(arguments.json), std::ios::binary);
    if (!json) throw std::runtime_error(arguments.json + ": the file cannot be written");
  }
  const host::Results results = run.Calculate();
  if (shows) std::cerr << kClearLine;
  if (json.is_open()) {
    json << JsonText(results);
    json.close();
    if (!json) throw std::runtime_error(arguments.json + ": the file cannot be written");
  }
  if (toScreen)
    std::cout << JsonText(results);
  else if (!arguments.quiet)
    std::cout << host::ToText(results);
  std::cout.flush();
  PrintErrors(results);
  return results.solved ? kSolved : kNotSolved;
}

}  // namespace morvelan::cli
