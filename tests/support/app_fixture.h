#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "data/application.h"
#include "support/fake_environment.h"
#include "support/scenario.h"
#include "support/scripted_ui.h"

namespace lotwise::testing {

// Every test gets a program folder of its own holding fresh template files,
// its data folders, a temporary folder and a settings store, all under one
// scratch folder that is removed afterwards; an Application wired to a
// scripted UI and a fake environment; and the check that the script was
// played to its end; and the scenario steps over the open Taxpayer File and
// central file.
class AppTest : public ::testing::Test, public Scenario {
 protected:
  AppTest();
  void SetUp() override;
  void TearDown() override;

  // Copies the central template into the SSF folder as CENTRAL.MDB and opens
  // it into app->central (no version walk).
  void OpenFreshCentral();
  // Copies the Taxpayer File template into the taxpayer folder as
  // `file_name`, writes its Client row, indexes it in the central file (when
  // open) and opens it into app->client with the current context set and
  // state CLIENTOPEN.
  void OpenFreshTaxpayer(const std::string& code = "DOE01", const std::string& name = "John Doe",
                         const std::string& file_name = "DOE0101.mdb");
  // Writes a new Taxpayer File without opening it.
  void WriteTaxpayerFile(const std::string& file_name, const std::string& code,
                         const std::string& name);
  // The number of the block with this Block ID in the open Taxpayer File.
  int64_t BlockNo(const std::string& block_id);
  // Plays the user's part on the next modal dialog of form type F.
  template <class F>
  void OnDialog(const char* name, std::function<void(F&)> script) {
    ui_.ExpectDialog(name, [script](DialogForm& form) { script(static_cast<F&>(form)); });
  }
  // The same for the dialog named as its form names itself.
  template <class F>
  void ExpectForm(std::function<void(F&)> script) {
    OnDialog<F>(std::string(F().Name()).c_str(), std::move(script));
  }
  // The fatal message after which the program shuts down.
  void ExpectFatal(int number, const std::string& text, const std::string& location);
  // Reopens the Taxpayer File so that its writes count against `faults_`.
  void UseStorageFaults();
  // Reads the Taxpayer File through a connection of its own, whatever the
  // program did with its own after a fatal error.
  long long CountOnDisk(const std::string& table, const std::string& where = "1 = 1");
  std::string IntegrityOnDisk();
  // Counts the rows of a table of the open Taxpayer File / central file.
  long long CountClientRows(const std::string& table);
  long long CountCentralRows(const std::string& table);
  // "name|sort|code|file" of the central row with exactly this code, or "-".
  std::string CentralRow(const std::string& code);
  // "name|sort|code|2nd line|year end" of the Client row of a Taxpayer File.
  std::string ClientRow(const std::string& file_name);

  // The folder of this test's files, ending in a separator.
  std::string root_;
  std::string program_folder_;
  // The Taxpayer File opened by OpenFreshTaxpayer.
  std::string client_path_;
  StorageFaults faults_;
  ScriptedUi ui_;
  std::unique_ptr<FakeEnvironment> env_;
  std::unique_ptr<Application> app_;
};

// Returns the folder that holds one set of template files for this test
// process, writing it on first use.
const std::string& TemplateFolder();

}  // namespace lotwise::testing
