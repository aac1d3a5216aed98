#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "data/database.h"
#include "support/app_fixture.h"
#include "support/golden.h"
#include "support/values.h"

namespace lotwise::testing {

using Rows = std::vector<std::string>;

// The messages are in this folder's golden/messages.txt, the export file's
// question with the other reports' in reports_basis/golden/messages.txt.
inline const char* const kListingsSource = __FILE__;
inline const std::string kReportsSource =
    std::filesystem::path(__FILE__).parent_path().parent_path() / "reports_basis" / "x.cpp";

// Reads the scratch report database of the test's run.
class ReportTest : public AppTest {
 protected:
  std::unique_ptr<Database> Report() { return Database::Open(app_->report_db_path); }

  // Each row of `sql` as its columns' texts joined by "|"; NULL reads "-".
  Rows ReportRows(const std::string& sql) {
    auto report = Report();
    Query q = report->Select(sql);
    Rows rows;
    while (q.Next()) {
      std::string row;
      for (int i = 0; i < q.ColumnCount(); ++i) {
        const std::string column = q.ColumnName(i);
        row += (i > 0 ? "|" : "") + (q.IsNull(column.c_str()) ? "-" : q.Text(column.c_str()));
      }
      rows.push_back(row);
    }
    return rows;
  }
  std::string Count(const std::string& table) {
    return ReportRows("SELECT count(*) FROM \"" + table + "\"").at(0);
  }
};

}  // namespace lotwise::testing
