#include "app/startup.h"
#include "app/application.h"
#include "app/environment.h"
#include "app/lw_error.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}
}  // namespace

bool Main(Application&) {
  NotBuilt("Main");
}

void GetINISettings(Application&, const std::string&) {
  NotBuilt("GetINISettings");
}

void SetDBPathsAndNames(Application&, const std::string&) {
  NotBuilt("SetDBPathsAndNames");
}

std::string GetUniqueReportName(Application&) {
  NotBuilt("GetUniqueReportName");
}

void CheckDBFiles(Application&, Database&) {
  NotBuilt("CheckDBFiles");
}

ChkFilesChoice ShowNoFile(Application&, const std::string&) {
  NotBuilt("ShowNoFile");
}

ChkFilesChoice ShowNoClient(Application&, const std::string&) {
  NotBuilt("ShowNoClient");
}

void MakeClientFromFile(Application&, Database&, const std::string&) {
  NotBuilt("MakeClientFromFile");
}

void EndProgram(Application& app) {
  if (app.ended) return;
  app.ended = true;
  app.env().EndProcess(0);
}

void RunDlgFileLoc(Application&) {
  NotBuilt("RunDlgFileLoc");
}

std::string GetFileLoc(Application&, const std::string&) {
  NotBuilt("GetFileLoc");
}

void SetFileLoc(Application&, const std::string&, const std::string&) {
  NotBuilt("SetFileLoc");
}

}  // namespace lotwise
