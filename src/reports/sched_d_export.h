#pragma once

#include <string>

namespace lotwise {

class Application;

// The Schedule D export: asks whether to write the file, asks for its name,
// writes the header and the rows of the report database's Schedule D join,
// and tells the user what was written. Returns true iff the file was made
// (it holds at least the header).
bool CreateSchDExportFile(Application& app);

// Asks for the export file's name in the save-file dialog, starting in
// `initial_folder`; remembers the chosen folder as the export path. Returns
// the full name, or empty text when the dialog was cancelled.
std::string GetSchDExportFilename(Application& app, const std::string& initial_folder);

// Creates the file afresh (an old one of that name is deleted) holding the
// header line. Returns true iff written.
bool MakeExportHeader(Application& app, const std::string& file_name);

// Appends one line per row of the Schedule D join of the report database at
// `report_db_path`. Returns true iff at least one row was written.
bool AddExportRecords(Application& app, const std::string& file_name,
                      const std::string& report_db_path);

}  // namespace lotwise
