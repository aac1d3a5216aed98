#pragma once

#include <string>
#include <string_view>

#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The two notes above the folder boxes of dlgFileLoc.
inline constexpr const char* kSsfLocationNote =
    "The Central or Security Symbol File contains the security names associated with the security "
    "symbols. This file also contains an index of what data files go with what clients. Changing "
    "the location where the program looks for this file without moving the file will usually "
    "result in the loss of data. If you have not entered data yet, there is no harm in changing "
    "the location. For networks, one usually locates this file on the server.";
inline constexpr const char* kClientLocationNote =
    "The taxpayer files contain the taxpayers' transactions. Changing the location where the "
    "program looks for these files without moving the files will usually result in the loss of "
    "data. If you have not entered data yet, there is no harm in changing the location. For "
    "networks, one usually locates these files on the server.";

// The data-location dialog dlgFileLoc: the folder of the Security Symbols
// File and the folder of the Taxpayer Files, as the user types or picks
// them. Its buttons are the Press procedures below.
struct FileLocForm : DialogForm {
  std::string ssf_folder;     // txtSSF
  std::string client_folder;  // txtClient
  std::string ssf_note = kSsfLocationNote;
  std::string client_note = kClientLocationNote;

  std::string_view Name() const override { return "dlgFileLoc"; }
};

// btnSSF / btnClient: pick a folder starting from the box's text; a picked
// folder replaces the text, a cancelled pick leaves it.
void PressSsfFileLoc(Application& app, FileLocForm& form);
void PressClientFileLoc(Application& app, FileLocForm& form);
// btnOK: stores both folders and ends the program (SetFileLoc).
void PressOkFileLoc(Application& app, FileLocForm& form);
// btnCancel: closes the dialog without any change.
void PressCancelFileLoc(FileLocForm& form);

}  // namespace lotwise
