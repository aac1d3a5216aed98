#include "app/maintenance.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif

#include "app/taxpayer_file.h"
#include "data/application.h"
#include "data/central_file.h"
#include "data/client_index.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "data/file_rebuild.h"
#include "ground/date.h"
#include "ground/environment.h"
#include "ground/lw_error.h"
#include "ground/paths.h"
#include "ground/value_helpers.h"

namespace lotwise {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCrLf = "\r\n";
constexpr const char* kCentralFileLabel = "Security Symbols File";

// ---------------------------------------------------------------- files

// Flushes a file (or a folder's entries) to the disk, so that a file that
// replaces a data file is complete before the old one is gone.
void SyncPath(const std::string& path, bool must_succeed) {
#if !defined(_WIN32)
  const int fd = ::open(path.c_str(), O_RDONLY);
  bool ok = fd >= 0 && ::fsync(fd) == 0;
  if (fd >= 0) ok = ::close(fd) == 0 && ok;
  if (!ok && must_succeed) throw LwError(err::kPathFileAccess, "Path/File access error: " + path);
#else
  // Windows flushes a file when the last handle to it is closed.
  (void)path;
  (void)must_succeed;
#endif
}

void SyncFolderOf(const std::string& path) {
  SyncPath(fs::path(path).parent_path().string(), false);
}

void RequireFile(const std::string& path) {
  if (!FileExists(path)) throw LwError(err::kFileNotFound, "Could not find file '" + path + "'.");
}

void RemoveIfPresent(const std::string& path) {
  std::error_code ec;
  fs::remove(path, ec);
  fs::remove(path + "-journal", ec);
}

std::string TempFolder(Application& app) {
  return WithTrailingSeparator(app.temp_folder.empty() ? app.env().TempFolder() : app.temp_folder);
}

// The temporary file of a compaction or rebuild: "TEMP" & minute & ".mdb".
std::string TempName(Application& app) {
  return TempFolder(app) + "TEMP" + std::to_string(app.env().Now().minute) + ".mdb";
}

// Checked before the file is touched, so that a missing temporary folder
// reads as what it is rather than as trouble with the data file.
void RequireTempFolder(Application& app) {
  std::error_code ec;
  const std::string folder = TempFolder(app);
  if (!fs::is_directory(folder, ec)) throw LwError(err::kPathNotFound, "Path not found: " + folder);
}

// Opens a data file for this program alone: nobody can change the file
// while it is copied and replaced, and a file another user is working in
// fails as busy.
std::unique_ptr<Database> OpenAlone(Application& app, const std::string& path) {
  auto db = Database::Open(path, Database::Mode::kExclusive, app.storage_faults);
  TakeWriteLock(*db);
  return db;
}

void CopyToBackup(const std::string& path) {
  const std::string backup = BackupPath(path);
  fs::copy_file(path, backup, fs::copy_options::overwrite_existing);
  SyncPath(backup, true);
}

// Returns true iff the file passes the integrity check; a check that runs
// into damage it cannot get past counts as failed.
bool IsSound(Database& db) {
  try {
    return db.IntegrityCheck() == "ok";
  } catch (const LwError& error) {
    if (error.number() == err::kReserved && error.text().find("-1209") != std::string::npos) {
      return false;
    }
    throw;
  }
}

// A file that is to replace a data file must itself be sound.
void RequireSound(Application& app, const std::string& path) {
  auto db = Database::Open(path, Database::Mode::kExclusive, app.storage_faults);
  const std::string result = db->IntegrityCheck();
  if (result != "ok") {
    throw LwError(err::kReserved,
                  "Reserved error (-1209); the file " + path + " is damaged (" + result + ")");
  }
}

// Puts `replacement` in the place of `target`. A rename replaces it in one
// step; from another file system the copy goes beside the target first, so
// that the target is never missing or half written.
void ReplaceFile(const std::string& target, const std::string& replacement) {
  std::error_code ec;
  fs::rename(replacement, target, ec);
  if (ec) {
    if (ec != std::errc::cross_device_link) {
      throw fs::filesystem_error("rename", replacement, target, ec);
    }
    const std::string staged = target + ".new";
    fs::copy_file(replacement, staged, fs::copy_options::overwrite_existing);
    SyncPath(staged, true);
    fs::rename(staged, target);
    RemoveIfPresent(replacement);
  }
  SyncFolderOf(target);
}

std::string TemplateFor(const Application& app, const std::string& path) {
  const bool central = ToUpperAscii(GetFileNameFromPath(path)) == ToUpperAscii(kCentralFileName);
  return app.ProgramFile(central ? kCentralTemplateName : kClientTemplateName);
}

bool SameFile(const std::string& a, const std::string& b) {
  if (a == b) return true;
  std::error_code ec;
  return fs::equivalent(a, b, ec);
}

// ---------------------------------------------------------------- the run

long long Seconds(const LocalTime& t) {
  return Date::FromYmd(t.year, t.month, t.day).serial() * 86400LL + t.hour * 3600LL +
         t.minute * 60LL + t.second;
}

std::string TwoDigits(long long value) {
  std::string text = std::to_string(value);
  return text.size() < 2 ? "0" + text : text;
}

std::string Elapsed(const LocalTime& start, const LocalTime& end) {
  const long long seconds = std::max(0LL, Seconds(end) - Seconds(start));
  return TwoDigits(seconds / 3600) + ":" + TwoDigits(seconds / 60 % 60) + ":" +
         TwoDigits(seconds % 60);
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : kCrLf) + line;
  return text;
}

