#include <CLI/CLI.hpp>

#include "commands.h"

namespace lotwise::cli {

void AddDemoCommand(CLI::App&, Context&, std::vector<Command>&) {}

}  // namespace lotwise::cli
