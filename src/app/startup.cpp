#include "app/startup.h"

#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include "app/app_state.h"
#include "app/taxpayer_dialog.h"
#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/client_index.h"
#include "data/client_info.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "ground/environment.h"
#include "ground/ini_file.h"
#include "ground/lw_error.h"
#include "ground/paths.h"
#include "ground/program_ended.h"
#include "ground/value_helpers.h"

namespace lotwise {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCrLf = "\r\n";
// The run-time's "File not found", for a template missing from the program
// folder: that is a broken installation, not a data folder to designate.
constexpr int kRuntimeFileNotFound = 53;
// The run-time's "Object variable not set": the central file is not open.
constexpr int kRuntimeObjectNotSet = 91;

const char* const kMissingFoldersWarning =
    "You need to specify where you want the program to look for your data files. Client files are "
    "usually in C:\\LW\\DATA\\CLIENT and CENTRAL.MDB is usually located in C:\\LW\\DATA\\CENTRAL. "
    "Please make sure either these folders exist.";

std::string CheckState(bool checked) { return checked ? "-1" : "0"; }

std::string TwoDigits(int value) {
  std::string text = std::to_string(value);
  return text.size() < 2 ? "0" + text : text;
}

// The folders the program uses when nobody has designated others.
std::string DefaultSsfFolder(const Application& app) {
  return app.program_folder + kSeparator + "DATA" + kSeparator + "CENTRAL" + kSeparator;
}
std::string DefaultTaxpayerFolder(const Application& app) {
  return app.program_folder + kSeparator + "DATA" + kSeparator + "CLIENT" + kSeparator;
}

// The run-time's error for a failed file operation on `path`: a missing
// folder on the way is "Path not found" (76), anything else a "Path/File
// access error" (75).
LwError FileSystemError(const std::error_code& ec, const std::string& path) {
  if (ec == std::errc::no_such_file_or_directory || ec == std::errc::not_a_directory ||
      ec == std::errc::file_exists) {
    return LwError(err::kPathNotFound, "Path not found: " + path);
  }
  return LwError(err::kPathFileAccess,
                 "Path/File access error: " + path + " (" + ec.message() + ")");
}

// The program's own default folders are made on the first start. A
// designated folder that is missing (a server share not mounted) is not:
// an empty file made in its place would hide the real data.
void MakeDefaultFolder(const std::string& folder, const std::string& default_folder) {
  std::error_code ec;
  if (folder != default_folder || fs::is_directory(folder, ec)) return;
  fs::create_directories(folder, ec);
  if (ec) throw FileSystemError(ec, folder);
}

void CopyTemplate(const Application& app, const char* template_name, const std::string& to) {
  std::string from = app.ProgramFile(template_name);
  if (!FileExists(from)) throw LwError(kRuntimeFileNotFound, "File not found: " + from);
  std::error_code ec;
  fs::copy_file(from, to, ec);
  if (ec) throw FileSystemError(ec, to);
}

// Reads the one Client row of a Taxpayer File. Throws LwError 3011 when the
// file has no Client table or no row in it: either way it cannot say whose
// file it is.
ClientOnFile ReadClientRow(Application& app, const std::string& path) {
  auto db = Database::Open(path, Database::Mode::kReadOnly, app.storage_faults);
  std::optional<ClientOnFile> client = ReadClientNameAndCode(*db);
  if (!client) throw LwError(err::kObjectNotFound, "No Client record in " + path);
  return *client;
}

}  // namespace

