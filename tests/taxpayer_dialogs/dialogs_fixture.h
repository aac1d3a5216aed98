#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "app/application.h"
#include "data/database.h"
#include "data/portfolio_dialogs.h"
#include "data/taxpayer_dialog.h"
#include "support/app_fixture.h"

namespace lotwise::testing {

// A central file of its own for every test, readers of the rows the
// dialogs leave behind, and typed expectations of the dialogs.
class DialogsTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
  }

  // Writes a Taxpayer File and indexes it, without opening it.
  void AddTaxpayer(const std::string& code, const std::string& name, const std::string& sort,
                   const std::string& file) {
    WriteTaxpayerFile(file, code, name);
    app_->central->Execute(
        R"(INSERT INTO "Clients" ("Client Code", "Client Name", "Sort Name", "File Name") )"
        R"(VALUES (:c, :n, :s, :f))",
        {{"c", code}, {"n", name}, {"s", sort}, {"f", file}});
  }

  // "name|sort|code|file" of the central row with exactly this code, or "-".
  std::string CentralRow(const std::string& code) {
    Query q = app_->central->Select(
        R"(SELECT * FROM "Clients" WHERE "Client Code" = :c COLLATE BINARY)", {{"c", code}});
    if (!q.Next()) return "-";
    return q.Text("Client Name") + "|" + q.Text("Sort Name") + "|" + q.Text("Client Code") + "|" +
           q.Text("File Name");
  }

  // "name|sort|code|2nd line|year end" of the Client row of a Taxpayer File.
  std::string ClientRow(const std::string& file_name) {
    auto db = Database::Open(app_->taxpayer_folder + file_name, Database::Mode::kReadOnly);
    Query q = db->Select(R"(SELECT * FROM "Client")");
    if (!q.Next()) return "-";
    return q.Text("Client Name") + "|" + q.Text("Sort Name") + "|" + q.Text("Client Code") + "|" +
           q.Text("2nd Line") + "|" + q.Text("Year End");
  }

  // Expects the dialog of type Form and plays `script` on it.
  template <class Form>
  void ExpectForm(std::function<void(Form&)> script) {
    ui_.ExpectDialog(std::string(Form().Name()),
                     [script](DialogForm& f) { script(static_cast<Form&>(f)); });
  }
};

}  // namespace lotwise::testing
