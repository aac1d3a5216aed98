// lotwise-cli: the program without its window, one subcommand per task.
#include <CLI/CLI.hpp>
#include <vector>

#include "commands.h"

int main(int argc, char** argv) {
  using namespace lotwise::cli;
  CLI::App parser{"Lotwise without its window"};
  parser.require_subcommand(1);

  Context context;
  context.location = LocateProgram(argv[0]);
  parser.add_option("--data", context.global.data_folder,
                    "Use this folder for both data folders in this run only");
  parser.add_flag("--yes", context.global.assume_yes, "Answer Yes/OK to every question");

  std::vector<Command> commands;
  AddStartCommand(parser, context, commands);
  AddEntityCommands(parser, context, commands);
  AddImportCommand(parser, context, commands);
  AddReportCommands(parser, context, commands);
  AddDemoCommand(parser, context, commands);
  // The global options may also follow the subcommand's name.
  for (CLI::App* subcommand : parser.get_subcommands({})) subcommand->fallthrough();

  CLI11_PARSE(parser, argc, argv);

  for (const Command& command : commands) {
    if (command.subcommand->parsed()) return command.run();
  }
  return 0;
}
