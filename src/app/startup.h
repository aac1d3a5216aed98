#pragma once

#include <string>
#include <string_view>

#include "ground/ui_port.h"

namespace lotwise {

class Application;
class Database;

// The start-up sequence without its window steps: INI file and settings
// store, data folders, the scratch report database, the Security Symbols
// File (created from its template when missing, opened and upgraded), the
// reconciliation of taxpayers and files, the usage count, state
// CLIENTCLOSED. A start that fails ends the program: throws ProgramEnded,
// for the front to shut down (EndProgram) and exit.
void Main(Application& app);

// Reads the INI keys, applies the option check marks, settles the folders.
void GetINISettings(Application& app, const std::string& ini_path);
// Fixes the file names and the two data folders (the settings store wins
// over the INI file) and writes the folders back to the store.
void SetDBPathsAndNames(Application& app, const std::string& ini_path);
// Returns a scratch report database path in the temporary folder that no
// file holds yet ("~LW" & minute & second & ".MDB").
std::string GetUniqueReportName(Application& app);
// Reconciles the central taxpayer index with the Taxpayer Files on disk,
// asking the user about every mismatch.
void CheckDBFiles(Application& app, Database& central);
ChkFilesChoice ShowNoFile(Application& app, const std::string& client_name);
ChkFilesChoice ShowNoClient(Application& app, const std::string& file_name);
// Adds an index row built from the Taxpayer File's own Client row.
void MakeClientFromFile(Application& app, Database& central, const std::string& file_name);

// Writes the INI file back, closes the files, deletes the scratch report
// database and its journal, and ends the process. Runs once per program;
// only the fronts call it, when ProgramEnded reaches them or at exit.
void EndProgram(Application& app);

// The data-location dialog dlgFileLoc and its helpers.
void RunDlgFileLoc(Application& app);
// Returns the folder the user picked (ending in a separator), or empty text.
std::string GetFileLoc(Application& app, const std::string& start_folder);
// Stores the two folders in the settings store, tells the user and ends the
// process at once: EndProgram is skipped, and ProgramEnded thrown.
void SetFileLoc(Application& app, const std::string& ssf_folder, const std::string& client_folder);

}  // namespace lotwise
