#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <map>
#include <sstream>

#include "lots/adjust_block.h"
#include "lots/buy_reinvest.h"
#include "lots/modify_trans.h"
#include "lots/rollback.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "lots/split_dividend.h"
#include "support/golden.h"
#include "ui_lot_dialogs/lot_window_fixture.h"

namespace lotwise::testing {
namespace {

void ShowSplit(Application& app) { lotwise::ShowSplit(app, "Stock Split"); }
void ShowDividend(Application& app) { lotwise::ShowSplit(app, "Stock Dividend"); }
void ShowMethod(Application& app) {
  int16_t option = 0;
  RetrieveSellMethod(app, SellMethod::kFifo, "", "", option);
}
// The command as the Sell row of the transaction list (its second) is chosen.
void ShowModifySell(Application& app) {
  app.window.display.selected_transaction = 1;
  ShowModifyTrans(app);
}

// A block of 100 shares bought 01/02/2024 for 1,000.00 and sold down by 40
// on 03/01/2024, sold by FIFO, open in the main window.
class EntryWindowTest : public LotWindowTest {
 protected:
  void Arrange() {
    Buy("01/02/2024", 100, "1000");
    ASSERT_TRUE(AddSell(*app_, 1, D("03/01/2024"), Money("500"), Currency(), -40, ""));
    Open(SellMethod::kFifo);
  }
  // Shows the window through `show`, `drive` playing the user's part.
  void Show(void (*show)(Application&), const char* window, Drive drive) {
    if (show == ShowRollBack) ExpectSaid(ui_, __FILE__, "backup");
    OnWindow(window, std::move(drive));
    show(*app_);
  }
  // Each case of a case file whose name starts "show window": shows that
  // window and plays `drive` with the case on it.
  void ForEachWindow(const char* cases, std::function<void(QDialog&, const GoldenCase&)> drive) {
    const std::map<std::string, void (*)(Application&)> shows = {
        {"ShowBuyShares", ShowBuyShares},
        {"ShowReinvest", ShowReinvest},
        {"ShowSellShares", ShowSellShares},
        {"ShowMethod", ShowMethod},
        {"ShowSplit", ShowSplit},
        {"ShowDividend", ShowDividend},
        {"ShowAdjustBlock", ShowAdjustBlock},
        {"ShowModifyTrans", ShowModifyTrans},
        {"ShowModifySell", ShowModifySell},
        {"ShowRollBack", ShowRollBack}};
    for (const GoldenCase& c : ReadCases(__FILE__, cases)) {
      SCOPED_TRACE(c.name);
      std::istringstream words(c.name);
      std::string show, window;
      words >> show >> window;
      Show(shows.at(show), window.c_str(), [&](QDialog& dialog) { drive(dialog, c); });
      EXPECT_TRUE(ui_.Done());
    }
  }
  void ExpectUnchanged() {
    EXPECT_EQ(BuyRows(), Strings{"01/02/2024-1|100|1000|0|"});
    EXPECT_EQ(SellRows(), Strings{"01/02/2024-1|-40|500|0"});
  }
};

// Every window opens captioned by its mode, the security shown with a
// literal "&"; Cancel stores nothing.
TEST_F(EntryWindowTest, Windows_OpenWithCaption) {
  Arrange();
  ForEachWindow("captions.txt", [&](QDialog& dialog, const GoldenCase& c) {
    EXPECT_EQ(ui::FromQ(dialog.windowTitle()), c.Lines("").at(0));
    const std::string label = c.name.substr(c.name.rfind(' ') + 1);
    if (label != "-") {
      EXPECT_EQ(ui::FromQ(Get<QLabel>(dialog, label.c_str())->text()), "AT&T");
    }
    Click(dialog, "btnCancel");
  });
  ExpectUnchanged();
}

// Enter in a field moves the focus on, the help bar showing the next
// control's text, and never accepts. Leaving a field (Tab) runs its check
// with its exact messages; a refused value is reset where the check resets
// it, and the focus goes back where the check sends it. Escape then stores
// nothing.
TEST_F(EntryWindowTest, EnterAndLeave_MoveFocusAndRunChecks) {
  Arrange();
  ForEachWindow("enter_and_leave.txt", [&](QDialog& dialog, const GoldenCase& c) {
    std::istringstream words(c.name);
    std::string field, keys, key;
    words >> field >> field >> field >> keys >> key;
    if (keys == "-") keys.clear();
    // An empty date field has the focus when a window opens; filled,
    // moving on from it draws no date message.
    if (field != "dtDate" && dialog.findChild<QLineEdit*>("dtDate") &&
        Shown(dialog, "dtDate") == "__/__/____") {
      Type(dialog, "dtDate", "03152024");
    }
    for (const GoldenSection& said : c.sections) {
      if (said.key == "said") ui_.Expect(said.lines.at(0), said.args);
    }
    Type(dialog, field.c_str(), QString::fromStdString(keys));
    QTest::keyClick(Get(dialog, field.c_str()), key == "Enter" ? Qt::Key_Return : Qt::Key_Tab);
    EXPECT_TRUE(ui_.Done()) << "a message was not shown";
    EXPECT_EQ(Shown(dialog, field.c_str()), c.Lines("shown").at(0));
    EXPECT_EQ(FocusName(), c.Lines("focus").at(0));
    for (const std::string& help : c.Lines("help")) EXPECT_EQ(ui_.help_texts().back(), help);
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  ExpectUnchanged();
}
// Leaving a field for Cancel defers its check: cancelling draws no message
// about an entry being thrown away; moving on from Cancel runs it.
TEST_F(EntryWindowTest, LeavingForCancel_ChecksOnlyWhenNotCancelling) {
  OnWindow("dlgBuyReinvest", [&](QDialog& dialog) {
    Type(dialog, "dtDate", "03152024");
    Type(dialog, "CurrFee", "-5");
    auto* cancel = Get<QPushButton>(dialog, "btnCancel");
    cancel->setFocus(Qt::MouseFocusReason);
    ExpectSaid(ui_, __FILE__, "negative fee");
    QTest::keyClick(cancel, Qt::Key_Tab);
    EXPECT_EQ(Shown(dialog, "CurrFee") + " " + FocusName(), "0 CurrFee");
    Type(dialog, "dtDate", "");
    Click(dialog, "btnCancel");
  });
  ShowBuyShares(*app_);
}

// OK enters the buy through the core, a block of its own with the amounts
// as typed and the total shown as cost plus fee; Next stores and keeps the
// window open, cleared, for another. "0," can start no number and is not
// taken; a half-typed "1,2" and an amount beyond the range are refused,
// never read as 0 (nor as 12).
TEST_F(EntryWindowTest, BuyOkAndNext_StoreBlocks) {
  OnWindow("dlgBuyReinvest", [&](QDialog& dialog) {
    TypeTab(dialog, "dtDate", "03152024");
    TypeTab(dialog, "DblNumShares", "12.5");
    TypeTab(dialog, "CurrCostOfShares", "1,250.25");
    TypeTab(dialog, "CurrFee", "4.75");
    EXPECT_EQ(Shown(dialog, "CurrTotalCost"), "1255");
    Type(dialog, "txtNotes", "DRIP");
    Click(dialog, "btnNext");
    EXPECT_EQ(Shown(dialog, "dtDate") + Shown(dialog, "DblNumShares") + Shown(dialog, "txtNotes"),
              "__/__/____0");
    EXPECT_EQ(FocusName(), "dtDate");
    TypeTab(dialog, "dtDate", "04012024");
    Type(dialog, "DblNumShares", "0,5");
    EXPECT_EQ(Shown(dialog, "DblNumShares"), "05");
    ExpectSaid(ui_, __FILE__, "half-typed number");
    TypeTab(dialog, "DblNumShares", "1,2");
    EXPECT_EQ(FocusName(), "DblNumShares");
    TypeTab(dialog, "DblNumShares", "3");
    ExpectSaid(ui_, __FILE__, "amount too large");
    TypeTab(dialog, "CurrCostOfShares", "99999999999999999999");
    EXPECT_EQ(FocusName(), "CurrCostOfShares");
    TypeTab(dialog, "CurrCostOfShares", "30");
    Click(dialog, "btnOK");
  });
  ShowBuyShares(*app_);
  EXPECT_EQ(BuyRows(), (Strings{"03/15/2024-1|12.5|1250.25|4.75|DRIP", "04/01/2024-1|3|30|0|"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// OK in the modification, split and adjustment windows stores through the
// core: the selected row rewritten with the values typed; a split row under
// every block holding shares; an adjustment before the block's purchase
// refused with the window left open, then filed with its signs.
TEST_F(EntryWindowTest, ModifySplitAdjustOk_StoreRows) {
  Arrange();
  OnWindow("dlgModifyTrans", [&](QDialog& dialog) {
    EXPECT_EQ(Shown(dialog, "dtDate") + " " + Shown(dialog, "DblNumShares"), "01/02/2024 100");
    TypeTab(dialog, "DblNumShares", "120");
    TypeTab(dialog, "CurrCostOfShares", "1200");
    Type(dialog, "txtNotes", "corrected");
    Click(dialog, "btnOK");
  });
  ShowModifyTrans(*app_);
  EXPECT_EQ(BuyRows(), Strings{"01/02/2024-1|120|1200|0|corrected"});

  Buy("03/01/2024", 50, "600");
  ShowSecDisplay(*app_, "T");
  OnWindow("dlgSplitDiv", [&](QDialog& dialog) {
    EXPECT_EQ(ui::FromQ(Get<QLabel>(dialog, "lblExplanation")->text()),
              "For a 2 to 1 Stock Split, 'Ratio of Number of New Shares:' would be 2, and 'To "
              "Number of Old Shares:' would be 1.");
    EXPECT_TRUE(Get<QRadioButton>(dialog, "CSoptBlocks_1")->isChecked());
    TypeTab(dialog, "dtDate", "06012024");
    TypeTab(dialog, "DblPreRatio", "2");
    TypeTab(dialog, "DblPostRatio", "1");
    Click(dialog, "btnOK");
  });
  ShowSplit(*app_);
  EXPECT_EQ(Rows(R"(SELECT "Block No", "Type", "Pre Ratio", "Shares" FROM "Split")", "ttnn"),
            (Strings{"1|11|2|80", "2|11|2|50"}));

  ShowSecDisplay(*app_, "T");
  OnWindow("dlgAdjustBlock", [&](QDialog& dialog) {
    TypeTab(dialog, "dtDate", "01012024");
    TypeTab(dialog, "DblNumShares", "-5");
    TypeTab(dialog, "CurrCostBasis", "-12.5");
    ExpectSaid(ui_, __FILE__, "adjustment before purchase");
    Click(dialog, "btnOK");
    EXPECT_EQ(FocusName(), "dtDate");
    TypeTab(dialog, "dtDate", "01022024");
    Click(dialog, "btnOK");
  });
  ShowAdjustBlock(*app_);
  EXPECT_EQ(Rows(R"(SELECT "Block No", "Shares", "Cost" FROM "Adjust")", "tnm"),
            Strings{"1|-5|-12.5"});
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// A roll-back of buys in all blocks removes the later purchase and so its
// block, which the list of removed blocks shows and prints.
TEST_F(EntryWindowTest, RollbackOk_ListsAndPrintsRemovedBlocks) {
  Buy("01/02/2024", 100, "1000");
  Buy("03/01/2024", 50, "600");
  Open(SellMethod::kFifo);
  Show(ShowRollBack, "dlgRollback", [&](QDialog& dialog) {
    TypeTab(dialog, "dtDate", "02012024");
    Click(dialog, "chkBuys");
    Click(dialog, "CSoptBlocks_1");
    ExpectSaid(ui_, __FILE__, "rollback all blocks", Answer::kYes);
    OnWindow("dlgRemBlocks", [&](QDialog& list_window) {
      EXPECT_EQ(ui::FromQ(Get<QLabel>(list_window, "lblNote")->text()),
                "These blocks were removed becuase all transactions were removed from them");
      auto* list = Get<QListWidget>(list_window, "SSdgRemBlocks");
      ASSERT_EQ(list->count(), 1);
      EXPECT_EQ(ui::FromQ(list->item(0)->text()), "03/01/2024-1");
      Click(list_window, "btnPrint");
      Click(list_window, "btnClose");
    });
    Click(dialog, "btnOK");
  });
  EXPECT_EQ(Rows(R"(SELECT "Block ID" FROM "Blocks")", "t"), Strings{"01/02/2024-1"});
  EXPECT_EQ(ui_.printed(),
            (Strings{"Listing of Blocks that have been removed", "Taxpayer Name: John Doe",
                     "Portfolio:     Growth", "Security:      T", "Blocks:  03/01/2024-1"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// The method dialog chooses by P, F, S and D typed anywhere in it, in
// either case; OK returns the method chosen.
TEST_F(EntryWindowTest, MethodKeys_ChooseMethod) {
  OnWindow("dlgMethod", [&](QDialog& dialog) {
    EXPECT_TRUE(Get<QRadioButton>(dialog, "CSoptMethod_1")->isChecked());
    EXPECT_FALSE(Get<QWidget>(dialog, "chkOption1")->isVisibleTo(&dialog));
    for (const char* key_option : {"d3", "P0", "s2", "F1", "x1", "D3"}) {
      QTest::keyClick(QApplication::focusWidget(), key_option[0]);
      const std::string option = std::string("CSoptMethod_") + key_option[1];
      EXPECT_TRUE(Get<QRadioButton>(dialog, option.c_str())->isChecked()) << key_option;
    }
    Click(dialog, "btnOK");
  });
  int16_t option = 0;
  EXPECT_EQ(RetrieveSellMethod(*app_, SellMethod::kFifo, "", "", option), SellMethod::kAvgDouble);
}

}  // namespace
}  // namespace lotwise::testing
