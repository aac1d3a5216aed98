#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/ui_port.h"

namespace lotwise {

class Application;

// File maintenance of the File and Options menus: compress and repair of the
// data files with their ".bak" copies, deletion of those copies, and the
// notice that replaced the old backup commands.

// The compress/repair dialog's captions. The idle caption is its mode; the
// working caption, set by its button, tells StartCompressRepair what to do.
inline constexpr const char* kCompressCaption = "Compress Files";
inline constexpr const char* kRepairCaption = "Repair Files";
inline constexpr const char* kCompressingCaption = "Compressing Files...";
inline constexpr const char* kRepairingCaption = "Repairing Files...";
// The statuses of the dialog's three choices.
inline constexpr const char* kStatusWaiting = "Waiting...";
inline constexpr const char* kStatusWorking = "Working...";
inline constexpr const char* kStatusFinished = "Finished";
inline constexpr const char* kStatusNotDone = "Not Done";

// One taxpayer of the central index as the dialog's list shows it.
struct MaintClientRow {
  std::string client_name;
  std::string sort_name;
  std::string client_code;
  std::string file_name;
};

// The compress/repair dialog dlgCR_Report.
struct CompressRepairForm : DialogForm {
  std::string warning;  // lblWarning
  // The three choices and, for each, its status and the time it took
  // ("hh:mm:ss", set when it finished).
  bool ssf_chosen = false;                     // chkSSF: the Security Symbols File
  bool all_chosen = false;                     // chkAllTaxpayers: every Taxpayer File
  bool picked_chosen = false;                  // chkSelTaxpayers: the taxpayers picked below
  std::string ssf_status = kStatusWaiting;     // lblSSFStatus
  std::string all_status = kStatusWaiting;     // lblAllStatus
  std::string picked_status = kStatusWaiting;  // lblSelStatus
  std::string ssf_time;                        // lblSSFTime
  std::string all_time;                        // lblAllTime
  std::string picked_time;                     // lblSelTime
  std::vector<MaintClientRow> clients;         // lstTaxpayers, in display order
  std::vector<bool> picked;                    // one mark per row of clients
  std::string progress;                        // lblProgress
  bool working = false;                        // a run is under way
  // Called after every change the window should show during a run; the
  // window sets it to repaint itself.
  std::function<void()> changed;

  std::string_view Name() const override { return "dlgCR_Report"; }
};

// The delete-backups dialog dlgDelBackups.
struct DelBackupsForm : DialogForm {
  std::string status;  // lblStatus
  std::function<void()> changed;

  std::string_view Name() const override { return "dlgDelBackups"; }
};

// The notice dlgBackup that the program keeps no backups itself, with the
// two data folders it saves in.
struct BackupNoticeForm : DialogForm {
  std::string ssf_folder;       // lblSSFFolder
  std::string taxpayer_folder;  // lblTaxpayerFolder
  std::string notice;           // lblNotice

  std::string_view Name() const override { return "dlgBackup"; }
};

// What CompressFile and RepairFile leave behind: error number 0 when the
// file was done, else the error that stopped it with its text. `rebuilt`
// tells that a damaged file was replaced by a rebuilt one.
struct FileResult {
  int number = 0;
  std::string text;
  bool rebuilt = false;
  bool ok() const { return number == 0; }
};

// Open the compress/repair dialog in its compress or repair mode, its list
// filled from the central saved query "ClientInfo".
void ShowCompress(Application& app);
void ShowRepair(Application& app);
// Fills `form` for its mode (`caption`) without showing it. Throws LwError.
void LoadCompressRepair(Application& app, CompressRepairForm& form, const std::string& caption);
// The dialog's buttons: refuse an empty selection with "No files selected",
// otherwise set the working caption and run StartCompressRepair.
void Button_Compress(Application& app, CompressRepairForm& form);
void Button_Repair(Application& app, CompressRepairForm& form);
void CompressRepair_Close(Application& app, CompressRepairForm& form);
// Processes the chosen files in the mode the working caption names, group
// by group; a file that fails is reported and the run goes on. The
// Security Symbols File is closed around its turn and reopened whatever
// the result; an open Taxpayer File likewise.
void StartCompressRepair(Application& app, CompressRepairForm& form);

// Copies the file at `path` to its ".bak" name, compacts it into the
// temporary file "TEMP" & minute & ".mdb" and puts that in its place. The
// file must not be open in this program.
FileResult CompressFile(Application& app, const std::string& path);
// Copies the file to its ".bak" name and checks it; a damaged file is
// replaced by a new one holding every row that could still be read. The
// file must not be open in this program.
FileResult RepairFile(Application& app, const std::string& path);
// The shared error exit of the two routines: to be called inside their
// catch block. Removes `temp_path` when present and returns the error in
// flight.
FileResult HandleCompRepError(Application& app, const std::string& temp_path);
// Returns `path` with its last four characters replaced by ".bak".
std::string BackupPath(const std::string& path);

// The delete-backups dialog and its buttons.
void ShowDelBackups(Application& app);
void DelBackups_Delete(Application& app, DelBackupsForm& form);
void DelBackups_Notes(Application& app, DelBackupsForm& form);
void DelBackups_Close(Application& app, DelBackupsForm& form);

// The notice that the program has no backup or restore function (restore
// shows the same notice).
void BackupToDisk(Application& app);
void RestoreFromDisk(Application& app);
// The notice's text.
std::string BackupNoticeText();
void Backup_OK(Application& app, BackupNoticeForm& form);

// The help-bar texts of the dialogs' controls.
std::string HelpText(const CompressRepairForm& form, std::string_view control);
std::string HelpText(const DelBackupsForm& form, std::string_view control);

}  // namespace lotwise
