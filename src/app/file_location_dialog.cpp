#include "app/file_location_dialog.h"

#include "app/startup.h"
#include "data/application.h"
#include "data/error_handler.h"
#include "ground/environment.h"
#include "ground/ini_file.h"
#include "ground/program_ended.h"

namespace lotwise {

void RunDlgFileLoc(Application& app) {
  TrapVoid(app, "RunDlgFileLoc", [&] {
    FileLocForm form;
    form.ssf_folder = app.ssf_folder;
    form.client_folder = app.taxpayer_folder;
    app.ui().RunModal(form);
  });
}

std::string GetFileLoc(Application& app, const std::string& start_folder) {
  return Trap(app, "GetFileLoc", std::string(), [&] {
    FileRequest request;
    request.title = "Designate Folder For Data";
    request.file_name = "NO FILENAME NEEDED - CHOOSE FOLDER";
    request.initial_folder = start_folder;
    std::string chosen = app.ui().PickFile(request);
    size_t last = chosen.find_last_of("/\\");
    if (last == std::string::npos) return std::string();
    return chosen.substr(0, last + 1);
  });
}

void SetFileLoc(Application& app, const std::string& ssf_folder, const std::string& client_folder) {
  TrapVoid(app, "SetFileLoc", [&] {
    // As typed: the next start appends the separator and settles them.
    app.ssf_folder = ssf_folder;
    app.taxpayer_folder = client_folder;
    IniFile store(app.settings_store_path);
    store.WriteText("File Options", "SSF Path", ssf_folder);
    store.WriteText("File Options", "Taxpayer Path", client_folder);
    app.ui().MessageBox(
        "The program will now close down so the changes can be registered by the system.", "Notice",
        Icon::kInformation, Buttons::kOk);
    // The folders take effect at the next start; this run ends here, without
    // the INI write-back and the closing of EndProgram.
    app.ended = true;
    app.env().EndProcess(0);
    throw ProgramEnded{};
  });
}

void PressSsfFileLoc(Application& app, FileLocForm& form) {
  std::string folder = GetFileLoc(app, form.ssf_folder);
  if (!folder.empty()) form.ssf_folder = folder;
}

void PressClientFileLoc(Application& app, FileLocForm& form) {
  std::string folder = GetFileLoc(app, form.client_folder);
  if (!folder.empty()) form.client_folder = folder;
}

void PressOkFileLoc(Application& app, FileLocForm& form) {
  form.closed = true;
  SetFileLoc(app, form.ssf_folder, form.client_folder);
}

void PressCancelFileLoc(FileLocForm& form) { form.closed = true; }

}  // namespace lotwise
