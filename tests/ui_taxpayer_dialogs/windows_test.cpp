#include <QLabel>
#include <map>

#include "app/add_mod_sec.h"
#include "app/app_state.h"
#include "app/file_location_dialog.h"
#include "app/portfolio_dialogs.h"
#include "app/sec_symbol.h"
#include "app/startup.h"
#include "app/taxpayer_dialog.h"
#include "app/taxpayer_file.h"
#include "ground/ini_file.h"
#include "ground/program_ended.h"
#include "support/golden.h"
#include "ui_taxpayer_dialogs/window_fixture.h"

namespace lotwise::testing {
namespace {

using Show = std::function<void(Application&)>;

// An open taxpayer DOE01 with the open portfolio "Growth & Value"; the
// central file knows IBM.
class TaxpayerWindowsTest : public DialogWindowTest {
 protected:
  void SetUp() override {
    DialogWindowTest::SetUp();
    OpenFreshTaxpayer();
    SecurityName("IBM", "International Business Machines", "459200101");
    ASSERT_TRUE(NewPort(*app_, "Growth & Value", "long term"));
  }
  std::string Stored() {
    return Rows(*app_->central, R"(SELECT * FROM "Clients" ORDER BY 1)") +
           Rows(*app_->client, R"(SELECT "Client Code", "Year End" FROM "Client")") +
           Rows(*app_->central, R"(SELECT * FROM "Securities" ORDER BY 1)") +
           Rows(*app_->client, R"(SELECT "Port Name", "2nd Line" FROM "Portfolio" ORDER BY 1)") +
           Rows(*app_->client, R"(SELECT "Sec Symbol", "2nd Line" FROM "Security" ORDER BY 1)");
  }
};

// Every window opens captioned with its mode, showing the form's values,
// button captions and list rows, with its fields limited to the stored
// sizes ("name<size"); its Cancel or Close button closes it unwritten.
TEST_F(TaxpayerWindowsTest, Windows_OpenWithFormValues) {
  const std::map<std::string, Show> shows = {
      {"NewClient", ShowNewClient},
      {"ModifyClient", ShowModifyClient},
      {"OpenClient", [](Application& app) { ShowOpenClient(app, kOpenClientCaption); }},
      {"DeleteClient", [](Application& app) { ShowOpenClient(app, kDeleteClientCaption); }},
      {"NewPort", ShowNewPort},
      {"ModPort", ShowModPort},
      {"OpenPort", ShowOpenPort},
      {"DelPort", ShowDelPort},
      {"AddSec", ShowAddSec},
      {"ModSecInCDB", [](Application& app) { ShowModSecInCDB(app, "IBM"); }},
      {"SecSymbol", ShowSecSymbol},
      {"FileLoc", RunDlgFileLoc}};
  const std::string before = Stored();
  for (const GoldenCase& c : ReadCases(__FILE__, "windows.txt")) {
    SCOPED_TRACE(c.name);
    const QStringList words = QString::fromStdString(c.name).split(' ');
    std::vector<std::string> shown = c.Lines("");
    OnWindow(words[1].toLatin1(), [&](QDialog& window) {
      EXPECT_EQ(window.windowTitle().toStdString(), shown.at(0));
      for (size_t i = 1; i < shown.size(); ++i) {
        const QString item = QString::fromStdString(shown[i]);
        const bool limit = item.contains('<');
        const QStringList parts = item.split(limit ? '<' : '=');
        const std::string name = parts[0].toStdString();
        auto* control = Get<QWidget>(window, name.c_str());
        QString text;
        if (auto* edit = qobject_cast<QLineEdit*>(control)) {
          // A limit in characters (not UTF-16 units) is the field's own property.
          const QVariant chars = edit->property("lw_max_characters");
          const int max = chars.isValid() ? chars.toInt() : edit->maxLength();
          text = limit ? QString::number(max) : edit->displayText();
        }
        if (auto* button = qobject_cast<QPushButton*>(control)) text = button->text();
        if (auto* label = qobject_cast<QLabel*>(control)) text = label->text();
        if (qobject_cast<QTableWidget*>(control)) text = GridRows(window, name.c_str()).c_str();
        EXPECT_EQ(text.toStdString(), parts[1].toStdString()) << name;
      }
      Click(window, words[2].toLatin1());
    });
    shows.at(words[0].toStdString())(*app_);
  }
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(app_->current.client_code, "DOE01");
}

// Enter moves the focus from field to field, as Tab does, and never
// accepts: the window stays up and nothing is stored until OK is clicked,
// which then stores the entry through the core. (The name filled the sort
// name when left, so the next field kept it.)
TEST_F(TaxpayerWindowsTest, NewTaxpayer_EnterMovesOnAndOnlyOkStores) {
  OnWindow("dlgNewModClient", [&](QDialog& window) {
    Get(window, "txtClientName")->setFocus(Qt::TabFocusReason);
    for (const auto& [field, keys] :
         {std::pair{"txtClientName", "Ann Lee"}, std::pair{"txtSortName", ""},
          std::pair{"txtClientCode", "LEE01"}, std::pair{"txtOptLine", "c/o Bank"},
          std::pair{"dtYearEnd", "06302025"}}) {
      ASSERT_EQ(FocusName(), field);
      QTest::keyClicks(QApplication::focusWidget(), keys);
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    EXPECT_EQ(FocusName(), "btnOK");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(CountCentralRows("Clients"), 1);
    Click(window, "btnOK");
  });
  ShowNewClient(*app_);
  EXPECT_EQ(CentralRow("LEE01"), "Ann Lee|Lee, Ann|LEE01|Lee73.mdb");
  EXPECT_EQ(ClientRow("Lee73.mdb"), "Ann Lee|Lee, Ann|LEE01|c/o Bank |2025-06-30");
}

// Leaving the name with no sort name shows the one OK would store; a sort
// name the user typed is left alone. Each field explains itself on the help
// bar when it takes the focus. A refused entry keeps what was typed.
TEST_F(TaxpayerWindowsTest, NewTaxpayer_LeaveCheckHelpAndRefusal) {
  OnWindow("dlgNewModClient", [&](QDialog& window) {
    Type(window, "txtClientName", "John Q Public");
    QTest::keyClick(Get(window, "txtClientName"), Qt::Key_Tab);
    EXPECT_EQ(Shown(window, "txtSortName"), "Public, John Q");
    EXPECT_EQ(ui_.help_texts().back(), "Enter the Taxpayer's sort name, for example: Doe, John H.");
    Type(window, "txtSortName", "Public Family");
    Type(window, "txtClientName", "John Q. Public");
    QTest::keyClick(Get(window, "txtClientName"), Qt::Key_Tab);
    EXPECT_EQ(Shown(window, "txtSortName"), "Public Family");
    ExpectSaid(ui_, __FILE__, "incomplete");
    Click(window, "btnOK");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(Shown(window, "txtClientName") + "|" + Shown(window, "dtYearEnd"),
              "John Q. Public|01/01/1990");
    Click(window, "btnCancel");
  });
  ShowNewClient(*app_);
  EXPECT_EQ(CountCentralRows("Clients"), 1);
}

// The list's chosen row is the taxpayer opened, the portfolio deleted; the
// list then shows what is left.
TEST_F(TaxpayerWindowsTest, Lists_ChosenRowOpenedOrDeleted) {
  WriteTaxpayerFile("LEE0101.mdb", "LEE01", "Ann Lee");
  TaxpayerIndex("LEE01", "Ann Lee", "Lee, Ann", "LEE0101.mdb");
  OnWindow("dlgOpenClient", [&](QDialog& window) {
    Choose(window, "SSdgClients", 1);
    Click(window, "btnOpen");
  });
  ShowOpenClient(*app_, kOpenClientCaption);
  EXPECT_EQ(app_->current.client_code, "LEE01");

  ASSERT_TRUE(NewPort(*app_, "Growth", ""));
  ASSERT_TRUE(NewPort(*app_, "Income", ""));
  OnWindow("dlgOpenDelPort", [&](QDialog& window) {
    Choose(window, "SSdgPortfolios", 0);
    ExpectSaid(ui_, __FILE__, "delete portfolio", Answer::kYes);
    Click(window, "btnOK");
    EXPECT_EQ(GridRows(window, "SSdgPortfolios"), "Income|");
    Click(window, "btnCancel");
  });
  ShowDelPort(*app_);
  EXPECT_EQ(Rows(*app_->client, R"(SELECT "Port Name" FROM "Portfolio")"), "Income;");
}

// An empty portfolio name is refused and the focus goes back to it.
TEST_F(TaxpayerWindowsTest, NewPort_EmptyNameRefusedFocusBack) {
  OnWindow("dlgNewModPort", [&](QDialog& window) {
    Type(window, "txt2ndLine", "dividends");
    ExpectSaid(ui_, __FILE__, "no portfolio name");
    Click(window, "btnOK");
    EXPECT_EQ(FocusName(), "txtPortName");
    EXPECT_EQ(Shown(window, "txt2ndLine"), "dividends");
    Click(window, "btnCancel");
  });
  ShowNewPort(*app_);
}

// The folder buttons pick through the port's picker and keep the folder
// part; OK stores both folders and ends the run.
TEST_F(TaxpayerWindowsTest, FileLoc_PickedFoldersStoredOnOk) {
  OnWindow("dlgFileLoc", [&](QDialog& window) {
    ui_.ExpectPick("Designate Folder For Data", "/srv/lw/NO FILENAME NEEDED - CHOOSE FOLDER");
    Click(window, "btnSSF");
    EXPECT_EQ(Shown(window, "txtSSF"), "/srv/lw/");
    Type(window, "txtClient", "/srv/client/");
    ExpectSaid(ui_, __FILE__, "closing down");
    Click(window, "btnOK");
  });
  EXPECT_THROW(RunDlgFileLoc(*app_), ProgramEnded);
  IniFile store(app_->settings_store_path);
  EXPECT_EQ(store.ReadText("File Options", "SSF Path", "") + "|" +
                store.ReadText("File Options", "Taxpayer Path", ""),
            "/srv/lw/|/srv/client/");
  EXPECT_EQ(env_->end_calls(), 1);
}

// Leaving the symbol box fills name and CUSIP of a known symbol. A refused
// write (the portfolio holds it already) leaves the same window up with the
// user's values; Find picks a symbol from the list window over it.
TEST_F(TaxpayerWindowsTest, AddSec_FillRefuseAndFind) {
  std::string cusip;
  ASSERT_TRUE(AddSec(*app_, "IBM", "", cusip, "", "Growth & Value"));
  OnWindow("dlgAddModSec", [&](QDialog& window) {
    Type(window, "txtSymbol", "ibm");
    QTest::keyClick(Get(window, "txtSymbol"), Qt::Key_Return);
    EXPECT_EQ(Shown(window, "txtSymbol") + "|" + Shown(window, "txtSecName") + "|" +
                  Shown(window, "txtCusip"),
              "IBM|International Business Machines|459200101");
    Type(window, "txt2ndLine", "second lot");
    ExpectSaid(ui_, __FILE__, "security exists");
    OnWindow("dlgAddModSec", nullptr);
    Click(window, "btnOK");
    EXPECT_EQ(Shown(window, "txt2ndLine"), "second lot");
    OnWindow("dlgSecSymbol", [&](QDialog& list) {
      EXPECT_EQ(list.windowTitle().toStdString(), "Select a Security");
      Click(list, "btnSelect");
    });
    Type(window, "txtSymbol", "");
    Click(window, "btnFind");
    EXPECT_EQ(Shown(window, "txtSymbol"), "IBM");
    Click(window, "btnCancel");
  });
  ShowAddSec(*app_);
  EXPECT_EQ(Rows(*app_->client, R"(SELECT "Sec Symbol" FROM "Security")"), "IBM;");
}

// Where the symbol is fixed, an edit is undone with the warning.
TEST_F(TaxpayerWindowsTest, ModSecInCdb_SymbolEditRefused) {
  OnWindow("dlgAddModSec", [&](QDialog& window) {
    ExpectSaid(ui_, __FILE__, "symbol fixed");
    Get(window, "txtSymbol")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(Get(window, "txtSymbol"), Qt::Key_X);
    EXPECT_EQ(Shown(window, "txtSymbol"), "IBM");
    Type(window, "txtSecName", "IBM Corp");
    Click(window, "btnOK");
  });
  ShowModSecInCDB(*app_, "IBM");
  EXPECT_EQ(Rows(*app_->central, R"(SELECT * FROM "Securities")"), "IBM|IBM Corp|459200101;");
}

// The symbols window: Add opens the add window over it, the list then shows
// the new symbol; Delete after Yes removes the chosen one.
TEST_F(TaxpayerWindowsTest, SecSymbol_AddAndDelete) {
  OnWindow("dlgSecSymbol", [&](QDialog& window) {
    OnWindow("dlgAddModSec", [&](QDialog& add) {
      EXPECT_FALSE(Get<QWidget>(add, "pnlPortfolio")->isVisible());
      Type(add, "txtSymbol", "AAPL");
      Type(add, "txtSecName", "Apple Inc.");
      Type(add, "txtCusip", "037833100");
      Click(add, "btnOK");
    });
    Click(window, "btnAdd");
    EXPECT_EQ(GridRows(window, "SSdgSecSymbols"),
              "AAPL|Apple Inc.|037833100/IBM|International Business Machines|459200101");
    Choose(window, "SSdgSecSymbols", 1);
    ExpectSaid(ui_, __FILE__, "delete security", Answer::kYes);
    Click(window, "btnDelete");
    EXPECT_EQ(GridRows(window, "SSdgSecSymbols"), "AAPL|Apple Inc.|037833100");
    Click(window, "btnClose");
  });
  ShowSecSymbol(*app_);
  EXPECT_EQ(Rows(*app_->central, R"(SELECT * FROM "Securities")"), "AAPL|Apple Inc.|037833100;");
}

}  // namespace
}  // namespace lotwise::testing
