#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "data/database.h"
#include "reports/report_document.h"
#include "reports/report_engine.h"
#include "reports/report_runner.h"
#include "support/app_fixture.h"
#include "support/golden.h"

namespace lotwise::testing {

// The report messages are in reports_basis/golden/messages.txt.
inline const std::string kReportsSource =
    std::filesystem::path(__FILE__).parent_path().parent_path() / "reports_basis" / "x.cpp";

// A report database filled with plain SQL, as the report procedures leave
// it, and the definitions of the program folder.
class ReportTest : public AppTest {
 public:
  void SetUp() override {
    AppTest::SetUp();
    db_ = Database::OpenScratch(app_->report_db_path);
  }
  void TearDown() override {
    db_.reset();
    AppTest::TearDown();
  }

  void Sql(const std::string& sql) { db_->ExecuteScript(sql); }
  // Runs a script of the folder "golden" (basis_run.sql, trans_list.sql,
  // listings.sql: the tables as the procedures fill them).
  void Fill(const std::string& script) { Sql(ReadText(GoldenPath(__FILE__, script))); }

  ReportDocument Render(const std::string& file, const std::string& title = "Caption") {
    return RenderReport(ReportFilePath(*app_, file), *db_, title);
  }

  // The non-empty lines of the document's plain text, pages run together.
  static std::vector<std::string> Lines(const ReportDocument& document) {
    std::vector<std::string> lines;
    std::string line;
    for (char c : document.PlainText() + "\n") {
      if (c != '\n' && c != '\f') {
        line += c;
      } else if (!line.empty()) {
        lines.push_back(line);
        line.clear();
      }
    }
    return lines;
  }

  void WriteDefinition(const std::string& name, const std::string& text) {
    std::ofstream(ReportFilePath(*app_, name), std::ios::binary) << text;
  }

  std::unique_ptr<Database> db_;
};

}  // namespace lotwise::testing