template <class Form>
void Refresh(Application& app, Form& form) {
  if (form.changed) form.changed();
  app.ui().ProcessEvents();
}

bool AnyPicked(const CompressRepairForm& form) {
  return std::find(form.picked.begin(), form.picked.end(), true) != form.picked.end();
}

std::vector<MaintClientRow> PickedRows(const CompressRepairForm& form) {
  std::vector<MaintClientRow> rows;
  for (size_t i = 0; i < form.clients.size() && i < form.picked.size(); ++i) {
    if (form.picked[i]) rows.push_back(form.clients[i]);
  }
  return rows;
}

std::vector<MaintClientRow> ReadClientInfo(Application& app) {
  if (!app.central) {
    throw LwError(err::kUnexpected, "The Security Symbols File is not open: " + app.central_path);
  }
  std::vector<MaintClientRow> rows;
  for (const IndexedClient& client : ReadClientIndex(*app.central)) {
    rows.push_back({client.name, client.sort_name, client.code, client.file_name});
  }
  return rows;
}

// The gauge over every file of one run.
class RunGauge {
 public:
  RunGauge(Application& app, size_t files) : app_(app), files_(std::max<size_t>(files, 1)) {}
  void FileDone() {
    ++done_;
    app_.ui().SetGauge(static_cast<int>(done_ * 100 / files_));
  }

 private:
  Application& app_;
  size_t files_;
  size_t done_ = 0;
};

FileResult RunRoutine(Application& app, const std::string& path, bool compress) {
  return compress ? CompressFile(app, path) : RepairFile(app, path);
}

void RunCentral(Application& app, CompressRepairForm& form, bool compress, RunGauge& gauge,
                std::vector<std::string>& rebuilt) {
  form.ssf_status = kStatusWorking;
  Refresh(app, form);
  const LocalTime start = app.env().Now();
  CloseCDB(app);
  form.progress =
      compress ? "Compressing Security Symbols File" : "Repairing Security Symbols File";
  Refresh(app, form);
  const FileResult result = RunRoutine(app, app.central_path, compress);
  OpenCDB(app, app.central_path);
  gauge.FileDone();
  if (result.ok()) {
    form.ssf_status = kStatusFinished;
    form.ssf_time = Elapsed(start, app.env().Now());
    if (result.rebuilt) {
      rebuilt.push_back(std::string(kCentralFileLabel) + " (" + kCentralFileName + ")");
    }
    Refresh(app, form);
    return;
  }
  form.ssf_status = kStatusNotDone;
  Refresh(app, form);
  app.ui().MessageBox("Securites Symbol File was not completed: " + result.text, "Not Done",
                      Icon::kExclamation, Buttons::kOk);
}

