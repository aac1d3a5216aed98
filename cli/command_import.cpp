#include <CLI/CLI.hpp>

#include "commands.h"

namespace lotwise::cli {

void AddImportCommand(CLI::App&, Context&, std::vector<Command>&) {}

}  // namespace lotwise::cli
