// The command `morvelan`: reads its arguments and hands them to the host.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "cli/Commands.h"
#include "com/Module.h"
#include "com/Program.h"
#include "com/Text.h"

namespace morvelan::cli {
namespace {

namespace fs = std::filesystem;

/// The folder of compound data: installed with the program, or in the source tree where it was built.
fs::path DataFolder() {
  const fs::path program = com::ModuleFile().parent_path();
  for (const char* folder : {"../share/morvelan/data", "../data", "data", "../../../data"})
    if (fs::exists(program / folder / "compounds.json")) return (program / folder).lexically_normal();
  throw std::runtime_error("the compound data is not installed with " + program.string());
}

class Command {
 public:
  Command() {
    app.set_version_flag("--version", "morvelan " MORVELAN_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false);  // a slash begins a path
    AddRun();
    app.add_subcommand("units", "List the unit operations that are installed")->callback([this] {
      action = [](const fs::path&) { return ListUnits(); };
    });
    auto* describe = app.add_subcommand("describe", "Show ports, parameters and reports of a unit operation");
    describe->add_option("CLASS", className, "Name, ProgID or class identifier")->required();
    describe->callback([this] { action = [this](const fs::path&) { return Describe(className); }; });
  }

  /// `arguments` stand in reverse order, without the program's name, as CLI11 takes them.
  int Execute(std::vector<std::string> arguments) try {
    app.parse(std::move(arguments));
    return action(DataFolder());
  } catch (const CLI::Success& request) {  // help or version
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    std::cerr << "morvelan: " << error.what() << "\nRun with --help for more information.\n";
    return kWrongInput;
  } catch (const std::exception& error) {
    std::cerr << "morvelan: " << error.what() << '\n';
    return kWrongInput;
  }

 private:
  void AddRun() {
    auto* command = app.add_subcommand("run", "Calculate a flowsheet");
    command->add_option("FILE", file, "The flowsheet, a JSON file")->required();
    command->add_option("--json", run.json, "Write the results to this file, or to standard output for \"-\"");
    command->add_option("--thermo", thermo, "Interfaces that materials offer, instead of the file's choice")
        ->check(CLI::IsMember({"1.0", "1.1", "both"}));
    command->add_flag("--simplified", run.options.simplified, "Ask the units for simplified models");
    command->add_flag("--roundtrip", run.options.roundtrip,
                      "Save every unit, restore it and calculate with what was restored");
    command->add_flag("--quiet", run.quiet, "Print errors only");
    command->callback([this] {
      run.file = com::ToPath(file);
      run.options.thermoInterface = host::ThermoOfferByName(thermo);
      action = [this](const fs::path& dataFolder) { return Run(run, dataFolder); };
    });
  }

  CLI::App app{"Runs flowsheets of MORVELAN unit operations without a process simulator", "morvelan"};
  RunArguments run;
  std::string file;
  std::string thermo;
  std::string className;
  std::function<int(const fs::path&)> action;
};

}  // namespace
}  // namespace morvelan::cli

int main(int argc, char** argv) try {
  const morvelan::com::Program program(argc, argv);
  const std::vector<std::string>& arguments = program.Arguments();
  return morvelan::cli::Command().Execute({arguments.rbegin(), arguments.rend() - 1});
} catch (const std::exception& error) {
  std::cerr << "morvelan: " << error.what() << '\n';
  return morvelan::cli::kWrongInput;
}