// The open Taxpayer File is let go for its turn and opened again after it.
FileResult RunOnTaxpayerFile(Application& app, const std::string& path, bool compress) {
  const bool was_open = app.client && SameFile(app.client->path(), path);
  if (was_open) app.client.reset();
  FileResult result = RunRoutine(app, path, compress);
  if (was_open) {
    try {
      app.client = Database::Open(path, Database::Mode::kShared, app.storage_faults);
    } catch (...) {
      const LwError error = CurrentError();
      CloseClientFile(app);
      ReportError(app, error, "StartCompressRepair");
    }
  }
  return result;
}

void RunTaxpayers(Application& app, CompressRepairForm& form,
                  const std::vector<MaintClientRow>& rows, std::string CompressRepairForm::*status,
                  std::string CompressRepairForm::*time, bool compress, RunGauge& gauge,
                  std::vector<std::string>& rebuilt) {
  form.*status = kStatusWorking;
  Refresh(app, form);
  const LocalTime start = app.env().Now();
  std::vector<std::string> failures;
  for (const MaintClientRow& row : rows) {
    form.progress = (compress ? "Compressing " : "Repairing ") + FixAmpersand(row.client_name);
    Refresh(app, form);
    const FileResult result = RunOnTaxpayerFile(app, app.taxpayer_folder + row.file_name, compress);
    if (!result.ok()) {
      failures.push_back(row.client_name + " was not completed: " + result.text);
    } else if (result.rebuilt) {
      rebuilt.push_back(row.client_name + " (" + row.file_name + ")");
    }
    gauge.FileDone();
  }
  if (failures.empty()) {
    form.*status = kStatusFinished;
    form.*time = Elapsed(start, app.env().Now());
    Refresh(app, form);
    return;
  }
  form.*status = kStatusNotDone;
  Refresh(app, form);
  app.ui().MessageBox(Joined(failures), "Not Done", Icon::kExclamation, Buttons::kOk);
}

bool HasSelection(const CompressRepairForm& form) {
  return form.ssf_chosen || form.all_chosen || (form.picked_chosen && AnyPicked(form));
}

void PressStart(Application& app, CompressRepairForm& form, bool compress) {
  if (!HasSelection(form)) {
    app.ui().MessageBox(compress
                            ? "You have not selected any files to be compressed. First, select "
                              "the files to be compressed, then click on 'Compress'"
                            : "You have not selected any files to be repaired. First, select "
                              "the files to be repaired, then click on 'Repair'",
                        "No files selected", Icon::kInformation, Buttons::kOk);
    return;
  }
  form.caption = compress ? kCompressingCaption : kRepairingCaption;
  form.working = true;
  Refresh(app, form);
  StartCompressRepair(app, form);
  // The dialog stays open for another run in the same mode.
  form.working = false;
  form.caption = compress ? kCompressCaption : kRepairCaption;
  Refresh(app, form);
}

}  // namespace

std::string BackupPath(const std::string& path) {
  if (path.size() < 4) return path + ".bak";
  return path.substr(0, path.size() - 4) + ".bak";
}

FileResult HandleCompRepError(Application& app, const std::string& temp_path) {
  (void)app;
  const LwError error = CurrentError();
  if (!temp_path.empty()) RemoveIfPresent(temp_path);
  FileResult result;
  result.number = error.number() == 0 ? err::kUnexpected : error.number();
  result.text = error.text();
  return result;
}

FileResult CompressFile(Application& app, const std::string& path) {
  const std::string temp = TempName(app);
  try {
    RequireFile(path);
    RequireTempFolder(app);
    auto db = OpenAlone(app, path);
    CopyToBackup(path);
    RemoveIfPresent(temp);
    CompactInto(*db, temp);
    db.reset();
    RequireSound(app, temp);
    SyncPath(temp, true);
    ReplaceFile(path, temp);
    return {};
  } catch (...) {
    return HandleCompRepError(app, temp);
  }
}

FileResult RepairFile(Application& app, const std::string& path) {
  const std::string temp = TempName(app);
  try {
    RequireFile(path);
    RequireTempFolder(app);
    auto db = OpenAlone(app, path);
    CopyToBackup(path);
    if (IsSound(*db)) return {};
    RemoveIfPresent(temp);
    RebuildDatabase(*db, TemplateFor(app, path), temp, app.storage_faults);
    db.reset();
    RequireSound(app, temp);
    SyncPath(temp, true);
    ReplaceFile(path, temp);
    FileResult result;
    result.rebuilt = true;
    return result;
  } catch (...) {
    return HandleCompRepError(app, temp);
  }
}

