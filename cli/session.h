#pragma once

#include <functional>
#include <string>

#include "console_ui.h"
#include "data/application.h"

namespace lotwise::cli {

// The folder of the executable holds its INI file, the templates and the
// report definition files.
struct ProgramLocation {
  std::string folder;
  std::string base_name;
};
ProgramLocation LocateProgram(const char* argv0);

// Options every subcommand takes.
struct GlobalOptions {
  // When set, both data folders of this run; the user's settings store and
  // INI file are left alone.
  std::string data_folder;
  // Answer Yes/OK to every question instead of refusing.
  bool assume_yes = false;
};

// One run of the program without its window: the console in place of the
// window, started by Start() and shut down (EndProgram) when a command ends
// the program or when the session is destroyed.
class Session {
 public:
  Session(const ProgramLocation& location, const GlobalOptions& options);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Runs a command (true when it succeeded) and returns the process's exit
  // code: 0 on success, 1 otherwise. A command that ends the program
  // (ProgramEnded) has the program shut down here.
  int Run(const std::function<bool()>& command);

  // Settles the data folders (creating a forced one) and runs Main. Returns
  // true iff the program is up in CLIENTCLOSED; otherwise the reason was
  // printed (a failed Main ends the program).
  bool Start();
  // Opens the taxpayer with this code (CLIENTOPEN). Returns true iff open.
  bool OpenTaxpayer(const std::string& code);
  // Opens a portfolio of the open taxpayer (PORTOPEN).
  bool OpenPortfolio(const std::string& name);
  // Opens a security of the open portfolio (SECOPEN).
  bool OpenSecurity(const std::string& symbol);

  ConsoleUi ui;
  ConsoleEnvironment env;
  Application app;

 private:
  GlobalOptions options_;
  bool started_ = false;
};

}  // namespace lotwise::cli
