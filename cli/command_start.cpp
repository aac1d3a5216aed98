// `start`: the program's start-up and shut-down against its data folders.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

#include "app/startup.h"
#include "commands.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/client_index.h"
#include "data/database.h"
#include "ground/paths.h"
#include "ground/program_ended.h"

namespace lotwise::cli {
namespace {

namespace fs = std::filesystem;

std::string DataVersion(Database& central) {
  try {
    return CentralDataVersion(central).value_or("(none)");
  } catch (const LwError& error) {
    return "(unreadable: " + error.text() + ")";
  }
}

long long CountIndexed(Database& central) { return CountIndexedClients(central); }

// `start`: the start-up and shut-down of the program against its data
// folders, telling what happened on the way.
int RunStart(const Context& context) {
  const GlobalOptions& options = context.global;
  Session session(context.location, options);
  Application& app = session.app;
  std::ostream& out = std::cout;

  std::string ini_path = app.ProgramFile(app.exe_base_name + ".INI");
  out << "program folder: " << app.program_folder << '\n';
  out << "INI file: " << ini_path << (FileExists(ini_path) ? "" : " (absent: defaults)") << '\n';

  if (!options.data_folder.empty()) {
    std::error_code ec;
    fs::path folder = fs::absolute(options.data_folder, ec);
    if (!ec) fs::create_directories(folder, ec);
    if (ec || !fs::is_directory(folder)) {
      std::cerr << "cannot use data folder " << options.data_folder << ": " << ec.message() << '\n';
      return 2;
    }
    app.forced_data_folder = WithTrailingSeparator(folder.string());
    out << "data folder for this run: " << app.forced_data_folder
        << " (settings store and INI file left alone)\n";
  }

  try {
    // Settling the folders first tells whether the central file was there
    // before the start; Main settles them again to the same result.
    SetDBPathsAndNames(app, ini_path);
    const bool central_existed = FileExists(app.ssf_folder + kCentralFileName);
    Main(app);
    out << "Security Symbols File folder: " << app.ssf_folder << '\n';
    out << "Taxpayer File folder: " << app.taxpayer_folder << '\n';
    if (FileExists(app.report_db_path)) {
      out << "report database created: " << app.report_db_path << '\n';
    }
    out << "Security Symbols File " << (central_existed ? "opened: " : "created: ")
        << app.central_path << '\n';
    out << "data version: " << DataVersion(*app.central) << '\n';
    out << "taxpayers reconciled: " << CountIndexed(*app.central) << " indexed, "
        << session.ui.chk_files_asked() << " mismatches left as they are\n";
    out << "usage count: " << GetUsageCount(app) << '\n';
    out << "state: CLIENTCLOSED\n";
  } catch (const ProgramEnded&) {
    EndProgram(app);
    out << "start-up failed: the program has ended\n";
    return 1;
  }

  std::string report_db = app.report_db_path;
  EndProgram(app);
  out << "shut down\n";
  bool removed = !FileExists(report_db) && !FileExists(report_db + "-journal");
  out << (removed ? "scratch report database removed: " : "scratch report database NOT removed: ")
      << report_db << '\n';
  if (!removed) return 1;
  return session.env.end_requested() ? session.env.exit_code() : 0;
}

}  // namespace

void AddStartCommand(CLI::App& parser, Context& context, std::vector<Command>& commands) {
  CLI::App* start =
      parser.add_subcommand("start", "Start the program against its data folders and shut it down");
  commands.push_back({start, [&context] { return RunStart(context); }});
}

}  // namespace lotwise::cli