void LoadCompressRepair(Application& app, CompressRepairForm& form, const std::string& caption) {
  const bool compress = caption == kCompressCaption;
  form.caption = caption;
  form.warning = compress ? "Compressing files can take very long periods of time. We suggest that "
                            "you run these routines when you will not need use of your computer."
                          : "Repairing files can take very long periods of time. We suggest that "
                            "you run these routines when you will not need use of your computer.";
  form.ssf_status = form.all_status = form.picked_status = kStatusWaiting;
  form.ssf_time.clear();
  form.all_time.clear();
  form.picked_time.clear();
  form.progress.clear();
  form.clients = ReadClientInfo(app);
  form.picked.assign(form.clients.size(), false);
}

void ShowCompress(Application& app) {
  TrapVoid(app, "ShowCompress", [&] {
    CompressRepairForm form;
    LoadCompressRepair(app, form, kCompressCaption);
    app.ui().RunModal(form);
  });
}

void ShowRepair(Application& app) {
  TrapVoid(app, "ShowRepair", [&] {
    CompressRepairForm form;
    LoadCompressRepair(app, form, kRepairCaption);
    app.ui().RunModal(form);
  });
}

void Button_Compress(Application& app, CompressRepairForm& form) {
  TrapVoid(app, "Button_Compress", [&] { PressStart(app, form, true); });
}

void Button_Repair(Application& app, CompressRepairForm& form) {
  TrapVoid(app, "Button_Repair", [&] { PressStart(app, form, false); });
}

void CompressRepair_Close(Application&, CompressRepairForm& form) {
  if (!form.working) form.closed = true;
}

void StartCompressRepair(Application& app, CompressRepairForm& form) {
  TrapVoid(app, "StartCompressRepair", [&] {
    const bool compress = form.caption == kCompressingCaption;
    const bool legal = compress || form.caption == kRepairingCaption;
    const bool picked = form.picked_chosen && AnyPicked(form);
    auto illegal = [&] {
      app.ui().MessageBox("Illegal caption on dlgCR_Report", "Warning", Icon::kExclamation,
                          Buttons::kOk);
    };
    HourglassGuard hourglass(app.ui());
    GaugeGuard gauge_shown(app.ui());
    std::vector<MaintClientRow> all;
    if (form.all_chosen && legal) all = ReadClientInfo(app);
    const std::vector<MaintClientRow> chosen = PickedRows(form);
    RunGauge gauge(app, (form.ssf_chosen ? 1 : 0) + all.size() + (picked ? chosen.size() : 0));
    std::vector<std::string> rebuilt;

    if (form.ssf_chosen) {
      if (!legal) {
        illegal();
      } else {
        RunCentral(app, form, compress, gauge, rebuilt);
      }
    }
    if (form.all_chosen) {
      if (!legal) {
        illegal();
      } else {
        RunTaxpayers(app, form, all, &CompressRepairForm::all_status, &CompressRepairForm::all_time,
                     compress, gauge, rebuilt);
      }
    }
    if (picked) {
      if (!legal) {
        illegal();
      } else {
        RunTaxpayers(app, form, chosen, &CompressRepairForm::picked_status,
                     &CompressRepairForm::picked_time, compress, gauge, rebuilt);
      }
    }
    form.progress.clear();
    Refresh(app, form);
    if (!rebuilt.empty()) {
      app.ui().MessageBox(
          std::string("These files were damaged and have been rebuilt from the records that could "
                      "still be read. Each damaged file is kept with the extension .bak:") +
              kCrLf + Joined(rebuilt),
          "Files Rebuilt", Icon::kInformation, Buttons::kOk);
    }
  });
}

// ---------------------------------------------------------------- backups

void ShowDelBackups(Application& app) {
  TrapVoid(app, "ShowDelBackups", [&] {
    DelBackupsForm form;
    app.ui().RunModal(form);
  });
}