void Main(Application& app) {
  try {
    State(app, kStateNone);
    app.ini_path = app.ProgramFile(app.exe_base_name + ".INI");
    app.help_path = app.ProgramFile(std::string("help") + kSeparator + "index.html");
    app.temp_folder = WithTrailingSeparator(app.env().TempFolder());

    GetINISettings(app, app.ini_path);

    app.report_db_path = GetUniqueReportName(app);
    CopyTemplate(app, kReportTemplateName, app.report_db_path);

    MakeDefaultFolder(app.ssf_folder, DefaultSsfFolder(app));
    MakeDefaultFolder(app.taxpayer_folder, DefaultTaxpayerFolder(app));
    app.central_path = app.ssf_folder + kCentralFileName;
    if (!FileExists(app.central_path)) CopyTemplate(app, kCentralTemplateName, app.central_path);

    OpenCDB(app, app.central_path);
    if (!app.central) {
      throw LwError(kRuntimeObjectNotSet,
                    "The Security Symbols File is not open: " + app.central_path);
    }
    CheckDBFiles(app, *app.central);
    AddUsage(app, *app.central);

    State(app, kClientClosed);
  } catch (const ProgramEnded&) {
    throw;
  } catch (...) {
    LwError error = CurrentError();
    if (error.number() == err::kPathNotFound) {
      app.ui().MessageBox(kMissingFoldersWarning, "WARNING", Icon::kCritical, Buttons::kOk);
      // Designating the folders ends the program at once.
      RunDlgFileLoc(app);
    }
    // A failed start is always fatal, also after the user fixed the
    // folders: they take effect at the next start.
    HandleError(app, static_cast<int16_t>(error.number()), error.text(), "Main");
    throw ProgramEnded{};
  }
}

void GetINISettings(Application& app, const std::string& ini_path) {
  TrapVoid(app, "GetINISettings", [&] {
    IniFile ini(ini_path);
    OptionMarks& options = app.window.options;

    // A zero hides the bar: the item is checked first so that the toggle
    // both unchecks it and hides the bar.
    int tool_bar = ini.ReadInt("LW Options", "ToolBar", -1);
    options.show_tool_bar = true;
    app.window.tool_bar_visible = true;
    if (tool_bar == 0) ToggleToolBar(app);
    options.show_tool_tips = ini.ReadInt("LW Options", "ToolTips", -1) != 0;
    int help_bar = ini.ReadInt("LW Options", "HelpBar", -1);
    options.show_help_bar = true;
    app.window.help_bar_visible = true;
    if (help_bar == 0) ToggleHelpBar(app);
    options.recalc_shares = ini.ReadInt("LW Options", "Recalc Shares", -1) != 0;
    options.open_only_port = ini.ReadInt("LW Options", "OpenOnlyPort", -1) != 0;

    app.update_all = ini.ReadInt("LW Update Options", "Update All", 0) != 0;

    SetDBPathsAndNames(app, ini_path);

    Prefs& prefs = app.prefs;
    prefs.remove_0_sec = ini.ReadInt("Prefs", "Remove 0 Sec", 0) != 0;
    prefs.basis_ye = ini.ReadText("Prefs", "Basis YE", kEmptyDateMask);
    prefs.add_sch_d_rpt = ini.ReadInt("Prefs", "Add Sch D Rpt", 0) != 0;
    prefs.client_order = ini.ReadInt("Prefs", "Client order", 1);
    prefs.sec_order = ini.ReadInt("Prefs", "Sec order", 0);
    prefs.xact_scope = ini.ReadInt("Prefs", "Xact Scope", 0);
    prefs.xact_start = ini.ReadText("Prefs", "Xact Start", kEmptyDateMask);
    prefs.xact_end = ini.ReadText("Prefs", "Xact End", kEmptyDateMask);
    prefs.sch_d_fye = ini.ReadText("Prefs", "Sch D fye", kEmptyDateMask);
    prefs.exp_path = ini.ReadText("Prefs", "Exp Path", app.program_folder);
  });
}

void SetDBPathsAndNames(Application& app, const std::string& ini_path) {
  TrapVoid(app, "SetDBPathsAndNames", [&] {
    if (!app.forced_data_folder.empty()) {
      app.ssf_folder = WithTrailingSeparator(app.forced_data_folder);
      app.taxpayer_folder = app.ssf_folder;
      app.central_path = app.ssf_folder + kCentralFileName;
      return;
    }
    IniFile ini(ini_path);
    std::string ini_ssf = ini.ReadText("File Options", "SSF Path", DefaultSsfFolder(app));
    std::string ini_taxpayer =
        ini.ReadText("File Options", "Taxpayer Path", DefaultTaxpayerFolder(app));

    IniFile store(app.settings_store_path);
    std::string store_taxpayer = store.ReadText("File Options", "Taxpayer Path", "");
    std::string store_ssf = store.ReadText("File Options", "SSF Path", "");

    app.ssf_folder = WithTrailingSeparator(store_ssf.empty() ? ini_ssf : store_ssf);
    store.WriteText("File Options", "SSF Path", app.ssf_folder);
    app.taxpayer_folder =
        WithTrailingSeparator(store_taxpayer.empty() ? ini_taxpayer : store_taxpayer);
    store.WriteText("File Options", "Taxpayer Path", app.taxpayer_folder);
    app.central_path = app.ssf_folder + kCentralFileName;
  });
}

