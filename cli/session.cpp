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
  if (started_ && !app.ended) EndProgram(app);
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
  if (app.ended || !Main(app)) {
    std::cerr << "start-up failed: the program has ended\n";
    return false;
  }
  return true;
}

bool Session::OpenTaxpayer(const std::string& code) {
  if (app.ended) return false;
  if (OpenClient(app, code) && !app.ended) return true;
  ui.Note("taxpayer " + code + " could not be opened");
  return false;
}

bool Session::OpenPortfolio(const std::string& name) {
  if (app.ended) return false;
  if (OpenPort(app, name) && !app.ended) return true;
  ui.Note("portfolio " + name + " could not be opened");
  return false;
}

bool Session::OpenSecurity(const std::string& symbol) {
  if (app.ended) return false;
  DisplaySecurity(app, symbol);
  if (!app.ended && app.window.state == kSecOpen && app.current.sec_symbol == symbol) return true;
  ui.Note("security " + symbol + " could not be opened");
  return false;
}

int Session::ExitCode(bool succeeded) const {
  if (env.end_requested()) return env.exit_code() != 0 ? env.exit_code() : 1;
  return succeeded && !app.ended ? 0 : 1;
}

}  // namespace lotwise::cli
