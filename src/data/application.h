#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ground/current_context.h"
#include "ground/sale_lists.h"
#include "ground/window_state.h"

namespace lotwise {

class Database;
class Environment;
class StorageFaults;
class UiPort;

// The fixed file names of the program's data files and templates.
inline constexpr const char* kCentralTemplateName = "LW_CENT.MDB";
inline constexpr const char* kClientTemplateName = "LW_CLNT.MDB";
inline constexpr const char* kReportTemplateName = "LW_REPRT.MDB";
inline constexpr const char* kCentralFileName = "CENTRAL.MDB";
inline constexpr const char* kReportFileName = "REPORT.MDB";
inline constexpr const char* kErrorLogName = "LWERR.LOG";
// The INI value of an empty masked date field.
inline constexpr const char* kEmptyDateMask = "  /  /    ";

// The report preferences of the INI section "Prefs", kept while the program
// runs and written back at its end.
struct Prefs {
  bool remove_0_sec = false;
  std::string basis_ye = kEmptyDateMask;
  bool add_sch_d_rpt = false;
  int client_order = 1;
  int sec_order = 0;
  int xact_scope = 0;
  std::string xact_start = kEmptyDateMask;
  std::string xact_end = kEmptyDateMask;
  std::string sch_d_fye = kEmptyDateMask;
  std::string exp_path;
};

// The program-wide values of one run: the port to the user, the
// surroundings, settled folders and file names, preferences, the main
// window's state, the current context and the open data files. Procedures
// take it as their first argument instead of reaching for globals.
class Application {
 public:
  // `program_folder` holds the executable, its INI file, the templates and
  // the error log; `exe_base_name` names the INI file ("lotwise" ->
  // "lotwise.INI").
  Application(UiPort& ui, Environment& env, std::string program_folder, std::string exe_base_name);
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  UiPort& ui() { return ui_; }
  Environment& env() { return env_; }

  std::string program_folder;  // without a trailing separator
  std::string exe_base_name;
  std::string ini_path;
  std::string help_path;
  // The per-user settings store: an INI file under the XDG config folder.
  std::string settings_store_path;
  std::string temp_folder;      // ends in a separator
  std::string ssf_folder;       // ends in a separator
  std::string taxpayer_folder;  // ends in a separator
  // When not empty, both data folders of this run (command-line front):
  // the settings store is neither read for them nor written, and the INI
  // file is not written back at the end.
  std::string forced_data_folder;
  std::string central_path;
  std::string report_db_path;
  bool update_all = false;
  Prefs prefs;
  MainWindowState window;
  CurrentContext current;
  // The shares lists of the sale being entered.
  SaleLists sale_lists;
  // The sales the last offer to re-book later sales re-booked.
  std::vector<RebookedSale> rebooked_sales;

  // The Security Symbols File, open for the whole run.
  std::unique_ptr<Database> central;
  // The open Taxpayer File, if any.
  std::unique_ptr<Database> client;

  // Fault injection for tests: every database the program opens reports its
  // writes here. Null in the program.
  StorageFaults* storage_faults = nullptr;

  // The result code dlgChkFiles left behind.
  int chk_files_result = 0;
  // Set once EndProgram has run (or SetFileLoc has skipped it), so that a
  // later call does nothing. Nothing else asks it: the end of the program
  // travels as ProgramEnded.
  bool ended = false;

  // The open Taxpayer File; throws LwError (kUnexpected) when none is open.
  Database& ClientFile();

  // Returns program folder & separator & name.
  std::string ProgramFile(const std::string& name) const;

 private:
  UiPort& ui_;
  Environment& env_;
};

}  // namespace lotwise
