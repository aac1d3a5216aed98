#pragma once

#include <filesystem>
#include <string>

#include "app/application.h"
#include "data/database.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

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

  static void AddPortfolio(Database& db, const std::string& name) {
    db.Execute(R"(INSERT INTO "Portfolio" ("Port Name", "2nd Line") VALUES (:p, ' '))",
               {{"p", name}});
  }

 private:
  int saved_busy_timeout_ = Database::kDefaultBusyTimeoutMs;
};

}  // namespace lotwise::testing
