#pragma once

#include <functional>
#include <vector>

#include "session.h"

namespace CLI {
class App;
}

namespace lotwise::cli {

// What every subcommand sees: where the program is and the global options,
// filled in by the parser before any runner is called.
struct Context {
  ProgramLocation location;
  GlobalOptions global;
};

// A subcommand and what runs it once the parser chose it; returns the exit
// code of the process.
struct Command {
  CLI::App* subcommand = nullptr;
  std::function<int()> run;
};

// Each adds its subcommands to `parser` and their runners to `commands`.
// `context` outlives the parse and the run.
void AddStartCommand(CLI::App& parser, Context& context, std::vector<Command>& commands);
// taxpayer new, portfolio new, security add.
void AddEntityCommands(CLI::App& parser, Context& context, std::vector<Command>& commands);
// import --taxpayer CODE FILE.csv
void AddImportCommand(CLI::App& parser, Context& context, std::vector<Command>& commands);
// report basis | schedule-d | transactions | taxpayers | securities
void AddReportCommands(CLI::App& parser, Context& context, std::vector<Command>& commands);
// demo
void AddDemoCommand(CLI::App& parser, Context& context, std::vector<Command>& commands);

}  // namespace lotwise::cli