void DelBackups_Delete(Application& app, DelBackupsForm& form) {
  TrapVoid(app, "DelBackups_Delete", [&] {
    HourglassGuard hourglass(app.ui());
    bool deleted = false;
    const std::string central_backup = BackupPath(app.central_path);
    if (FileExists(central_backup)) {
      form.status = "Deleting Security Symbols File";
      Refresh(app, form);
      fs::remove(central_backup);
      deleted = true;
    }
    for (const std::string& name : ListFiles(app.taxpayer_folder, "*.bak")) {
      form.status = "Deleting " + name;
      Refresh(app, form);
      fs::remove(app.taxpayer_folder + name);
      deleted = true;
    }
    if (deleted) {
      form.status = "Backups deleted successfully";
      Refresh(app, form);
      app.ui().MessageBox("Backup Files were deleted successfully", "Backups Deleted",
                          Icon::kInformation, Buttons::kOk);
    } else {
      form.status = "There are no backup files to delete";
      Refresh(app, form);
      app.ui().MessageBox("There are no Backup Files to delete", "No Backups", Icon::kInformation,
                          Buttons::kOk);
    }
  });
}

void DelBackups_Notes(Application& app, DelBackupsForm&) {
  TrapVoid(app, "DelBackups_Notes", [&] {
    const std::string text =
        std::string(
            "It is always a good idea to keep backups of your important files, on another "
            "disk or another computer.") +
        kCrLf + kCrLf +
        "The Compress and Repair routines make backups of the files they work on, in case the "
        "process damages a file. These backups have the extension .bak and can be copied over a "
        "damaged file to get the file back as it was before the routine ran." +
        kCrLf + kCrLf +
        "The backups can take up a lot of disk space. Once you know that your files are in order "
        "you may delete them. For more information on this, please see the manual";
    app.ui().MessageBox(text, "Delete Backups Notes", Icon::kInformation, Buttons::kOk);
  });
}

void DelBackups_Close(Application&, DelBackupsForm& form) { form.closed = true; }

std::string BackupNoticeText() {
  return std::string(
             "As of version LW2000.20, this program does not have a backup or restore function. "
             "Windows has a backup and restore function that is better designed than this "
             "program's old backup and restore function. The folders that this program saves data "
             "in are listed above.") +
         kCrLf + kCrLf +
         "To learn how to back up your files, look up 'backup' in the index of the Windows help." +
         kCrLf + kCrLf +
         "For the best protection of your data we suggest professional backup software, which "
         "can back up your files on a schedule without your help." +
         kCrLf + kCrLf +
         "If you want to restore a pre LW2000.20 file, it is simply stored in the normal "
         "Windows/DOS file format. Simply use Windows Explorer to copy the file from the diskette "
         "to one of the above indicated folders. If that old file has an extension of .BAK change "
         "that extension .MDB.";
}

void BackupToDisk(Application& app) {
  TrapVoid(app, "BackupToDisk", [&] {
    BackupNoticeForm form;
    form.ssf_folder = app.ssf_folder;
    form.taxpayer_folder = app.taxpayer_folder;
    form.notice = BackupNoticeText();
    app.ui().RunModal(form);
  });
}

void RestoreFromDisk(Application& app) { BackupToDisk(app); }

void Backup_OK(Application&, BackupNoticeForm& form) { form.closed = true; }

// ---------------------------------------------------------------- help texts

std::string HelpText(const CompressRepairForm& form, std::string_view control) {
  const bool compress = form.caption == kCompressCaption || form.caption == kCompressingCaption;
  const std::string verb = compress ? "compress" : "repair";
  if (control == "chkSSF") return "Click here to " + verb + " the Security Symbols File";
  if (control == "chkAllTaxpayers") return "Click here to " + verb + " every Taxpayer File";
  if (control == "chkSelTaxpayers") {
    return "Click here to " + verb + " the Taxpayer Files of the Taxpayers selected in the list";
  }
  if (control == "lstTaxpayers") return "Select the Taxpayers whose files you want to " + verb;
  if (control == "btnCompress") return "Click here to start compressing the selected files";
  if (control == "btnRepair") return "Click here to start repairing the selected files";
  if (control == "btnClose") return "Click here to close this window";
  return {};
}

std::string HelpText(const DelBackupsForm&, std::string_view control) {
  if (control == "btnDelete") return "Click here to delete the backup files";
  if (control == "btnNotes") return "Click here to read about backup files";
  if (control == "btnClose") return "Click here to close this window";
  return {};
}

}  // namespace lotwise
