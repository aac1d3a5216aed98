#include "session.h"

#include <filesystem>
#include <iostream>
#include <system_error>

#include "app/app_state.h"
#include "app/security_commands.h"
#include "app/startup.h"
#include "app/taxpayer_dialog.h"
#include "app/taxpayer_file.h"
#include "ground/paths.h"
#include "ground/program_ended.h"
#include "lots/security_display.h"

namespace lotwise::cli {

namespace fs = std::filesystem;

ProgramLocation LocateProgram(const char* argv0) {
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (ec) exe = fs::weakly_canonical(fs::absolute(argv0), ec);
  return {exe.parent_path().string(), exe.stem().string()};
}

Session::Session(const ProgramLocation& location, const GlobalOptions& options)
    : ui(std::cout, std::cerr, options.assume_yes),
      app(ui, env, location.folder, location.base_name),
      options_(options) {}

Session::~Session() {
  if (started_) EndProgram(app);
}

int Session::Run(const std::function<bool()>& command) {
  bool succeeded = false;
  try {
    succeeded = command();
  } catch (const ProgramEnded&) {
    EndProgram(app);
  }
  if (env.end_requested()) return env.exit_code() != 0 ? env.exit_code() : 1;
  return succeeded ? 0 : 1;
}

bool Session::Start() {
  if (!options_.data_folder.empty()) {
    std::error_code ec;
    fs::path folder = fs::absolute(options_.data_folder, ec);
    if (!ec) fs::create_directories(folder, ec);
    if (ec || !fs::is_directory(folder)) {
      std::cerr << "cannot use data folder " << options_.data_folder << ": " << ec.message()
                << '\n';
      return false;
    }
    app.forced_data_folder = WithTrailingSeparator(folder.string());
  }
  started_ = true;
  try {
    Main(app);
  } catch (const ProgramEnded&) {
    std::cerr << "start-up failed: the program has ended\n";
    throw;
  }
  return true;
}

namespace {

// Runs `open`; says that `what` could not be opened when it fails, also
// when it ends the program.
bool Opened(ConsoleUi& ui, const std::string& what, const std::function<bool()>& open) {
  try {
    if (open()) return true;
  } catch (const ProgramEnded&) {
    ui.Note(what + " could not be opened");
    throw;
  }
  ui.Note(what + " could not be opened");
  return false;
}

}  // namespace

bool Session::OpenTaxpayer(const std::string& code) {
  return Opened(ui, "taxpayer " + code, [&] { return OpenClient(app, code); });
}

bool Session::OpenPortfolio(const std::string& name) {
  return Opened(ui, "portfolio " + name, [&] { return OpenPort(app, name); });
}

bool Session::OpenSecurity(const std::string& symbol) {
  return Opened(ui, "security " + symbol, [&] {
    DisplaySecurity(app, symbol);
    return app.window.state == kSecOpen && app.current.sec_symbol == symbol;
  });
}

}  // namespace lotwise::cli
