// The `morvelan` command: arguments in, an exit status out. What it does is done by the host.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "cli/Commands.h"

namespace morvelan::cli {
namespace {

namespace fs = std::filesystem;

/// The folder of this program; of the current folder's, should the system not tell.
fs::path ProgramFolder(const char* invokedAs) {
  std::error_code unknown;
  const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
  return (unknown ? fs::absolute(fs::path(invokedAs)) : program).parent_path();
}

/// Compound data as installed with the program, or else in the source tree.
fs::path DataFolder(const char* invokedAs) {
  const fs::path program = ProgramFolder(invokedAs);
  for (const char* folder : {"../share/morvelan/data", "../data", "data"})
    if (fs::exists(program / folder / "compounds.json")) return (program / folder).lexically_normal();
  return MORVELAN_DATA_DIR;
}

class Command {
 public:
  Command() {
    app.set_version_flag("--version", "morvelan " MORVELAN_VERSION);
    app.require_subcommand(1);
    AddRun();
    app.add_subcommand("units", "List the unit operations that are installed")->callback([this] {
      action = [](const fs::path&) { return ListUnits(); };
    });
    auto* describe = app.add_subcommand("describe", "Show ports, parameters and reports of a unit operation");
    describe->add_option("CLASS", className, "Name, ProgID or class identifier")->required();
    describe->callback([this] { action = [this](const fs::path&) { return Describe(className); }; });
  }

  int Execute(int argc, char** argv) try {
    app.parse(argc, argv);
    return action(DataFolder(argv[0]));
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
    command->add_option("FILE", run.file, "The flowsheet, a JSON file")->required();
    command->add_option("--json", run.json,
                        "Write the results to this file, or to standard output for \"-\"");
    command->add_option("--thermo", thermo, "Interfaces that materials offer, instead of the file's choice")
        ->check(CLI::IsMember({"1.0", "1.1", "both"}));
    command->add_flag("--simplified", run.options.simplified, "Ask the units for simplified models");
    command->add_flag("--roundtrip", run.options.roundtrip,
                      "Save every unit, restore it and calculate with what was restored");
    command->add_flag("--quiet", run.quiet, "Print errors only");
    command->callback([this] {
      run.options.thermoInterface = host::ThermoOfferByName(thermo);
      action = [this](const fs::path& dataFolder) { return Run(run, dataFolder); };
    });
  }

  CLI::App app{"Runs flowsheets of MORVELAN unit operations without a process simulator", "morvelan"};
  RunArguments run;
  std::string thermo;
  std::string className;
  std::function<int(const fs::path&)> action;
};

}  // namespace
}  // namespace morvelan::cli

int main(int argc, char** argv) { return morvelan::cli::Command().Execute(argc, argv); }