std::string GetUniqueReportName(Application& app) {
  return Trap(app, "GetUniqueReportName", std::string(), [&] {
    std::string folder =
        WithTrailingSeparator(app.temp_folder.empty() ? app.env().TempFolder() : app.temp_folder);
    const std::string prefix = "~LW" + TwoDigits(app.env().Now().minute);
    // Every second of the minute taken means leftovers of earlier runs;
    // waiting for the clock would then never end.
    std::set<int> taken;
    for (;;) {
      int second = app.env().Now().second;
      std::string name = folder + prefix + TwoDigits(second) + ".MDB";
      if (!FileExists(name)) return name;
      taken.insert(second);
      if (taken.size() >= 60) {
        throw LwError(err::kPathFileAccess,
                      "Path/File access error: every name " + folder + prefix + "??.MDB is taken");
      }
      app.env().Pause(std::chrono::milliseconds(250));
    }
  });
}

void CheckDBFiles(Application& app, Database& central) {
  TrapVoid(app, "CheckDBFiles", [&] {
    // File names are compared in upper case, as the file systems the data
    // folders come from do.
    std::set<std::string> on_disk;
    for (const std::string& name : ListFiles(app.taxpayer_folder, "*")) {
      on_disk.insert(ToUpperAscii(name));
    }
    for (const IndexedClient& row : ReadClientIndex(central)) {
      if (on_disk.count(ToUpperAscii(row.file_name)) != 0) continue;
      ChkFilesChoice choice = ShowNoFile(app, row.name);
      if (choice == ChkFilesChoice::kCreate) {
        DeleteIndexedClient(central, row.code);
        ShowNewModClient(app, "New Taxpayer", row.name, row.sort_name, row.code);
      } else if (choice == ChkFilesChoice::kDelete) {
        DeleteIndexedClient(central, row.code);
      }
    }

    for (const std::string& scratch : ListFiles(app.taxpayer_folder, "~*.mdb")) {
      fs::remove(app.taxpayer_folder + scratch);
    }

    // One read of the index serves every file: an office keeps thousands.
    std::set<std::string> indexed;
    for (const IndexedClient& row : ReadClientIndex(central)) {
      indexed.insert(ToUpperAscii(row.file_name));
    }
    for (const std::string& name : ListFiles(app.taxpayer_folder, "*.mdb")) {
      if (ToUpperAscii(name) == "CENTRAL.MDB") continue;
      if (indexed.count(ToUpperAscii(name)) != 0) continue;
      std::string path = app.taxpayer_folder + name;
      ChkFilesChoice choice = ShowNoClient(app, path);
      if (choice == ChkFilesChoice::kCreate) {
        MakeClientFromFile(app, central, path);
      } else if (choice == ChkFilesChoice::kDelete) {
        fs::remove(path);
      }
    }
  });
}

ChkFilesChoice ShowNoFile(Application& app, const std::string& client_name) {
  return Trap(app, "ShowNoFile", ChkFilesChoice::kIgnore, [&] {
    std::string text = "There is no Taxpayer File for " + FixAmpersand(client_name) +
                       ". You can:" + kCrLf + "        'Delete' this Taxpayer." + kCrLf +
                       "        'Create' a Taxpayer File for this Taxpayer." + kCrLf +
                       "        'Ignore' this Taxpayer for now.";
    ChkFilesChoice choice = app.ui().ChkFiles("Taxpayer File Missing...", text, true);
    app.chk_files_result = static_cast<int>(choice);
    return choice;
  });
}

