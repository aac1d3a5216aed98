// Writes LW_CENT.MDB, LW_CLNT.MDB and LW_REPRT.MDB into the folder named on
// the command line, replacing older copies.
#include <filesystem>
#include <iostream>

#include "data/application.h"
#include "data/schema.h"
#include "ground/lw_error.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: lotwise_make_templates PROGRAM_FOLDER\n";
    return 2;
  }
  namespace fs = std::filesystem;
  fs::path folder = argv[1];
  try {
    fs::create_directories(folder);
    const std::pair<const char*, lotwise::FileKind> templates[] = {
        {lotwise::kCentralTemplateName, lotwise::FileKind::kCentral},
        {lotwise::kClientTemplateName, lotwise::FileKind::kTaxpayer},
        {lotwise::kReportTemplateName, lotwise::FileKind::kReport},
    };
    for (const auto& [name, kind] : templates) {
      fs::path path = folder / name;
      fs::path scratch = folder / (std::string(name) + ".new");
      fs::remove(scratch);
      lotwise::CreateTemplate(kind, scratch.string());
      fs::rename(scratch, path);
    }
  } catch (const lotwise::LwError& e) {
    std::cerr << "lotwise_make_templates: error " << e.number() << ": " << e.text() << "\n";
    return 1;
  } catch (const std::exception& e) {
    std::cerr << "lotwise_make_templates: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
