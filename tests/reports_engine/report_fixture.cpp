#include "reports_engine/report_fixture.h"

#include <fstream>

namespace lotwise::testing {

std::string ReportTest::WriteDefinition(const std::string& name, const std::string& text) {
  std::string path = ReportFilePath(*app_, name);
  std::ofstream out(path, std::ios::binary);
  out << text;
  return path;
}

}  // namespace lotwise::testing