ChkFilesChoice ShowNoClient(Application& app, const std::string& file_name) {
  return Trap(app, "ShowNoClient", ChkFilesChoice::kIgnore, [&] {
    std::string text;
    bool create_enabled = true;
    try {
      const ClientOnFile client = ReadClientRow(app, file_name);
      text = "The Taxpayer File for " + FixAmpersand(client.name) +
             " exists, but there is no Taxpayer record." + " You can:" + kCrLf +
             "        'Delete' this Taxpayer File." + kCrLf +
             "        'Create' a Taxpayer for this Taxpayer File." + kCrLf +
             "        'Ignore' this Taxpayer File for now.";
    } catch (const LwError& error) {
      // A file that cannot be read at all must not stop every start: the
      // user can still set it aside and go on working.
      const bool damaged =
          error.number() == err::kNotADatabase ||
          (error.number() == err::kReserved && error.text().find("-1209") != std::string::npos);
      if (damaged) {
        text = "A Taxpayer File (" + GetFileNameFromPath(file_name) +
               ") has been located, but it cannot be read: it is damaged or it was not written by "
               "this program. It can only be 'Deleted' or 'Ignored'. Choose 'Ignore' to keep the "
               "file, for example to restore it from a backup.";
      } else {
        if (error.number() != err::kObjectNotFound) throw;
        text = "A Taxpayer File (" + GetFileNameFromPath(file_name) +
               ") has been located. Due to missing information in the Taxpayer File it can only "
               "be 'Deleted' or 'Ignored'.";
      }
      create_enabled = false;
    }
    ChkFilesChoice choice = app.ui().ChkFiles("Taxpayer Record Missing...", text, create_enabled);
    // A disabled button cannot have been pressed.
    if (!create_enabled && choice == ChkFilesChoice::kCreate) choice = ChkFilesChoice::kIgnore;
    app.chk_files_result = static_cast<int>(choice);
    return choice;
  });
}

void MakeClientFromFile(Application& app, Database& central, const std::string& file_name) {
  TrapVoid(app, "MakeClientFromFile", [&] {
    const ClientOnFile client = ReadClientRow(app, file_name);
    AddIndexedClient(central, {client.name, CalcSortName(client.name), client.code,
                               GetFileNameFromPath(file_name)});
  });
}

void EndProgram(Application& app) {
  if (app.ended) return;
  app.ended = true;
  // Each part is trapped on its own: a failed write-back must not keep the
  // files open or the scratch database on disk, and the process ends anyway.
  // A fatal error of a part is shown and logged; the program is ending
  // already, so the next part runs.
  auto part = [&app](auto&& body) {
    try {
      TrapVoid(app, "EndProgram", body);
    } catch (const ProgramEnded&) {
    }
  };
  if (app.forced_data_folder.empty() && !app.ini_path.empty()) {
    part([&] {
      IniFile ini(app.ini_path);
      const OptionMarks& options = app.window.options;
      ini.WriteText("LW Options", "HelpBar", CheckState(options.show_help_bar));
      ini.WriteText("LW Options", "OpenOnlyPort", CheckState(options.open_only_port));
      ini.WriteText("LW Options", "ToolBar", CheckState(options.show_tool_bar));
      ini.WriteText("LW Options", "ToolTips", CheckState(options.show_tool_tips));
      ini.WriteText("LW Options", "Recalc Shares", CheckState(options.recalc_shares));
      const Prefs& prefs = app.prefs;
      ini.WriteText("Prefs", "Basis YE", prefs.basis_ye);
      ini.WriteText("Prefs", "Remove 0 Sec", CheckState(prefs.remove_0_sec));
      ini.WriteText("Prefs", "Add Sch D Rpt", CheckState(prefs.add_sch_d_rpt));
      ini.WriteText("Prefs", "Client order", std::to_string(prefs.client_order));
      ini.WriteText("Prefs", "Sec order", std::to_string(prefs.sec_order));
      ini.WriteText("Prefs", "Xact Scope", std::to_string(prefs.xact_scope));
      ini.WriteText("Prefs", "Xact Start", prefs.xact_start);
      ini.WriteText("Prefs", "Xact End", prefs.xact_end);
      ini.WriteText("Prefs", "Sch D fye", prefs.sch_d_fye);
      ini.WriteText("Prefs", "Exp Path", prefs.exp_path);
    });
  }
  part([&] { CloseClientFile(app); });
  part([&] { CloseCDB(app); });
  part([&] {
    if (app.report_db_path.empty()) return;
    if (FileExists(app.report_db_path)) fs::remove(app.report_db_path);
    std::string journal = app.report_db_path + "-journal";
    if (FileExists(journal)) fs::remove(journal);
  });
  app.env().EndProcess(0);
}

}  // namespace lotwise
