#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "data/application.h"
#include "data/database.h"
#include "data/error_handler.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

using Lines = std::vector<std::string>;

// Each row of `q` as its columns' texts joined by "|" (NULL reads as ""),
// so that one comparison checks a whole result: its rows, their order and
// every value.
inline Lines Rows(Query&& q) {
  Lines rows;
  while (q.Next()) {
    std::string row;
    for (int i = 0; i < q.ColumnCount(); ++i) {
      row += (i == 0 ? "" : "|") + q.Text(q.ColumnName(i).c_str());
    }
    rows.push_back(row);
  }
  return rows;
}

// The message the error handler shows for an error the program cannot carry
// on from.
inline std::string FatalMessage(int number, const std::string& text, const std::string& where) {
  return ErrorHeader(number, text, where) +
         " The program will now shut down to prevent errors in your data and calculations.";
}

// Fresh Taxpayer Files in the test's own folder, a short busy timeout so
// that a locked file fails at once, and small readers for the checks.
class StorageTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    saved_busy_timeout_ = Database::BusyTimeout();
    Database::SetBusyTimeout(50);
  }
  void TearDown() override {
    Database::SetBusyTimeout(saved_busy_timeout_);
    AppTest::TearDown();
  }

  // Copies the Taxpayer File template to `name` in the taxpayer folder and
  // returns its path.
  std::string CopyTemplate(const std::string& name) {
    std::string path = app_->taxpayer_folder + name;
    std::filesystem::copy_file(app_->ProgramFile(kClientTemplateName), path);
    return path;
  }

  static long long Count(Database& db, const std::string& table) {
    Query q = db.Select("SELECT count(*) AS n FROM \"" + table + "\"");
    q.Next();
    return q.Int("n");
  }

  static void AddPortfolio(Database& db, const std::string& name) { Scenario(db).Portfolio(name); }

 private:
  int saved_busy_timeout_ = Database::kDefaultBusyTimeoutMs;
};

}  // namespace lotwise::testing
