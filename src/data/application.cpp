#include "data/application.h"

#include <cstdlib>

#include "data/database.h"
#include "ground/environment.h"
#include "ground/lw_error.h"
#include "ground/paths.h"

namespace lotwise {

namespace {

// The per-user settings store of application "Tarnwick\Lw".
std::string DefaultSettingsStorePath() {
  std::string base;
  if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg != nullptr && *xdg != '\0') {
    base = xdg;
  } else if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    base = JoinPath(home, ".config");
  } else {
    base = ".config";
  }
  return JoinPath(JoinPath(base, "Tarnwick"), "Lw.ini");
}

}  // namespace

Application::Application(UiPort& ui, Environment& env, std::string folder, std::string base_name)
    : program_folder(std::move(folder)),
      exe_base_name(std::move(base_name)),
      settings_store_path(DefaultSettingsStorePath()),
      ui_(ui),
      env_(env) {
  while (program_folder.size() > 1 &&
         (program_folder.back() == '/' || program_folder.back() == '\\')) {
    program_folder.pop_back();
  }
  prefs.exp_path = program_folder;
}

Application::~Application() = default;

std::string Application::ProgramFile(const std::string& name) const {
  return JoinPath(program_folder, name);
}

Database& Application::ClientFile() {
  if (!client) throw LwError(err::kUnexpected, "No Taxpayer File is open");
  return *client;
}

}  // namespace lotwise
